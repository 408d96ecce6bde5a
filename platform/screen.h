// Whether this program's windows come to a screen.
// On Windows they always do. On Linux they live in memory until one is shown, a display is there (WAYLAND_DISPLAY or DISPLAY) and
// the module for it is installed (orvik/screen_gtk3.so beside the library); from then on the windows that are shown stand on that
// screen. ORVIK_SCREEN=none in the environment keeps them in memory, another name chooses orvik/screen_NAME.so.
#pragma once

#include "platform/win32.h"

// For a program that shows windows for itself alone, as one does that draws pictures by script or plays a user
// (platform/scripted_input.h). To be called before the first window is shown; does nothing on Windows.
ORVIK_API void OrvikKeepWindowsInMemory();

// Whether windows come to a screen, and questions to a user (MessageBoxA, GetOpenFileNameA). Always TRUE on Windows.
ORVIK_API BOOL OrvikHasScreen();
