// Steps of a user as messages: what scripted input posts, and on Linux a screen too. Each becomes an ordinary mouse or key
// message when it is read (scripted_input.h).
#pragma once

#include "platform/win32.h"

#ifndef VK_PACKET
#define VK_PROCESSKEY 0xE5  // an input method has the key
#define VK_PACKET 0xE7      // no key at all: letters that came by themselves
#endif

namespace orvik::detail {

// wParam: the mouse message and, in the high word, the wheel; lParam: the point in the window's client area.
UINT PointerStep();
// wParam: the key; lParam: whether it goes down and, above its low 32 bits (where there are such), what a real keyboard's key
// writes: up to two UTF-16 units, or one of the values below. Its characters come before all that is posted by then.
UINT KeyStep();
inline constexpr unsigned kWritesNothing = 0xFFFF,
                          kWritesUsual = 0xFFFE;  // the latter: what the United States keyboard has there
UINT CharStep();                                  // as WM_CHAR
// Makes the calling thread act on steps when it reads them; false where that cannot be.
bool ReadSteps();

}  // namespace orvik::detail
