// Message boxes. Where no window can come to a screen (platform/screen.h), the text goes to the standard error stream, and the
// default button is the answer.
// Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define MB_OK 0x00000000u
#define MB_OKCANCEL 0x00000001u
#define MB_ABORTRETRYIGNORE 0x00000002u
#define MB_YESNOCANCEL 0x00000003u
#define MB_YESNO 0x00000004u
#define MB_RETRYCANCEL 0x00000005u
#define MB_TYPEMASK 0x0000000Fu
#define MB_ICONSTOP 0x00000010u
#define MB_ICONHAND MB_ICONSTOP
#define MB_ICONERROR MB_ICONSTOP
#define MB_ICONQUESTION 0x00000020u
#define MB_ICONEXCLAMATION 0x00000030u
#define MB_ICONINFORMATION 0x00000040u
#define MB_DEFBUTTON1 0x00000000u
#define MB_DEFBUTTON2 0x00000100u
#define MB_DEFBUTTON3 0x00000200u
#define MB_DEFMASK 0x00000F00u

#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7

// On a screen a modal dialog; Escape and the frame's button choose Cancel, or the only button, and nothing where a choice must be
// made. A program without a user never waits here: the answer is the button that Enter would press. 0 and error 87 for an unknown
// set of buttons.
ORVIK_API int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
