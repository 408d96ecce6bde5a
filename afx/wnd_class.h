// The window classes that AfxRegisterWndClass made, for the module's end. On the thread that unloads the module. Internal.
#pragma once

namespace orvik::detail {
// Classes with living windows stay registered, as the system demands.
void UnregisterWndClasses();
}  // namespace orvik::detail
