// The look-up of window classes.
#pragma once

#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
// The instance's own class of that name or atom, else a global or system one, else null. Under the kernel lock.
std::shared_ptr<WindowClass> FindClass(HINSTANCE instance, LPCSTR name);
}  // namespace orvik::detail
