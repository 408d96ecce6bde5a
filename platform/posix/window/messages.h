// Message queues and timers. A thread has one queue, made when it first asks for messages or makes a window.
// Any thread may post and send; a queue is read by its own thread. Posted messages keep their order. A thread reads, in this
// order: messages sent by other threads, posted messages, the quit message, WM_PAINT for windows that have something to paint,
// timers.
#pragma once

#include "platform/posix/kernel/waits.h"

#define WM_NULL 0x0000u
#define WM_CREATE 0x0001u
#define WM_DESTROY 0x0002u
#define WM_MOVE 0x0003u
#define WM_SIZE 0x0005u
#define WM_ACTIVATE 0x0006u
#define WM_SETFOCUS 0x0007u
#define WM_KILLFOCUS 0x0008u
#define WM_ENABLE 0x000Au
#define WM_SETREDRAW 0x000Bu
#define WM_SETTEXT 0x000Cu
#define WM_GETTEXT 0x000Du
#define WM_GETTEXTLENGTH 0x000Eu
#define WM_PAINT 0x000Fu
#define WM_CLOSE 0x0010u
#define WM_QUIT 0x0012u
#define WM_ERASEBKGND 0x0014u
#define WM_SYSCOLORCHANGE 0x0015u
#define WM_SHOWWINDOW 0x0018u
#define WM_SETTINGCHANGE 0x001Au
#define WM_ACTIVATEAPP 0x001Cu
#define WM_CANCELMODE 0x001Fu
#define WM_SETCURSOR 0x0020u
#define WM_MOUSEACTIVATE 0x0021u
#define WM_CHILDACTIVATE 0x0022u
#define WM_GETMINMAXINFO 0x0024u
#define WM_NEXTDLGCTL 0x0028u
#define WM_DRAWITEM 0x002Bu
#define WM_MEASUREITEM 0x002Cu
#define WM_DELETEITEM 0x002Du
#define WM_SETFONT 0x0030u
#define WM_GETFONT 0x0031u
#define WM_COMPAREITEM 0x0039u
#define WM_WINDOWPOSCHANGING 0x0046u
#define WM_WINDOWPOSCHANGED 0x0047u
#define WM_NOTIFY 0x004Eu
#define WM_HELP 0x0053u
#define WM_CONTEXTMENU 0x007Bu
#define WM_STYLECHANGING 0x007Cu
#define WM_STYLECHANGED 0x007Du
#define WM_GETICON 0x007Fu
#define WM_SETICON 0x0080u
#define ICON_SMALL 0
#define ICON_BIG 1
#define WM_NCCREATE 0x0081u
#define WM_NCDESTROY 0x0082u
#define WM_NCCALCSIZE 0x0083u
#define WM_NCHITTEST 0x0084u
#define WM_NCPAINT 0x0085u
#define WM_NCACTIVATE 0x0086u
#define WM_GETDLGCODE 0x0087u
#define WM_NCMOUSEMOVE 0x00A0u
#define WM_NCLBUTTONDOWN 0x00A1u
#define WM_NCLBUTTONUP 0x00A2u
#define WM_NCLBUTTONDBLCLK 0x00A3u
#define WM_NCRBUTTONDOWN 0x00A4u
#define WM_NCRBUTTONUP 0x00A5u
#define WM_NCRBUTTONDBLCLK 0x00A6u
#define WM_NCMBUTTONDOWN 0x00A7u
#define WM_NCMBUTTONUP 0x00A8u
#define WM_NCMBUTTONDBLCLK 0x00A9u
#define WM_KEYFIRST 0x0100u
#define WM_KEYDOWN 0x0100u
#define WM_KEYUP 0x0101u
#define WM_CHAR 0x0102u
#define WM_DEADCHAR 0x0103u
#define WM_SYSKEYDOWN 0x0104u
#define WM_SYSKEYUP 0x0105u
#define WM_SYSCHAR 0x0106u
#define WM_KEYLAST 0x0109u
#define WM_INITDIALOG 0x0110u
#define WM_COMMAND 0x0111u
#define WM_SYSCOMMAND 0x0112u
#define WM_TIMER 0x0113u
#define WM_HSCROLL 0x0114u
#define WM_VSCROLL 0x0115u
#define WM_INITMENU 0x0116u
#define WM_INITMENUPOPUP 0x0117u
#define WM_MENUSELECT 0x011Fu
#define WM_MENUCHAR 0x0120u
#define WM_ENTERIDLE 0x0121u
#define WM_UNINITMENUPOPUP 0x0125u
#define WM_CTLCOLORMSGBOX 0x0132u
#define WM_CTLCOLOREDIT 0x0133u
#define WM_CTLCOLORLISTBOX 0x0134u
#define WM_CTLCOLORBTN 0x0135u
#define WM_CTLCOLORDLG 0x0136u
#define WM_CTLCOLORSCROLLBAR 0x0137u
#define WM_CTLCOLORSTATIC 0x0138u
#define WM_MOUSEFIRST 0x0200u
#define WM_MOUSEMOVE 0x0200u
#define WM_LBUTTONDOWN 0x0201u
#define WM_LBUTTONUP 0x0202u
#define WM_LBUTTONDBLCLK 0x0203u
#define WM_RBUTTONDOWN 0x0204u
#define WM_RBUTTONUP 0x0205u
#define WM_RBUTTONDBLCLK 0x0206u
#define WM_MBUTTONDOWN 0x0207u
#define WM_MBUTTONUP 0x0208u
#define WM_MBUTTONDBLCLK 0x0209u
#define WM_MOUSEWHEEL 0x020Au
#define WM_MOUSELAST 0x020Eu
#define WM_MOUSEHWHEEL 0x020Eu
#define WM_PARENTNOTIFY 0x0210u
#define WM_ENTERMENULOOP 0x0211u
#define WM_EXITMENULOOP 0x0212u
#define WM_CAPTURECHANGED 0x0215u
#define WM_MOUSELEAVE 0x02A3u
#define WM_PRINT 0x0317u
#define WM_PRINTCLIENT 0x0318u
#define WM_USER 0x0400u
#define WM_APP 0x8000u

#define QS_KEY 0x0001u
#define QS_MOUSEMOVE 0x0002u
#define QS_MOUSEBUTTON 0x0004u
#define QS_POSTMESSAGE 0x0008u
#define QS_TIMER 0x0010u
#define QS_PAINT 0x0020u
#define QS_SENDMESSAGE 0x0040u
#define QS_HOTKEY 0x0080u
#define QS_ALLPOSTMESSAGE 0x0100u
#define QS_MOUSE (QS_MOUSEMOVE | QS_MOUSEBUTTON)
#define QS_INPUT (QS_MOUSE | QS_KEY)
#define QS_ALLEVENTS (QS_INPUT | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_HOTKEY)
#define QS_ALLINPUT (QS_ALLEVENTS | QS_SENDMESSAGE)

#define PM_NOREMOVE 0x0000u
#define PM_REMOVE 0x0001u
#define PM_NOYIELD 0x0002u
#define PM_QS_INPUT (QS_INPUT << 16)
#define PM_QS_PAINT (QS_PAINT << 16)
#define PM_QS_POSTMESSAGE ((QS_POSTMESSAGE | QS_HOTKEY | QS_TIMER) << 16)
#define PM_QS_SENDMESSAGE (QS_SENDMESSAGE << 16)

#define USER_TIMER_MINIMUM 0x0000000Au
#define USER_TIMER_MAXIMUM 0x7FFFFFFFu

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;  // tick count of the posting
    POINT pt;    // where the pointer was, on the desktop
};
using LPMSG = MSG*;
using PMSG = MSG*;
using TIMERPROC = void(CALLBACK*)(HWND, UINT, UINT_PTR, DWORD);

// The same number (0xC000 to 0xFFFF) for the same text, upper and lower case alike, as long as the process lives; 0 on failure.
ORVIK_API UINT WINAPI RegisterWindowMessageA(LPCSTR text);

// FALSE with 1400 for a window that is gone, 1444 for a thread without a queue, 1816 when 10,000 messages wait already.
ORVIK_API BOOL WINAPI PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);  // null: to the calling thread
ORVIK_API BOOL WINAPI PostThreadMessageA(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam);
ORVIK_API void WINAPI PostQuitMessage(int exitCode);
// In the window's own thread a plain call; from another it waits until that thread reads its queue, and serves messages sent to
// the caller meanwhile. 0 with error 1400 for a window that is gone, or goes before it answers.
ORVIK_API LRESULT WINAPI SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// `window` null: everything of the thread; (HWND)-1: thread messages; else that window and its children. A filter of 0, 0 lets
// every message pass; the quit message always passes. PM_QS_ flags ask for these kinds alone; no message here is of the kind
// input. GetMessageA gives 0 for the quit message and -1 on failure.
ORVIK_API int WINAPI GetMessageA(LPMSG message, HWND window, UINT first, UINT last);
ORVIK_API BOOL WINAPI PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
ORVIK_API LRESULT WINAPI DispatchMessageA(const MSG* message);
// Posts WM_CHAR (WM_SYSCHAR) for a key-down message of a key that writes, by the United States keyboard in Windows-1252; TRUE for
// every key-down and key-up message.
ORVIK_API BOOL WINAPI TranslateMessage(const MSG* message);

// A timer fires when the queue is empty otherwise, never twice for missed periods. Without a window the id is chosen here, unless
// it names one of the thread's timers, which is then set anew. Periods below 10 ms are 10 ms. 0 on failure.
ORVIK_API UINT_PTR WINAPI SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
ORVIK_API BOOL WINAPI KillTimer(HWND window, UINT_PTR id);

// As WaitForMultipleObjects, with a count of 0 to 63; also ends, with WAIT_OBJECT_0 + count, when a message of a kind in
// `wakeMask` came after the thread last looked at its queue.
ORVIK_API DWORD WINAPI MsgWaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds,
                                                 DWORD wakeMask);
