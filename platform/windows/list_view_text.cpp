// Texts in the messages and notifications of list views and headers.
#include <array>
#include <cstring>
#include <vector>

#include "platform/windows/message_text_internal.h"

namespace orvik::detail {
namespace {
bool IsOfClass(HWND window, LPCWSTR name) {
    wchar_t own[32] = {};
    return GetClassNameW(window, own, static_cast<int>(std::size(own))) > 0 && _wcsicmp(own, name) == 0;
}

// A pointer that is a text: no null, and no mark for "ask the owner".
bool IsText(const void* text) { return text != nullptr && text != LPSTR_TEXTCALLBACKA; }

// A record with this house's text, as the one with UTF-16: the two differ in that pointer alone.
template <class Wide, class Narrow>
Wide SameFields(const Narrow& record) {
    static_assert(sizeof(Wide) == sizeof(Narrow));
    Wide copy;
    std::memcpy(&copy, &record, sizeof copy);
    return copy;
}

// Sends a record whose text the receiver reads.
template <class Wide, class Narrow>
LRESULT Give(UINT message, WPARAM wParam, const Narrow& record, bool hasText, MessageWay way) {
    Wide wide = SameFields<Wide>(record);
    std::wstring text;
    if (hasText && IsText(record.pszText)) wide.pszText = (text = WideText(record.pszText)).data();
    return way(message, wParam, reinterpret_cast<LPARAM>(&wide));
}

// Sends a record whose text the receiver writes, into a buffer of cchTextMax.
template <class Wide, class Narrow>
LRESULT Take(UINT message, WPARAM wParam, Narrow& record, bool hasText, MessageWay way) {
    Wide wide = SameFields<Wide>(record);
    const LPSTR out = record.pszText;
    const int room = record.cchTextMax;
    hasText = hasText && IsText(out) && room > 0;
    std::vector<wchar_t> buffer(hasText ? static_cast<size_t>(room) : 1);
    if (hasText) wide.pszText = buffer.data();
    const LRESULT answer = way(message, wParam, reinterpret_cast<LPARAM>(&wide));
    record = SameFields<Narrow>(wide);
    record.pszText = out;
    if (!hasText) return answer;
    if (!IsText(wide.pszText)) {
        record.pszText = reinterpret_cast<LPSTR>(wide.pszText);
        return answer;
    }
    const int length = PutCut(wide.pszText, out, room);
    return message == LVM_GETITEMTEXTW ? length : answer;
}

bool ToListView(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    auto* const item = reinterpret_cast<LVITEMA*>(lParam);
    auto* const column = reinterpret_cast<LVCOLUMNA*>(lParam);
    switch (message) {
        case LVM_INSERTITEMA:
        case LVM_SETITEMA:
            answer = Give<LVITEMW>(message == LVM_SETITEMA ? LVM_SETITEMW : LVM_INSERTITEMW, wParam, *item,
                                   (item->mask & LVIF_TEXT) != 0, way);
            return true;
        case LVM_SETITEMTEXTA:
            answer = Give<LVITEMW>(LVM_SETITEMTEXTW, wParam, *item, true, way);
            return true;
        case LVM_GETITEMA:
            answer = Take<LVITEMW>(LVM_GETITEMW, wParam, *item, (item->mask & LVIF_TEXT) != 0, way);
            return true;
        case LVM_GETITEMTEXTA:
            answer = Take<LVITEMW>(LVM_GETITEMTEXTW, wParam, *item, true, way);
            return true;
        case LVM_INSERTCOLUMNA:
        case LVM_SETCOLUMNA:
            answer = Give<LVCOLUMNW>(message == LVM_SETCOLUMNA ? LVM_SETCOLUMNW : LVM_INSERTCOLUMNW, wParam, *column,
                                     (column->mask & LVCF_TEXT) != 0, way);
            return true;
        case LVM_GETCOLUMNA:
            answer = Take<LVCOLUMNW>(LVM_GETCOLUMNW, wParam, *column, (column->mask & LVCF_TEXT) != 0, way);
            return true;
        case LVM_FINDITEMA: {
            const auto& given = *reinterpret_cast<const LVFINDINFOA*>(lParam);
            auto wide = SameFields<LVFINDINFOW>(given);
            std::wstring text;
            if ((given.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0 && given.psz != nullptr)
                wide.psz = (text = WideText(given.psz)).c_str();
            answer = way(LVM_FINDITEMW, wParam, reinterpret_cast<LPARAM>(&wide));
            return true;
        }
        case LVM_GETSTRINGWIDTHA:
            answer = way(LVM_GETSTRINGWIDTHW, wParam, WideArgument(reinterpret_cast<LPCSTR>(lParam)).Parameter());
            return true;
        case LVM_EDITLABELA:
            answer = way(LVM_EDITLABELW, wParam, lParam);
            return true;
        default:
            return false;
    }
}

bool ToHeader(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    auto* const item = reinterpret_cast<HDITEMA*>(lParam);
    switch (message) {
        case HDM_INSERTITEMA:
        case HDM_SETITEMA:
            answer = Give<HDITEMW>(message == HDM_SETITEMA ? HDM_SETITEMW : HDM_INSERTITEMW, wParam, *item,
                                   (item->mask & HDI_TEXT) != 0, way);
            return true;
        case HDM_GETITEMA:
            answer = Take<HDITEMW>(HDM_GETITEMW, wParam, *item, (item->mask & HDI_TEXT) != 0, way);
            return true;
        default:
            return false;
    }
}

struct CodePair {
    UINT narrow, wide;
};
// With an NMHEADER; its item may be missing, and what the receiver changes in it counts.
constexpr CodePair kHeaderNotices[] = {{HDN_ITEMCHANGINGA, HDN_ITEMCHANGINGW},
                                       {HDN_ITEMCHANGEDA, HDN_ITEMCHANGEDW},
                                       {HDN_ITEMCLICKA, HDN_ITEMCLICKW},
                                       {HDN_ITEMDBLCLICKA, HDN_ITEMDBLCLICKW},
                                       {HDN_DIVIDERDBLCLICKA, HDN_DIVIDERDBLCLICKW},
                                       {HDN_BEGINTRACKA, HDN_BEGINTRACKW},
                                       {HDN_ENDTRACKA, HDN_ENDTRACKW},
                                       {HDN_TRACKA, HDN_TRACKW}};
// With an NMLVDISPINFO whose text the receiver reads, and the one whose text it writes.
constexpr CodePair kLabelNotices[] = {
    {LVN_BEGINLABELEDITA, LVN_BEGINLABELEDITW}, {LVN_ENDLABELEDITA, LVN_ENDLABELEDITW}, {LVN_SETDISPINFOA, LVN_SETDISPINFOW}};
constexpr CodePair kTextNotice = {LVN_GETDISPINFOA, LVN_GETDISPINFOW};

std::wstring Converted(std::string_view text, wchar_t) { return WideText(text); }
std::string Converted(std::wstring_view text, char) { return NarrowText(text); }

// Texts that were answered live until four more have been, as the system keeps the pointer for a moment only.
template <class Character>
Character* Kept(std::basic_string<Character> text) {
    thread_local std::array<std::basic_string<Character>, 4> t_texts;
    thread_local size_t t_next = 0;
    auto& place = t_texts[t_next++ % t_texts.size()];
    place = std::move(text);
    return place.data();
}

template <class Outer, class Inner, class OuterItem, class InnerItem>
struct Notices {
    const WPARAM wParam;
    const MessageWay way;

    LRESULT Header(NMHEADERA& given, UINT code) const {
        auto* const outerItem = reinterpret_cast<OuterItem*>(given.pitem);
        InnerItem item{};
        std::basic_string<Inner> text;
        NMHEADERA copy = given;
        copy.hdr.code = code;
        if (outerItem != nullptr) {
            item = SameFields<InnerItem>(*outerItem);
            if ((item.mask & HDI_TEXT) != 0 && IsText(outerItem->pszText))
                item.pszText = (text = Converted(outerItem->pszText, Inner())).data();
            copy.pitem = reinterpret_cast<HDITEMA*>(&item);
        }
        const LRESULT answer = way(WM_NOTIFY, wParam, reinterpret_cast<LPARAM>(&copy));
        if (outerItem != nullptr) outerItem->cxy = item.cxy;
        return answer;
    }

    template <class OuterNotice, class InnerNotice>
    LRESULT Label(const OuterNotice& given, UINT code) const {
        auto copy = SameFields<InnerNotice>(given);
        copy.hdr.code = code;
        std::basic_string<Inner> text;
        if ((given.item.mask & LVIF_TEXT) != 0 && IsText(given.item.pszText))
            copy.item.pszText = (text = Converted(given.item.pszText, Inner())).data();
        return way(WM_NOTIFY, wParam, reinterpret_cast<LPARAM>(&copy));
    }

    template <class OuterNotice, class InnerNotice>
    LRESULT AskText(OuterNotice& given, UINT code) const {
        auto copy = SameFields<InnerNotice>(given);
        copy.hdr.code = code;
        const bool wants = (given.item.mask & LVIF_TEXT) != 0 && IsText(given.item.pszText) && given.item.cchTextMax > 0;
        Outer* const buffer = given.item.pszText;
        const auto room = static_cast<size_t>(given.item.cchTextMax);
        std::vector<Inner> inner(wants ? 4 * room : 1);
        if (wants) copy.item.pszText = inner.data(), copy.item.cchTextMax = static_cast<int>(inner.size());
        const LRESULT answer = way(WM_NOTIFY, wParam, reinterpret_cast<LPARAM>(&copy));
        const UINT code0 = given.hdr.code;
        given = SameFields<OuterNotice>(copy);
        given.hdr.code = code0;
        if (!wants) return answer;
        given.item.cchTextMax = static_cast<int>(room);
        given.item.pszText = buffer;
        if (!IsText(copy.item.pszText)) {
            given.item.pszText = reinterpret_cast<Outer*>(copy.item.pszText);
            return answer;
        }
        std::basic_string<Outer> text = Converted(copy.item.pszText, Outer());
        if (text.size() < room)
            std::memcpy(buffer, text.c_str(), (text.size() + 1) * sizeof(Outer));
        else
            given.item.pszText = Kept(std::move(text));
        return answer;
    }
};

template <class Outer, class Inner, class OuterItem, class InnerItem, class OuterNotice, class InnerNotice>
bool Notice(UINT CodePair::*from, UINT CodePair::*to, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
    const Notices<Outer, Inner, OuterItem, InnerItem> notices{wParam, way};
    for (const CodePair& pair : kHeaderNotices) {
        if (code != pair.*from) continue;
        answer = notices.Header(*reinterpret_cast<NMHEADERA*>(lParam), pair.*to);
        return true;
    }
    for (const CodePair& pair : kLabelNotices) {
        if (code != pair.*from) continue;
        answer = notices.template Label<OuterNotice, InnerNotice>(*reinterpret_cast<const OuterNotice*>(lParam), pair.*to);
        return true;
    }
    if (code != kTextNotice.*from) return false;
    answer = notices.template AskText<OuterNotice, InnerNotice>(*reinterpret_cast<OuterNotice*>(lParam), kTextNotice.*to);
    return true;
}
}  // namespace

bool ListToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    if (message >= LVM_FIRST && message < LVM_FIRST + 0x100)
        return IsOfClass(window, WC_LISTVIEWW) && ToListView(message, wParam, lParam, way, answer);
    if (message >= HDM_FIRST && message < HDM_FIRST + 0x100)
        return IsOfClass(window, WC_HEADERW) && ToHeader(message, wParam, lParam, way, answer);
    return false;
}

bool NoticeToWide(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    return lParam != 0 && Notice<char, wchar_t, HDITEMA, HDITEMW, NMLVDISPINFOA, NMLVDISPINFOW>(
                              &CodePair::narrow, &CodePair::wide, wParam, lParam, way, answer);
}

bool NoticeToNarrow(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer) {
    return lParam != 0 && Notice<wchar_t, char, HDITEMW, HDITEMA, NMLVDISPINFOW, NMLVDISPINFOA>(
                              &CodePair::wide, &CodePair::narrow, wParam, lParam, way, answer);
}
}  // namespace orvik::detail
