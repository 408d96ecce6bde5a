// What of the windows is to be painted anew, and who is told.
#include <algorithm>

#include "platform/posix/kernel/threads.h"
#include "platform/posix/window/window_internal.h"
#include "platform/posix/window/window_paint.h"

namespace orvik::detail {
namespace {
// The part of a window that its ancestors leave of it, in its own coordinates. What lies upon it does not count: that may go.
PixelRegion Within(const Window& window) {
    RECT rest = window.Client();
    LONG dx = 0, dy = 0;
    for (const Window* at = &window; (at->style & WS_CHILD) != 0; at = FindWindowOf(at->parent)) {
        dx -= at->rectangle.left;
        dy -= at->rectangle.top;
        rest = CommonRectangle(rest, Moved(FindWindowOf(at->parent)->Client(), dx, dy));
    }
    return rest;
}

bool TakesChildren(const Window& window, UINT flags) {
    return (flags & RDW_ALLCHILDREN) != 0 || ((flags & RDW_NOCHILDREN) == 0 && (window.style & WS_CLIPCHILDREN) == 0);
}

void Note(Window& window) {
    if (MessageQueue* queue = QueueOf(window.thread)) {
        queue->mayPaint = true;
        queue->Note(QS_PAINT);
    }
}

bool HasPaint(const Window& window) { return !window.update.Empty() || window.internalPaint; }

// The visible windows below, each before what lies in it and the top ones first.
template <class See>
bool SearchSeen(Window& top, See see) {
    std::vector<HWND> waiting{top.handle};
    while (!waiting.empty()) {
        Window* at = FindWindowOf(waiting.back());
        waiting.pop_back();
        if (at == nullptr || (at->style & WS_VISIBLE) == 0) continue;
        if (see(*at)) return true;
        waiting.insert(waiting.end(), at->children.rbegin(), at->children.rend());
    }
    return false;
}
}  // namespace

void InvalidateRegion(Window& window, PixelRegion area, UINT flags) {
    if (!CanBeSeen(window)) return;
    area.Combine(Within(window), RGN_AND);
    if (area.Empty()) return;
    struct Step {
        Window* window;
        PixelRegion area;
        bool erase;
    };
    std::vector<Step> steps;
    steps.push_back({&window, std::move(area), (flags & RDW_ERASE) != 0});
    while (!steps.empty()) {
        Step step = std::move(steps.back());
        steps.pop_back();
        Window& at = *step.window;
        if (TakesChildren(at, flags)) {
            for (const HWND child : at.children) {
                Window* each = FindWindowOf(child);
                if (each == nullptr || (each->style & WS_VISIBLE) == 0) continue;
                PixelRegion part = step.area;
                part.Combine(each->rectangle, RGN_AND);
                part.Offset(-each->rectangle.left, -each->rectangle.top);
                if (!part.Empty()) steps.push_back({each, std::move(part), true});
            }
        }
        // What lies below children that clip it has not to be painted.
        if ((at.style & WS_CLIPCHILDREN) != 0) {
            for (const HWND child : at.children) {
                const Window* each = FindWindowOf(child);
                if (each != nullptr && (each->style & WS_VISIBLE) != 0) step.area.Combine(each->rectangle, RGN_DIFF);
            }
        }
        if (step.area.Empty()) continue;
        at.update.Combine(step.area, RGN_OR);
        at.erase = at.erase || step.erase;
        Note(at);
    }
}

void ValidateRegion(Window& window, const PixelRegion& area, UINT flags) {
    window.update.Combine(area, RGN_DIFF);
    if (window.update.Empty() || (flags & RDW_NOERASE) != 0) window.erase = false;
    if (!TakesChildren(window, flags)) return;
    std::vector<std::pair<Window*, PixelRegion>> steps{{&window, area}};
    while (!steps.empty()) {
        auto [at, taken] = std::move(steps.back());
        steps.pop_back();
        for (const HWND child : at->children) {
            Window* each = FindWindowOf(child);
            if (each == nullptr) continue;
            PixelRegion part = taken;
            part.Offset(-each->rectangle.left, -each->rectangle.top);
            each->update.Combine(part, RGN_DIFF);
            if (each->update.Empty()) each->erase = false;
            if (TakesChildren(*each, flags)) steps.emplace_back(each, std::move(part));
        }
    }
}

bool NextPaint(MessageQueue& queue, bool (*takes)(HWND window, const void* filter), const void* filter, HWND& out) {
    bool any = false;
    for (const HWND top : std::vector<HWND>(Desktop().children)) {
        Window* root = FindWindowOf(top);
        if (root == nullptr) continue;
        const bool found = SearchSeen(*root, [&](Window& window) {
            if (window.thread != queue.thread || !HasPaint(window)) return false;
            any = true;
            if (!takes(window.handle, filter)) return false;
            out = window.handle;
            window.internalPaint = false;
            return true;
        });
        if (found) return true;
    }
    queue.mayPaint = any;
    return false;
}
}  // namespace orvik::detail

using namespace orvik::detail;

namespace {
// Sends WM_PAINT to those of the calling thread's windows, in and below this one, that have something to paint. Ancestors that
// paint over it come first.
void PaintNow(HWND handle, bool below) {
    const DWORD thread = GetCurrentThreadId();
    std::vector<HWND> asked;
    for (;;) {
        HWND next = nullptr;
        {
            const std::lock_guard kernel(KernelLock());
            Window* window = FindWindowOf(handle);
            if (window == nullptr || !CanBeSeen(*window)) return;
            const auto due = [&](Window& each) {
                // One that does not validate what it was asked to paint is not asked for ever.
                if (each.thread != thread || !HasPaint(each) || std::count(asked.begin(), asked.end(), each.handle) > 0)
                    return false;
                next = each.handle;
                each.internalPaint = false;
                return true;
            };
            if (HasPaint(*window) || below) {
                for (Window* at = window; (at->style & WS_CHILD) != 0;) {
                    at = FindWindowOf(at->parent);
                    if ((at->style & WS_CLIPCHILDREN) == 0 && HasPaint(*at)) due(*at);
                }
            }
            if (next == nullptr && below) SearchSeen(*window, due);
            if (next == nullptr && !below) due(*window);
        }
        if (next == nullptr) return;
        asked.push_back(next);
        SendMessageA(next, WM_PAINT, 0, 0);
    }
}

PixelRegion RegionOf(const Window& window, LPCRECT rectangle, HRGN region) {
    if (region != nullptr) return PixelsOf(region);
    return rectangle != nullptr ? *rectangle : window.Client();
}
}  // namespace

BOOL RedrawWindow(HWND handle, LPCRECT rectangle, HRGN region, UINT flags) {
    if (handle == nullptr) handle = GetDesktopWindow();
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        const PixelRegion area = RegionOf(*window, rectangle, region);
        if ((flags & RDW_INVALIDATE) != 0) {
            if (window->thread != 0) {
                InvalidateRegion(*window, area, flags);
            } else {
                for (const HWND top : std::vector<HWND>(window->children)) {
                    Window* each = FindWindowOf(top);
                    PixelRegion part = area;
                    part.Offset(-each->rectangle.left, -each->rectangle.top);
                    InvalidateRegion(*each, std::move(part), flags);
                }
            }
        } else if ((flags & RDW_VALIDATE) != 0) {
            ValidateRegion(*window, area, flags);
        }
        if ((flags & RDW_INTERNALPAINT) != 0 && CanBeSeen(*window)) {
            window->internalPaint = true;
            Note(*window);
        } else if ((flags & RDW_NOINTERNALPAINT) != 0) {
            window->internalPaint = false;
        }
    }
    if ((flags & RDW_UPDATENOW) != 0)
        PaintNow(handle, (flags & RDW_NOCHILDREN) == 0);
    else if ((flags & RDW_ERASENOW) != 0)
        EraseNow(handle);
    return TRUE;
}

BOOL InvalidateRect(HWND window, LPCRECT rectangle, BOOL erase) {
    if (window == nullptr) return RedrawWindow(nullptr, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    return RedrawWindow(window, rectangle, nullptr, RDW_INVALIDATE | (erase ? RDW_ERASE : 0));
}

BOOL InvalidateRgn(HWND window, HRGN region, BOOL erase) {
    if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    return RedrawWindow(window, nullptr, region, RDW_INVALIDATE | (erase ? RDW_ERASE : 0));
}

BOOL ValidateRect(HWND window, LPCRECT rectangle) {
    if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    return RedrawWindow(window, rectangle, nullptr, RDW_VALIDATE | RDW_NOCHILDREN);
}

BOOL UpdateWindow(HWND window) {
    if (!IsWindow(window)) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    PaintNow(window, true);
    return TRUE;
}

BOOL GetUpdateRect(HWND handle, LPRECT rectangle, BOOL erase) {
    bool any = false;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        any = !window->update.Empty();
        if (rectangle != nullptr) *rectangle = window->update.Box();
    }
    if (any && erase) EraseNow(handle);
    return any;
}
