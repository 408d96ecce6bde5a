// What the user did on a screen, on its way to the window's thread.
#pragma once

#include "platform/posix/window/screen_internal.h"

namespace orvik::detail {

void PostScreenEvent(HWND window, const ScreenEvent& event);  // from the screen's thread

}  // namespace orvik::detail
