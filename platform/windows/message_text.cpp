#include "platform/windows/message_text_internal.h"

#include <algorithm>
#include <cstring>

namespace orvik::detail {
namespace {
// The same way in both directions: arguments are of Outer characters, and who comes next takes Inner ones.
std::wstring Converted(std::string_view text, wchar_t) { return WideText(text); }
std::string Converted(std::wstring_view text, char) { return NarrowText(text); }
std::wstring_view Cut(std::wstring_view text, size_t size) { return text.substr(0, size); }
std::string_view Cut(std::string_view text, size_t size) { return CutText(text, size); }

// Texts of items exist where the list keeps them; else the parameter is the owner's data.
bool KeepsTexts(HWND list, DWORD drawnByOwner, DWORD keepsTexts) {
    const auto style = static_cast<DWORD>(GetWindowLongW(list, GWL_STYLE));
    return (style & drawnByOwner) == 0 || (style & keepsTexts) != 0;
}
bool ListKeepsTexts(HWND list) { return KeepsTexts(list, LBS_OWNERDRAWFIXED | LBS_OWNERDRAWVARIABLE, LBS_HASSTRINGS); }
bool ComboKeepsTexts(HWND list) { return KeepsTexts(list, CBS_OWNERDRAWFIXED | CBS_OWNERDRAWVARIABLE, CBS_HASSTRINGS); }

bool IsNumber(const void* text) { return IS_INTRESOURCE(text); }

template <class Outer, class Inner>
class Passing {
public:
    Passing(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way)
        : m_message(message), m_wParam(wParam), m_lParam(lParam), m_way(way) {}

    LRESULT Text() const {
        const auto* const given = reinterpret_cast<const Outer*>(m_lParam);
        if (given == nullptr) return m_way(m_message, m_wParam, m_lParam);
        const std::basic_string<Inner> text = Converted(given, Inner());
        return m_way(m_message, m_wParam, reinterpret_cast<LPARAM>(text.c_str()));
    }

    // WM_GETTEXT, WM_GETTEXTLENGTH
    LRESULT WindowText() const {
        const std::basic_string<Outer> text = Converted(Whole(), Outer());
        if (m_message == WM_GETTEXTLENGTH) return static_cast<LRESULT>(text.size());
        auto* const out = reinterpret_cast<Outer*>(m_lParam);
        if (out == nullptr || m_wParam == 0) return 0;
        const auto taken = Cut(text, m_wParam - 1);
        std::copy(taken.begin(), taken.end(), out);
        out[taken.size()] = 0;
        return static_cast<LRESULT>(taken.size());
    }

    // The text of a list's item, or its length.
    LRESULT ItemText(UINT get, UINT getLength) const {
        const LRESULT length = m_way(getLength, m_wParam, 0);
        if (length < 0) return length;
        std::basic_string<Inner> item(static_cast<size_t>(length), Inner());
        const LRESULT got = m_way(get, m_wParam, reinterpret_cast<LPARAM>(item.data()));
        if (got < 0) return LB_ERR;
        item.resize(std::min(item.size(), static_cast<size_t>(got)));
        const std::basic_string<Outer> text = Converted(item, Outer());
        if (m_message == get) std::copy_n(text.c_str(), text.size() + 1, reinterpret_cast<Outer*>(m_lParam));
        return static_cast<LRESULT>(text.size());
    }

    // WM_NCCREATE, WM_CREATE
    template <class OuterRecord, class InnerRecord>
    LRESULT Creation() const {
        const auto& given = *reinterpret_cast<const OuterRecord*>(m_lParam);
        InnerRecord record;
        static_assert(sizeof record == sizeof given);
        std::memcpy(&record, &given, sizeof record);
        std::basic_string<Inner> name, kind;
        if (!IsNumber(given.lpszName)) record.lpszName = (name = Converted(given.lpszName, Inner())).c_str();
        if (!IsNumber(given.lpszClass)) record.lpszClass = (kind = Converted(given.lpszClass, Inner())).c_str();
        return m_way(m_message, m_wParam, reinterpret_cast<LPARAM>(&record));
    }

private:
    std::basic_string<Inner> Whole() const {
        std::basic_string<Inner> text(static_cast<size_t>(std::max<LRESULT>(m_way(WM_GETTEXTLENGTH, 0, 0), 0)), Inner());
        text.resize(static_cast<size_t>(m_way(WM_GETTEXT, text.size() + 1, reinterpret_cast<LPARAM>(text.data()))));
        return text;
    }

    UINT m_message;
    WPARAM m_wParam;
    LPARAM m_lParam;
    MessageWay m_way;
};

// False where the message has no text of this kind.
template <class Outer, class Inner, class OuterRecord, class InnerRecord>
bool Pass(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    const Passing<Outer, Inner> passing(message, wParam, lParam, way);
    switch (message) {
        case WM_SETTEXT:
        case WM_SETTINGCHANGE:
        case WM_DEVMODECHANGE:
        case EM_REPLACESEL:
            answer = passing.Text();
            return true;
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
            answer = passing.WindowText();
            return true;
        case WM_NCCREATE:
        case WM_CREATE:
            if (lParam == 0) return false;
            answer = passing.template Creation<OuterRecord, InnerRecord>();
            return true;
        case LB_ADDSTRING:
        case LB_INSERTSTRING:
        case LB_FINDSTRING:
        case LB_FINDSTRINGEXACT:
        case LB_SELECTSTRING:
            if (!ListKeepsTexts(window)) return false;
            answer = passing.Text();
            return true;
        case LB_GETTEXT:
        case LB_GETTEXTLEN:
            if (!ListKeepsTexts(window)) return false;
            answer = passing.ItemText(LB_GETTEXT, LB_GETTEXTLEN);
            return true;
        case CB_ADDSTRING:
        case CB_INSERTSTRING:
        case CB_FINDSTRING:
        case CB_FINDSTRINGEXACT:
        case CB_SELECTSTRING:
            if (!ComboKeepsTexts(window)) return false;
            answer = passing.Text();
            return true;
        case CB_GETLBTEXT:
        case CB_GETLBTEXTLEN:
            if (!ComboKeepsTexts(window)) return false;
            answer = passing.ItemText(CB_GETLBTEXT, CB_GETLBTEXTLEN);
            return true;
        default:
            return false;
    }
}

bool IsOfFields(UINT message) { return message >= EM_GETSEL && message <= EM_CHARFROMPOS; }
}  // namespace

LRESULT ToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way) {
    LRESULT answer = 0;
    if (message == WM_NOTIFY && NoticeToWide(wParam, lParam, way, answer)) return answer;
    if (message >= WM_USER)
        return ListToWide(window, message, wParam, lParam, way, answer) ||
                       ToolTipToWide(window, message, wParam, lParam, way, answer)
                   ? answer
                   : way(message, wParam, lParam);
    if (IsOfFields(message) && IsField(window)) {
        if (message == EM_SETLIMITTEXT) LimitField(window);
        if (FieldToWide(message, wParam, lParam, way, answer)) return answer;
    }
    if (Pass<char, wchar_t, CREATESTRUCTA, CREATESTRUCTW>(window, message, wParam, lParam, way, answer)) return answer;
    return way(message, wParam, lParam);
}

LRESULT ToNarrow(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way) {
    LRESULT answer = 0;
    const bool notice = message == WM_NOTIFY;
    if (notice && (NoticeToNarrow(wParam, lParam, way, answer) || ToolTipNoticeToNarrow(wParam, lParam, way, answer)))
        return answer;
    if (message >= WM_USER) return way(message, wParam, lParam);
    if (IsOfFields(message) && IsField(window) && FieldToNarrow(message, wParam, lParam, way, answer)) return answer;
    if (Pass<wchar_t, char, CREATESTRUCTW, CREATESTRUCTA>(window, message, wParam, lParam, way, answer)) return answer;
    return way(message, wParam, lParam);
}
}  // namespace orvik::detail
