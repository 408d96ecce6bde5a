// The list that drops from a combo box: a popup of its own, which has the pointer while it is open. It belongs to the box, shows
// the box's strings and tells the box by messages what the user did. On the box's thread.
#pragma once

#include "platform/posix/controls/list_items_internal.h"
#include "platform/posix/drawing/gdi.h"
#include "platform/posix/window/window.h"

namespace orvik::detail {

// To the box, with an item's number: it was chosen. Without: the list is to close.
constexpr UINT kComboListChosen = WM_USER + 0x100, kComboListLeft = WM_USER + 0x101;
// To the list, with an item's number or -1: that is the marked one, and is shown; how many there are may have changed.
constexpr UINT kComboListFollow = WM_USER + 0x102;

struct ComboListOf {
    HWND box;
    const ListItems* items;  // lives as long as the list is open
    HFONT font;
    int rows;  // to be seen at most
};
// Opens it below the box, or above it where there is more room; null on failure. Closed by DestroyWindow.
HWND OpenComboList(const ComboListOf& list, int current);

LRESULT CALLBACK ComboListProcedure(HWND, UINT, WPARAM, LPARAM);  // of the class "ComboLBox"

}  // namespace orvik::detail
