// The framework's maps and pointer lists. One thread at a time for one collection.
// Maps walk their entries in the order in which the keys first came, and grow on their own: the hash-table size is kept for its
// getter and otherwise without effect. CMapStringToOb does not own the objects it names: who removes an entry deletes its object.
// A walk survives removing the entry it just gave, and any other entry but the next one; after adding, start it anew.
#pragma once

#include "afx/dictionary.h"
#include "afx/map_key.h"
#include "afx/object.h"
#include "afx/position.h"
#include "afx/string.h"

namespace orvik::detail {
struct StringKeyTraits {
    using Probe = std::string_view;
    static uint32_t Hash(std::string_view text) { return HashBytes(text.data(), text.size(), HashSeed()); }
    static bool Equal(const MapKey& key, std::string_view text) { return key.GetView() == text; }
    static MapKey Make(std::string_view text) { return MapKey(text); }
};
inline std::string_view KeyView(LPCSTR key) { return key != nullptr ? std::string_view(key) : std::string_view(); }
}  // namespace orvik::detail

// What the two string maps have in common; VALUE is a pointer or a text.
template <class VALUE, class VALUE_ARG>
class CStringMap : public CObject {
public:
    explicit CStringMap(INT_PTR = 10) {}

    INT_PTR GetCount() const { return m_table.Count(); }
    INT_PTR GetSize() const { return m_table.Count(); }
    BOOL IsEmpty() const { return m_table.Count() == 0; }

    // 0 and the value unchanged when the key is not there.
    BOOL Lookup(std::string_view key, VALUE& value) const {
        const uint32_t found = m_table.Find(key);
        if (found == Table::kNone) return FALSE;
        value = m_table.At(found).value;
        return TRUE;
    }
    BOOL Lookup(LPCSTR key, VALUE& value) const { return Lookup(orvik::detail::KeyView(key), value); }
    BOOL Lookup(const CString& key, VALUE& value) const { return Lookup(key.GetView(), value); }
    // The key's text as the map holds it, valid until an entry is added or this one removed.
    BOOL LookupKey(LPCSTR key, LPCSTR& stored) const {
        const uint32_t found = m_table.Find(orvik::detail::KeyView(key));
        if (found == Table::kNone) return FALSE;
        stored = m_table.At(found).key.GetView().data();
        return TRUE;
    }
    // The value itself, for reading and writing, valid until an entry is added; null when the key is not there.
    VALUE* Find(std::string_view key) {
        const uint32_t found = m_table.Find(key);
        return found == Table::kNone ? nullptr : &m_table.At(found).value;
    }
    const VALUE* Find(std::string_view key) const { return const_cast<CStringMap*>(this)->Find(key); }

    // Adds the key, with a null or empty value, when it is not there.
    VALUE& operator[](std::string_view key) { return m_table.At(m_table.FindOrAdd(key)).value; }
    VALUE& operator[](LPCSTR key) { return (*this)[orvik::detail::KeyView(key)]; }
    VALUE& operator[](const CString& key) { return (*this)[key.GetView()]; }
    void SetAt(std::string_view key, VALUE_ARG newValue) { (*this)[key] = newValue; }
    void SetAt(LPCSTR key, VALUE_ARG newValue) { (*this)[key] = newValue; }
    void SetAt(const CString& key, VALUE_ARG newValue) { (*this)[key] = newValue; }

    BOOL RemoveKey(std::string_view key) {
        const uint32_t found = m_table.Find(key);
        if (found == Table::kNone) return FALSE;
        m_table.Remove(found);
        return TRUE;
    }
    BOOL RemoveKey(LPCSTR key) { return RemoveKey(orvik::detail::KeyView(key)); }
    BOOL RemoveKey(const CString& key) { return RemoveKey(key.GetView()); }
    void RemoveAll() { m_table.Clear(); }

    POSITION GetStartPosition() const { return ToPosition(m_table.Next(0)); }
    // Gives the entry at the position and moves on; the position is null behind the last entry. A position whose entry is no
    // longer there raises the invalid-argument exception.
    void GetNextAssoc(POSITION& position, CString& key, VALUE& value) const {
        std::string_view view;
        GetNextAssoc(position, view, value);
        key = view;
    }
    // The same without copying the key, which stays valid until an entry is added or this one removed.
    void GetNextAssoc(POSITION& position, std::string_view& key, VALUE& value) const {
        const uint32_t number = ToNumber(position);
        if (number >= m_table.End() || m_table.At(number).live == 0) AfxThrowInvalidArgException();
        key = m_table.At(number).key.GetView();
        value = m_table.At(number).value;
        position = ToPosition(m_table.Next(number + 1));
    }

    UINT GetHashTableSize() const { return m_nHashTableSize; }
    void InitHashTable(UINT hashSize, BOOL = TRUE) { m_nHashTableSize = hashSize; }

protected:
    using Table = orvik::detail::Dictionary<orvik::detail::MapKey, VALUE, orvik::detail::StringKeyTraits>;
    static POSITION ToPosition(uint32_t number) {
        return number == Table::kNone ? nullptr : reinterpret_cast<POSITION>(static_cast<UINT_PTR>(number) + 1);
    }
    static uint32_t ToNumber(POSITION position) {
        return position == nullptr ? Table::kNone : static_cast<uint32_t>(reinterpret_cast<UINT_PTR>(position) - 1);
    }

    Table m_table;
    UINT m_nHashTableSize = 17;
};

class ORVIK_API CMapStringToOb : public CStringMap<CObject*, CObject*> {
    DECLARE_SERIAL(CMapStringToOb)

public:
    explicit CMapStringToOb(INT_PTR nBlockSize = 10) : CStringMap(nBlockSize) {}
    // Count, then key and object for each entry. A load adds to what is there and gives each object to the map as soon as it is
    // read, so that a load that fails leaves the entries before the failure in the map. A key that comes twice raises the archive
    // exception.
    void Serialize(CArchive& ar) override;
};

class ORVIK_API CMapStringToString : public CStringMap<CString, LPCSTR> {
    DECLARE_SERIAL(CMapStringToString)

public:
    explicit CMapStringToString(INT_PTR nBlockSize = 10) : CStringMap(nBlockSize) {}
    using CStringMap::SetAt;
    void SetAt(std::string_view key, std::string_view newValue) { (*this)[key] = newValue; }
    void Serialize(CArchive& ar) override;
};
