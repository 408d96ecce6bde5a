// The combo box: a field, and a list that drops from it as a popup of its own. CBS_DROPDOWN has an edit control (id 1001) for its
// field, CBS_DROPDOWNLIST shows the selected string.
#include <algorithm>
#include <cstring>

#include "platform/letters.h"
#include "platform/posix/controls/combo_list_internal.h"
#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/controls/list_items_internal.h"
#include "platform/posix/controls/scroll_part_internal.h"
#include "platform/posix/text/letters_internal.h"

namespace orvik::detail {
namespace {
constexpr int kEditId = 1001;
constexpr ListItemMessages kComboMessages = {CB_GETCOUNT,        CB_GETLBTEXT,   CB_GETLBTEXTLEN, CB_FINDSTRING,
                                             CB_FINDSTRINGEXACT, CB_GETITEMDATA, CB_SETITEMDATA,  CB_OKAY};

class ComboBox final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        const auto index = static_cast<int>(wParam);
        const auto* text = reinterpret_cast<const char*>(lParam);
        if (const auto answer = m_items.Answer(kComboMessages, message, wParam, lParam)) return *answer;
        switch (message) {
            case WM_CREATE:
                if (HasEdit())
                    m_edit = CreateWindowExA(0, "Edit", Text().c_str(), WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 0, 0,
                                             m_window, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kEditId)), nullptr, nullptr);
                Arrange();
                return 0;
            case WM_SIZE:
                Arrange();
                return 0;
            case WM_SETFONT:
                Control::Handle(message, wParam, lParam);
                if (m_edit != nullptr) SendMessageA(m_edit, WM_SETFONT, wParam, lParam);
                Arrange();
                return 0;
            case WM_DESTROY:
                CloseList();
                return 0;
            case WM_SHOWWINDOW:
                if (wParam == 0) Drop(false, true);
                return Control::Handle(message, wParam, lParam);
            case kComboListChosen:
                Choose(index);
                Drop(false, true);
                return 0;
            case kComboListLeft:
                Drop(false, true);
                return 0;
            case WM_ENABLE:
                if (wParam == 0) Drop(false, true);
                if (m_edit != nullptr) EnableWindow(m_edit, wParam != 0);
                return Control::Handle(message, wParam, lParam);
            case WM_SETTEXT:
            case WM_GETTEXT:
            case WM_GETTEXTLENGTH:
                return FieldText(message, wParam, lParam);
            case WM_GETDLGCODE: {
                const auto* key = reinterpret_cast<const MSG*>(lParam);
                LRESULT codes = DLGC_WANTARROWS | DLGC_WANTCHARS;
                if (key != nullptr && m_dropped && (key->wParam == VK_RETURN || key->wParam == VK_ESCAPE))
                    codes |= DLGC_WANTMESSAGE;
                return codes;
            }
            case CB_ADDSTRING:
                return Added(m_items.Add(text, (Style() & CBS_SORT) != 0));
            case CB_INSERTSTRING:
                return Added(m_items.Insert(index, text));
            case CB_DELETESTRING:
                if (!m_items.Remove(index)) return CB_ERR;
                if (m_current == index) m_current = -1;
                if (m_current > index) --m_current;
                Follow();
                return m_items.Count();
            case CB_RESETCONTENT:
                m_items.Clear();
                m_current = -1;
                if (m_edit != nullptr) SetWindowTextA(m_edit, "");
                Follow();
                return CB_OKAY;
            case CB_GETCURSEL:
                return m_current;
            case CB_SETCURSEL:
                return Select(index);
            case CB_SELECTSTRING: {
                const int found = m_items.Find(index, text, false);
                return found < 0 ? CB_ERR : Select(found);
            }
            case CB_SHOWDROPDOWN:
                Drop(wParam != 0, true);
                return TRUE;
            case CB_GETDROPPEDSTATE:
                return m_dropped;
            case CB_LIMITTEXT:
            case CB_GETEDITSEL:
            case CB_SETEDITSEL:
                return EditMessage(message, wParam, lParam);
            case WM_COMMAND:
                if (reinterpret_cast<HWND>(lParam) == m_edit && m_edit != nullptr) FromEdit(HIWORD(wParam));
                return 0;
            case WM_SETFOCUS:
                if (m_edit != nullptr) {
                    SetFocus(m_edit);
                    SendMessageA(m_edit, EM_SETSEL, 0, -1);  // what is typed takes its place
                    return 0;
                }
                Invalidate();
                Tell(CBN_SETFOCUS);
                return 0;
            case WM_KILLFOCUS:
                if (m_edit != nullptr) return 0;
                Invalidate();
                Drop(false, true);
                Tell(CBN_KILLFOCUS);
                return 0;
            case WM_KEYDOWN:
                return Key(wParam);
            case WM_SYSKEYDOWN:
                if (wParam != VK_UP && wParam != VK_DOWN) return Control::Handle(message, wParam, lParam);
                Drop(!m_dropped, true);
                return 0;
            case WM_CHAR: {
                const std::string typed = m_typed.Take(wParam);
                const int found = wParam > ' ' && !typed.empty() ? m_items.Find(m_current, typed.c_str(), false) : -1;
                if (found >= 0) Choose(found);
                return 0;
            }
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                if (!Focused() && (m_edit == nullptr || GetFocus() != m_edit)) SetFocus(m_window);
                Drop(!m_dropped, true);
                return 0;
            case WM_MOUSEWHEEL:
                if (m_list != nullptr) return SendMessageA(m_list, message, wParam, lParam);
                return Key(GET_WHEEL_DELTA_WPARAM(wParam) > 0 ? VK_UP : VK_DOWN);
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    bool ShowsHot() const override { return Enabled(); }
    void Paint(HDC dc, const RECT& client) override {
        const HBRUSH paper = ParentBrush(dc, WM_CTLCOLOREDIT);
        FillRect(dc, &client, paper);
        FlatState state;
        state.enabled = Enabled();
        state.hot = Hot();
        state.focused = Focused() || (m_edit != nullptr && GetFocus() == m_edit);
        PaintFieldFrame(dc, client, state, Dpi());
        PaintChevron(dc, Button(), 0, 1, GetSysColor(Enabled() ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT), Dpi());
        if (m_edit != nullptr) return;
        RECT field = Field();
        if (!Enabled()) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
        field.left += Scaled(2);
        if (m_items.Has(m_current))
            DrawTextA(dc, m_items[m_current].text.c_str(), -1, &field, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::ComboBox;
        out.name.clear();
        out.value = Text();
        out.Set(OrvikAccessible::kPressable);
        out.Set(OrvikAccessible::kExpandable);
        out.Set(OrvikAccessible::kExpanded, m_dropped);
    }
    bool Act(const OrvikAccessibleAct& act) override {
        if (act.kind == OrvikAccessibleAct::Kind::Press) return PostMessageA(m_window, CB_SHOWDROPDOWN, !m_dropped, 0);
        if (act.kind != OrvikAccessibleAct::Kind::Text) return false;
        const int found = m_items.Find(-1, act.text.c_str(), true);
        if (found < 0) return false;
        Choose(found);
        return true;
    }

private:
    bool HasEdit() const { return (Style() & 3) != CBS_DROPDOWNLIST; }
    RECT Button() const {
        RECT area = Shrunk(Client(), 2);
        area.left = std::max(area.left, area.right - BarWidth());
        return area;
    }
    RECT Field() const {
        RECT area = Shrunk(Client(), 3);
        area.right = std::max(area.left, Button().left - 1);
        return area;
    }
    // The closed box is one line high, whatever height it was made with: that counts for the list.
    void Arrange() {
        const RECT client = Client();
        const int height = LineHeight() + Scaled(8);
        if (client.bottom - client.top != height) {
            m_listHeight = client.bottom - height;
            SetWindowPos(m_window, nullptr, 0, 0, client.right - client.left, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        }
        if (m_edit == nullptr) return;
        const RECT field = Field();
        SetWindowPos(m_edit, nullptr, field.left, field.top, field.right - field.left, field.bottom - field.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }

    LRESULT FieldText(UINT message, WPARAM wParam, LPARAM lParam) {
        if (m_edit != nullptr) return SendMessageA(m_edit, message, wParam, lParam);
        if (message == WM_SETTEXT) return CB_ERR;  // a list's field shows what is selected
        const std::string text = m_items.Has(m_current) ? m_items[m_current].text : "";
        if (message == WM_GETTEXTLENGTH) return static_cast<LRESULT>(text.size());
        return static_cast<LRESULT>(CopyLetters(text, reinterpret_cast<char*>(lParam), wParam));
    }
    LRESULT EditMessage(UINT message, WPARAM wParam, LPARAM lParam) {
        if (m_edit == nullptr) return message == CB_LIMITTEXT ? TRUE : CB_ERR;
        if (message == CB_LIMITTEXT) SendMessageA(m_edit, EM_LIMITTEXT, wParam, 0);
        if (message == CB_SETEDITSEL)
            SendMessageA(m_edit, EM_SETSEL, static_cast<WPARAM>(static_cast<short>(LOWORD(lParam))),
                         static_cast<short>(HIWORD(lParam)));
        return message == CB_GETEDITSEL ? SendMessageA(m_edit, EM_GETSEL, wParam, lParam) : TRUE;
    }
    void FromEdit(int code) {
        if (code == EN_SETFOCUS || code == EN_KILLFOCUS) Invalidate();  // the frame shows who has it
        if (code == EN_SETFOCUS) Tell(CBN_SETFOCUS);
        if (code == EN_KILLFOCUS) Drop(false, true), Tell(CBN_KILLFOCUS);
        if (m_setting) return;
        if (code == EN_UPDATE) Tell(CBN_EDITUPDATE);
        if (code == EN_CHANGE) Tell(CBN_EDITCHANGE);
    }

    LRESULT Added(int index) {
        if (index >= 0 && m_current >= index) ++m_current;
        Follow();
        return index;
    }
    LRESULT Select(int index) {
        const bool valid = m_items.Has(index);
        m_current = valid ? index : -1;
        if (m_edit != nullptr) {
            m_setting = true;
            SetWindowTextA(m_edit, valid ? m_items[index].text.c_str() : "");
            SendMessageA(m_edit, EM_SETSEL, 0, -1);
            m_setting = false;
        }
        Follow();
        return valid ? index : CB_ERR;
    }
    // What is shown is what is kept, in the list as well.
    void Follow() {
        Invalidate();
        if (m_list != nullptr) SendMessageA(m_list, kComboListFollow, static_cast<WPARAM>(m_current), 0);
    }
    // As many as the height leaves that the box was made with; a box made without any has a list all the same.
    int Rows() const {
        constexpr int kUsual = 10;
        const auto rows = static_cast<int>((m_listHeight - 2) / LineHeight());
        return rows < 1 ? kUsual : rows;
    }
    // By the user: told to the parent.
    void Choose(int index) {
        if (!m_items.Has(index) || index == m_current) return;
        Select(index);
        if (!m_dropped) Tell(CBN_SELENDOK);
        Tell(CBN_SELCHANGE);
    }
    void CloseList() {
        const HWND list = std::exchange(m_list, nullptr);
        if (list == nullptr) return;
        if (GetCapture() == list) ReleaseCapture();
        DestroyWindow(list);
    }
    void Drop(bool down, bool take) {
        if (m_dropped == down) return;
        if (down) Tell(CBN_DROPDOWN);
        m_dropped = down;
        if (down) {
            m_before = m_current;
            if (IsWindowVisible(m_window)) m_list = OpenComboList({m_window, &m_items, m_font, Rows()}, m_current);
        } else {
            CloseList();
            Tell(take ? CBN_SELENDOK : CBN_SELENDCANCEL);
            if (!take) Select(m_before);
            Tell(CBN_CLOSEUP);
        }
        Invalidate();
    }

    LRESULT Key(WPARAM key) {
        const int last = m_items.Count() - 1;
        switch (key) {
            case VK_UP:
            case VK_LEFT:
                if (key == VK_UP || m_edit == nullptr) Choose(std::max(0, m_current - 1));
                return 0;
            case VK_DOWN:
            case VK_RIGHT:
                if (key == VK_DOWN || m_edit == nullptr) Choose(std::min(last, m_current + 1));
                return 0;
            case VK_HOME:
                Choose(0);
                return 0;
            case VK_END:
                Choose(last);
                return 0;
            case VK_PRIOR:
                Choose(std::max(0, m_current - 8));
                return 0;
            case VK_NEXT:
                Choose(std::min(last, m_current + 8));
                return 0;
            case VK_F4:
                Drop(!m_dropped, true);
                return 0;
            case VK_RETURN:
                Drop(false, true);
                return 0;
            case VK_ESCAPE:
                Drop(false, false);
                return 0;
            default:
                return 0;
        }
    }

    ListItems m_items;
    HWND m_edit = nullptr, m_list = nullptr;  // the list while it is open
    LONG m_listHeight = 0;
    int m_current = -1, m_before = -1;
    OrvikTypedText m_typed;
    bool m_dropped = false, m_setting = false;
};
}  // namespace

LRESULT CALLBACK ComboBoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ComboBox>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
