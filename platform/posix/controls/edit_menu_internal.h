// The context menu of a field.
// For the field's thread.
#pragma once

#include "platform/posix/types.h"

namespace orvik::detail {

struct EditMenu {  // what can be chosen
    bool undo = false, cut = false, copy = false, paste = false, clear = false, all = false;
};
struct EditMenuChoice {  // to be sent to the field; message 0 for nothing
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};
// Stands at a place of the desktop until something is chosen, or not.
EditMenuChoice AskEditMenu(HWND field, POINT screen, const EditMenu& menu);

}  // namespace orvik::detail
