// How a screen makes a drop. Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/exchange/dropped_files.h"

namespace orvik::detail {

// Posts WM_DROPFILES for the system's paths; the point is in the client area.
void PostDrop(HWND window, const std::vector<std::string>& paths, POINT point);

}  // namespace orvik::detail
