#include "platform/posix/window/scroll.h"

#include <algorithm>

#include "platform/posix/window/window_internal.h"

using namespace orvik::detail;

namespace {
// The window's own bar under the lock; null with the error set.
SCROLLINFO* BarOf(HWND handle, int bar) {
    Window* window = FindWindowOf(handle);
    if (window == nullptr || (bar != SB_HORZ && bar != SB_VERT)) {
        SetLastError(window == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return &window->scroll[static_cast<size_t>(bar)];
}
}  // namespace

int SetScrollInfo(HWND window, int bar, LPCSCROLLINFO info, BOOL redraw) {
    if (info == nullptr || info->cbSize < sizeof(SCROLLINFO) - sizeof(int)) return 0;
    if (bar == SB_CTL)
        return static_cast<int>(SendMessageA(window, SBM_SETSCROLLINFO, redraw != FALSE, reinterpret_cast<LPARAM>(info)));
    const std::lock_guard kernel(KernelLock());
    SCROLLINFO* kept = BarOf(window, bar);
    if (kept == nullptr) return 0;
    if ((info->fMask & SIF_RANGE) != 0) {
        const bool right = info->nMin <= info->nMax && static_cast<long long>(info->nMax) - info->nMin <= 0x7FFFFFFF;
        kept->nMin = right ? info->nMin : 0;
        kept->nMax = right ? info->nMax : 0;
    }
    if ((info->fMask & SIF_PAGE) != 0) kept->nPage = info->nPage;
    if ((info->fMask & SIF_POS) != 0) kept->nPos = info->nPos;
    const auto length = static_cast<UINT>(static_cast<long long>(kept->nMax) - kept->nMin + 1);
    kept->nPage = std::min(kept->nPage, length);
    const int most = kept->nMax - static_cast<int>(std::max(kept->nPage, 1u) - 1);
    kept->nPos = std::clamp(kept->nPos, kept->nMin, std::max(kept->nMin, most));
    kept->nTrackPos = kept->nPos;
    return kept->nPos;
}

BOOL GetScrollInfo(HWND window, int bar, LPSCROLLINFO info) {
    if (info == nullptr || info->cbSize < sizeof(SCROLLINFO) - sizeof(int)) return Finish(ERROR_INVALID_PARAMETER);
    if (bar == SB_CTL) return SendMessageA(window, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(info)) != 0;
    const std::lock_guard kernel(KernelLock());
    const SCROLLINFO* kept = BarOf(window, bar);
    if (kept == nullptr) return FALSE;
    if ((info->fMask & SIF_RANGE) != 0) {
        info->nMin = kept->nMin;
        info->nMax = kept->nMax;
    }
    if ((info->fMask & SIF_PAGE) != 0) info->nPage = kept->nPage;
    if ((info->fMask & SIF_POS) != 0) info->nPos = kept->nPos;
    if ((info->fMask & SIF_TRACKPOS) != 0 && info->cbSize == sizeof(SCROLLINFO)) info->nTrackPos = kept->nTrackPos;
    return TRUE;
}

int SetScrollPos(HWND window, int bar, int position, BOOL redraw) {
    const int before = GetScrollPos(window, bar);
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, position, 0};
    SetScrollInfo(window, bar, &info, redraw);
    return before;
}

int GetScrollPos(HWND window, int bar) {
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, 0, 0};
    GetScrollInfo(window, bar, &info);
    return info.nPos;
}

BOOL SetScrollRange(HWND window, int bar, int least, int most, BOOL redraw) {
    if (!IsWindow(window)) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE, least, most, 0, 0, 0};
    SetScrollInfo(window, bar, &info, redraw);
    return TRUE;
}

BOOL ShowScrollBar(HWND handle, int bar, BOOL show) {
    if (bar == SB_CTL) {
        ShowWindow(handle, show ? SW_SHOW : SW_HIDE);
        return IsWindow(handle);
    }
    const std::lock_guard kernel(KernelLock());
    Window* window = FindWindowOf(handle);
    if (window == nullptr) return Finish(ERROR_INVALID_WINDOW_HANDLE);
    const DWORD bits = (bar == SB_VERT ? 0 : WS_HSCROLL) | (bar == SB_HORZ ? 0 : WS_VSCROLL);
    window->style = show ? window->style | bits : window->style & ~bits;
    return TRUE;
}
