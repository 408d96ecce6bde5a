// The screen that was opened, if any.
#pragma once

#include "platform/posix/window/screen_internal.h"

namespace orvik::detail {

Screen* TheScreen();  // null without one
ScreenHost& TheScreenHost();
Screen* UseScreen(Screen* screen);  // from now on; the one before. For who has a screen at hand, as tests do
void ListenToScreen();              // makes the calling thread act on what comes from the screen when it reads its messages

}  // namespace orvik::detail
