// The edit control, in one line or several. Lines end with "\r\n"; without ES_AUTOHSCROLL, long ones are wrapped between words.
// Positions in messages are bytes; one within a letter counts as its start. Limits and password characters count letters.
// One room for the class: its messages, keys, layout and painting share all of its state.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/letters.h"
#include "platform/posix/controls/control_internal.h"
#include "platform/posix/controls/edit_menu_internal.h"
#include "platform/posix/controls/edit_text_internal.h"
#include "platform/posix/controls/scroll_part_internal.h"
#include "platform/posix/drawing/text_places_internal.h"
#include "platform/posix/exchange/clipboard_text_internal.h"
#include "platform/posix/window/caret.h"
#include "platform/posix/text/letters_internal.h"

namespace orvik::detail {
namespace {

constexpr size_t kDefaultLimit = 30000, kGreatestLimit = 0x7FFFFFFE;

class Edit final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case WM_NCCREATE: {
                const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
                m_text.Assign(create->lpszName != nullptr ? Cased(create->lpszName) : "");
                if (Style() & ES_PASSWORD) m_password = "*";
                return TRUE;
            }
            case WM_GETDLGCODE:
                return Codes(reinterpret_cast<const MSG*>(lParam));
            case WM_SETTEXT:
                return SetText(reinterpret_cast<const char*>(lParam));
            case WM_GETTEXT:
                return static_cast<LRESULT>(CopyLetters(Value(), reinterpret_cast<char*>(lParam), wParam));
            case WM_GETTEXTLENGTH:
                return static_cast<LRESULT>(Value().size());
            case WM_SIZE:
            case WM_SETFONT: {
                const LRESULT result = Control::Handle(message, wParam, lParam);
                m_lines.clear();
                return result;
            }
            case WM_SETFOCUS:
                CreateCaret(m_window, nullptr, 1, LineHeight());
                PlaceCaret();
                Invalidate();
                Tell(EN_SETFOCUS);
                return 0;
            case WM_KILLFOCUS:
                DestroyCaret();
                Invalidate();
                Tell(EN_KILLFOCUS);
                return 0;
            case WM_CHAR:
                return Char(m_typed.Take(wParam));
            case WM_KEYDOWN:
                Key(wParam);
                if (GetKeyState(VK_SHIFT) < 0) OfferMarked();
                return 0;
            case WM_LBUTTONDOWN:
                if (!Focused()) SetFocus(m_window);
                SetCapture(m_window);
                MoveCaret(At({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}), (wParam & MK_SHIFT) != 0);
                return 0;
            case WM_LBUTTONDBLCLK:
                m_text.SelectWord(At({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}));
                OfferMarked();
                return Selected();
            case WM_MBUTTONDOWN:
                return InsertMarked({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            case WM_CONTEXTMENU:
                return ShowMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            case WM_MOUSEMOVE:
                if (GetCapture() == m_window) MoveCaret(At({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}), true);
                return 0;
            case WM_LBUTTONUP:
                if (GetCapture() != m_window) return 0;
                ReleaseCapture();
                OfferMarked();
                return 0;
            case WM_MOUSEWHEEL:
                ScrollTo(m_top - 3 * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA);
                return 0;
            case WM_CUT:
                if (!ReadOnly() && Copy()) Insert("", true);
                return 0;
            case WM_COPY:
                Copy();
                return 0;
            case WM_PASTE:
                if (!ReadOnly()) Insert(OneLine(TextToPaste(m_window)), true);
                return 0;
            case WM_CLEAR:
                if (!ReadOnly() && m_text.From() != m_text.To()) Insert("", true);
                return 0;
            default:
                return message >= EM_GETSEL && message <= EM_CHARFROMPOS ? Own(message, wParam, lParam)
                       : message == WM_UNDO                              ? Undo()
                                                                         : Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        const bool dim = !Enabled();
        const HBRUSH paper = ParentBrush(dc, dim || ReadOnly() ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT);
        if (dim) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
        FillRect(dc, &client, paper);
        PaintFrame(dc, client);
        const RECT inner = Inner();
        if (Multiline() && Style() & WS_VSCROLL) Bar().Paint(dc);
        IntersectClipRect(dc, inner.left - 1, inner.top, inner.right + 1, inner.bottom);
        const int height = LineHeight();
        const auto& lines = Lines();
        const bool marked = (Focused() || Style() & ES_NOHIDESEL) && m_text.From() != m_text.To();
        for (size_t i = static_cast<size_t>(m_top); i < lines.size(); ++i) {
            const LONG y = inner.top + static_cast<LONG>(i - static_cast<size_t>(m_top)) * height;
            if (y >= inner.bottom) break;
            PaintLine(dc, lines[i], y, height, marked);
        }
        if (Focused() && !dim) {
            const POINT at = PointOf(m_text.Caret());
            FillColour(dc, {at.x, at.y, at.x + Scaled(1), at.y + height}, GetSysColor(COLOR_WINDOWTEXT));
        }
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::Edit;
        out.name.clear();
        out.value = Value();
        out.caret = m_text.Caret();
        out.selectedFrom = m_text.From();
        out.selectedTo = m_text.To();
        out.Set(OrvikAccessible::kReadOnly, ReadOnly());
        out.Set(OrvikAccessible::kMultiLine, Multiline());
        if (m_password.empty()) return;
        // As it is seen, and no more of it.
        const auto letters = [&](size_t bytes) { return CountLetters(Value().substr(0, bytes)); };
        out.caret = letters(out.caret);
        out.selectedFrom = letters(out.selectedFrom);
        out.selectedTo = letters(out.selectedTo);
        out.value.assign(letters(Value().size()), '*');
        out.Set(OrvikAccessible::kSecret);
    }
    bool Act(const OrvikAccessibleAct& act) override {
        if (act.kind == OrvikAccessibleAct::Kind::Caret) {
            if (!m_password.empty()) return false;
            m_text.Select(act.from, act.to);
            return Selected() == 0;
        }
        if (act.kind != OrvikAccessibleAct::Kind::Text || ReadOnly()) return false;
        m_text.Select(0, Value().size());
        Insert(OneLine(act.text), true);
        return true;
    }

private:
    struct Line {
        size_t from, length, next;  // `next`: where the following line begins
    };

    const std::string& Value() const { return m_text.Text(); }
    bool Multiline() const { return (Style() & ES_MULTILINE) != 0; }
    // The field of a combo box leaves the list's keys to it.
    bool InComboBox() const {
        char name[16] = "";
        return GetClassNameA(Parent(), name, sizeof name) != 0 && lstrcmpiA(name, "ComboBox") == 0;
    }
    bool ReadOnly() const { return (Style() & ES_READONLY) != 0; }
    bool Wraps() const { return Multiline() && (Style() & (ES_AUTOHSCROLL | WS_HSCROLL)) == 0; }

    std::string Cased(std::string text) const {
        const bool upper = (Style() & ES_UPPERCASE) != 0;
        if (!upper && (Style() & ES_LOWERCASE) == 0) return text;
        std::string cased;
        for (std::string_view rest = text; !rest.empty();) {
            const char32_t character = TakeHouse(rest);
            AppendHouse(cased, upper ? UpperCase(character) : LowerCase(character));
        }
        return cased;
    }
    // What may be pasted into one line: nothing from the first line's end on.
    std::string OneLine(std::string text) const {
        if (!Multiline()) text.resize(std::min(text.find_first_of("\r\n"), text.size()));
        return text;
    }

    LRESULT Codes(const MSG* message) const {
        LRESULT codes = DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS;
        if (!Multiline()) return codes;
        // In a dialog the tab and escape keys stay the dialog's, and Enter does unless it is wanted.
        const bool dialogs = message != nullptr && message->message == WM_KEYDOWN &&
                             (message->wParam == VK_TAB || message->wParam == VK_ESCAPE ||
                              (message->wParam == VK_RETURN && (Style() & ES_WANTRETURN) == 0));
        return dialogs ? codes : codes | DLGC_WANTALLKEYS;
    }

    LRESULT SetText(const char* text) {
        m_text.Assign(Cased(text != nullptr ? text : ""));
        m_modified = false;
        m_top = 0;
        m_shift = 0;
        m_lines.clear();
        if (!Multiline()) Tell(EN_UPDATE);
        Invalidate();
        if (!Multiline()) Tell(EN_CHANGE);
        return TRUE;
    }

    LRESULT Own(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case EM_GETSEL: {
                if (auto* from = reinterpret_cast<DWORD*>(wParam)) *from = static_cast<DWORD>(m_text.From());
                if (auto* to = reinterpret_cast<DWORD*>(lParam)) *to = static_cast<DWORD>(m_text.To());
                if (m_text.To() > 0xFFFF) return -1;
                return static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(m_text.From(), m_text.To())));
            }
            case EM_SETSEL: {
                const auto from = static_cast<UINT>(wParam), to = static_cast<UINT>(lParam);
                if (from == 0xFFFFFFFFu)
                    m_text.Select(m_text.Caret(), m_text.Caret());
                else
                    m_text.Select(from, to);
                Selected();
                return 1;
            }
            case EM_GETRECT:
                if (lParam != 0) *reinterpret_cast<RECT*>(lParam) = Inner();
                return 0;
            case EM_SCROLLCARET:
                ShowCaret();
                return 1;
            case EM_GETMODIFY:
                return m_modified;
            case EM_SETMODIFY:
                m_modified = wParam != 0;
                return 0;
            case EM_GETLINECOUNT:
                return static_cast<LRESULT>(Lines().size());
            case EM_LINEINDEX: {
                const size_t line = static_cast<int>(wParam) == -1 ? LineOf(m_text.Caret()) : wParam;
                return line < Lines().size() ? static_cast<LRESULT>(Lines()[line].from) : -1;
            }
            case EM_LINELENGTH:
                return LineLength(static_cast<int>(wParam) == -1 ? std::string::npos : wParam);
            case EM_REPLACESEL:
                Insert(lParam != 0 ? reinterpret_cast<const char*>(lParam) : "", wParam != 0);
                return 1;
            case EM_GETLINE: {
                char* out = reinterpret_cast<char*>(lParam);
                const size_t index = Multiline() ? wParam : 0;
                if (out == nullptr || index >= Lines().size()) return 0;
                WORD room;
                std::memcpy(&room, out, sizeof room);
                const Line& line = Lines()[index];
                const size_t length = LetterStart(std::string_view(Value()).substr(line.from, line.length), room);
                std::memcpy(out, Value().data() + line.from, length);
                if (length < room) out[length] = 0;
                return static_cast<LRESULT>(length);
            }
            case EM_SETLIMITTEXT:
                m_limit = wParam == 0 ? kGreatestLimit : std::min<size_t>(wParam, kGreatestLimit);
                return 0;
            case EM_GETLIMITTEXT:
                return static_cast<LRESULT>(m_limit);
            case EM_CANUNDO:
                return m_text.CanUndo();
            case EM_UNDO:
                return Undo();
            case EM_LINEFROMCHAR:
                return static_cast<LRESULT>(LineOf(static_cast<int>(wParam) == -1 ? m_text.From() : wParam));
            case EM_SETPASSWORDCHAR:
                m_password = wParam != 0 ? OrvikTypedText().Take(wParam) : "";
                ChangeStyle(ES_PASSWORD, m_password.empty() ? 0 : ES_PASSWORD);
                m_lines.clear();
                Invalidate();
                return 1;
            case EM_GETPASSWORDCHAR:
                return PasswordCharacter();
            case EM_EMPTYUNDOBUFFER:
                m_text.ForgetUndo();
                return 0;
            case EM_GETFIRSTVISIBLELINE:
                return m_top;
            case EM_SETREADONLY:
                ChangeStyle(ES_READONLY, wParam != 0 ? ES_READONLY : 0);
                Invalidate();
                return 1;
            case EM_SETMARGINS:
                if (wParam & 1) m_left = LOWORD(lParam);
                if (wParam & 2) m_right = HIWORD(lParam);
                m_lines.clear();
                Invalidate();
                return 0;
            case EM_GETMARGINS:
                return static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(m_left, m_right)));
            case EM_POSFROMCHAR: {
                if (wParam > Value().size()) return -1;
                const POINT at = PointOf(wParam);
                return static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(at.x, at.y)));
            }
            case EM_CHARFROMPOS: {
                const size_t at = At({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
                return static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(at, LineOf(at))));
            }
            default:
                return 0;
        }
    }

    LRESULT LineLength(size_t at) {
        if (!Multiline()) return static_cast<LRESULT>(Value().size());
        if (at == std::string::npos) {
            // The characters that are not selected in the lines of the selection.
            const Line &first = Lines()[LineOf(m_text.From())], &last = Lines()[LineOf(m_text.To())];
            return static_cast<LRESULT>(m_text.From() - first.from + last.from + last.length - m_text.To());
        }
        return at > Value().size() ? 0 : static_cast<LRESULT>(Lines()[LineOf(at)].length);
    }

    // For an input method: the bar itself is painted with the text.
    void PlaceCaret() {
        if (!Focused()) return;
        const POINT at = PointOf(m_text.Caret());
        SetCaretPos(at.x, at.y);
    }

    LRESULT Selected() {
        ShowCaret();
        PlaceCaret();
        Invalidate();
        return 0;
    }

    // Every change by user or program comes through here; what the limit does not admit is cut, and told.
    void Insert(std::string text, bool canUndo) {
        const bool cut = CutToLimit(text);
        m_text.Replace(Cased(std::move(text)), canUndo);
        m_modified = true;
        m_lines.clear();
        if (cut) Tell(EN_MAXTEXT);
        Tell(EN_UPDATE);
        Selected();
        Tell(EN_CHANGE);
    }

    // A text has at least as many bytes as letters, so that most need not be counted.
    bool CutToLimit(std::string& text) const {
        if (Value().size() - (m_text.To() - m_text.From()) + text.size() <= m_limit) return false;
        const size_t kept = CountLetters(Value()) - CountLetters(m_text.Selected());
        size_t end = 0;
        for (size_t room = m_limit > kept ? m_limit - kept : 0; room > 0 && end < text.size(); --room)
            end = NextLetter(text, end);
        return end < text.size() ? (text.resize(end), true) : false;
    }

    LRESULT Undo() {
        if (ReadOnly()) return FALSE;
        if (!m_text.Undo()) return !Multiline();
        m_lines.clear();
        Tell(EN_UPDATE);
        Selected();
        Tell(EN_CHANGE);
        return TRUE;
    }

    bool Copy() {
        if (!m_password.empty() || m_text.From() == m_text.To()) return false;
        return CopyText(m_window, m_text.Selected());
    }

    // What its user marks can be put elsewhere by the middle button, and the other way round.
    void OfferMarked() const {
        if (m_password.empty() && m_text.From() != m_text.To()) OfferMarkedText(m_text.Selected());
    }
    LRESULT InsertMarked(POINT point) {
        const std::string marked = ReadOnly() ? "" : OneLine(MarkedText());
        if (!Focused()) SetFocus(m_window);
        if (marked.empty()) return 0;
        MoveCaret(At(point), false);
        Insert(marked, true);
        return 0;
    }

    LRESULT ShowMenu(POINT screen) {
        if (!Focused()) SetFocus(m_window);
        if (screen.x == -1 && screen.y == -1) {
            screen = PointOf(m_text.Caret());
            screen.y += LineHeight();
            ClientToScreen(m_window, &screen);
        }
        const bool marked = m_text.From() != m_text.To(), writable = !ReadOnly(), open = m_password.empty();
        EditMenu menu;
        menu.undo = writable && m_text.CanUndo();
        menu.cut = writable && marked && open;
        menu.copy = marked && open;
        menu.paste = writable && HasTextToPaste();
        menu.clear = writable && marked;
        menu.all = !Value().empty() && m_text.To() - m_text.From() != Value().size();
        const HWND window = m_window;
        const auto [message, from, to] = AskEditMenu(window, screen, menu);
        if (message != 0 && IsWindow(window)) SendMessageA(window, message, from, to);
        return 0;
    }

    // One character's bytes.
    LRESULT Char(const std::string& typed) {
        if (typed.empty()) return 0;
        const char c = typed[0];
        switch (c) {
            case '\r':
            case '\n':
                if (Multiline() && !ReadOnly() && c == '\r') Insert("\r\n", true);
                return 0;
            case 1:
                m_text.Select(0, Value().size());
                OfferMarked();
                return Selected();
            case 3:
                return Handle(WM_COPY, 0, 0);
            case '\b':
                if (ReadOnly() || GetKeyState(VK_CONTROL) < 0) return 0;
                return Erase(true);
            case 22:
                return Handle(WM_PASTE, 0, 0);
            case 24:
                return Handle(WM_CUT, 0, 0);
            case 26:
                return Undo();
            default:
                break;
        }
        const bool tab = c == '\t' && Multiline();
        if ((static_cast<unsigned char>(c) < ' ' && !tab) || c == 127 || ReadOnly()) return 0;
        if (Style() & ES_NUMBER && (c < '0' || c > '9')) return 0;
        Insert(typed, true);
        return 0;
    }

    // Takes the selection, or else the character beside the caret.
    LRESULT Erase(bool back) {
        if (m_text.From() == m_text.To()) {
            const size_t other = m_text.Next(m_text.Caret(), back, false);
            if (other == m_text.Caret()) return 0;
            m_text.Select(m_text.Caret(), other);
        }
        Insert("", true);
        return 0;
    }

    void MoveCaret(size_t to, bool extend) {
        m_text.Select(extend ? m_text.Anchor() : to, to);
        Selected();
    }

    LRESULT Key(WPARAM key) {
        const bool shift = GetKeyState(VK_SHIFT) < 0, control = GetKeyState(VK_CONTROL) < 0;
        const size_t caret = m_text.Caret();
        switch (key) {
            case VK_LEFT:
            case VK_RIGHT: {
                const bool back = key == VK_LEFT;
                // Without shift a selection falls together at its end on that side.
                if (!shift && !control && m_text.From() != m_text.To())
                    MoveCaret(back ? m_text.From() : m_text.To(), false);
                else
                    MoveCaret(m_text.Next(caret, back, control), shift);
                return 0;
            }
            case VK_F4:
                if (InComboBox()) SendMessageA(Parent(), WM_KEYDOWN, key, 1);
                return 0;
            case VK_UP:
            case VK_DOWN:
                if (InComboBox())
                    SendMessageA(Parent(), WM_KEYDOWN, key, 1);
                else if (Multiline())
                    MoveLines(key == VK_UP ? -1 : 1, shift);
                else
                    MoveCaret(m_text.Next(caret, key == VK_UP, false), shift);
                return 0;
            case VK_PRIOR:
            case VK_NEXT:
                if (Multiline()) MoveLines(key == VK_PRIOR ? -Page() : Page(), shift);
                return 0;
            case VK_HOME:
                MoveCaret(control ? 0 : Lines()[LineOf(caret)].from, shift);
                return 0;
            case VK_END: {
                const Line& line = Lines()[LineOf(caret)];
                MoveCaret(control ? Value().size() : line.from + line.length, shift);
                return 0;
            }
            case VK_DELETE:
                if (ReadOnly()) return 0;
                return shift && !control ? Handle(WM_CUT, 0, 0) : Erase(false);
            case VK_INSERT:
                if (shift) return Handle(WM_PASTE, 0, 0);
                return control ? Handle(WM_COPY, 0, 0) : 0;
            default:
                return 0;
        }
    }

    void MoveLines(int by, bool extend) {
        const POINT at = PointOf(m_text.Caret());
        const auto last = static_cast<int>(Lines().size()) - 1;
        const int line = std::min(std::max(static_cast<int>(LineOf(m_text.Caret())) + by, 0), last);
        MoveCaret(InLine(static_cast<size_t>(line), at.x), extend);
    }

    // ---- Where characters are.
    RECT Inner() const {
        RECT inner = Shrunk(Client(), ExStyle() & WS_EX_CLIENTEDGE ? 3 : Bordered() ? 3 : 1);
        inner.left += m_left + Scaled(1);
        inner.right -= m_right + Scaled(1);
        if (Multiline() && Style() & WS_VSCROLL) inner.right -= BarWidth();
        return inner;
    }
    int Page() const {
        const RECT inner = Inner();
        return std::max(1, static_cast<int>(inner.bottom - inner.top) / LineHeight());
    }
    ScrollPart Bar() {
        ScrollPart bar;
        const RECT area = Shrunk(Client(), FrameWidth());
        bar.place = {area.right - BarWidth(), area.top, area.right, area.bottom};
        bar.most = static_cast<int>(Lines().size()) - 1;
        bar.page = Page();
        bar.position = m_top;
        return bar;
    }

    // The text as it is to be seen.
    std::string Shown(const Line& line) const {
        const std::string text = Value().substr(line.from, line.length);
        if (m_password.empty()) return text;
        std::string hidden;
        for (size_t letters = CountLetters(text); letters > 0; --letters) hidden += m_password;
        return hidden;
    }
    // From a place in the text to one in what is shown of its line, and back.
    size_t ShownAt(const Line& line, size_t at) const {
        at = std::min(std::max(at, line.from), line.from + line.length) - line.from;
        return m_password.empty() ? at : CountLetters(Value().substr(line.from, at)) * m_password.size();
    }
    size_t TextAt(const Line& line, size_t shown) const {
        if (m_password.empty()) return line.from + shown;
        size_t at = 0;
        const std::string text = Value().substr(line.from, line.length);
        for (size_t letters = shown / m_password.size(); letters > 0; --letters) at = NextLetter(text, at);
        return line.from + at;
    }
    LRESULT PasswordCharacter() const {
        std::string_view text = m_password;
        return text.empty() ? 0 : HouseIsUtf8() ? static_cast<LRESULT>(TakeHouse(text)) : static_cast<unsigned char>(text[0]);
    }

    const std::vector<Line>& Lines() {
        if (!m_lines.empty()) return m_lines;
        if (!Multiline()) {
            m_lines.push_back({0, Value().size(), Value().size()});
            return m_lines;
        }
        const MeasuringDc dc(m_window, m_font);
        const RECT inner = Inner();
        const int width = std::max<int>(1, inner.right - inner.left);
        for (size_t from = 0;;) {
            const size_t end = std::min(Value().find("\r\n", from), Value().size());
            Wrap(dc, width, from, end);
            if (end == Value().size()) break;
            m_lines.back().next = from = end + 2;
        }
        return m_lines;
    }

    // Adds the lines of one paragraph.
    void Wrap(const MeasuringDc& dc, int width, size_t from, size_t end) {
        while (Wraps() && from < end) {
            int fit = 0;
            SIZE size{};
            GetTextExtentExPointA(dc, Value().data() + from, static_cast<int>(end - from), width, &fit, nullptr, &size);
            const size_t fits =
                std::max(static_cast<size_t>(fit), NextLetter(std::string_view(Value()).substr(from, end - from), 0));
            if (from + fits >= end) break;
            // Back to a blank, if the line has one.
            const size_t blank = Value().rfind(' ', from + fits);
            const size_t to = blank == std::string::npos || blank < from ? from + fits : std::min(blank + 1, end);
            m_lines.push_back({from, to - from, to});
            from = to;
        }
        m_lines.push_back({from, end - from, end});
    }

    size_t LineOf(size_t at) {
        const auto& lines = Lines();
        const auto after =
            std::upper_bound(lines.begin(), lines.end(), at, [](size_t a, const Line& line) { return a < line.from; });
        return static_cast<size_t>(after - lines.begin()) - 1;
    }

    int StartOf(const Line& line, int width) const {
        const RECT inner = Inner();
        const int room = inner.right - inner.left - width;
        if (Style() & ES_CENTER) return inner.left + std::max(0, room / 2) - m_shift;
        if (Style() & ES_RIGHT) return inner.left + std::max(0, room) - m_shift;
        static_cast<void>(line);
        return inner.left - m_shift;
    }

    POINT PointOf(size_t at) {
        const size_t index = LineOf(at);
        const Line line = Lines()[index];
        const std::string shown = Shown(line);
        const MeasuringDc dc(m_window, m_font);
        const int x = StartOf(line, dc.Width(shown.data(), shown.size())) + LetterX(dc, shown, ShownAt(line, at));
        return {x, Inner().top + (static_cast<int>(index) - m_top) * LineHeight()};
    }

    size_t InLine(size_t index, int x) {
        const Line line = Lines()[index];
        const std::string shown = Shown(line);
        const MeasuringDc dc(m_window, m_font);
        return TextAt(line, LetterAtX(dc, shown, x - StartOf(line, dc.Width(shown.data(), shown.size()))));
    }

    size_t At(POINT point) {
        int line = 0;
        if (Multiline()) line = m_top + (point.y - Inner().top) / LineHeight();
        line = std::min(std::max(line, 0), static_cast<int>(Lines().size()) - 1);
        return InLine(static_cast<size_t>(line), point.x);
    }

    void ScrollTo(int top) {
        top = std::max(0, std::min(top, static_cast<int>(Lines().size()) - Page()));
        if (std::exchange(m_top, top) != top) Invalidate();
    }

    void ShowCaret() {
        const auto line = static_cast<int>(LineOf(m_text.Caret()));
        if (line < m_top)
            ScrollTo(line);
        else if (line >= m_top + Page())
            ScrollTo(line - Page() + 1);
        if (Wraps()) return;
        const RECT inner = Inner();
        const int x = PointOf(m_text.Caret()).x, room = std::max<int>(1, inner.right - inner.left);
        if (x > inner.right) m_shift += x - inner.right + room / 4;
        if (x < inner.left) m_shift = std::max(0, m_shift - (inner.left - x) - room / 4);
    }

    void PaintLine(HDC dc, const Line& line, LONG y, int height, bool marked) const {
        const std::string shown = Shown(line);
        SIZE size{};
        GetTextExtentPoint32A(dc, shown.data(), static_cast<int>(shown.size()), &size);
        const int x = StartOf(line, size.cx);
        TextOutA(dc, x, y, shown.data(), static_cast<int>(shown.size()));
        if (!marked) return;
        const COLORREF ink = SetTextColor(dc, GetSysColor(COLOR_HIGHLIGHTTEXT));
        for (const TextSpan& span : LetterSpans(dc, shown, ShownAt(line, m_text.From()), ShownAt(line, m_text.To()))) {
            const RECT part{x + span.left, y, x + span.right, y + height};
            FillColour(dc, part, GetSysColor(COLOR_HIGHLIGHT));
            const int state = SaveDC(dc);
            IntersectClipRect(dc, part.left, part.top, part.right, part.bottom);
            TextOutA(dc, x, y, shown.data(), static_cast<int>(shown.size()));
            RestoreDC(dc, state);
        }
        SetTextColor(dc, ink);
    }

    EditText m_text;
    std::vector<Line> m_lines;  // as laid out; empty when that is to be done anew
    size_t m_limit = kDefaultLimit;
    bool m_modified = false;
    std::string m_password;  // what each letter is shown as; empty: itself
    OrvikTypedText m_typed;
    int m_left = 0, m_right = 0;  // margins
    int m_top = 0;                // the first line to be seen
    int m_shift = 0;              // pixels that are scrolled off at the left
};
}  // namespace

LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<Edit>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
