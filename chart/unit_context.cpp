#include "chart/unit_context.h"

#include <memory>
#include <utility>
#include <vector>

#include "afx/array.h"
#include "propdb/property_db_interface.h"
#include "time/number_text.h"

namespace {

constexpr int kBlockSize = 10;

constexpr char kContextFolder[] = "UnitContexts";
constexpr char kFormat[] = ".sFormat";
constexpr char kOrigin[] = ".rOrg";
constexpr char kExtent[] = ".rExt";
constexpr char kIndex[] = ".Index";

CString StandardFormat() { return NlsRealFmt(7, 1); }

// A place in the list is cut out of its record's hands before the record goes.
void DeleteAt(CUnitContextList& list, POSITION position) {
    const std::unique_ptr<CUnitContext> record(list.GetAt(position));
    list.RemoveAt(position);
}

}  // namespace

void SerializeElements(CArchive& ar, UNITCONTEXT* elements, INT_PTR count) {
    for (UNITCONTEXT* element = elements; element != elements + count; ++element) {
        if (ar.IsStoring()) {
            ar << element->m_format << element->m_origin << element->m_extent;
        } else {
            ar >> element->m_format >> element->m_origin >> element->m_extent;
            element->m_flag = 0;
        }
    }
}

CUnitContext::CUnitContext() : m_format(StandardFormat()) {}
CUnitContext::CUnitContext(LPCSTR name) : m_name(name), m_format(StandardFormat()) {}
CUnitContext::CUnitContext(LPCSTR name, const UNITCONTEXT& context)
    : m_name(name), m_format(context.m_format), m_origin(context.m_origin), m_extent(context.m_extent), m_flag(context.m_flag) {}
CUnitContext::CUnitContext(const CUnitContext* other) : CUnitContext(*other) {}
CUnitContext::CUnitContext(const CUnitContext& other) = default;
CUnitContext& CUnitContext::operator=(const CUnitContext& other) = default;
CUnitContext::~CUnitContext() = default;

CUnitContextList::CUnitContextList() : CTypedPtrList<CPtrList, CUnitContext*>(kBlockSize) {}
CUnitContextList::~CUnitContextList() { CUnitContextList::Empty(); }

POSITION CUnitContextList::FindName(LPCSTR name) const {
    for (POSITION next = GetHeadPosition(); next != nullptr;) {
        const POSITION at = next;
        if (GetNext(next)->m_name.Compare(name) == 0) return at;
    }
    return nullptr;
}

POSITION CUnitContextList::FindLastName(LPCSTR name) const {
    for (POSITION previous = GetTailPosition(); previous != nullptr;) {
        const POSITION at = previous;
        if (GetPrev(previous)->m_name.Compare(name) == 0) return at;
    }
    return nullptr;
}

CUnitContext* CUnitContextList::GetContext(LPCSTR name) const {
    const POSITION at = FindName(name);
    return at != nullptr ? GetAt(at) : nullptr;
}

CUnitContext* CUnitContextList::AddContext(LPCSTR name) {
    CUnitContext* record = GetContext(name);
    if (record == nullptr) {
        auto fresh = std::make_unique<CUnitContext>(name);
        AddTail(fresh.get());
        record = fresh.release();
    }
    ++record->m_useCount;
    return record;
}

void CUnitContextList::ReleaseContext(LPCSTR name) {
    CUnitContext* const record = GetContext(name);
    if (record != nullptr && record->m_useCount > 0) --record->m_useCount;
}

void CUnitContextList::SetContext(const CUnitContext* context) {
    CUnitContext* const record = context != nullptr ? GetContext(context->m_name) : nullptr;
    if (record == nullptr) return;
    record->m_format = context->m_format;
    record->m_origin = context->m_origin;
    record->m_extent = context->m_extent;
    record->m_flag = 0;
}

void CUnitContextList::Remove(LPCSTR name) {
    const POSITION at = FindName(name);
    if (at != nullptr) DeleteAt(*this, at);
}

void CUnitContextList::Empty() {
    while (!IsEmpty()) DeleteAt(*this, GetHeadPosition());
}

BOOL CUnitContextList::Exchange(LPCSTR a, LPCSTR b) {
    const POSITION atA = FindLastName(a), atB = FindLastName(b);
    if (atA == nullptr || atB == nullptr) return FALSE;
    CUnitContext* const record = GetAt(atA);
    SetAt(atA, GetAt(atB));
    SetAt(atB, record);
    return TRUE;
}

void CUnitContextList::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        DWORD_PTR count = 0;
        for (POSITION next = GetHeadPosition(); next != nullptr;) count += GetNext(next)->m_useCount != 0;
        ar.WriteCount(count);
        for (POSITION next = GetHeadPosition(); next != nullptr;) {
            const CUnitContext& record = *GetNext(next);
            if (record.m_useCount == 0) continue;
            UNITCONTEXT element{record.m_format, record.m_origin, record.m_extent, record.m_flag};
            ar << record.m_name;
            SerializeElements(ar, &element, 1);
        }
        return;
    }
    // A count beyond what the file holds ends at the file's end.
    CUnitContextList loaded;
    for (DWORD_PTR left = ar.ReadCount(); left > 0; --left) {
        CString name;
        UNITCONTEXT element;
        ar >> name;
        SerializeElements(ar, &element, 1);
        auto record = std::make_unique<CUnitContext>(name, element);
        loaded.AddTail(record.get());
        record.release();
    }
    Empty();
    while (!loaded.IsEmpty()) {
        AddTail(loaded.GetHead());
        loaded.RemoveHead();
    }
}

void CUnitContextList::OnDBSet(IPropertyDB* db) const {
    db->Remove(kContextFolder);
    db->BeginUsing(kContextFolder);
    int index = 0;
    for (POSITION next = GetHeadPosition(); next != nullptr;) {
        const CUnitContext& record = *GetNext(next);
        if (record.m_useCount == 0) continue;
        const CString folder = ReQuote(record.m_name);
        db->SetValue(folder + kFormat, static_cast<const char*>(record.m_format));
        db->SetValue(folder + kOrigin, record.m_origin);
        db->SetValue(folder + kExtent, record.m_extent);
        db->SetValue(folder + kIndex, index++);
    }
    db->EndUsing();
}

void CUnitContextList::OnDBGet(IPropertyDB* db) {
    // Asked for first, so that a database without the folder keeps its error flag.
    if (!db->Find(kContextFolder)) return;
    CStringArray folders;
    if (!db->Enum(kContextFolder, folders, 0, 0)) return;
    std::vector<std::pair<int, std::unique_ptr<CUnitContext>>> loaded;  // ascending; the order of enumeration among equals
    db->BeginUsing(kContextFolder);
    for (INT_PTR i = 0; i < folders.GetSize(); ++i) {
        const CString& folder = folders[i];
        if (!db->Find(folder + kFormat) || !db->Find(folder + kOrigin) || !db->Find(folder + kExtent) ||
            !db->Find(folder + kIndex))
            continue;
        auto record = std::make_unique<CUnitContext>(UnQuote(folder));
        int index = 0;
        if (!db->GetValue(folder + kFormat, record->m_format) || !db->GetValue(folder + kOrigin, record->m_origin) ||
            !db->GetValue(folder + kExtent, record->m_extent) || !db->GetValue(folder + kIndex, index))
            continue;
        auto at = loaded.begin();
        while (at != loaded.end() && at->first <= index) ++at;
        loaded.emplace(at, index, std::move(record));
    }
    db->EndUsing();
    for (const auto& entry : loaded) Remove(entry.second->m_name);
    for (auto& entry : loaded) {
        AddTail(entry.second.get());
        entry.second.release();
    }
}

CString ReQuote(LPCSTR text) {
    const CString source(text);
    if (!source.IsEmpty() && source.FindOneOf(".'\"") < 0) return source;
    if (source.Find('"') < 0) return CString("\"") + source + '"';
    if (source.Find('\'') < 0) return CString("'") + source + '\'';
    CString quoted(source);
    quoted.Replace("\"", "\"\"");
    return CString("\"") + quoted + '"';
}

CString UnQuote(LPCSTR segment) {
    const CString source(segment);
    const int length = source.GetLength();
    const char quote = length >= 2 ? source.GetAt(0) : '\0';
    if ((quote != '"' && quote != '\'') || source.GetAt(length - 1) != quote) return source;
    CString text = source.Mid(1, length - 2);
    if (quote == '"') text.Replace("\"\"", "\"");
    return text;
}
