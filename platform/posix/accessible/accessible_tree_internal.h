// A top-level window, described whole.
#pragma once

#include "platform/accessible.h"

namespace orvik::detail {

// Windows that are not shown are left out. Texts are UTF-8 and without marks of mnemonics, which are among the keys; places are
// pixels of the window's picture; selections count characters. On the window's thread, without the kernel lock.
OrvikAccessible DescribeWindow(HWND root);

}  // namespace orvik::detail
