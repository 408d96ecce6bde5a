// Dialogs: windows of the class "#32770" made from templates, with their default button, tab order, mnemonics and answers.
// A dialog belongs to the thread that made it, and everything here is called on that thread.
#pragma once

#include "platform/posix/resources/resources.h"
#include "platform/posix/window/window.h"

#define RT_DIALOG MAKEINTRESOURCEA(5)
#define WC_DIALOG MAKEINTRESOURCEA(0x8002)

#define DS_ABSALIGN 0x0001u
#define DS_SYSMODAL 0x0002u
#define DS_3DLOOK 0x0004u
#define DS_FIXEDSYS 0x0008u
#define DS_NOFAILCREATE 0x0010u
#define DS_LOCALEDIT 0x0020u
#define DS_SETFONT 0x0040u
#define DS_MODALFRAME 0x0080u
#define DS_NOIDLEMSG 0x0100u
#define DS_SETFOREGROUND 0x0200u
#define DS_CONTROL 0x0400u
#define DS_CENTER 0x0800u
#define DS_CENTERMOUSE 0x1000u
#define DS_SHELLFONT (DS_SETFONT | DS_FIXEDSYS)

#define DM_GETDEFID (WM_USER + 0)
#define DM_SETDEFID (WM_USER + 1)
#define DM_REPOSITION (WM_USER + 2)
#define DC_HASDEFID 0x534B

#define DLGC_WANTARROWS 0x0001
#define DLGC_WANTTAB 0x0002
#define DLGC_WANTALLKEYS 0x0004
#define DLGC_WANTMESSAGE 0x0004
#define DLGC_HASSETSEL 0x0008
#define DLGC_DEFPUSHBUTTON 0x0010
#define DLGC_UNDEFPUSHBUTTON 0x0020
#define DLGC_RADIOBUTTON 0x0040
#define DLGC_WANTCHARS 0x0080
#define DLGC_STATIC 0x0100
#define DLGC_BUTTON 0x2000

#define DLGWINDOWEXTRA 48
#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC (DWLP_MSGRESULT + static_cast<int>(sizeof(LRESULT)))
#define DWLP_USER (DWLP_DLGPROC + static_cast<int>(sizeof(LONG_PTR)))

using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

// The head of a template of the first kind; its menu, class, title, font and items follow, two-byte values all.
#pragma pack(push, 2)
struct DLGTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;  // how many items
    SHORT x, y, cx, cy;
};
struct DLGITEMTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    SHORT x, y, cx, cy;
    WORD id;
};
#pragma pack(pop)
using LPDLGTEMPLATE = DLGTEMPLATE*;
using LPCDLGTEMPLATEA = const DLGTEMPLATE*;
using LPCDLGTEMPLATE = const DLGTEMPLATE*;
using LPDLGITEMTEMPLATE = DLGITEMTEMPLATE*;

// Templates of both kinds. Null (-1 for the modal ones) when the template is not there, names an unknown class (unless
// DS_NOFAILCREATE) or the dialog is refused. A modal dialog disables its owner while it lasts. At the quit message, which stays
// for the loop outside, and when its window is destroyed, it ends with what EndDialog said, else 0.
ORVIK_API HWND WINAPI CreateDialogIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialogTemplate, HWND parent,
                                                 DLGPROC procedure, LPARAM parameter);
ORVIK_API INT_PTR WINAPI DialogBoxIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialogTemplate, HWND parent,
                                                 DLGPROC procedure, LPARAM parameter);
// Hides the dialog at once; its modal loop ends when it comes round. Error 1400 for no window.
ORVIK_API BOOL WINAPI EndDialog(HWND dialog, INT_PTR result);
ORVIK_API LRESULT WINAPI DefDlgProcA(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
// Whether the message was one for the dialog or its controls; it has been handled then.
ORVIK_API BOOL WINAPI IsDialogMessageA(HWND dialog, LPMSG message);

ORVIK_API HWND WINAPI GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous);
ORVIK_API HWND WINAPI GetNextDlgGroupItem(HWND dialog, HWND control, BOOL previous);
ORVIK_API BOOL WINAPI MapDialogRect(HWND dialog, LPRECT rectangle);

ORVIK_API LRESULT WINAPI SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
ORVIK_API BOOL WINAPI SetDlgItemTextA(HWND dialog, int id, LPCSTR text);
ORVIK_API UINT WINAPI GetDlgItemTextA(HWND dialog, int id, LPSTR out, int size);
ORVIK_API BOOL WINAPI SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
ORVIK_API UINT WINAPI GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned);
ORVIK_API BOOL WINAPI CheckDlgButton(HWND dialog, int id, UINT check);
ORVIK_API UINT WINAPI IsDlgButtonChecked(HWND dialog, int id);
ORVIK_API BOOL WINAPI CheckRadioButton(HWND dialog, int first, int last, int check);
