#include "platform/posix/controls/combo_list_internal.h"

#include <algorithm>

#include "platform/posix/controls/rows_in_view_internal.h"
#include "platform/posix/kernel/threads.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
class ComboList final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        switch (message) {
            case WM_CREATE:
                m_of = *static_cast<const ComboListOf*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
                m_font = m_of.font;
                return 0;
            case kComboListFollow:
                m_marked = static_cast<int>(wParam);
                Place();
                Show(m_marked);
                Invalidate();
                return 0;
            case WM_MOUSEACTIVATE:
                return MA_NOACTIVATE;
            case WM_MOUSEMOVE:
                Point(point);
                return 0;
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
            case WM_RBUTTONDOWN:
            case WM_MBUTTONDOWN:
                Press(message, wParam, point);
                return 0;
            case WM_LBUTTONUP:
                Release(point);
                return 0;
            case WM_MOUSEWHEEL:
                ScrollTo(m_top - 3 * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA);
                return 0;
            case WM_CAPTURECHANGED:
                if (reinterpret_cast<HWND>(lParam) != m_window) SendMessageA(m_of.box, kComboListLeft, 0, 0);
                return 0;
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        FillColour(dc, client, GetSysColor(COLOR_WINDOW));
        FrameColour(dc, client, GetSysColor(COLOR_WINDOWFRAME));
        const ScrollPart bar = Bar();
        if (bar.Useful()) bar.Paint(dc);
        const RECT inner = Inner();
        IntersectClipRect(dc, static_cast<int>(inner.left), static_cast<int>(inner.top), static_cast<int>(inner.right),
                          static_cast<int>(inner.bottom));
        const int height = LineHeight();
        for (int i = m_top; i < m_of.items->Count() && i <= m_top + Page(); ++i) {
            RECT row{inner.left, inner.top + (i - m_top) * height, inner.right, inner.top + (i - m_top + 1) * height};
            if (i == m_marked) FillColour(dc, row, GetSysColor(COLOR_HIGHLIGHT));
            SetTextColor(dc, GetSysColor(i == m_marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
            row.left += Scaled(3);
            DrawTextA(dc, (*m_of.items)[i].text.c_str(), -1, &row, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        }
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::List;
        const RECT inner = Inner();
        const int height = LineHeight();
        for (int i = m_top; i < m_of.items->Count() && i < m_top + Page(); ++i) {
            const RECT place{inner.left, inner.top + (i - m_top) * height, inner.right, inner.top + (i - m_top + 1) * height};
            OrvikAccessible& row = AddRow(out, OrvikRole::ListItem, i, m_of.items->Count(), (*m_of.items)[i].text, place);
            row.Set(OrvikAccessible::kSelected, i == m_marked);
            row.Set(OrvikAccessible::kFocused, i == m_marked);
        }
    }
    bool Act(const OrvikAccessibleAct& act) override {
        const int index = static_cast<int>(act.part) - 1;
        if (!m_of.items->Has(index) || act.kind == OrvikAccessibleAct::Kind::Focus) return false;
        return PostMessageA(m_of.box, kComboListChosen, static_cast<WPARAM>(index), 0);
    }

private:
    void Place() {
        RECT box{};
        GetWindowRect(m_of.box, &box);
        PopupPlace place;
        place.owner = GetAncestor(m_of.box, GA_ROOT);
        MapWindowPoints(nullptr, place.owner, reinterpret_cast<POINT*>(&box), 2);
        place.anchor = box;
        const int rows = std::clamp(m_of.items->Count(), 1, m_of.rows);
        PutPopup(m_window, place, {box.right - box.left, rows * LineHeight() + 2});
        ScrollTo(m_top);
    }
    RowsInView Rows() const { return {Shrunk(Client(), 1), m_of.items->Count(), m_top, LineHeight(), BarWidth()}; }
    RECT Inner() const { return Rows().inner; }
    int Page() const { return Rows().page; }
    ScrollPart Bar() const { return Rows().bar; }
    void ScrollTo(int top) {
        top = Bar().Limited(top);
        if (std::exchange(m_top, top) != top) Invalidate();
    }
    void Show(int item) {
        if (item >= 0 && item < m_top) ScrollTo(item);
        if (item >= m_top + Page()) ScrollTo(item - Page() + 1);
    }
    int ItemAt(POINT point) const {
        const RECT inner = Inner();
        if (!PtInRect(&inner, point)) return -1;
        const int item = m_top + static_cast<int>(point.y - inner.top) / LineHeight();
        return m_of.items->Has(item) ? item : -1;
    }

    void Point(POINT point) {
        if (m_grip >= 0) return ScrollTo(Bar().PositionAt(point.y - m_grip - Bar().place.top));
        const int item = ItemAt(point);
        if (item < 0) return;
        m_armed = true;
        if (std::exchange(m_marked, item) != item) Invalidate();
    }
    void Press(UINT message, WPARAM held, POINT point) {
        const RECT client = Client();
        if (!PtInRect(&client, point)) return Leave(message, held, point);
        const ScrollPart bar = Bar();
        if (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK) return;
        if (bar.Useful() && PtInRect(&bar.place, point)) {
            const int code = bar.CodeAt(point);
            if (code != SB_THUMBTRACK) return ScrollTo(bar.After(code));
            m_grip = point.y - bar.Thumb().top;
            return;
        }
        m_armed = true;
        Point(point);
    }
    void Release(POINT point) {
        if (std::exchange(m_grip, -1) >= 0) return;
        const int item = ItemAt(point);
        if (item >= 0 && m_armed) SendMessageA(m_of.box, kComboListChosen, static_cast<WPARAM>(item), 0);
    }
    // A press beside the list closes it and goes on to who is there; on the box itself, closing is what it means.
    void Leave(UINT message, WPARAM held, POINT point) {
        ClientToScreen(m_window, &point);
        RECT box{};
        GetWindowRect(m_of.box, &box);
        const HWND boxWindow = m_of.box;
        SendMessageA(boxWindow, kComboListLeft, 0, 0);
        if (PtInRect(&box, point)) return;
        const HWND below = WindowFromPoint(point);
        if (below == nullptr || GetWindowThreadProcessId(below, nullptr) != GetCurrentThreadId()) return;
        ScreenToClient(below, &point);
        PostMessageA(below, message, held, MAKELPARAM(point.x, point.y));
    }

    ComboListOf m_of{};
    int m_marked = -1, m_top = 0;
    LONG m_grip = -1;      // where in the thumb it is held; -1 while it is not
    bool m_armed = false;  // the pointer has been on an item, so letting go there chooses it
};
}  // namespace

HWND OpenComboList(const ComboListOf& list, int current) {
    ComboListOf of = list;
    const HWND window = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, "ComboLBox", "", WS_POPUP, 0, 0, 0,
                                        0, list.box, nullptr, nullptr, &of);
    if (window == nullptr) return nullptr;
    SendMessageA(window, kComboListFollow, static_cast<WPARAM>(current), 0);
    ShowWindow(window, SW_SHOWNA);
    SetCapture(window);
    return window;
}

LRESULT CALLBACK ComboListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ComboList>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
