// The bar above a window's client area: how high it is, how it looks, and how it is opened.
#include <algorithm>

#include "platform/posix/dialogs/menu_loop_internal.h"
#include "platform/posix/drawing/draw.h"
#include "platform/posix/drawing/paint.h"
#include "platform/posix/resources/resources.h"

namespace orvik::detail {
namespace {
LONG WidthOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place.right - place.left;
}

// What was chosen is posted, as from a popup.
void RunBar(HWND window, MenuLoop& loop) {
    loop.Run();
    if (loop.Chosen() != 0 && IsWindow(window)) PostMessageA(window, WM_COMMAND, loop.Chosen(), 0);
}

bool HasBar(HWND window) {
    const std::lock_guard kernel(KernelLock());
    const Window* found = FindWindowOf(window);
    return found != nullptr && found->bar > 0 && (found->style & WS_DISABLED) == 0;
}
}  // namespace

LONG MenuBarHeight(HWND window, LONG width) {
    HMENU menu = nullptr;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* found = FindWindowOf(window);
        if (found != nullptr && (found->style & WS_CHILD) == 0 && !found->messageOnly) menu = found->menu;
    }
    return menu == nullptr || GetMenuItemCount(menu) <= 0 ? 0 : MenuFace(window, menu, width).Size().cy;
}

void PaintMenuBar(HWND window) {
    if (MenuBarHeight(window, WidthOf(window)) == 0 || !IsWindowVisible(window)) return;
    const MenuFace face(window, GetMenu(window), WidthOf(window));
    const MenuLoop* loop = MenuLoop::Current();
    const int hot = loop == nullptr ? -1 : loop->HotInBar(window);
    const HDC dc = GetWindowDC(window);
    const SIZE size = face.Size();
    const HBRUSH ground = CreateSolidBrush(face.Looks().ground), rule = CreateSolidBrush(face.Looks().rule);
    const RECT whole{0, 0, size.cx, size.cy}, line{0, size.cy - face.Looks().line, size.cx, size.cy};
    IntersectClipRect(dc, 0, 0, static_cast<int>(size.cx), static_cast<int>(size.cy));
    FillRect(dc, &whole, ground);
    FillRect(dc, &line, rule);
    for (int i = 0; i < face.Count(); ++i) face.Paint(dc, i, face.PlaceOf(i), i == hot);
    DeleteObject(ground);
    DeleteObject(rule);
    ReleaseDC(window, dc);
}

void TrackMenuBarByKey(HWND window, WPARAM character) {
    if (!HasBar(window) || MenuLoop::Current() != nullptr) return;
    MenuLoop loop(window, GetMenu(window), 0, true);
    if (character == 0)
        loop.MarkFirst();
    else
        loop.Character(character);
    if (loop.HasHot()) RunBar(window, loop);
}

void TrackMenuBarByMouse(HWND window, POINT screen) {
    if (!HasBar(window) || MenuLoop::Current() != nullptr) return;
    MenuLoop loop(window, GetMenu(window), 0, true);
    loop.Press(screen, WM_LBUTTONDOWN);
    if (loop.HasHot()) RunBar(window, loop);
}

void ShowMenuCursor() { SetCursor(LoadCursorA(nullptr, IDC_ARROW)); }
}  // namespace orvik::detail

using namespace orvik::detail;

HMENU GetMenu(HWND handle) {
    const std::lock_guard kernel(KernelLock());
    const Window* window = FindWindowOf(handle);
    return window == nullptr || (window->style & WS_CHILD) != 0 ? nullptr : window->menu;
}

BOOL SetMenu(HWND handle, HMENU menu) {
    if (menu != nullptr && !IsMenu(menu)) return Finish(ERROR_INVALID_MENU_HANDLE);
    {
        const std::lock_guard kernel(KernelLock());
        Window* window = FindWindowOf(handle);
        if (window == nullptr || (window->style & WS_CHILD) != 0) return Finish(ERROR_INVALID_WINDOW_HANDLE);
        window->menu = menu;
    }
    return DrawMenuBar(handle);
}

BOOL DrawMenuBar(HWND window) {
    constexpr UINT kInPlace = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
    if (!SetWindowPos(window, nullptr, 0, 0, 0, 0, kInPlace)) return FALSE;
    SendMessageA(window, WM_NCPAINT, 1, 0);
    return TRUE;
}

BOOL GetMenuItemRect(HWND window, HMENU menu, UINT position, LPRECT rectangle) {
    if (rectangle == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    const auto item = static_cast<int>(std::min(position, 0x7FFFu));
    const MenuLoop* loop = MenuLoop::Current();
    if (loop != nullptr && loop->PlaceOf(menu, item, *rectangle)) return TRUE;
    if (!HasBar(window) || GetMenu(window) != menu) return Finish(ERROR_INVALID_MENU_HANDLE);
    const MenuFace face(window, menu, WidthOf(window));
    if (item >= face.Count()) return Finish(ERROR_MENU_ITEM_NOT_FOUND);
    RECT place{};
    GetWindowRect(window, &place);
    *rectangle = Moved(face.PlaceOf(item), place.left, place.top);
    return TRUE;
}
