#include "platform/posix/window/caret.h"

#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
struct Caret {
    HWND window = nullptr;
    SIZE size{};
    POINT at{};
};
Caret& Own() {
    thread_local Caret t_caret;
    return t_caret;
}

// The top-level window keeps it in its picture.
void Tell(const Caret& caret, bool there) {
    const std::lock_guard kernel(KernelLock());
    Window* const window = FindWindowOf(caret.window);
    if (window == nullptr) return;
    Window& root = RootOf(*window);
    RECT place{};
    if (there) {
        const POINT from = OriginOf(*window), corner = OriginOf(root);
        const LONG left = from.x - corner.x + caret.at.x, top = from.y - corner.y + root.bar + caret.at.y;
        place = {left, top, left + caret.size.cx, top + caret.size.cy};
    }
    const RECT& now = root.caret;
    if (now.left == place.left && now.top == place.top && now.right == place.right && now.bottom == place.bottom) return;
    root.caret = place;
    NoteChanged(root);
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

BOOL CreateCaret(HWND window, HBITMAP look, int width, int height) {
    if (look != nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (!IsWindow(window)) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    DestroyCaret();
    Own() = {window, {width, height}, {}};
    Tell(Own(), true);
    return TRUE;
}

BOOL SetCaretPos(int x, int y) {
    if (Own().window == nullptr) return Finish(ERROR_ACCESS_DENIED);
    Own().at = {x, y};
    Tell(Own(), true);
    return TRUE;
}

BOOL GetCaretPos(POINT* point) {
    if (point == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    *point = Own().at;
    return TRUE;
}

BOOL DestroyCaret() {
    if (Own().window == nullptr) return Finish(ERROR_ACCESS_DENIED);
    Tell(Own(), false);
    Own() = {};
    return TRUE;
}
