// The list box: strings of which one, or several, can be selected.
#include <algorithm>

#include "platform/letters.h"
#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/controls/list_items_internal.h"
#include "platform/posix/controls/rows_in_view_internal.h"

namespace orvik::detail {
namespace {
constexpr ListItemMessages kListMessages = {LB_GETCOUNT,        LB_GETTEXT,     LB_GETTEXTLEN,  LB_FINDSTRING,
                                            LB_FINDSTRINGEXACT, LB_GETITEMDATA, LB_SETITEMDATA, TRUE};

class ListBox final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        const auto index = static_cast<int>(wParam);
        const auto* text = reinterpret_cast<const char*>(lParam);
        if (const auto answer = m_items.Answer(kListMessages, message, wParam, lParam)) return *answer;
        switch (message) {
            case LB_ADDSTRING:
                return Changed(m_items.Add(text, (Style() & LBS_SORT) != 0));
            case LB_INSERTSTRING:
                return Changed(m_items.Insert(index, text));
            case LB_DELETESTRING:
                if (!m_items.Remove(index)) return LB_ERR;
                // A removed selection leaves none; what follows moves up.
                if (m_current == index) m_current = -1;
                if (m_current > index) --m_current;
                m_caret = std::min(m_caret, m_items.Count() - 1);
                ScrollTo(m_top);
                Invalidate();
                return m_items.Count();
            case LB_RESETCONTENT:
                m_items.Clear();
                m_current = -1;
                m_caret = m_top = 0;
                Invalidate();
                return LB_OKAY;
            case LB_GETCURSEL:
                return Multiple() ? m_caret : m_current;
            case LB_SETCURSEL:
                return Multiple() ? LB_ERR : Select(index);
            case LB_GETSEL:
                return m_items.Has(index) ? static_cast<LRESULT>(Selected(index)) : LB_ERR;
            case LB_SETSEL:
                return SetSelected(static_cast<int>(lParam), wParam != 0);
            case LB_GETSELCOUNT: {
                if (!Multiple()) return LB_ERR;
                LRESULT count = 0;
                for (int i = 0; i < m_items.Count(); ++i) count += m_items[i].selected;
                return count;
            }
            case LB_SELECTSTRING: {
                const int found = m_items.Find(index, text, false);
                return found < 0 ? LB_ERR : Select(found);
            }
            case LB_GETTOPINDEX:
                return m_top;
            case LB_SETTOPINDEX:
                if (!m_items.Has(index)) return LB_ERR;
                ScrollTo(index);
                return LB_OKAY;
            case LB_GETITEMRECT:
                if (lParam == 0) return LB_ERR;
                *reinterpret_cast<RECT*>(lParam) = RectOf(index);
                return m_items.Has(index) ? 1 : LB_ERR;
            case LB_GETITEMHEIGHT:
                return LineHeight();
            case WM_GETDLGCODE:
                return DLGC_WANTARROWS | DLGC_WANTCHARS;
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                Invalidate();
                if (Style() & LBS_NOTIFY) Tell(message == WM_SETFOCUS ? LBN_SETFOCUS : LBN_KILLFOCUS);
                return 0;
            case WM_KEYDOWN:
                return Key(wParam);
            case WM_CHAR: {
                const std::string typed = m_typed.Take(wParam);
                const int found = wParam > ' ' && !typed.empty() ? m_items.Find(m_current, typed.c_str(), false) : -1;
                if (found >= 0) Choose(found);
                return 0;
            }
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                return Press({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}, message == WM_LBUTTONDBLCLK);
            case WM_MOUSEWHEEL:
                ScrollTo(m_top - 3 * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA);
                return 0;
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        const HBRUSH paper = ParentBrush(dc, WM_CTLCOLORLISTBOX);
        FillRect(dc, &client, paper);
        PaintFrame(dc, client);
        const ScrollPart bar = Bar();
        if (bar.Useful()) bar.Paint(dc);
        const RECT inner = Inner();
        IntersectClipRect(dc, inner.left, inner.top, inner.right, inner.bottom);
        const COLORREF ink = GetTextColor(dc);
        for (int i = m_top; i < m_items.Count(); ++i) {
            RECT row = RectOf(i);
            if (row.top >= inner.bottom) break;
            const bool selected = Selected(i);
            if (selected) FillColour(dc, row, GetSysColor(COLOR_HIGHLIGHT));
            SetTextColor(dc, !Enabled() ? GetSysColor(COLOR_GRAYTEXT) : selected ? GetSysColor(COLOR_HIGHLIGHTTEXT) : ink);
            row.left += Scaled(2);
            DrawTextA(dc, m_items[i].text.c_str(), -1, &row, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
            row.left -= Scaled(2);
            if (Focused() && i == m_caret) PaintRowFocus(dc, row, selected, Dpi());
        }
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::List;
        out.name.clear();
        const RECT inner = Inner();
        for (int i = m_top; i < m_items.Count() && RectOf(i).top < inner.bottom; ++i) {
            OrvikAccessible& row = AddRow(out, OrvikRole::ListItem, i, m_items.Count(), m_items[i].text, RectOf(i));
            row.Set(OrvikAccessible::kSelected, Selected(i));
            row.Set(OrvikAccessible::kFocused, Focused() && i == m_caret);
        }
    }
    bool Act(const OrvikAccessibleAct& act) override {
        const int index = static_cast<int>(act.part) - 1;
        if (!m_items.Has(index)) return false;
        if (act.kind == OrvikAccessibleAct::Kind::Focus) SetFocus(m_window);
        if (act.kind == OrvikAccessibleAct::Kind::Press || act.kind == OrvikAccessibleAct::Kind::Select) Choose(index);
        return true;
    }

private:
    bool Multiple() const { return (Style() & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0; }
    bool Selected(int index) const { return Multiple() ? m_items[index].selected : m_current == index; }
    LRESULT Changed(int index) {
        if (index >= 0 && m_current >= index) ++m_current;
        Invalidate();
        return index;
    }

    LRESULT Select(int index) {
        if (index != -1 && !m_items.Has(index)) return LB_ERR;
        m_current = index;
        if (index >= 0) {
            m_caret = index;
            Show(index);
        }
        Invalidate();
        return index == -1 ? LB_ERR : index;
    }
    LRESULT SetSelected(int index, bool on) {
        if (!Multiple() || (index != -1 && !m_items.Has(index))) return LB_ERR;
        for (int i = 0; i < m_items.Count(); ++i)
            if (index == -1 || i == index) m_items[i].selected = on;
        if (index >= 0) m_caret = index;
        Invalidate();
        return LB_OKAY;
    }
    // By the user: told to the parent.
    void Choose(int index) {
        if (Style() & LBS_EXTENDEDSEL)
            for (int i = 0; i < m_items.Count(); ++i) m_items[i].selected = i == index;
        else if (Style() & LBS_MULTIPLESEL)
            m_items[index].selected = !m_items[index].selected;
        Select(index);
        if (Style() & LBS_NOTIFY) Tell(LBN_SELCHANGE);
    }

    LRESULT Key(WPARAM key) {
        const int last = m_items.Count() - 1;
        int to = -1;
        if (key == VK_UP || key == VK_LEFT) to = std::max(0, m_caret - 1);
        if (key == VK_DOWN || key == VK_RIGHT) to = std::min(last, m_current < 0 && !Multiple() ? 0 : m_caret + 1);
        if (key == VK_HOME) to = 0;
        if (key == VK_END) to = last;
        if (key == VK_PRIOR) to = std::max(0, m_caret - Page() + 1);
        if (key == VK_NEXT) to = std::min(last, m_caret + Page() - 1);
        if (key == VK_SPACE && Multiple()) to = m_caret;
        if (!m_items.Has(to)) return 0;
        if (Style() & LBS_MULTIPLESEL && key != VK_SPACE) {
            m_caret = to;  // the keys move, the space bar selects
            Show(to);
            Invalidate();
            return 0;
        }
        Choose(to);
        return 0;
    }

    LRESULT Press(POINT at, bool second) {
        if (!Focused()) SetFocus(m_window);
        const ScrollPart bar = Bar();
        if (bar.Useful() && PtInRect(&bar.place, at)) {
            const int code = bar.CodeAt(at);
            ScrollTo(code == SB_THUMBTRACK ? m_top : bar.After(code));
            return 0;
        }
        const int index = m_top + (at.y - Inner().top) / LineHeight();
        if (!m_items.Has(index)) return 0;
        if (!second) Choose(index);
        if (second && Style() & LBS_NOTIFY) Tell(LBN_DBLCLK);
        return 0;
    }

    RowsInView Rows() const { return {Shrunk(Client(), FrameWidth()), m_items.Count(), m_top, LineHeight(), BarWidth()}; }
    RECT Inner() const { return Rows().inner; }
    int Page() const { return Rows().page; }
    ScrollPart Bar() const { return Rows().bar; }
    RECT RectOf(int index) const {
        const RECT inner = Inner();
        const int height = LineHeight();
        const LONG top = inner.top + (index - m_top) * height;
        return {inner.left, top, inner.right, top + height};
    }
    void ScrollTo(int top) {
        top = Bar().Limited(top);
        if (std::exchange(m_top, top) != top) Invalidate();
    }
    void Show(int index) {
        if (index < m_top)
            ScrollTo(index);
        else if (index >= m_top + Page())
            ScrollTo(index - Page() + 1);
    }

    ListItems m_items;
    int m_current = -1, m_caret = 0, m_top = 0;
    OrvikTypedText m_typed;
};
}  // namespace

LRESULT CALLBACK ListBoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ListBox>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
