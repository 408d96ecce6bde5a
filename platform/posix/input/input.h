// The pointer, the keyboard and the cursor as a thread sees them.
// There is no device: the state is what programs set and what scripted input (platform/scripted_input.h) brings. Capture, key
// state and cursor belong to the calling thread; the pointer's place is one for all.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define MK_LBUTTON 0x0001
#define MK_RBUTTON 0x0002
#define MK_SHIFT 0x0004
#define MK_CONTROL 0x0008
#define MK_MBUTTON 0x0010
#define KF_REPEAT 0x4000u
#define WHEEL_DELTA 120
#define WHEEL_PAGESCROLL 0xFFFFFFFFu

#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
#define VK_CANCEL 0x03
#define VK_MBUTTON 0x04
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_CLEAR 0x0C
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_PAUSE 0x13
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_SNAPSHOT 0x2C
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_HELP 0x2F
#define VK_LWIN 0x5B
#define VK_RWIN 0x5C
#define VK_APPS 0x5D
#define VK_NUMPAD0 0x60
#define VK_NUMPAD9 0x69
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_SUBTRACT 0x6D
#define VK_DECIMAL 0x6E
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F2 0x71
#define VK_F3 0x72
#define VK_F4 0x73
#define VK_F5 0x74
#define VK_F6 0x75
#define VK_F7 0x76
#define VK_F8 0x77
#define VK_F9 0x78
#define VK_F10 0x79
#define VK_F11 0x7A
#define VK_F12 0x7B
#define VK_NUMLOCK 0x90
#define VK_SCROLL 0x91
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5
#define VK_OEM_1 0xBA
#define VK_OEM_PLUS 0xBB
#define VK_OEM_COMMA 0xBC
#define VK_OEM_MINUS 0xBD
#define VK_OEM_PERIOD 0xBE
#define VK_OEM_2 0xBF
#define VK_OEM_3 0xC0
#define VK_OEM_4 0xDB
#define VK_OEM_5 0xDC
#define VK_OEM_6 0xDD
#define VK_OEM_7 0xDE

#define GET_X_LPARAM(lp) (static_cast<int>(static_cast<short>(LOWORD(lp))))
#define GET_Y_LPARAM(lp) (static_cast<int>(static_cast<short>(HIWORD(lp))))
#define GET_WHEEL_DELTA_WPARAM(wp) (static_cast<short>(HIWORD(wp)))
#define GET_KEYSTATE_WPARAM(wp) (LOWORD(wp))

#define SPI_GETKEYBOARDSPEED 0x000Au
#define SPI_GETKEYBOARDDELAY 0x0016u
#define SPI_GETNONCLIENTMETRICS 0x0029u
#define SPI_GETWORKAREA 0x0030u
#define SPI_GETWHEELSCROLLLINES 0x0068u
#define SPI_GETMENUSHOWDELAY 0x006Au
#define SPI_SETMENUSHOWDELAY 0x006Bu
#define SPI_GETWHEELSCROLLCHARS 0x006Cu

#define WH_GETMESSAGE 3
#define HC_ACTION 0

using HOOKPROC = LRESULT(CALLBACK*)(int, WPARAM, LPARAM);
using HHOOK = struct HHOOK__*;

// The window that had the capture before. It is told by WM_CAPTURECHANGED, even when it takes what it has. A window loses the
// capture when it is destroyed, hidden or disabled. A window of another thread is refused.
ORVIK_API HWND WINAPI SetCapture(HWND window);
ORVIK_API HWND WINAPI GetCapture();
ORVIK_API BOOL WINAPI ReleaseCapture();

// Bit 15 is set while the key is down, bit 0 of GetKeyState says that it is toggled. SetKeyboardState takes 256 bytes.
ORVIK_API SHORT WINAPI GetKeyState(int key);
ORVIK_API BOOL WINAPI GetKeyboardState(BYTE* state);
ORVIK_API BOOL WINAPI SetKeyboardState(BYTE* state);

ORVIK_API BOOL WINAPI GetCursorPos(LPPOINT point);
ORVIK_API BOOL WINAPI SetCursorPos(int x, int y);  // kept within the desktop
ORVIK_API HCURSOR WINAPI SetCursor(HCURSOR cursor);
ORVIK_API HCURSOR WINAPI GetCursor();

// Only WH_GETMESSAGE, and only for the calling thread: the procedure sees, and may change, each message that the thread reads.
ORVIK_API HHOOK WINAPI SetWindowsHookExA(int kind, HOOKPROC procedure, HINSTANCE module, DWORD threadId);
ORVIK_API BOOL WINAPI UnhookWindowsHookEx(HHOOK hook);
ORVIK_API LRESULT WINAPI CallNextHookEx(HHOOK hook, int code, WPARAM wParam, LPARAM lParam);

// The SPI_ numbers above; SPI_GETNONCLIENTMETRICS in both documented sizes (344 bytes, and 340 without the padded border). Others
// are error 87. The delay before a submenu opens is milliseconds, for this process.
ORVIK_API BOOL WINAPI SystemParametersInfoA(UINT action, UINT parameter, PVOID data, UINT winIni);
