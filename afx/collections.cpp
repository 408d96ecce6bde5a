#include "afx/collections.h"

#include "afx/archive.h"

#include <chrono>

IMPLEMENT_SERIAL(CMapStringToOb, CObject, 0)
IMPLEMENT_SERIAL(CMapStringToString, CObject, 0)

namespace orvik::detail {
namespace {
uint64_t NewSeed() {
    // Where the program lies in memory, and when it started.
    const auto place = reinterpret_cast<uintptr_t>(&NewSeed);
    const auto now = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    return MixHash(MixHash(place, now), static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()));
}
}  // namespace

uint64_t HashSeed() {
    static const uint64_t s_seed = NewSeed();
    return s_seed;
}
}  // namespace orvik::detail

void CMapStringToOb::Serialize(CArchive& ar) {
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(m_table.Count());
        for (uint32_t i = m_table.Next(0); i != Table::kNone; i = m_table.Next(i + 1)) {
            ar << CString(m_table.At(i).key.GetView());
            ar.WriteObject(m_table.At(i).value);
        }
        return;
    }
    // The count is not believed: each turn reads at least one byte, or fails.
    const uint32_t first = m_table.End();
    DWORD_PTR left = ar.ReadCount();
    CString key;
    while (left-- > 0) {
        ar >> key;
        const uint32_t known = m_table.Find(key.GetView());
        // Twice in one archive: the earlier object would lose its only owner.
        if (known != Table::kNone && known >= first)
            AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
        CObject* object = ar.ReadObject(nullptr);
        (*this)[key] = object;
    }
}

void CMapStringToString::Serialize(CArchive& ar) {
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(m_table.Count());
        for (uint32_t i = m_table.Next(0); i != Table::kNone; i = m_table.Next(i + 1))
            ar << CString(m_table.At(i).key.GetView()) << static_cast<const CString&>(m_table.At(i).value);
        return;
    }
    DWORD_PTR left = ar.ReadCount();
    CString key, value;
    while (left-- > 0) {
        ar >> key >> value;
        SetAt(key.GetView(), value.GetView());
    }
}
