// Keys of the desktop as VK_ codes.
#pragma once

#include <gdk/gdk.h>

#include "platform/win32.h"

// The key's code: by what is printed on it in the layout in use or, where that is no Latin letter, in another layout of the
// user's or at its place on the United States keyboard, so that Ctrl+S stays one for who writes Greek. 0 for a key that has none.
UINT KeyOf(const GdkEventKey& event);
