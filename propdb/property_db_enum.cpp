// Lists of keys.
#include "propdb/property_db.h"
#include "propdb/property_key.h"
#include "propdb/property_tree.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using orvik::detail::AsNode;
using orvik::detail::ForEachChild;
using orvik::detail::TextOrEmpty;

BOOL CPropertyDB::Enum(const char* key, CStringArray& out, int bFullKeys, int bWithValues) const {
    CObject* found = nullptr;
    if (!Walk(FullKey(*this, key, false), found)) return FALSE;
    const CMapStringToOb* const node = AsNode(found);
    if (!node) return FALSE;
    std::string prefix(bFullKeys ? TextOrEmpty(key) : std::string_view());
    if (!prefix.empty()) prefix += '.';
    out.RemoveAll();
    ForEachChild(*node, [&](std::string_view name, const CObject* child) {
        if (!child || (!bWithValues && !AsNode(child))) return;
        CString entry{std::string_view(prefix)};
        entry += name;
        out.Add(entry);
    });
    SortArray(out);
    return TRUE;
}

BOOL CPropertyDB::EnumAll(CStringArray& out) const {
    out.RemoveAll();
    EnumObjects(out);
    SortArray(out);
    return TRUE;
}

// Depth first from the root, with a list of its own instead of the call stack.
void CPropertyDB::EnumObjects(CStringArray& out) const {
    struct Level {
        const CMapStringToOb* node;
        POSITION at;
        size_t prefix;  // length of the key of the node, its "." included
    };
    std::string key;
    std::vector<Level> levels{{&m_root, m_root.GetStartPosition(), 0}};
    while (!levels.empty()) {
        Level& level = levels.back();
        key.resize(level.prefix);
        if (!level.at) {
            levels.pop_back();
            continue;
        }
        std::string_view name;
        CObject* child = nullptr;
        level.node->GetNextAssoc(level.at, name, child);
        if (!child) continue;
        key += name;
        const CMapStringToOb* const node = AsNode(child);
        if (!node || node->IsEmpty()) {
            out.Add(CString(std::string_view(key)));
        } else {
            key += '.';
            levels.push_back({node, node->GetStartPosition(), key.size()});
        }
    }
}

BOOL CPropertyDB::EnumFind(const char* key, const char* part, CStringArray& out, int bFullKeys) const {
    CStringArray names;
    if (!Enum(key, names, 0, 1)) return FALSE;
    std::string prefix(TextOrEmpty(key));
    prefix += '.';
    out.RemoveAll();
    for (INT_PTR index = 0; index < names.GetSize(); ++index) {
        const CString& name = names[index];
        if (name.GetView().find(TextOrEmpty(part)) == std::string_view::npos) continue;
        out.Add(bFullKeys ? CString(std::string_view(prefix)) + name : name);
    }
    return TRUE;
}

// One wildcard after another, from the left: the keys that fit up to it, then every child of each of those.
BOOL CPropertyDB::EnumWildcard(const char* pattern, CStringArray& out) const {
    constexpr std::string_view wildcard = ".*";
    const INT_PTR before = out.GetSize();
    std::string_view rest = TextOrEmpty(pattern);
    size_t at = rest.find(wildcard);
    CStringArray keys;
    keys.Add(CString(rest.substr(0, at)));
    while (at != rest.npos) {
        rest.remove_prefix(at + wildcard.size());
        at = rest.find(wildcard);
        const std::string_view tail = rest.substr(0, at);
        CStringArray next, children;
        for (INT_PTR index = 0; index < keys.GetSize(); ++index) {
            if (!Enum(keys[index], children, 1, 1)) continue;
            for (INT_PTR child = 0; child < children.GetSize(); ++child) {
                CString key = children[child];
                key += tail;
                next.Add(key);
            }
        }
        keys.Copy(next);
    }
    for (INT_PTR index = 0; index < keys.GetSize(); ++index)
        if (Find(keys[index])) out.Add(keys[index]);
    return out.GetSize() > before;
}

// Names of one node begin alike ("Comment #17"): behind what all share, eight bytes decide nearly every comparison.
void CPropertyDB::SortArray(CStringArray& array) {
    const std::span texts(array.GetData(), static_cast<size_t>(array.GetSize()));
    if (texts.empty()) return;
    std::string_view shared = texts.front().GetView();
    for (const CString& text : texts) {
        const std::string_view view = text.GetView();
        const auto differ = std::mismatch(shared.begin(), shared.end(), view.begin(), view.end());
        shared = shared.substr(0, static_cast<size_t>(differ.first - shared.begin()));
    }
    struct Place {
        uint64_t head;
        CString* text;
        bool operator<(const Place& other) const {
            return head != other.head ? head < other.head : text->GetView() < other.text->GetView();
        }
    };
    std::vector<Place> places;
    places.reserve(texts.size());
    for (CString& text : texts) {
        const std::string_view rest = text.GetView().substr(shared.size());
        uint64_t head = 0;
        for (size_t i = 0; i < sizeof head; ++i) head = head << 8 | (i < rest.size() ? static_cast<unsigned char>(rest[i]) : 0u);
        places.push_back({head, &text});
    }
    std::sort(places.begin(), places.end());
    std::vector<CString> sorted;
    sorted.reserve(texts.size());
    for (const Place& place : places) sorted.push_back(std::move(*place.text));
    std::move(sorted.begin(), sorted.end(), texts.begin());
}
