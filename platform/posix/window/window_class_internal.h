// The look-up of window classes.
#pragma once

#include <span>

#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
// The instance's own class of that name or atom, else a global or system one, else null. Under the kernel lock.
std::shared_ptr<WindowClass> FindClass(HINSTANCE instance, LPCSTR name);

// The classes that are there for every program; controls/ has them.
struct SystemClass {
    const char* name;
    UINT style;
    int extra;  // bytes for the program
    WNDPROC procedure;
    ATOM atom;  // 0: any
};
std::span<const SystemClass> SystemClasses();
}  // namespace orvik::detail
