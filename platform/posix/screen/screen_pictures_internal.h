// The pictures that a screen shows.
#pragma once

#include "platform/posix/window/screen_internal.h"

namespace orvik::detail {

void LendPicture(HWND window, const std::function<void(const PixelView&)>& take);  // any thread

}  // namespace orvik::detail
