// Setting and getting values of every kind.
#include "propdb/property_db_internal.h"
#include "propdb/property_key.h"
#include "propdb/property_tree.h"

#include <cstring>
#include <limits>
#include <string>

using orvik::detail::AsNode;
using orvik::detail::ValueClassOf;
using orvik::detail::WithValueClass;

BOOL CPropertyDB::SetValue(const char* key, const CObject* value, int bAbsolute) {
    const CRuntimeClass* const kind = ValueClassOf(value);
    const bool isNode = !kind && value && value->IsKindOf(RUNTIME_CLASS(CMapStringToOb));
    if (!kind && !isNode) return FALSE;
    const FullKey full(*this, key, bAbsolute != 0);
    if (std::string_view(full).empty()) return FALSE;
    if (isNode) {
        // The node is made where the key leads from the using path, even if it was looked for at the absolute key, on purpose.
        CObject* found = nullptr;
        const bool vacant =
            Walk(full, found) ? found == nullptr : CPropertyDB::IsUniqueKey(std::string(std::string_view(full)).c_str()) != 0;
        return vacant ? SetPath(key) : FALSE;
    }
    CObject** const entry = MakeEntry(m_root, full);
    return entry ? SetEntry(*entry, kind, value) : FALSE;
}

// A key keeps its kind: the entry is null or takes values of that class only.
BOOL CPropertyDB::SetEntry(CObject*& entry, const CRuntimeClass* kind, const CObject* value) {
    if (entry && entry->GetRuntimeClass() != kind) return FALSE;
    WithValueClass(kind, [&](auto* none) {
        using Array = std::remove_pointer_t<decltype(none)>;
        if (!entry) entry = new Array;
        auto& target = static_cast<Array&>(*entry);
        if (value == m_movable && value->GetRuntimeClass() == kind)
            target.Swap(static_cast<Array&>(*const_cast<CObject*>(value)));
        else if (&target != value)
            target.Copy(static_cast<const Array&>(*value));
    });
    m_bModified = TRUE;
    return TRUE;
}

// ---- setters

template <class Array, class Value>
BOOL CPropertyDB::SetSingle(const char* key, Value value) {
    Array array;
    array.Add(value);
    return SetMoving(key, array);
}

BOOL CPropertyDB::SetValue(const char* key, const CStringArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CByteArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CWordArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CDWordArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CFloatArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CDoubleArray& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CInt64Array& value) { return SetValue(key, &value, 0); }
BOOL CPropertyDB::SetValue(const char* key, const CInt32Array& value) { return SetValue(key, &value, 0); }

BOOL CPropertyDB::SetValue(const char* key, const char* value) { return SetSingle<CStringArray>(key, CString(value)); }
BOOL CPropertyDB::SetValue(const char* key, unsigned char value) { return SetSingle<CWordArray>(key, static_cast<WORD>(value)); }
BOOL CPropertyDB::SetValue(const char* key, unsigned short value) { return SetSingle<CWordArray>(key, value); }
BOOL CPropertyDB::SetValue(const char* key, int value) { return SetSingle<CDWordArray>(key, static_cast<DWORD>(value)); }
BOOL CPropertyDB::SetValue(const char* key, unsigned int value) { return SetSingle<CDWordArray>(key, static_cast<DWORD>(value)); }
BOOL CPropertyDB::SetValue(const char* key, __int64 value) { return SetSingle<CInt64Array>(key, value); }
BOOL CPropertyDB::SetValue(const char* key, float value) { return SetSingle<CFloatArray>(key, value); }
BOOL CPropertyDB::SetValue(const char* key, double value) { return SetSingle<CDoubleArray>(key, value); }

BOOL CPropertyDB::SetValue(const char* key, long value) {
    return SetLong(key, value, value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max());
}
BOOL CPropertyDB::SetValue(const char* key, unsigned long value) {
    return SetLong(key, static_cast<__int64>(value), value <= std::numeric_limits<uint32_t>::max());
}

// A long of 32 bits is a double word. One of 64 bits is a 64-bit integer, but goes on writing double words that are there
// already, from the other home's files, as long as it fits.
BOOL CPropertyDB::SetLong(const char* key, __int64 value, bool fitsDWord) {
    if constexpr (sizeof(long) == sizeof(DWORD)) return SetSingle<CDWordArray>(key, static_cast<DWORD>(value));
    CObject* found = nullptr;
    if (fitsDWord && Walk(FullKey(*this, key, false), found) && found && found->GetRuntimeClass() == RUNTIME_CLASS(CDWordArray))
        return SetSingle<CDWordArray>(key, static_cast<DWORD>(value));
    return SetSingle<CInt64Array>(key, value);
}

BOOL CPropertyDB::SetValue(const char* key, const CVXTTime& value) { return SetSingle<CInt64Array>(key, value.GetBinaryTime()); }
BOOL CPropertyDB::SetValue(const char* key, const CVXTTimeSpan& value) { return SetSingle<CInt64Array>(key, value.CvtToInt64()); }

BOOL CPropertyDB::SetValue(const char* key, const POINT& value) {
    CDWordArray array;
    for (const LONG part : {value.x, value.y}) array.Add(static_cast<DWORD>(part));
    return SetMoving(key, array);
}

BOOL CPropertyDB::SetValue(const char* key, const RECT& value) {
    CDWordArray array;
    for (const LONG part : {value.left, value.top, value.right, value.bottom}) array.Add(static_cast<DWORD>(part));
    return SetValue(key, array);
}

BOOL CPropertyDB::SetValue(const char* key, const LOGFONTA& value) {
    CByteArray array;
    array.SetSize(sizeof value);
    std::memcpy(array.GetData(), &value, sizeof value);
    return SetValue(key, array);
}

// ---- getters

template <class Array>
BOOL CPropertyDB::GetArray(const char* key, Array& value) const {
    const CObject* const object = GetValueObject(key, 0);
    if (!object || ValueClassOf(object) != RUNTIME_CLASS(Array)) return FALSE;
    if (object != &value) value.Copy(static_cast<const Array&>(*object));
    return value.GetSize() > 0;
}

template <class Array, class Value>
BOOL CPropertyDB::GetSingle(const char* key, Value& value) const {
    Array array;
    if (!GetValue(key, array)) return FALSE;
    if constexpr (std::is_same_v<Value, CString>)
        value = std::move(array[0]);
    else
        value = static_cast<Value>(array[0]);
    return TRUE;
}

// The elements of a structure; the caller's reading of an element that is not there raises the invalid-argument exception, also
// when the stored array has none at all.
template <class Array>
BOOL CPropertyDB::GetStructure(const char* key, Array& elements) const {
    elements.SetSize(1);
    return GetValue(key, elements) || elements.IsEmpty();
}

BOOL CPropertyDB::GetValue(const char* key, CStringArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CByteArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CWordArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CDWordArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CFloatArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CDoubleArray& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CInt64Array& value) const { return GetArray(key, value); }
BOOL CPropertyDB::GetValue(const char* key, CInt32Array& value) const { return GetArray(key, value); }

BOOL CPropertyDB::GetValue(const char* key, CString& value) const { return GetSingle<CStringArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, unsigned char& value) const { return GetSingle<CWordArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, unsigned short& value) const { return GetSingle<CWordArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, int& value) const { return GetSingle<CDWordArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, unsigned int& value) const { return GetSingle<CDWordArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, __int64& value) const { return GetSingle<CInt64Array>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, float& value) const { return GetSingle<CFloatArray>(key, value); }
BOOL CPropertyDB::GetValue(const char* key, double& value) const { return GetSingle<CDoubleArray>(key, value); }

BOOL CPropertyDB::GetValue(const char* key, long& value) const {
    if constexpr (sizeof(long) != sizeof(DWORD))
        if (GetSingle<CInt64Array>(key, value)) return TRUE;
    int word = 0;
    if (!GetSingle<CDWordArray>(key, word)) return FALSE;
    value = word;
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, unsigned long& value) const {
    if constexpr (sizeof(long) != sizeof(DWORD))
        if (GetSingle<CInt64Array>(key, value)) return TRUE;
    DWORD word = 0;
    if (!GetSingle<CDWordArray>(key, word)) return FALSE;
    value = word;
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, CVXTTime& value) const {
    __int64 count = 0;
    if (!GetSingle<CInt64Array>(key, count)) return FALSE;
    value.SetBinaryTime(count);
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, CVXTTimeSpan& value) const {
    __int64 count = 0;
    if (!GetSingle<CInt64Array>(key, count)) return FALSE;
    value.Set(count, TST_MICROSECONDS);
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, POINT& value) const {
    CDWordArray array;
    if (!GetStructure(key, array)) return FALSE;
    const auto part = [&array](int index) { return static_cast<LONG>(array[index]); };
    value = POINT{part(0), part(1)};
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, RECT& value) const {
    CDWordArray array;
    if (!GetStructure(key, array)) return FALSE;
    const auto part = [&array](int index) { return static_cast<LONG>(array[index]); };
    value = RECT{part(0), part(1), part(2), part(3)};
    return TRUE;
}

BOOL CPropertyDB::GetValue(const char* key, LOGFONTA& value) const {
    CByteArray array;
    if (!GetValue(key, array) || array.GetSize() != sizeof value) return FALSE;
    BYTE bytes[sizeof value];
    for (size_t i = 0; i < sizeof bytes; ++i) bytes[i] = array[static_cast<INT_PTR>(i)];
    std::memcpy(&value, bytes, sizeof value);
    return TRUE;
}
