// The doors between this house's narrow text and Windows. In a process that chose UTF-8 (platform/house_text.h) each takes and
// gives UTF-8 and calls the function of the same name that ends in W; in every other process it is the function ending in A and
// nothing else. Arguments, results, ownership, threads and errors are those of the function whose name it has; lengths, sizes and
// positions are bytes, limits of fields letters (platform/letters.h). What does not fit is cut at a character's end where the
// function cuts, and an error where it does not.
//
// Include platform/win32.h and use the system's names: they lead here. In a process that chose UTF-8:
// - Classes and windows are the wide kind; a procedure that was registered or set by these names sees UTF-8 in every message that
//   carries text, and WM_CHAR carries UTF-16: a character beyond the first 65,536 comes as two.
// - A dialog's own procedure (DLGPROC) and messages of a list view or a header whose names end in W are handed on as they are.
// - Names of entries of a folder that have more than MAX_PATH - 1 bytes come by their short name; one without is passed over.
#pragma once

#include "platform/api.h"

#define ORVIK_DOOR(name) ORVIK_API decltype(::name) Orvik##name

// Text in general.
ORVIK_DOOR(CharNextA);
ORVIK_DOOR(CharPrevA);
ORVIK_DOOR(CompareStringA);
ORVIK_DOOR(MultiByteToWideChar);
ORVIK_DOOR(OutputDebugStringA);
ORVIK_DOOR(WideCharToMultiByte);
ORVIK_DOOR(lstrcmpiA);

// Regional settings.
ORVIK_DOOR(GetDateFormatA);
ORVIK_DOOR(GetLocaleInfoA);
ORVIK_DOOR(GetTimeFormatA);
ORVIK_DOOR(SetLocaleInfoA);

// Files and folders.
ORVIK_DOOR(CopyFileA);
ORVIK_DOOR(CreateDirectoryA);
ORVIK_DOOR(CreateFileA);
ORVIK_DOOR(DeleteFileA);
ORVIK_DOOR(DragQueryFileA);
ORVIK_DOOR(FindFirstFileA);
ORVIK_DOOR(FindFirstFileExA);
ORVIK_DOOR(FindNextFileA);
ORVIK_DOOR(GetDiskFreeSpaceA);
ORVIK_DOOR(GetDiskFreeSpaceExA);
ORVIK_DOOR(GetFileAttributesA);
ORVIK_DOOR(GetFileAttributesExA);
ORVIK_DOOR(GetFileSecurityA);
ORVIK_DOOR(GetFinalPathNameByHandleA);
ORVIK_DOOR(GetFullPathNameA);
ORVIK_DOOR(GetTempPathA);
ORVIK_DOOR(MoveFileExA);
ORVIK_DOOR(RemoveDirectoryA);
ORVIK_DOOR(SetFileAttributesA);
ORVIK_DOOR(SetFileSecurityA);
ORVIK_DOOR(_access);
ORVIK_DOOR(_chdir);
ORVIK_DOOR(_getcwd);

// The process, its modules and what they carry.
ORVIK_DOOR(FindResourceA);
ORVIK_DOOR(GetEnvironmentVariableA);
ORVIK_DOOR(GetFileVersionInfoA);
ORVIK_DOOR(GetFileVersionInfoSizeA);
ORVIK_DOOR(GetModuleFileNameA);
ORVIK_DOOR(GetModuleHandleA);
ORVIK_DOOR(LoadCursorA);
ORVIK_DOOR(LoadImageA);
ORVIK_DOOR(LoadLibraryA);
ORVIK_DOOR(LoadStringA);
ORVIK_DOOR(SetEnvironmentVariableA);
// Texts live as long as the process; of one text there is one copy.
ORVIK_DOOR(VerQueryValueA);

// Devices, registry, kernel objects.
ORVIK_DOOR(CreateEventA);
ORVIK_DOOR(GetDefaultCommConfigA);
ORVIK_DOOR(RegQueryValueExA);
ORVIK_DOOR(SetupDiClassGuidsFromNameA);
ORVIK_DOOR(SetupDiGetClassDevsA);
ORVIK_DOOR(SetupDiGetDeviceRegistryPropertyA);

// Drawing. An entry of a list of widths belongs to a byte: a character takes the sum of its bytes' entries, and each of its bytes
// is given the extent up to its end.
ORVIK_DOOR(CreateDCA);
ORVIK_DOOR(CreateEnhMetaFileA);
ORVIK_DOOR(CreateFontA);
ORVIK_DOOR(CreateFontIndirectA);
ORVIK_DOOR(DrawTextA);
ORVIK_DOOR(ExtTextOutA);
ORVIK_DOOR(GetCharWidth32A);  // of Unicode's characters
ORVIK_DOOR(GetObjectA);
ORVIK_DOOR(GetTextExtentExPointA);
ORVIK_DOOR(GetTextExtentPoint32A);
ORVIK_DOOR(GetTextFaceA);
ORVIK_DOOR(SystemParametersInfoA);
ORVIK_DOOR(TextOutA);

// Menus and boxes.
ORVIK_DOOR(AppendMenuA);
ORVIK_DOOR(GetMenuStringA);
ORVIK_DOOR(GetOpenFileNameA);
ORVIK_DOOR(GetSaveFileNameA);
ORVIK_DOOR(InsertMenuA);
ORVIK_DOOR(MessageBoxA);
ORVIK_DOOR(ModifyMenuA);

// Windows and messages.
ORVIK_DOOR(CallWindowProcA);
ORVIK_DOOR(CreateDialogIndirectParamA);
ORVIK_DOOR(CreateWindowExA);
ORVIK_DOOR(DefWindowProcA);
ORVIK_DOOR(DispatchMessageA);
ORVIK_DOOR(GetClassInfoA);
ORVIK_DOOR(GetClassNameA);
ORVIK_DOOR(GetDlgItemTextA);
ORVIK_DOOR(GetMessageA);
ORVIK_DOOR(GetWindowTextA);
ORVIK_DOOR(GetWindowTextLengthA);
ORVIK_DOOR(IsDialogMessageA);
ORVIK_DOOR(PeekMessageA);
ORVIK_DOOR(PostMessageA);
ORVIK_DOOR(PostThreadMessageA);
ORVIK_DOOR(RegisterClassA);
ORVIK_DOOR(RegisterWindowMessageA);
ORVIK_DOOR(SendDlgItemMessageA);
ORVIK_DOOR(SendMessageA);
ORVIK_DOOR(SetDlgItemTextA);
ORVIK_DOOR(SetWindowsHookExA);
ORVIK_DOOR(SetWindowTextA);
ORVIK_DOOR(UnregisterClassA);
// Of 32-bit Windows these two are macros.
ORVIK_API LONG_PTR WINAPI OrvikGetWindowLongPtrA(HWND window, int index);
ORVIK_API LONG_PTR WINAPI OrvikSetWindowLongPtrA(HWND window, int index, LONG_PTR value);

#undef ORVIK_DOOR

// The doors themselves go to the system.
#if !defined(ORVIK_BEHIND_DOORS)
#undef GetWindowLongPtrA
#undef SetWindowLongPtrA
#define _access Orvik_access
#define _chdir Orvik_chdir
#define _getcwd Orvik_getcwd
#define AppendMenuA OrvikAppendMenuA
#define CallWindowProcA OrvikCallWindowProcA
#define CharNextA OrvikCharNextA
#define CharPrevA OrvikCharPrevA
#define CompareStringA OrvikCompareStringA
#define CopyFileA OrvikCopyFileA
#define CreateDCA OrvikCreateDCA
#define CreateDialogIndirectParamA OrvikCreateDialogIndirectParamA
#define CreateDirectoryA OrvikCreateDirectoryA
#define CreateEnhMetaFileA OrvikCreateEnhMetaFileA
#define CreateEventA OrvikCreateEventA
#define CreateFileA OrvikCreateFileA
#define CreateFontA OrvikCreateFontA
#define CreateFontIndirectA OrvikCreateFontIndirectA
#define CreateWindowExA OrvikCreateWindowExA
#define DefWindowProcA OrvikDefWindowProcA
#define DeleteFileA OrvikDeleteFileA
#define DispatchMessageA OrvikDispatchMessageA
#define DragQueryFileA OrvikDragQueryFileA
#define DrawTextA OrvikDrawTextA
#define ExtTextOutA OrvikExtTextOutA
#define FindFirstFileA OrvikFindFirstFileA
#define FindFirstFileExA OrvikFindFirstFileExA
#define FindNextFileA OrvikFindNextFileA
#define FindResourceA OrvikFindResourceA
#define GetCharWidth32A OrvikGetCharWidth32A
#define GetClassInfoA OrvikGetClassInfoA
#define GetClassNameA OrvikGetClassNameA
#define GetDateFormatA OrvikGetDateFormatA
#define GetDefaultCommConfigA OrvikGetDefaultCommConfigA
#define GetDiskFreeSpaceA OrvikGetDiskFreeSpaceA
#define GetDiskFreeSpaceExA OrvikGetDiskFreeSpaceExA
#define GetDlgItemTextA OrvikGetDlgItemTextA
#define GetEnvironmentVariableA OrvikGetEnvironmentVariableA
#define GetFileAttributesA OrvikGetFileAttributesA
#define GetFileAttributesExA OrvikGetFileAttributesExA
#define GetFileSecurityA OrvikGetFileSecurityA
#define GetFileVersionInfoA OrvikGetFileVersionInfoA
#define GetFileVersionInfoSizeA OrvikGetFileVersionInfoSizeA
#define GetFinalPathNameByHandleA OrvikGetFinalPathNameByHandleA
#define GetFullPathNameA OrvikGetFullPathNameA
#define GetLocaleInfoA OrvikGetLocaleInfoA
#define GetMenuStringA OrvikGetMenuStringA
#define GetMessageA OrvikGetMessageA
#define GetModuleFileNameA OrvikGetModuleFileNameA
#define GetModuleHandleA OrvikGetModuleHandleA
#define GetObjectA OrvikGetObjectA
#define GetOpenFileNameA OrvikGetOpenFileNameA
#define GetSaveFileNameA OrvikGetSaveFileNameA
#define GetTempPathA OrvikGetTempPathA
#define GetTextExtentExPointA OrvikGetTextExtentExPointA
#define GetTextExtentPoint32A OrvikGetTextExtentPoint32A
#define GetTextFaceA OrvikGetTextFaceA
#define GetTimeFormatA OrvikGetTimeFormatA
#define GetWindowLongPtrA OrvikGetWindowLongPtrA
#define GetWindowTextA OrvikGetWindowTextA
#define GetWindowTextLengthA OrvikGetWindowTextLengthA
#define InsertMenuA OrvikInsertMenuA
#define IsDialogMessageA OrvikIsDialogMessageA
#define LoadCursorA OrvikLoadCursorA
#define LoadImageA OrvikLoadImageA
#define LoadLibraryA OrvikLoadLibraryA
#define LoadStringA OrvikLoadStringA
#define lstrcmpiA OrviklstrcmpiA
#define MessageBoxA OrvikMessageBoxA
#define ModifyMenuA OrvikModifyMenuA
#define MoveFileExA OrvikMoveFileExA
#define MultiByteToWideChar OrvikMultiByteToWideChar
#define OutputDebugStringA OrvikOutputDebugStringA
#define PeekMessageA OrvikPeekMessageA
#define PostMessageA OrvikPostMessageA
#define PostThreadMessageA OrvikPostThreadMessageA
#define RegisterClassA OrvikRegisterClassA
#define RegisterWindowMessageA OrvikRegisterWindowMessageA
#define RegQueryValueExA OrvikRegQueryValueExA
#define RemoveDirectoryA OrvikRemoveDirectoryA
#define SendDlgItemMessageA OrvikSendDlgItemMessageA
#define SendMessageA OrvikSendMessageA
#define SetDlgItemTextA OrvikSetDlgItemTextA
#define SetEnvironmentVariableA OrvikSetEnvironmentVariableA
#define SetFileAttributesA OrvikSetFileAttributesA
#define SetFileSecurityA OrvikSetFileSecurityA
#define SetLocaleInfoA OrvikSetLocaleInfoA
#define SetupDiClassGuidsFromNameA OrvikSetupDiClassGuidsFromNameA
#define SetupDiGetClassDevsA OrvikSetupDiGetClassDevsA
#define SetupDiGetDeviceRegistryPropertyA OrvikSetupDiGetDeviceRegistryPropertyA
#define SetWindowLongPtrA OrvikSetWindowLongPtrA
#define SetWindowsHookExA OrvikSetWindowsHookExA
#define SetWindowTextA OrvikSetWindowTextA
#define SystemParametersInfoA OrvikSystemParametersInfoA
#define TextOutA OrvikTextOutA
#define UnregisterClassA OrvikUnregisterClassA
#define VerQueryValueA OrvikVerQueryValueA
#define WideCharToMultiByte OrvikWideCharToMultiByte
#endif
