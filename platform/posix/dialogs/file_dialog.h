// The desktop's questions for a file, where windows come to a screen (platform/screen.h). The user-interface thread; its messages
// are handled meanwhile, and the owner is disabled.
#pragma once

#include "platform/posix/dialogs/menu.h"

#define OFN_READONLY 0x00000001u
#define OFN_OVERWRITEPROMPT 0x00000002u
#define OFN_HIDEREADONLY 0x00000004u
#define OFN_NOCHANGEDIR 0x00000008u
#define OFN_PATHMUSTEXIST 0x00000800u
#define OFN_FILEMUSTEXIST 0x00001000u
#define OFN_EXPLORER 0x00080000u

// As documented, without hooks, templates and several files at once.
struct OPENFILENAMEA {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCSTR lpstrFilter;  // pairs of a name and of patterns ("*.odb;*.xml"), each ended by a zero, and one more zero
    LPSTR lpstrCustomFilter;
    DWORD nMaxCustFilter, nFilterIndex;
    LPSTR lpstrFile;  // in: what is suggested; out: the path
    DWORD nMaxFile;
    LPSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCSTR lpstrInitialDir, lpstrTitle;
    DWORD Flags;
    WORD nFileOffset, nFileExtension;
    LPCSTR lpstrDefExt;  // given to a name that is saved without one
    LPARAM lCustData;
    void* lpfnHook;
    LPCSTR lpTemplateName;
};
using LPOPENFILENAMEA = OPENFILENAMEA*;

// FALSE when the user gives up, where there is no screen, for null pointers, and for a path that does not fit. Before a file is
// replaced the user is asked (OFN_OVERWRITEPROMPT), also about the name with the extension that was added.
ORVIK_API BOOL WINAPI GetOpenFileNameA(LPOPENFILENAMEA question);
ORVIK_API BOOL WINAPI GetSaveFileNameA(LPOPENFILENAMEA question);
