// The strings of a list box or combo box, each with a number of the program's. Searching minds no case.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/posix/types.h"

namespace orvik::detail {

// < 0, 0, > 0 for two items in the order in which the user looks for them.
int CompareInLists(const char* first, const char* second);

struct ListItem {
    std::string text;
    LPARAM data = 0;
    bool selected = false;  // where more than one can be
};

// What a list box and a combo box answer alike; only the numbers of their messages differ.
struct ListItemMessages {
    UINT count, text, textLength, find, findWhole, data, setData;
    LRESULT dataSet;  // the answer to setData
};

class ListItems {
public:
    // Nothing when the message is another one; -1 (LB_ERR, CB_ERR) for an item that is not there.
    std::optional<LRESULT> Answer(const ListItemMessages& messages, UINT message, WPARAM wParam, LPARAM lParam);

    int Count() const { return static_cast<int>(m_items.size()); }
    bool Has(LRESULT index) const { return index >= 0 && index < Count(); }
    ListItem& operator[](LRESULT index) { return m_items[static_cast<size_t>(index)]; }
    const ListItem& operator[](LRESULT index) const { return m_items[static_cast<size_t>(index)]; }
    void Clear() { m_items.clear(); }

    // Its index; sorted, its place in the order.
    int Add(const char* text, bool sorted);
    int Insert(int at, const char* text);  // -1: last; -1 on failure
    bool Remove(int at);
    // The first one behind `after` that begins with the text (or is it), going round at the end; -1 when there is none.
    int Find(int after, const char* text, bool whole) const;

private:
    std::vector<ListItem> m_items;
};

}  // namespace orvik::detail
