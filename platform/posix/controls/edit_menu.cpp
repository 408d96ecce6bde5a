#include "platform/posix/controls/edit_menu_internal.h"

#include <iterator>

#include "platform/posix/controls/controls.h"
#include "platform/posix/dialogs/menu.h"
#include "platform/posix/resources/modules.h"
#include "platform/posix/resources/resources.h"
#include "res/ids.h"

namespace orvik::detail {

EditMenuChoice AskEditMenu(HWND field, POINT screen, const EditMenu& menu) {
    struct Item {
        bool can, line;  // a line stands before it
        EditMenuChoice does;
    };
    const Item items[] = {
        {menu.undo, false, {EM_UNDO}},   {menu.cut, true, {WM_CUT}},      {menu.copy, false, {WM_COPY}},
        {menu.paste, false, {WM_PASTE}}, {menu.clear, false, {WM_CLEAR}}, {menu.all, true, {EM_SETSEL, 0, -1}},
    };
    const HMENU popup = CreatePopupMenu();
    UINT id = 0;
    for (const Item& each : items) {
        char text[128] = "";
        LoadStringA(GetModuleHandleA("OrvikShared"), IDS_EDIT_UNDO + id, text, sizeof text);
        if (each.line) AppendMenuA(popup, MF_SEPARATOR, 0, nullptr);
        AppendMenuA(popup, MF_STRING | (each.can ? MF_ENABLED : MF_GRAYED), ++id, text);
    }
    const auto chosen = static_cast<size_t>(TrackPopupMenu(popup, TPM_LEFTALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD | TPM_NONOTIFY,
                                                           screen.x, screen.y, 0, field, nullptr));
    DestroyMenu(popup);
    return chosen > 0 && chosen <= std::size(items) ? items[chosen - 1].does : EditMenuChoice{};
}

}  // namespace orvik::detail
