// The button control: push buttons, check boxes, radio buttons and group boxes.
#include <algorithm>

#include "platform/posix/controls/control_internal.h"
#include "platform/posix/controls/flat_looks_internal.h"

namespace orvik::detail {
namespace {
class Button final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case WM_CREATE:
                if (Kind() == BS_USERBUTTON) ChangeStyle(BS_TYPEMASK, BS_PUSHBUTTON);
                return Control::Handle(message, wParam, lParam);
            case WM_GETDLGCODE:
                return Codes();
            case WM_NCHITTEST:
                return Kind() == BS_GROUPBOX ? HTTRANSPARENT : HTCLIENT;
            case BM_GETCHECK:
                return m_state & 3;
            case BM_SETCHECK:
                Check(static_cast<int>(wParam));
                return 0;
            case BM_GETSTATE:
                return m_state;
            case BM_SETSTATE:
                Set(BST_PUSHED, wParam != 0);
                return 0;
            case BM_SETSTYLE:
                ChangeStyle(BS_TYPEMASK, static_cast<DWORD>(wParam) & BS_TYPEMASK);
                Invalidate();
                return 0;
            case BM_CLICK:
                SendMessageA(m_window, WM_LBUTTONDOWN, 0, 0);
                SendMessageA(m_window, WM_LBUTTONUP, 0, 0);
                return 0;
            case WM_LBUTTONDOWN:
                SetCapture(m_window);
                if (!Focused()) SetFocus(m_window);
                m_mouse = true;
                Set(BST_PUSHED, true);
                return 0;
            case WM_LBUTTONDBLCLK:
                if (Style() & BS_NOTIFY || Kind() == BS_RADIOBUTTON || Kind() == BS_OWNERDRAW) {
                    Tell(BN_DOUBLECLICKED);
                    return 0;
                }
                return Handle(WM_LBUTTONDOWN, wParam, lParam);
            case WM_MOUSEMOVE:
                if (m_mouse) Set(BST_PUSHED, Hit(lParam));
                return 0;
            case WM_LBUTTONUP:
                Release(Hit(lParam));
                return 0;
            case WM_CAPTURECHANGED:
                if (m_mouse) {
                    m_mouse = false;
                    Set(BST_PUSHED, false);
                }
                return 0;
            case WM_KEYDOWN:
                if (wParam != VK_SPACE) break;
                m_mouse = true;
                SetCapture(m_window);
                Set(BST_PUSHED, true);
                return 0;
            case WM_KEYUP:
                if (wParam != VK_SPACE) break;
                Release(true);
                return 0;
            case WM_CHAR:
                if (Kind() != BS_CHECKBOX && Kind() != BS_AUTOCHECKBOX) break;
                if (wParam == '+' || wParam == '=') Check(BST_CHECKED);
                if (wParam == '-') Check(BST_UNCHECKED);
                return 0;
            case WM_SETFOCUS:
                Set(BST_FOCUS, true);
                if (Style() & BS_NOTIFY) Tell(BN_SETFOCUS);
                // A radio button that is reached by the keyboard is chosen.
                if (IsRadio() && !m_mouse && GetCapture() != m_window && (m_state & 3) == 0) Click();
                return 0;
            case WM_KILLFOCUS:
                Set(BST_FOCUS, false);
                if (m_mouse) {
                    m_mouse = false;
                    Set(BST_PUSHED, false);
                    if (GetCapture() == m_window) ReleaseCapture();
                }
                if (Style() & BS_NOTIFY) Tell(BN_KILLFOCUS);
                return 0;
            default:
                break;
        }
        return Control::Handle(message, wParam, lParam);
    }

protected:
    bool ShowsHot() const override { return Enabled(); }
    void Paint(HDC dc, const RECT& client) override {
        if (Kind() == BS_GROUPBOX) return PaintGroup(dc, client);
        if (Kind() == BS_OWNERDRAW) return;
        const bool push = !IsCheck() && !IsRadio();
        if (push || Style() & BS_PUSHLIKE) return PaintPush(dc, client);
        PaintCheck(dc, client);
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = Kind() == BS_GROUPBOX ? OrvikRole::Group
                   : IsCheck()           ? OrvikRole::CheckBox
                   : IsRadio()           ? OrvikRole::RadioButton
                                         : OrvikRole::Button;
        out.Set(OrvikAccessible::kPressable, Kind() != BS_GROUPBOX);
        out.Set(OrvikAccessible::kChecked, (m_state & 3) == BST_CHECKED);
        out.Set(OrvikAccessible::kMixed, (m_state & 3) == BST_INDETERMINATE);
        out.Set(OrvikAccessible::kDefault, Kind() == BS_DEFPUSHBUTTON);
    }
    // Later, as it may open a dialog and stay in it.
    bool Act(const OrvikAccessibleAct& act) override {
        return act.kind == OrvikAccessibleAct::Kind::Press && PostMessageA(m_window, BM_CLICK, 0, 0);
    }

private:
    DWORD Kind() const { return Style() & BS_TYPEMASK; }
    bool IsRadio() const { return Kind() == BS_RADIOBUTTON || Kind() == BS_AUTORADIOBUTTON; }
    bool IsCheck() const {
        const DWORD kind = Kind();
        return kind == BS_CHECKBOX || kind == BS_AUTOCHECKBOX || kind == BS_3STATE || kind == BS_AUTO3STATE;
    }

    LRESULT Codes() const {
        switch (Kind()) {
            case BS_PUSHBUTTON:
                return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
            case BS_DEFPUSHBUTTON:
                return DLGC_BUTTON | DLGC_DEFPUSHBUTTON;
            case BS_GROUPBOX:
                return DLGC_STATIC;
            case BS_RADIOBUTTON:
            case BS_AUTORADIOBUTTON:
                return DLGC_BUTTON | DLGC_RADIOBUTTON;
            default:
                return DLGC_BUTTON;
        }
    }

    void Set(LRESULT bit, bool on) {
        const LRESULT before = m_state;
        m_state = on ? m_state | bit : m_state & ~bit;
        if (m_state != before) Invalidate();
    }

    // A radio button is a tab stop while it is the chosen one.
    void Check(int check) {
        const DWORD kind = Kind();
        if (!IsCheck() && !IsRadio()) return;
        const int most = kind == BS_3STATE || kind == BS_AUTO3STATE ? BST_INDETERMINATE : BST_CHECKED;
        check = std::min(std::max(check, 0), most);
        if ((m_state & 3) != check) {
            m_state = (m_state & ~3) | check;
            Invalidate();
        }
        if (IsRadio()) ChangeStyle(WS_TABSTOP, check != 0 ? WS_TABSTOP : 0);
    }

    bool Hit(LPARAM at) const {
        const RECT client = Client();
        const int x = GET_X_LPARAM(at), y = GET_Y_LPARAM(at);
        return x >= client.left && x < client.right && y >= client.top && y < client.bottom;
    }

    void Release(bool inside) {
        const bool pressed = m_mouse && (m_state & BST_PUSHED) != 0;
        m_mouse = false;
        Set(BST_PUSHED, false);
        if (GetCapture() == m_window) ReleaseCapture();
        if (pressed && inside) Click();
    }

    void Click() {
        switch (Kind()) {
            case BS_AUTOCHECKBOX:
                Check((m_state & 3) == 0);
                break;
            case BS_AUTO3STATE:
                Check((static_cast<int>(m_state & 3) + 1) % 3);
                break;
            case BS_AUTORADIOBUTTON:
                ChooseInGroup();
                break;
            default:
                break;
        }
        Tell(BN_CLICKED);
    }

    // This one on, the other automatic radio buttons of its group off.
    void ChooseInGroup() {
        // A group reaches from a sibling that begins one to the next such sibling.
        const auto style = [](HWND window) { return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)); };
        HWND first = m_window;
        while (!(style(first) & WS_GROUP) && GetWindow(first, GW_HWNDPREV) != nullptr) first = GetWindow(first, GW_HWNDPREV);
        for (HWND each = first; each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
            if (each != first && style(each) & WS_GROUP) break;
            if (each != m_window && (style(each) & BS_TYPEMASK) == BS_AUTORADIOBUTTON &&
                SendMessageA(each, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON)
                SendMessageA(each, BM_SETCHECK, BST_UNCHECKED, 0);
        }
        Check(BST_CHECKED);
    }

    FlatState Look() const {
        FlatState look;
        look.enabled = Enabled();
        look.hot = Hot();
        look.pressed = (m_state & BST_PUSHED) != 0;
        look.on = (m_state & 3) != 0;
        look.third = (m_state & 3) == BST_INDETERMINATE;
        return look;
    }

    void PaintPush(HDC dc, const RECT& client) {
        FillRect(dc, &client, ParentBrush(dc, WM_CTLCOLORBTN));
        FlatState look = Look();
        look.main = Kind() == BS_DEFPUSHBUTTON;
        look.focused = Focused();
        PaintButtonFace(dc, client, look, Dpi());
        SetTextColor(dc, ButtonInk(look));
        PaintText(dc, Shrunk(client, Scaled(3)), DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }

    void PaintCheck(HDC dc, const RECT& client) {
        const HBRUSH background = ParentBrush(dc, WM_CTLCOLORSTATIC);
        FillRect(dc, &client, background);
        const int size = std::min<int>(Scaled(14), client.bottom - client.top), gap = Scaled(5);
        RECT box{client.left, client.top + (client.bottom - client.top - size) / 2, client.left + size, 0};
        box.bottom = box.top + size;
        RECT label{box.right + gap, client.top, client.right, client.bottom};
        if (Style() & BS_LEFTTEXT) {
            OffsetRect(&box, client.right - size - client.left, 0);
            label = {client.left, client.top, box.left - gap, client.bottom};
        }
        IsRadio() ? PaintRadioButton(dc, box, Look(), Dpi()) : PaintCheckBox(dc, box, Look(), Dpi());
        if (!Enabled()) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
        PaintText(dc, label, Style() & BS_MULTILINE ? DT_WORDBREAK : DT_VCENTER | DT_SINGLELINE);
        if (!Focused()) return;
        const SIZE extent = Measure(Text());
        const LONG top = std::max(client.top, label.top + (label.bottom - label.top - extent.cy) / 2 - Scaled(2));
        PaintFocusRing(
            dc,
            {std::max(client.left, label.left - Scaled(3)), top, std::min<LONG>(label.left + extent.cx + Scaled(3), client.right),
             std::min<LONG>(top + extent.cy + Scaled(4), client.bottom)},
            Dpi());
    }

    void PaintGroup(HDC dc, const RECT& client) {
        const HBRUSH background = ParentBrush(dc, WM_CTLCOLORSTATIC);
        const std::string text = Text();
        const SIZE extent = Measure(text.empty() ? "X" : text);
        FrameColour(dc, {client.left, client.top + extent.cy / 2, client.right, client.bottom}, GetSysColor(COLOR_BTNSHADOW));
        if (text.empty()) return;
        RECT label{client.left + Scaled(8), client.top,
                   std::min<LONG>(client.left + Scaled(10) + extent.cx, client.right - Scaled(8)), client.top + extent.cy};
        FillRect(dc, &label, background);
        label.left += Scaled(1);
        if (!Enabled()) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
        PaintText(dc, label, DT_SINGLELINE);
    }

    void PaintText(HDC dc, RECT area, UINT format) const {
        const std::string text = Text();
        DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &area, format);
    }

    LRESULT m_state = 0;   // BST_ bits
    bool m_mouse = false;  // held down, by mouse or space bar
};
}  // namespace

LRESULT CALLBACK ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<Button>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
