// Texts in the messages of tool tips, and in their question for one.
#include <cstring>

#include "platform/windows/message_text_internal.h"

namespace orvik::detail {
namespace {
bool IsToolTip(HWND window) {
    wchar_t own[32] = {};
    return GetClassNameW(window, own, static_cast<int>(std::size(own))) > 0 && _wcsicmp(own, TOOLTIPS_CLASSW) == 0;
}

// No null, no number of a string, and no mark for "ask the owner".
bool IsText(LPCSTR text) { return !IS_INTRESOURCE(text) && text != LPSTR_TEXTCALLBACKA; }

// The records differ in that pointer alone; a shorter one ends before what its sender does not know.
TTTOOLINFOW WideInfo(const TTTOOLINFOA& given) {
    static_assert(sizeof(TTTOOLINFOW) == sizeof(TTTOOLINFOA));
    TTTOOLINFOW wide = {};
    std::memcpy(&wide, &given, given.cbSize < sizeof wide ? given.cbSize : sizeof wide);
    return wide;
}

LRESULT Give(UINT message, WPARAM wParam, const TTTOOLINFOA& given, MessageWay way) {
    TTTOOLINFOW wide = WideInfo(given);
    std::wstring text;
    if (IsText(given.lpszText)) wide.lpszText = (text = WideText(given.lpszText)).data();
    return way(message, wParam, reinterpret_cast<LPARAM>(&wide));
}

// A text of at most `room` bytes, its end included; without one as many as the caller has made place for.
LRESULT TakeText(size_t room, TTTOOLINFOA& given, MessageWay way) {
    constexpr size_t kLongest = 4096;
    wchar_t text[kLongest] = L"";
    TTTOOLINFOW wide = WideInfo(given);
    wide.lpszText = text;
    way(TTM_GETTEXTW, kLongest, reinterpret_cast<LPARAM>(&wide));
    return given.lpszText == nullptr ? 0 : PutCut(text, given.lpszText, static_cast<int>(room == 0 ? 4 * kLongest : room));
}
}  // namespace

bool ToolTipToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    if (message < TTM_ADDTOOLA || message > TTM_UPDATETIPTEXTA || lParam == 0 || !IsToolTip(window)) return false;
    auto& info = *reinterpret_cast<TTTOOLINFOA*>(lParam);
    switch (message) {
        case TTM_ADDTOOLA:
            answer = Give(TTM_ADDTOOLW, wParam, info, way);
            return true;
        case TTM_DELTOOLA:
            answer = Give(TTM_DELTOOLW, wParam, info, way);
            return true;
        case TTM_NEWTOOLRECTA:
            answer = Give(TTM_NEWTOOLRECTW, wParam, info, way);
            return true;
        case TTM_UPDATETIPTEXTA:
            answer = Give(TTM_UPDATETIPTEXTW, wParam, info, way);
            return true;
        case TTM_GETTEXTA:
            answer = TakeText(wParam, info, way);
            return true;
        default:
            return false;
    }
}

bool ToolTipNoticeToNarrow(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    if (lParam == 0 || reinterpret_cast<const NMHDR*>(lParam)->code != static_cast<UINT>(TTN_GETDISPINFOW)) return false;
    auto& given = *reinterpret_cast<NMTTDISPINFOW*>(lParam);
    NMTTDISPINFOA asked = {};
    asked.hdr = given.hdr;
    asked.hdr.code = static_cast<UINT>(TTN_GETDISPINFOA);
    asked.lpszText = asked.szText;
    asked.uFlags = given.uFlags;
    asked.lParam = given.lParam;
    answer = way(WM_NOTIFY, wParam, reinterpret_cast<LPARAM>(&asked));
    thread_local std::wstring t_text;  // the system looks at it before it asks again
    given.hinst = asked.hinst;
    given.uFlags = asked.uFlags;
    if (IsText(asked.lpszText))
        given.lpszText = (t_text = WideText(asked.lpszText)).data();
    else
        given.lpszText = reinterpret_cast<LPWSTR>(asked.lpszText);
    return true;
}
}  // namespace orvik::detail
