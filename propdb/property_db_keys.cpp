// Finding, making, renaming and removing by key, and the using path.
#include "propdb/property_db.h"
#include "propdb/property_key.h"
#include "propdb/property_tree.h"

#include <cstdarg>
#include <limits>
#include <string>

#include "platform/letters.h"

using orvik::detail::AsNode;
using orvik::detail::TakeSegment;
using orvik::detail::TextOrEmpty;

bool CPropertyDB::Walk(std::string_view fullKey, CObject*& found) const {
    const CObject* current = &m_root;
    while (!fullKey.empty()) {
        const CMapStringToOb* const node = AsNode(current);
        if (!node) return false;
        CObject* child = nullptr;
        if (!node->Lookup(TakeSegment(fullKey), child)) return false;
        current = child;
    }
    found = const_cast<CObject*>(current);
    return true;
}

// The entry below `top` of a key that is not empty, null when it was made just now. Nodes on the way are made too. Null when a
// value is in the way. An entry without an object, such as Rename leaves, counts as missing.
CObject** CPropertyDB::MakeEntry(CMapStringToOb& top, std::string_view key) {
    CMapStringToOb* node = &top;
    for (;;) {
        CObject*& entry = (*node)[TakeSegment(key)];
        if (key.empty()) return &entry;
        if (!entry) entry = new CMapStringToOb(10);
        node = AsNode(entry);
        if (!node) return nullptr;
    }
}

const CObject* CPropertyDB::GetValueObject(const char* key, int bAbsolute) const {
    CObject* found = nullptr;
    if (Walk(FullKey(*this, key, bAbsolute != 0), found) && found) return found;
    m_bError = TRUE;
    return nullptr;
}

BOOL CPropertyDB::SetPath(const char* key) {
    if (TextOrEmpty(key).empty()) return FALSE;
    CObject** const entry = MakeEntry(m_root, FullKey(*this, key, false));
    if (!entry) return FALSE;
    if (!*entry) *entry = new CMapStringToOb(10);
    if (!AsNode(*entry)) return FALSE;
    m_bModified = TRUE;
    return TRUE;
}

BOOL CPropertyDB::Find(const char* key) const {
    const FullKey full(*this, key, false);
    CObject* found = nullptr;
    return !std::string_view(full).empty() && Walk(full, found);
}

BOOL CPropertyDB::IsFullKey(const char* key) const {
    CObject* found = nullptr;
    return Walk(TextOrEmpty(key), found) && found && !AsNode(found);
}

BOOL CPropertyDB::IsUniqueKey(const char* key) const {
    std::string_view rest = TextOrEmpty(key);
    if (rest.empty()) return FALSE;  // the root is always there
    const CMapStringToOb* node = &m_root;
    while (node) {
        CObject* child = nullptr;
        if (!node->Lookup(TakeSegment(rest), child)) return TRUE;
        if (rest.empty()) return FALSE;
        if (!child) return TRUE;
        node = AsNode(child);
    }
    return FALSE;  // a value is in the way
}

BOOL CPropertyDB::Remove(const char* key) {
    const FullKey full(*this, key, false);
    std::string_view rest = full;
    if (rest.empty()) return FALSE;
    CMapStringToOb* node = &m_root;
    for (;;) {
        const std::string_view segment = TakeSegment(rest);
        CObject* child = nullptr;
        if (!node->Lookup(segment, child)) return FALSE;
        if (rest.empty()) {
            node->RemoveKey(segment);
            DeleteObject(child);
            m_bModified = TRUE;
            return TRUE;
        }
        node = AsNode(child);
        if (!node) return FALSE;
    }
}

BOOL CPropertyDB::Empty() { return Remove(""); }

BOOL CPropertyDB::Rename(const char* key, const char* newName) {
    const FullKey full(*this, key, false);
    std::string_view rest = full;
    if (rest.empty()) return FALSE;
    CMapStringToOb* parent = &m_root;
    std::string_view oldName = TakeSegment(rest);
    while (!rest.empty()) {
        CObject* child = nullptr;
        if (!parent->Lookup(oldName, child) || !AsNode(child)) {
            m_bError = TRUE;  // the parent's lookup is one like any other
            return FALSE;
        }
        parent = AsNode(child);
        oldName = TakeSegment(rest);
    }
    CObject* object = nullptr;
    parent->Lookup(oldName, object);
    parent->RemoveKey(oldName);
    CObject*& entry = (*parent)[TextOrEmpty(newName)];
    if (entry) m_replaced.push_back(entry);
    entry = object;
    m_bModified = TRUE;
    return TRUE;
}

int CPropertyDB::Count(const char* key, int bValuesOnly) const {
    const CObject* const object = GetValueObject(key ? key : "", 0);
    if (!object) return -1;
    if (const CMapStringToOb* const node = AsNode(object)) {
        if (!bValuesOnly) return static_cast<int>(node->GetCount());
        int values = 0;
        orvik::detail::ForEachChild(*node, [&values](std::string_view, const CObject* child) {
            if (child && !AsNode(child)) ++values;
        });
        return values;
    }
    const CRuntimeClass* const known = orvik::detail::ValueClassOf(object);
    // Arrays of bytes and of 32-bit integers are not counted, on purpose.
    if (!known || known == RUNTIME_CLASS(CByteArray) || known == RUNTIME_CLASS(CInt32Array)) return 0;
    int elements = 0;
    orvik::detail::WithValueClass(known, [&](auto* kind) {
        elements = static_cast<int>(static_cast<const std::remove_pointer_t<decltype(kind)>*>(object)->GetSize());
    });
    return elements;
}

void CPropertyDB::BeginUsingFmt(const char* format, ...) {
    constexpr int kMaxCharacters = 254;
    CString path;
    if (format) {
        va_list arguments;
        va_start(arguments, format);
        path.FormatV(format, arguments);
        va_end(arguments);
    }
    BeginUsing(std::string(OrvikWholeLetters(path.GetView(), kMaxCharacters)).c_str());
}

void CPropertyDB::BeginUsing(const char* text) {
    const std::string_view path = TextOrEmpty(text);
    const size_t length = m_strUsing.GetView().size();
    m_usingStack.Add(static_cast<WORD>(length));
    if (path.empty()) return;
    const bool needsDot = path.back() != '.';
    // Lengths are kept in 16 bits.
    if (length + path.size() + needsDot > std::numeric_limits<WORD>::max()) return;
    m_strUsing += path;
    if (needsDot) m_strUsing += '.';
}

void CPropertyDB::EndUsing() {
    const INT_PTR depth = m_usingStack.GetSize();
    if (depth == 0) return;
    m_strUsing.Delete(m_usingStack[depth - 1], m_strUsing.GetLength());
    m_usingStack.RemoveAt(depth - 1);
}

CString CPropertyDB::GetUsing() const { return m_strUsing; }
