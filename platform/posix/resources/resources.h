// The module's resources: texts, cursors and icons, found and loaded as on Windows.
// Resources are constant data. Handles of cursors and icons may be used on any thread; the language choice belongs to its thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/regional/nls.h"
#include "platform/posix/types.h"

#define RT_CURSOR MAKEINTRESOURCEA(1)
#define RT_ICON MAKEINTRESOURCEA(3)
#define RT_STRING MAKEINTRESOURCEA(6)
#define RT_GROUP_CURSOR MAKEINTRESOURCEA(12)
#define RT_GROUP_ICON MAKEINTRESOURCEA(14)

#define IDC_ARROW MAKEINTRESOURCEA(32512)
#define IDC_IBEAM MAKEINTRESOURCEA(32513)
#define IDC_WAIT MAKEINTRESOURCEA(32514)
#define IDC_CROSS MAKEINTRESOURCEA(32515)
#define IDC_UPARROW MAKEINTRESOURCEA(32516)
#define IDC_SIZENWSE MAKEINTRESOURCEA(32642)
#define IDC_SIZENESW MAKEINTRESOURCEA(32643)
#define IDC_SIZEWE MAKEINTRESOURCEA(32644)
#define IDC_SIZENS MAKEINTRESOURCEA(32645)
#define IDC_SIZEALL MAKEINTRESOURCEA(32646)
#define IDC_NO MAKEINTRESOURCEA(32648)
#define IDC_HAND MAKEINTRESOURCEA(32649)
#define IDC_APPSTARTING MAKEINTRESOURCEA(32650)
#define IDC_HELP MAKEINTRESOURCEA(32651)

#define IMAGE_BITMAP 0u
#define IMAGE_ICON 1u
#define IMAGE_CURSOR 2u
#define LR_DEFAULTCOLOR 0x0u
#define LR_DEFAULTSIZE 0x40u
#define LR_SHARED 0x8000u

struct ICONINFO {
    BOOL fIcon;  // else a cursor
    DWORD xHotspot, yHotspot;
    HBITMAP hbmMask, hbmColor;  // always null here: cursors and icons hand out no bitmaps
};

// Which language a text is in: the calling thread's choice, else that of LC_ALL, LC_MESSAGES or LANG as they stood at the first
// look-up; English where that language is neither of the two.
ORVIK_API LANGID WINAPI GetUserDefaultUILanguage();
ORVIK_API LANGID WINAPI GetThreadUILanguage();
ORVIK_API LANGID WINAPI SetThreadUILanguage(LANGID language);  // 0 takes the choice back; returns the language in force
ORVIK_API LCID WINAPI GetThreadLocale();
ORVIK_API BOOL WINAPI SetThreadLocale(LCID locale);

// The handle of this module ("OrvikShared", with or without an ending), of another loaded library, or of the program (null name);
// null with error 126 for one that is not loaded. No reference is taken.
ORVIK_API HMODULE WINAPI GetModuleHandleA(LPCSTR name);

// Only this module has resources; for every other one the search fails with 1813 (unknown type) or 1814 (unknown id). Ids are
// numbers. FindResourceExW with a language other than neutral finds that language only.
ORVIK_API HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR id, LPCSTR type);
ORVIK_API HRSRC WINAPI FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR id, WORD language);
ORVIK_API HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
ORVIK_API LPVOID WINAPI LockResource(HGLOBAL resource);
ORVIK_API DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);
// The length of the text, cut to what fits the buffer; 0 and an empty buffer when there is no such text.
ORVIK_API int WINAPI LoadStringA(HINSTANCE module, UINT id, LPSTR out, int size);

// Cursors and system cursors (no module) are shared: the same handle each time, which destroying leaves alone. LoadImage makes an
// object of its own, of the entry whose size is nearest to the wanted one, unless LR_SHARED is given. Sizes are in pixels; 0
// means
// 32. Null on failure.
ORVIK_API HCURSOR WINAPI LoadCursorA(HINSTANCE module, LPCSTR id);
ORVIK_API HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR id);
ORVIK_API HICON WINAPI LoadIconA(HINSTANCE module, LPCSTR id);
ORVIK_API HANDLE WINAPI LoadImageA(HINSTANCE module, LPCSTR id, UINT type, int width, int height, UINT flags);
ORVIK_API BOOL WINAPI DestroyCursor(HCURSOR cursor);
ORVIK_API BOOL WINAPI DestroyIcon(HICON icon);
ORVIK_API BOOL WINAPI GetIconInfo(HICON icon, ICONINFO* info);
