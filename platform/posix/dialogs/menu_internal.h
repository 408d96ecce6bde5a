// What the rooms below ask of menus: their items, and the bar that lies above a window's client area. Without the kernel lock;
// the bar on its window's thread.
#pragma once

#include <string>
#include <vector>

#include "platform/accessible.h"
#include "platform/posix/dialogs/menu.h"
#include "platform/posix/window/window.h"

namespace orvik::detail {

struct MenuItem {
    UINT type = MF_STRING, state = 0;
    UINT_PTR id = 0;
    HMENU submenu = nullptr;
    std::string text;
    ULONG_PTR data = 0;  // of one that its owner draws

    bool Is(UINT types) const { return (type & types) != 0; }
    bool Usable() const { return (state & (MF_GRAYED | MF_DISABLED)) == 0 && !Is(MF_SEPARATOR); }
};
std::vector<MenuItem> MenuItemsOf(HMENU menu);  // as they are now; none for no menu

LONG MenuBarHeight(HWND window, LONG width);  // of the bar that a window of that width has; 0 for none
void PaintMenuBar(HWND window);
void TrackMenuBarByKey(HWND window, WPARAM character);  // 0: the first menu is marked, none opened
void TrackMenuBarByMouse(HWND window, POINT screen);
void CancelMenuOf(HWND window);  // ends what is open for it
void ShowMenuCursor();

// The bar as a part of its window, with all menus below it as they were last; places as on the window's picture. Its parts are
// numbered from kMenuParts on.
inline constexpr unsigned kMenuParts = 0x40000000;
bool DescribeMenuBar(HWND window, OrvikAccessible& out);  // false without one
bool ActOnMenuBar(HWND window, unsigned part);            // opens the menu, or posts the command if it can be chosen

LRESULT CALLBACK MenuProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);  // of the class "#32768"

}  // namespace orvik::detail
