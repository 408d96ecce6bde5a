// The pictures of windows and the device contexts over them.
#include "platform/posix/window_paint.h"

#include "platform/posix/window_internal.h"

namespace orvik::detail {

Area AreaOfRegion(HRGN) { return Area(); }
void RefreshContexts(Window&) {}
void ResizeCanvas(Window&) {}
void DropContexts(Window&) {}
void EraseNow(HWND) {}
LRESULT PaintingAnswer(HWND handle, UINT message, WPARAM, LPARAM) {
    if (message == WM_PAINT) ValidateRect(handle, nullptr);
    return 0;
}
}  // namespace orvik::detail
