#include "res/ids.h"
#include "toolkit/progress_rules_internal.h"

namespace orvik::detail {
namespace {
CRect PlaceOf(const CWnd& dialog, int id) {
    CRect place;
    ::GetWindowRect(::GetDlgItem(dialog.m_hWnd, id), place);
    dialog.ScreenToClient(place);
    return place;
}

void Put(const CWnd& dialog, int id, const CRect& place) {
    ::MoveWindow(::GetDlgItem(dialog.m_hWnd, id), place.left, place.top, place.Width(), place.Height(), TRUE);
}

void MoveDown(const CWnd& dialog, std::initializer_list<int> ids, int pixels) {
    for (const int id : ids) Put(dialog, id, PlaceOf(dialog, id) + CPoint(0, pixels));
}

void Hide(const CWnd& dialog, int id) { ::ShowWindow(::GetDlgItem(dialog.m_hWnd, id), SW_HIDE); }

void Lengthen(CWnd& dialog, int pixels) {
    CRect window;
    dialog.GetWindowRect(window);
    dialog.SetWindowPos(nullptr, 0, 0, window.Width(), window.Height() + pixels, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}
}  // namespace

int LayOutProgress(CWnd& dialog, const ProgressLook& look) {
    if (look.headerHeight > 0) {
        // The rest goes along, so that nothing comes to lie upon anything.
        MoveDown(dialog,
                 {IDC_ORVIK_MESSAGE, IDC_ORVIK_PROGRESS, IDC_ORVIK_PERCENT, IDC_ORVIK_MESSAGE2, IDCANCEL, IDC_ORVIK_BOTTOM},
                 look.headerHeight);
        Lengthen(dialog, look.headerHeight);
    }
    if (!look.progress) {
        Hide(dialog, IDC_ORVIK_PROGRESS);
        Hide(dialog, IDC_ORVIK_PERCENT);
        const int room = PlaceOf(dialog, IDCANCEL).top - PlaceOf(dialog, IDC_ORVIK_PROGRESS).top;
        MoveDown(dialog, {IDCANCEL, IDC_ORVIK_BOTTOM}, -room);
        Lengthen(dialog, -room);
    } else if (!look.percentage) {
        Hide(dialog, IDC_ORVIK_PERCENT);
        CRect bar = PlaceOf(dialog, IDC_ORVIK_PROGRESS);
        bar.right = PlaceOf(dialog, IDC_ORVIK_PERCENT).right;
        Put(dialog, IDC_ORVIK_PROGRESS, bar);
    }
    if (!look.message2) {
        const int height = PlaceOf(dialog, IDC_ORVIK_MESSAGE2).Height();
        MoveDown(dialog, {IDC_ORVIK_PROGRESS, IDC_ORVIK_PERCENT, IDCANCEL, IDC_ORVIK_BOTTOM}, -height);
    }
    if (!look.cancel) {
        dialog.ModifyStyle(WS_SYSMENU, 0, SWP_FRAMECHANGED);
        ::EnableWindow(::GetDlgItem(dialog.m_hWnd, IDCANCEL), FALSE);
        Hide(dialog, IDCANCEL);
        Hide(dialog, IDC_ORVIK_BOTTOM);
        Lengthen(dialog, PlaceOf(dialog, IDCANCEL).top - PlaceOf(dialog, IDC_ORVIK_BOTTOM).bottom);
    }
    CRect client;
    dialog.GetClientRect(client);
    return client.Height();
}

int ProgressPercent(LONG position, LONG least, LONG most) {
    if (least == most) return 0;
    // Wide enough for every pair of positions: bytes of a large file, say.
    const long long percent = (static_cast<long long>(position) - least) * 100 / (static_cast<long long>(most) - least);
    return static_cast<int>(percent == 100 ? percent : percent % 100);
}

void ShowPercent(CWnd& text, int percent) {
    CString wanted, shown;
    wanted.Format("%d %%", percent);
    text.GetWindowText(shown);
    if (shown.Compare(wanted) != 0) text.SetWindowText(wanted);
}

BOOL PumpProgressMessages(CWnd& dialog) {
    MSG message;
    if (dialog.m_hWnd == nullptr) return FALSE;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            ::PostThreadMessageA(::GetCurrentThreadId(), WM_QUIT, message.wParam, message.lParam);
            return FALSE;
        }
        if (!::IsDialogMessageA(dialog.m_hWnd, &message)) {
            ::TranslateMessage(&message);
            ::DispatchMessageA(&message);
        }
        if (dialog.m_hWnd == nullptr) return FALSE;
    }
    return TRUE;
}

void ShowWithOwner(CWnd& dialog) {
    if (dialog.m_hWnd == nullptr || dialog.IsWindowVisible()) return;
    const HWND owner = ::GetWindow(dialog.m_hWnd, GW_OWNER);
    if (owner != nullptr && ::IsWindowVisible(owner)) dialog.ShowWindow(SW_SHOW);
}

}  // namespace orvik::detail
