#include <algorithm>
#include <cstring>

#include "platform/house_text_internal.h"
#include "platform/posix/controls/list_items_internal.h"
#include "platform/posix/regional/nls.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {

std::optional<LRESULT> ListItems::Answer(const ListItemMessages& messages, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto index = static_cast<int>(wParam);
    const auto* wanted = reinterpret_cast<const char*>(lParam);
    if (message == messages.count) return Count();
    if (message == messages.find) return Find(index, wanted, false);
    if (message == messages.findWhole) return Find(index, wanted, true);
    const bool ofAnItem =
        message == messages.text || message == messages.textLength || message == messages.data || message == messages.setData;
    if (!ofAnItem) return std::nullopt;
    if (!Has(index) || (message == messages.text && lParam == 0)) return -1;
    ListItem& item = (*this)[index];
    if (message == messages.data) return item.data;
    if (message == messages.setData) {
        item.data = lParam;
        return messages.dataSet;
    }
    if (message == messages.text) std::strcpy(reinterpret_cast<char*>(lParam), item.text.c_str());
    return static_cast<LRESULT>(item.text.size());
}

int CompareInLists(const char* first, const char* second) {
    return CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, first, -1, second, -1) - CSTR_EQUAL;
}

int ListItems::Add(const char* text, bool sorted) {
    if (text == nullptr) return -1;
    if (!sorted) return Insert(-1, text);
    const auto after = std::upper_bound(m_items.begin(), m_items.end(), text,
                                        [](const char* a, const ListItem& b) { return CompareInLists(a, b.text.c_str()) < 0; });
    return Insert(static_cast<int>(after - m_items.begin()), text);
}

int ListItems::Insert(int at, const char* text) {
    if (at == -1) at = Count();
    if (text == nullptr || at < 0 || at > Count()) return -1;
    m_items.insert(m_items.begin() + at, ListItem{text});
    return at;
}

bool ListItems::Remove(int at) {
    if (!Has(at)) return false;
    m_items.erase(m_items.begin() + at);
    return true;
}

int ListItems::Find(int after, const char* text, bool whole) const {
    if (text == nullptr || m_items.empty()) return -1;
    const int first = Has(after) ? after + 1 : 0;
    for (int step = 0; step < Count(); ++step) {
        const int index = (first + step) % Count();
        const std::string& own = m_items[static_cast<size_t>(index)].text;
        if (whole ? lstrcmpiA(own.c_str(), text) == 0 : BeginsNoCase(own, text)) return index;
    }
    return -1;
}

}  // namespace orvik::detail
