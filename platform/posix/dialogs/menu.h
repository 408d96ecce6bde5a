// Menus and accelerators: items, their state and text, the bar of a window and menus that open at a point.
// An open menu is a top-level window of the class "#32768" in memory like all others, with a picture of its own; pointer and keys
// work on it as they do on Windows. Any thread; a menu is used by one thread at a time, and shown by its window's thread. Items
// are named by command or, with MF_BYPOSITION, by place. A text has its mnemonic behind '&' and what its keys are called behind a
// tab.
#pragma once

#include "platform/posix/drawing/dc.h"
#include "platform/posix/input/input.h"
#include "platform/posix/window/messages.h"

#define MF_BYCOMMAND 0x0000u
#define MF_ENABLED 0x0000u
#define MF_STRING 0x0000u
#define MF_UNCHECKED 0x0000u
#define MF_INSERT 0x0000u
#define MF_GRAYED 0x0001u
#define MF_DISABLED 0x0002u
#define MF_BITMAP 0x0004u
#define MF_CHECKED 0x0008u
#define MF_POPUP 0x0010u
#define MF_MENUBARBREAK 0x0020u
#define MF_MENUBREAK 0x0040u
#define MF_HILITE 0x0080u
#define MF_OWNERDRAW 0x0100u
#define MF_BYPOSITION 0x0400u
#define MF_SEPARATOR 0x0800u
#define MF_DEFAULT 0x1000u
#define MF_MOUSESELECT 0x8000u
#define MFT_STRING MF_STRING
#define MFT_SEPARATOR MF_SEPARATOR
#define MFT_RADIOCHECK 0x0200u
#define MFS_ENABLED MF_ENABLED
#define MFS_UNCHECKED MF_UNCHECKED
#define MFS_GRAYED 0x0003u
#define MFS_DISABLED MFS_GRAYED
#define MFS_CHECKED MF_CHECKED
#define MFS_DEFAULT MF_DEFAULT

#define TPM_LEFTALIGN 0x0000u
#define TPM_LEFTBUTTON 0x0000u
#define TPM_RIGHTBUTTON 0x0002u
#define TPM_CENTERALIGN 0x0004u
#define TPM_RIGHTALIGN 0x0008u
#define TPM_TOPALIGN 0x0000u
#define TPM_VCENTERALIGN 0x0010u
#define TPM_BOTTOMALIGN 0x0020u
#define TPM_NONOTIFY 0x0080u
#define TPM_RETURNCMD 0x0100u

#define MNC_IGNORE 0
#define MNC_CLOSE 1
#define MNC_EXECUTE 2
#define MNC_SELECT 3
#define MN_GETHMENU 0x01E1u
#define MSGF_MENU 2

#define ODT_MENU 1u
#define ODA_DRAWENTIRE 0x0001u
#define ODA_SELECT 0x0002u
#define ODS_SELECTED 0x0001u
#define ODS_GRAYED 0x0002u
#define ODS_DISABLED 0x0004u
#define ODS_CHECKED 0x0008u
#define ODS_DEFAULT 0x0020u

#define FVIRTKEY 0x01
#define FNOINVERT 0x02
#define FSHIFT 0x04
#define FCONTROL 0x08
#define FALT 0x10

// For MF_OWNERDRAW: the window says how large an item is (WM_MEASUREITEM, once a showing) and draws it (WM_DRAWITEM).
struct MEASUREITEMSTRUCT {
    UINT CtlType, CtlID, itemID, itemWidth, itemHeight;
    ULONG_PTR itemData;
};
using LPMEASUREITEMSTRUCT = MEASUREITEMSTRUCT*;
struct DRAWITEMSTRUCT {
    UINT CtlType, CtlID, itemID, itemAction, itemState;
    HWND hwndItem;  // the menu's handle
    HDC hDC;
    RECT rcItem;
    ULONG_PTR itemData;
};
using LPDRAWITEMSTRUCT = DRAWITEMSTRUCT*;

struct ACCEL {
    BYTE fVirt;
    WORD key, cmd;
};
using LPACCEL = ACCEL*;
using HACCEL = struct HACCEL__*;

ORVIK_API HMENU WINAPI CreateMenu();
ORVIK_API HMENU WINAPI CreatePopupMenu();
ORVIK_API BOOL WINAPI DestroyMenu(HMENU menu);  // with its submenus
ORVIK_API BOOL WINAPI IsMenu(HMENU menu);
// `id` of an item with MF_POPUP is the submenu's handle. `text` is the item's text, or its data for MF_OWNERDRAW.
ORVIK_API BOOL WINAPI AppendMenuA(HMENU menu, UINT flags, UINT_PTR id, LPCSTR text);
ORVIK_API BOOL WINAPI InsertMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text);
ORVIK_API BOOL WINAPI ModifyMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text);
ORVIK_API BOOL WINAPI DeleteMenu(HMENU menu, UINT position, UINT flags);  // destroys a submenu
ORVIK_API BOOL WINAPI RemoveMenu(HMENU menu, UINT position, UINT flags);  // leaves it alive
ORVIK_API int WINAPI GetMenuItemCount(HMENU menu);
ORVIK_API UINT WINAPI GetMenuItemID(HMENU menu, int position);  // 0xFFFFFFFF for a submenu and for no item
ORVIK_API HMENU WINAPI GetSubMenu(HMENU menu, int position);
ORVIK_API int WINAPI GetMenuStringA(HMENU menu, UINT item, LPSTR out, int size, UINT flags);
ORVIK_API UINT WINAPI GetMenuState(HMENU menu, UINT item, UINT flags);  // for a submenu its count in the high byte
// The item's state before; -1 (BOOL) or 0xFFFFFFFF where there is no such item.
ORVIK_API BOOL WINAPI EnableMenuItem(HMENU menu, UINT item, UINT enable);
ORVIK_API DWORD WINAPI CheckMenuItem(HMENU menu, UINT item, UINT check);
ORVIK_API BOOL WINAPI CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT item, UINT flags);
ORVIK_API BOOL WINAPI SetMenuDefaultItem(HMENU menu, UINT item, UINT byPosition);

// A window's menu goes with it, and lies in a bar above its client area. A child window has none. Who changes the items of a bar
// calls DrawMenuBar: rows and the client area follow then.
ORVIK_API HMENU WINAPI GetMenu(HWND window);
ORVIK_API BOOL WINAPI SetMenu(HWND window, HMENU menu);
ORVIK_API BOOL WINAPI DrawMenuBar(HWND window);
// Shows the menu at the point on the desktop, until the user has chosen from it or has done with it. `window` is told what
// happens (WM_ENTERMENULOOP, WM_INITMENU, WM_INITMENUPOPUP for each menu that opens, WM_MENUSELECT, WM_ENTERIDLE while nothing
// waits, WM_UNINITMENUPOPUP, WM_EXITMENULOOP; nothing with TPM_NONOTIFY) and gets the command posted. With TPM_RETURNCMD the
// result is the command, 0 for none. Also ended by EndMenu, WM_CANCELMODE, the window's end and the quit message, which stays in
// the queue, as does a press beside the menu. FALSE with 1446 where the thread has a menu open already.
ORVIK_API BOOL WINAPI TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int reserved, HWND window, LPCRECT rectangle);
ORVIK_API BOOL WINAPI EndMenu();  // the calling thread's; FALSE when none is open
// Where an item of an open menu, or of the window's bar, is on the desktop.
ORVIK_API BOOL WINAPI GetMenuItemRect(HWND window, HMENU menu, UINT position, LPRECT rectangle);

ORVIK_API HACCEL WINAPI CreateAcceleratorTableA(LPACCEL entries, int count);
ORVIK_API BOOL WINAPI DestroyAcceleratorTable(HACCEL table);
// Sends WM_COMMAND (1 in the high word) for a key message that the table holds, and tells whether it did. A disabled window, or a
// command whose item in the window's menu is disabled, swallows the key.
ORVIK_API int WINAPI TranslateAcceleratorA(HWND window, HACCEL table, LPMSG message);
