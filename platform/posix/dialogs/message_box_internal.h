// The message box as a window.
#pragma once

#include <span>
#include <string>

#include "platform/posix/dialogs/message_box.h"

namespace orvik::detail {

// Asks, and handles the thread's messages meanwhile. `buttons` are IDOK to IDNO, `chosen` is one of them. The answer is one of
// them, too: at the program's end what Escape would choose, or the last one.
int AskInWindow(HWND owner, const std::string& text, const std::string& caption, std::span<const int> buttons, int chosen);

}  // namespace orvik::detail
