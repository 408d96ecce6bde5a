// CMap: the framework's typed map. Walks in the order in which keys first came; see collections.h for the rules of a walk.
// Keys are compared with ==; a key type that std::hash does not serve specialises HashKey. One thread at a time.
#pragma once

#include "afx/dictionary.h"
#include "afx/object.h"
#include "afx/position.h"
#include "afx/string.h"

#include <functional>

template <class KEY>
UINT HashKey(const KEY& key) {
    return static_cast<UINT>(orvik::detail::MixHash(std::hash<KEY>()(key), orvik::detail::HashSeed()));
}
template <>
inline UINT HashKey<CString>(const CString& key) {
    return orvik::detail::HashBytes(key.GetString(), static_cast<size_t>(key.GetLength()), orvik::detail::HashSeed());
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap : public CObject {
    struct Traits {
        using Probe = KEY;
        static uint32_t Hash(const KEY& key) { return HashKey<KEY>(key); }
        static bool Equal(const KEY& a, const KEY& b) { return a == b; }
        static KEY Make(const KEY& key) { return key; }
    };
    using Table = orvik::detail::Dictionary<KEY, VALUE, Traits>;

public:
    explicit CMap(INT_PTR = 10) {}

    INT_PTR GetCount() const { return m_table.Count(); }
    INT_PTR GetSize() const { return m_table.Count(); }
    BOOL IsEmpty() const { return m_table.Count() == 0; }

    BOOL Lookup(ARG_KEY key, VALUE& value) const {
        const uint32_t found = m_table.Find(key);
        if (found == Table::kNone) return FALSE;
        value = m_table.At(found).value;
        return TRUE;
    }
    VALUE& operator[](ARG_KEY key) { return m_table.At(m_table.FindOrAdd(key)).value; }
    void SetAt(ARG_KEY key, ARG_VALUE newValue) { (*this)[key] = newValue; }
    BOOL RemoveKey(ARG_KEY key) {
        const uint32_t found = m_table.Find(key);
        if (found == Table::kNone) return FALSE;
        m_table.Remove(found);
        return TRUE;
    }
    void RemoveAll() { m_table.Clear(); }

    POSITION GetStartPosition() const { return ToPosition(m_table.Next(0)); }
    void GetNextAssoc(POSITION& position, KEY& key, VALUE& value) const {
        const UINT_PTR number = reinterpret_cast<UINT_PTR>(position) - 1;
        if (number >= m_table.End() || m_table.At(static_cast<uint32_t>(number)).live == 0) AfxThrowInvalidArgException();
        key = m_table.At(static_cast<uint32_t>(number)).key;
        value = m_table.At(static_cast<uint32_t>(number)).value;
        position = ToPosition(m_table.Next(static_cast<uint32_t>(number) + 1));
    }

    UINT GetHashTableSize() const { return m_nHashTableSize; }
    void InitHashTable(UINT hashSize, BOOL = TRUE) { m_nHashTableSize = hashSize; }

private:
    static POSITION ToPosition(uint32_t number) {
        return number == Table::kNone ? nullptr : reinterpret_cast<POSITION>(static_cast<UINT_PTR>(number) + 1);
    }

    Table m_table;
    UINT m_nHashTableSize = 17;
};
