// The pictures of windows and the device contexts over them.
#include "platform/posix/window/window_paint.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/posix/drawing/gdi_internal.h"
#include "platform/posix/kernel/threads.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
// How a window's context was asked for, so that its clip can be worked out anew when windows move.
struct Context {
    HWND window = nullptr;  // null for the desktop's
    DWORD flags = 0;        // DCX_CLIPCHILDREN, DCX_CLIPSIBLINGS, DCX_WINDOW
    bool limited = false;
    PixelRegion limit;  // in the window's coordinates; for limited ones
};

// Under the kernel lock.
std::map<HDC, Context>& Contexts() {
    static auto* contexts = new std::map<HDC, Context>;
    return *contexts;
}

// A picture for who has nothing to draw on: what a context of no pixels measures by.
const std::shared_ptr<Canvas>& NoPicture() {
    static const auto* canvas = new std::shared_ptr<Canvas>(MakeImageCanvas(1, 1));
    return *canvas;
}

// On a screen, where a busy thread's picture may be seen before all of it is drawn, what is not is no black hole.
std::shared_ptr<Canvas> NewPicture(const Window& root) {
    if (root.Width() <= 0 || root.Height() <= 0) return nullptr;
    std::shared_ptr<Canvas> canvas = MakeImageCanvas(root.Width(), root.Height());
    if (canvas == nullptr || !HasScreen()) return canvas;
    const PixelView pixels = canvas->Pixels();
    for (int y = 0; y < pixels.height; ++y) std::fill_n(pixels.Row(y), pixels.width, PixelOf(GetSysColor(COLOR_WINDOW)));
    return canvas;
}

CanvasPlace PlaceOf(const Context& context) {
    CanvasPlace place;
    place.canvas = NoPicture();
    place.window = context.window;
    Window* window = context.window == nullptr ? nullptr : FindWindowOf(context.window);
    if (window == nullptr || !CanBeSeen(*window)) return place;
    Window& root = RootOf(*window);
    if (root.Width() == 0 || root.Height() == 0) return place;
    if (root.canvas == nullptr) root.canvas = NewPicture(root);
    if (root.canvas == nullptr) return place;  // too large for memory
    const POINT own = OriginOf(*window);
    place.canvas = root.canvas;
    place.origin = {own.x - root.rectangle.left, own.y - root.rectangle.top};
    PixelRegion seen = VisibleRegion(*window, (context.flags & DCX_CLIPCHILDREN) != 0, (context.flags & DCX_CLIPSIBLINGS) != 0);
    seen.Offset(0, root.bar);
    if ((context.flags & DCX_WINDOW) != 0 && window->bar > 0) {
        place.origin = {};
        seen.Combine(RECT{0, 0, root.Width(), root.bar}, RGN_OR);
    }
    if (context.limited) {
        PixelRegion limit = context.limit;
        limit.Offset(place.origin.x, place.origin.y);
        seen.Combine(limit, RGN_AND);
    }
    place.clip = std::move(seen);
    return place;
}

// Under the kernel lock; null when there is no memory.
HDC OpenContext(Context context) {
    const HDC dc = MakeCanvasDC(PlaceOf(context));
    if (dc == nullptr) return nullptr;
    if (Window* window = context.window == nullptr ? nullptr : FindWindowOf(context.window)) {
        window->contexts.push_back(dc);
        if (MessageQueue* const queue = QueueOf(window->thread)) ++queue->contexts;
    }
    Contexts()[dc] = std::move(context);
    return dc;
}

// False for one that is not open. Under the kernel lock.
bool CloseContext(HDC dc) {
    const auto found = Contexts().find(dc);
    if (found == Contexts().end()) return false;
    if (Window* window = found->second.window == nullptr ? nullptr : FindWindowOf(found->second.window)) {
        std::erase(window->contexts, dc);
        if (MessageQueue* const queue = QueueOf(window->thread)) --queue->contexts;
        if (HasScreen()) NoteDrawn(RootOf(*window), PlaceOf(found->second).clip.Box());
    }
    Contexts().erase(found);
    EndCanvasDC(dc);
    return true;
}

DWORD ClipFlagsOf(const Window& window) {
    return ((window.style & WS_CLIPCHILDREN) != 0 ? DCX_CLIPCHILDREN : 0) |
           ((window.style & WS_CLIPSIBLINGS) != 0 ? DCX_CLIPSIBLINGS : 0);
}

// Erases the area if that is due; whether the background is still to be erased.
bool Erase(HWND handle, const PixelRegion& area) {
    HDC dc = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return false;
        dc = OpenContext({handle, ClipFlagsOf(*window), true, area});
    }
    if (dc == nullptr) return true;
    const bool done = SendMessageA(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) != 0;
    const std::lock_guard kernel(KernelLock());
    CloseContext(dc);
    return !done;
}

LRESULT FillBackground(HWND handle, HDC dc) {
    HBRUSH brush = nullptr;
    RECT client{};
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) return 0;
        brush = window->windowClass->info.hbrBackground;
        client = window->Client();
    }
    if (brush == nullptr) return 0;
    FillRect(dc, &client, brush);
    return 1;
}

LRESULT ControlColour(UINT message, HDC dc) {
    const bool list = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    const int face = list ? COLOR_WINDOW : COLOR_BTNFACE;
    SetTextColor(dc, GetSysColor(list ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
    SetBkColor(dc, GetSysColor(face));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(face));
}

// Calls for each visible window of the calling thread in and below this one, from outside to inside.
std::vector<HWND> OwnWindowsIn(HWND handle) {
    std::vector<HWND> list, waiting{handle};
    const std::lock_guard kernel(KernelLock());
    while (!waiting.empty()) {
        const Window* window = FindWindowOf(waiting.back());
        waiting.pop_back();
        if (window == nullptr || (window->style & WS_VISIBLE) == 0) continue;
        if (window->thread == GetCurrentThreadId()) list.push_back(window->handle);
        waiting.insert(waiting.end(), window->children.rbegin(), window->children.rend());
    }
    return list;
}
}  // namespace

PixelRegion PixelsOf(HRGN region) {
    const auto found = FindGdi<RegionObject>(region, OBJ_REGION);
    return found == nullptr ? PixelRegion() : found->pixels;
}

void RefreshContexts(Window& root) {
    std::vector<HWND> waiting{root.handle};
    while (!waiting.empty()) {
        const Window* window = FindWindowOf(waiting.back());
        waiting.pop_back();
        if (window == nullptr) continue;
        for (const HDC dc : window->contexts) PlaceCanvasDC(dc, PlaceOf(Contexts()[dc]));
        waiting.insert(waiting.end(), window->children.begin(), window->children.end());
    }
}

void ResizeCanvas(Window& root) {
    if (root.canvas == nullptr) return;
    const std::shared_ptr<Canvas> before = std::move(root.canvas);
    root.canvas = NewPicture(root);
    if (root.canvas == nullptr) return;
    const PixelView from = before->Pixels(), to = root.canvas->Pixels();
    const auto length = static_cast<size_t>(std::min(from.width, to.width)) * sizeof(uint32_t);
    for (int y = 0; y < std::min(from.height, to.height); ++y) std::memcpy(to.Row(y), from.Row(y), length);
}

void DropContexts(Window& window) {
    // Whoever holds one still draws on it, and nowhere.
    if (MessageQueue* const queue = QueueOf(window.thread)) queue->contexts -= window.contexts.size();
    for (const HDC dc : window.contexts) {
        Context& context = Contexts()[dc];
        context.window = nullptr;
        PlaceCanvasDC(dc, PlaceOf(context));
    }
    window.contexts.clear();
}

void NoteOpenContexts(DWORD thread) {
    for (const auto& [dc, context] : Contexts()) {
        Window* const window = context.window == nullptr ? nullptr : FindWindowOf(context.window);
        if (window != nullptr && window->thread == thread) NoteDrawn(RootOf(*window), PlaceOf(context).clip.Box());
    }
}

void EraseNow(HWND handle) {
    for (const HWND each : OwnWindowsIn(handle)) {
        PixelRegion area;
        {
            const std::lock_guard kernel(KernelLock());
            Window* window = FindWindowOf(each);
            if (window == nullptr || !window->erase || window->update.Empty()) continue;
            window->erase = false;
            area = window->update;
        }
        if (!Erase(each, area)) continue;
        const std::lock_guard kernel(KernelLock());
        if (Window* window = FindWindowOf(each)) window->erase = true;
    }
}

LRESULT PaintingAnswer(HWND handle, UINT message, WPARAM wParam, LPARAM) {
    if (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC)
        return ControlColour(message, reinterpret_cast<HDC>(wParam));
    if (message == WM_ERASEBKGND) return FillBackground(handle, reinterpret_cast<HDC>(wParam));
    if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        BeginPaint(handle, &paint);
        EndPaint(handle, &paint);
    }
    return 0;
}
}  // namespace orvik::detail

using namespace orvik::detail;

HDC BeginPaint(HWND handle, LPPAINTSTRUCT paint) {
    if (paint == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    *paint = {};
    bool erase = false;
    PixelRegion area;
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        area = window->update;
        erase = window->erase && !area.Empty();
        window->update = {};
        window->erase = window->internalPaint = false;
        paint->hdc = OpenContext({handle, ClipFlagsOf(*window), true, area});
    }
    if (paint->hdc == nullptr) return nullptr;
    paint->rcPaint = area.Box();
    // Children that the erased background lies upon are painted after it.
    if (erase) paint->fErase = SendMessageA(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0) == 0;
    return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT* paint) {
    if (paint == nullptr) return FALSE;
    ReleaseDC(nullptr, paint->hdc);
    return TRUE;
}

HDC GetDCEx(HWND handle, HRGN region, DWORD flags) {
    PixelRegion limit;
    if (region != nullptr) limit = PixelsOf(region);
    HDC dc = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        if (handle == nullptr || handle == Desktop().handle) {
            dc = OpenContext({});
        } else {
            const Window* window = FindWindowOf(handle);
            if (window == nullptr) {
                SetLastError(ERROR_INVALID_WINDOW_HANDLE);
                return nullptr;
            }
            if ((flags & DCX_EXCLUDERGN) != 0) {
                PixelRegion rest(window->Client());
                rest.Combine(limit, RGN_DIFF);
                limit = std::move(rest);
            }
            dc = OpenContext({handle, flags, (flags & (DCX_INTERSECTRGN | DCX_EXCLUDERGN)) != 0, std::move(limit)});
        }
    }
    if (dc != nullptr && region != nullptr && (flags & (DCX_INTERSECTRGN | DCX_EXCLUDERGN)) != 0) DeleteObject(region);
    return dc;
}

namespace {
DWORD StyleFlags(HWND handle) {
    const std::lock_guard kernel(KernelLock());
    const Window* window = FindWindowOf(handle);
    return window == nullptr ? 0 : ClipFlagsOf(*window);
}
}  // namespace

HDC GetDC(HWND handle) { return GetDCEx(handle, nullptr, StyleFlags(handle)); }
HDC GetWindowDC(HWND handle) { return GetDCEx(handle, nullptr, StyleFlags(handle) | DCX_WINDOW); }

int ReleaseDC(HWND, HDC dc) {
    bool closed = false;
    {
        const std::lock_guard kernel(KernelLock());
        closed = CloseContext(dc);
    }
    if (DrawnIsDue()) ShowDrawn();
    return closed;
}

int GetUpdateRgn(HWND handle, HRGN region, BOOL erase) {
    PixelRegion area;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* window = FindWindowOf(handle);
        if (window == nullptr) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return 0;
        }
        area = window->update;
    }
    const auto found = FindGdi<RegionObject>(region, OBJ_REGION);
    if (found == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    found->pixels = area;
    if (erase && !area.Empty()) EraseNow(handle);
    return LooksOf(area);
}

int ScrollWindowEx(HWND handle, int dx, int dy, LPCRECT scroll, LPCRECT clip, HRGN updateRegion, LPRECT update, UINT flags) {
    RECT area{};
    if (!GetClientRect(handle, &area)) return 0;
    if (scroll != nullptr) area = CommonRectangle(area, *scroll);
    const RECT bounds = clip != nullptr ? CommonRectangle(*clip, area) : area;
    // What can be copied is what is seen and stays within the bounds.
    const RECT to = CommonRectangle(bounds, Moved(bounds, dx, dy));
    PixelRegion shown(bounds), copied, fresh;
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr) return 0;
        const DWORD clipping = (flags & SW_SCROLLCHILDREN) != 0 ? 0 : ClipFlagsOf(*window) & DCX_CLIPCHILDREN;
        shown = VisibleRegion(*window, clipping != 0, true);
        const POINT own = OriginOf(*window), above = OriginOf(RootOf(*window));
        shown.Offset(above.x - own.x, above.y - own.y);
        copied = shown;
        copied.Combine(bounds, RGN_AND);
        copied.Offset(dx, dy);
        copied.Combine(shown, RGN_AND);
        copied.Combine(to, RGN_AND);
        // What waits to be painted moves along.
        PixelRegion waiting = window->update;
        waiting.Combine(bounds, RGN_AND);
        waiting.Offset(dx, dy);
        waiting.Combine(to, RGN_AND);
        window->update.Combine(waiting, RGN_OR);
        fresh = shown;
        fresh.Combine(bounds, RGN_AND);
        fresh.Combine(copied, RGN_DIFF);
    }
    const HDC dc = GetDC(handle);
    if (copied.Rects().size() == 1) {
        const RECT part = copied.Box();
        BitBlt(dc, part.left, part.top, part.right - part.left, part.bottom - part.top, dc, part.left - dx, part.top - dy,
               SRCCOPY);
    }
    ReleaseDC(handle, dc);
    // A picture in pieces may overlap itself; that is painted rather than copied.
    if (copied.Rects().size() > 1) {
        fresh = shown;
        fresh.Combine(bounds, RGN_AND);
    }
    if ((flags & SW_SCROLLCHILDREN) != 0) {
        std::vector<std::pair<HWND, RECT>> moves;
        {
            const std::lock_guard kernel(KernelLock());
            if (const Window* window = FindWindowOf(handle)) {
                for (const HWND child : window->children) {
                    const Window* each = FindWindowOf(child);
                    if (each != nullptr && !IsEmptyRectangle(CommonRectangle(each->rectangle, area)))
                        moves.emplace_back(child, each->rectangle);
                }
            }
        }
        for (const auto& [child, place] : moves)
            SetWindowPos(child, nullptr, place.left + dx, place.top + dy, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (update != nullptr) *update = fresh.Box();
    if (const auto found = updateRegion == nullptr ? nullptr : FindGdi<RegionObject>(updateRegion, OBJ_REGION))
        found->pixels = fresh;
    if ((flags & (SW_INVALIDATE | SW_ERASE)) != 0) {
        const std::lock_guard kernel(KernelLock());
        if (Window* window = FindWindowOf(handle))
            InvalidateRegion(*window, fresh, RDW_INVALIDATE | ((flags & SW_ERASE) != 0 ? RDW_ERASE : 0));
    }
    return LooksOf(fresh);
}

BOOL ScrollWindow(HWND window, int dx, int dy, LPCRECT scroll, LPCRECT clip) {
    return ScrollWindowEx(window, dx, dy, scroll, clip, nullptr, nullptr,
                          SW_INVALIDATE | SW_ERASE | (scroll == nullptr ? SW_SCROLLCHILDREN : 0)) != 0;
}
