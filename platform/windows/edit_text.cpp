// Positions, lengths and limits of fields (edit controls). The system counts UTF-16 units; this house counts bytes, and in limits
// letters (platform/letters.h).
#include <algorithm>
#include <cstring>

#include "platform/letters.h"
#include "platform/windows/message_text_internal.h"

namespace orvik::detail {
namespace {
size_t UnitsAt(std::wstring_view text, size_t bytes) { return CutText(text, bytes).size(); }
size_t BytesAt(std::wstring_view text, size_t units) { return NarrowLength(text.substr(0, units)); }

// A field's text and positions, whoever answers for it. Outer positions are those of the sender, inner ones those of the way.
class Field {
public:
    Field(MessageWay way, bool wideWay) : m_way(way), m_wideWay(wideWay) {
        if (wideWay) {
            m_text.resize(Length());
            m_text.resize(static_cast<size_t>(m_way(WM_GETTEXT, m_text.size() + 1, reinterpret_cast<LPARAM>(m_text.data()))));
        } else {
            std::string text(Length(), '\0');
            text.resize(static_cast<size_t>(m_way(WM_GETTEXT, text.size() + 1, reinterpret_cast<LPARAM>(text.data()))));
            m_text = WideText(text);
        }
    }
    size_t Inner(size_t outer) const { return m_wideWay ? UnitsAt(m_text, outer) : BytesAt(m_text, outer); }
    size_t Outer(size_t inner) const { return m_wideWay ? BytesAt(m_text, inner) : UnitsAt(m_text, inner); }
    // A number that may be -1, for the selection, the end or the current line.
    WPARAM InnerOrMark(WPARAM outer) const {
        return static_cast<INT>(outer) < 0 ? outer : static_cast<WPARAM>(Inner(static_cast<size_t>(static_cast<INT>(outer))));
    }

    LRESULT GetSelection(WPARAM start, LPARAM end) const {
        DWORD from = 0, to = 0;
        m_way(EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        from = static_cast<DWORD>(Outer(from)), to = static_cast<DWORD>(Outer(to));
        if (start != 0) *reinterpret_cast<DWORD*>(start) = from;
        if (end != 0) *reinterpret_cast<DWORD*>(end) = to;
        return from > 0xFFFF || to > 0xFFFF ? -1 : MAKELRESULT(from, to);
    }
    LRESULT LineLength(WPARAM position) const {
        if (static_cast<INT>(position) >= 0) {
            const WPARAM inside = Inner(position);
            const auto start = static_cast<size_t>(m_way(EM_LINEINDEX, LineOf(inside), 0));
            return Between(start, start + LengthAt(inside));
        }
        // What is not selected of the lines that the selection touches.
        DWORD from = 0, to = 0;
        m_way(EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        const auto first = static_cast<size_t>(m_way(EM_LINEINDEX, LineOf(from), 0));
        const auto last = static_cast<size_t>(m_way(EM_LINEINDEX, LineOf(to), 0));
        return Between(first, from) + Between(to, last + LengthAt(to));
    }
    LRESULT CharacterAt(LPARAM point) const {
        const LRESULT found = m_way(EM_CHARFROMPOS, 0, point);
        return found == -1 ? found : MAKELRESULT(Outer(LOWORD(found)), HIWORD(found));
    }

private:
    size_t Length() const { return static_cast<size_t>(std::max<LRESULT>(m_way(WM_GETTEXTLENGTH, 0, 0), 0)); }
    WPARAM LineOf(WPARAM inner) const { return static_cast<WPARAM>(m_way(EM_LINEFROMCHAR, inner, 0)); }
    size_t LengthAt(WPARAM inner) const { return static_cast<size_t>(m_way(EM_LINELENGTH, inner, 0)); }
    LRESULT Between(size_t from, size_t to) const { return static_cast<LRESULT>(Outer(to)) - static_cast<LRESULT>(Outer(from)); }

    MessageWay m_way;
    bool m_wideWay;
    std::wstring m_text;
};

bool Positions(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, bool wideWay, LRESULT& answer) {
    switch (message) {
        case EM_GETSEL:
            answer = Field(way, wideWay).GetSelection(wParam, lParam);
            return true;
        case EM_SETSEL: {
            const Field field(way, wideWay);
            answer = way(message, field.InnerOrMark(wParam), static_cast<LPARAM>(field.InnerOrMark(static_cast<WPARAM>(lParam))));
            return true;
        }
        case EM_LINEINDEX: {
            const LRESULT inner = way(message, wParam, lParam);
            answer = inner < 0 ? inner : static_cast<LRESULT>(Field(way, wideWay).Outer(static_cast<size_t>(inner)));
            return true;
        }
        case EM_LINEFROMCHAR:
        case EM_POSFROMCHAR:
            answer = way(message, Field(way, wideWay).InnerOrMark(wParam), lParam);
            return true;
        case EM_LINELENGTH:
            answer = Field(way, wideWay).LineLength(wParam);
            return true;
        case EM_CHARFROMPOS:
            answer = Field(way, wideWay).CharacterAt(lParam);
            return true;
        default:
            return false;
    }
}

// The line that wParam numbers, into a buffer whose size stands in its first two bytes; without a final 0 where it fills that.
std::wstring LineOfWide(WPARAM line, MessageWay way) {
    const auto start = static_cast<WPARAM>(way(EM_LINEINDEX, line, 0));
    if (static_cast<LRESULT>(start) < 0) return {};
    const auto length = static_cast<size_t>(way(EM_LINELENGTH, start, 0));
    std::wstring text(std::max<size_t>(length, 2), L'\0');
    text[0] = static_cast<wchar_t>(std::min<size_t>(text.size(), 0xFFFF));
    text.resize(static_cast<size_t>(way(EM_GETLINE, line, reinterpret_cast<LPARAM>(text.data()))));
    return text;
}
std::string LineOfNarrow(WPARAM line, MessageWay way) {
    const auto start = static_cast<WPARAM>(way(EM_LINEINDEX, line, 0));
    if (static_cast<LRESULT>(start) < 0) return {};
    const auto length = static_cast<size_t>(way(EM_LINELENGTH, start, 0));
    std::string text(std::max<size_t>(length, sizeof(WORD)), '\0');
    const auto room = static_cast<WORD>(std::min<size_t>(text.size(), 0xFFFF));
    std::memcpy(text.data(), &room, sizeof room);
    text.resize(static_cast<size_t>(way(EM_GETLINE, line, reinterpret_cast<LPARAM>(text.data()))));
    return text;
}
template <class Character>
LRESULT PutLine(std::basic_string_view<Character> line, size_t room, LPARAM out) {
    auto* const buffer = reinterpret_cast<Character*>(out);
    std::copy(line.begin(), line.end(), buffer);
    if (line.size() < room) buffer[line.size()] = 0;
    return static_cast<LRESULT>(line.size());
}
size_t RoomOf(LPARAM buffer) {
    WORD room = 0;
    std::memcpy(&room, reinterpret_cast<const void*>(buffer), sizeof room);
    return room;
}

constexpr wchar_t kLimit[] = L"OrvikTextLimit", kBefore[] = L"OrvikTextLimitBefore";
constexpr WPARAM kMostUnits = 0x7FFFFFFE;  // what the system allows

size_t CountLetters(std::wstring_view text) {
    const std::string narrow = NarrowText(text);
    size_t count = 0;
    for (size_t at = 0; at < narrow.size(); at = OrvikNextLetter(narrow, at)) ++count;
    return count;
}
// How many units the first letters have.
size_t UnitsOfLetters(std::wstring_view text, size_t letters) {
    const std::string narrow = NarrowText(text);
    size_t end = 0;
    for (; letters > 0 && end < narrow.size(); --letters) end = OrvikNextLetter(narrow, end);
    return WideText(std::string_view(narrow).substr(0, end)).size();
}

std::wstring ClipboardText(HWND window) {
    if (!OpenClipboard(window)) return {};
    std::wstring text;
    if (const HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
        if (const auto* const from = static_cast<const wchar_t*>(GlobalLock(data))) text = from;
        GlobalUnlock(data);
    }
    CloseClipboard();
    return text;
}

// What a message is about to put in place of the selection.
std::wstring Incoming(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PASTE) return ClipboardText(window);
    if (message == EM_REPLACESEL) return lParam != 0 ? reinterpret_cast<LPCWSTR>(lParam) : L"";
    if (message != WM_CHAR || (wParam < ' ' && wParam != '\r') || wParam == 127) return {};
    if (wParam == '\r') return (GetWindowLongW(window, GWL_STYLE) & ES_MULTILINE) != 0 ? L"\r\n" : L"";
    return std::wstring(1, static_cast<wchar_t>(wParam));
}
bool IsHigh(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Lets in as many letters as the limit has room for. The system's own limit, in units, does the cutting and the telling.
LRESULT CALLBACK HoldToLimit(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto before = reinterpret_cast<WNDPROC>(GetPropW(window, kBefore));
    const auto limit = reinterpret_cast<size_t>(GetPropW(window, kLimit));
    const auto call = [&](UINT each, WPARAM w, LPARAM l) { return CallWindowProcW(before, window, each, w, l); };
    switch (message) {
        case WM_NCDESTROY:
            RemovePropW(window, kBefore);
            RemovePropW(window, kLimit);
            return call(message, wParam, lParam);
        case EM_SETLIMITTEXT:
            SetPropW(window, kLimit, reinterpret_cast<HANDLE>(wParam));
            return call(message, wParam == 0 ? 0 : kMostUnits, lParam);
        case EM_GETLIMITTEXT:
            return limit != 0 ? static_cast<LRESULT>(limit) : call(message, wParam, lParam);
        default:
            break;
    }
    const std::wstring incoming = limit != 0 ? Incoming(window, message, wParam, lParam) : std::wstring();
    if (incoming.empty()) return call(message, wParam, lParam);

    std::wstring text(static_cast<size_t>(call(WM_GETTEXTLENGTH, 0, 0)), L'\0');
    text.resize(static_cast<size_t>(call(WM_GETTEXT, text.size() + 1, reinterpret_cast<LPARAM>(text.data()))));
    if (text.size() + incoming.size() <= limit) return call(message, wParam, lParam);  // a letter has a unit at least
    DWORD from = 0, to = 0;
    call(EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    const size_t selected = std::min<size_t>(to, text.size()) - std::min<size_t>(from, text.size());
    const size_t kept =
        CountLetters(text) - CountLetters(std::wstring_view(text).substr(std::min<size_t>(from, text.size()), selected));
    size_t fitting = UnitsOfLetters(incoming, limit > kept ? limit - kept : 0);
    // The second half of a character comes after its first.
    if (message == WM_CHAR && IsLow(incoming[0])) fitting = from > 0 && IsHigh(text[from - 1]) ? 1 : 0;
    if (fitting == incoming.size()) return call(message, wParam, lParam);
    const size_t units = text.size() - selected + fitting;
    if (fitting == 0 || units == 0) {
        const auto told = MAKEWPARAM(GetWindowLongW(window, GWL_ID), EN_MAXTEXT);
        SendMessageW(GetParent(window), WM_COMMAND, told, reinterpret_cast<LPARAM>(window));
        return 0;
    }
    call(EM_SETLIMITTEXT, units, 0);
    const LRESULT answer = call(message, wParam, lParam);
    call(EM_SETLIMITTEXT, kMostUnits, 0);
    return answer;
}
}  // namespace

bool IsField(HWND window) {
    wchar_t name[8] = {};
    return GetClassNameW(window, name, static_cast<int>(std::size(name))) == 4 && _wcsicmp(name, L"Edit") == 0;
}

bool FieldToWide(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    if (message == EM_GETLINE) {
        const std::string line = NarrowText(LineOfWide(wParam, way));
        answer = PutLine(CutText(std::string_view(line), RoomOf(lParam)), RoomOf(lParam), lParam);
        return true;
    }
    return Positions(message, wParam, lParam, way, true, answer);
}

bool FieldToNarrow(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    if (message == EM_GETLINE) {
        const std::wstring line = WideText(LineOfNarrow(wParam, way));
        answer = PutLine(std::wstring_view(line).substr(0, RoomOf(lParam)), RoomOf(lParam), lParam);
        return true;
    }
    return Positions(message, wParam, lParam, way, false, answer);
}

void LimitField(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId()) return;
    if (GetPropW(window, kBefore) != nullptr) return;
    const LONG_PTR before = GetWindowLongPtrW(window, GWLP_WNDPROC);
    SetPropW(window, kBefore, reinterpret_cast<HANDLE>(before));
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HoldToLimit));
}
}  // namespace orvik::detail
