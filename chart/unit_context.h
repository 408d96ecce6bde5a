// For each unit text, the label format and the range of the axis that shows values of that unit, with a count of the charts that
// use it; kept by name and stored in the property database or in an archive. User-interface thread, as axes are.
// A list owns its records; what its functions return stays valid until that record leaves the list.
#pragma once

#include "afx/archive.h"
#include "afx/list.h"
#include "afx/string.h"

class IPropertyDB;

// The part of a context that stands in archives by itself.
struct ORVIK_API UNITCONTEXT {
    CString m_format;  // as on a CUnitAxis
    double m_origin = 0.0;
    double m_extent = 100.0;
    int m_flag = 1;  // until a range is set or loaded
};

// For each element its format, origin and extent (docs/formats.md). A loaded element's flag is 0.
ORVIK_API void SerializeElements(CArchive& ar, UNITCONTEXT* elements, INT_PTR count);

class ORVIK_API CUnitContext {
public:
    CUnitContext();
    explicit CUnitContext(LPCSTR name);  // 0 to 100 with one decimal, use count 0
    CUnitContext(LPCSTR name, const UNITCONTEXT& context);
    explicit CUnitContext(const CUnitContext* other);  // the use count too
    CUnitContext(const CUnitContext& other);
    CUnitContext& operator=(const CUnitContext& other);
    ~CUnitContext();

    CString m_name;  // the unit text; names are compared exactly
    CString m_format;
    double m_origin = 0.0;
    double m_extent = 100.0;
    int m_flag = 1;
    int m_useCount = 0;
};

class ORVIK_API CUnitContextList : public CTypedPtrList<CPtrList, CUnitContext*> {
public:
    CUnitContextList();
    ~CUnitContextList() override;
    CUnitContextList(const CUnitContextList&) = delete;
    CUnitContextList& operator=(const CUnitContextList&) = delete;

    // The record of that name, made if there is none, counted once more.
    CUnitContext* AddContext(LPCSTR name);
    // Counts once less, not below 0. The record stays.
    void ReleaseContext(LPCSTR name);
    CUnitContext* GetContext(LPCSTR name) const;  // null if there is none
    // Copies format and range into the record of the same name, and clears its flag.
    void SetContext(const CUnitContext* context);
    void Remove(LPCSTR name);
    void Empty();
    // The last record of either name takes the other's place. FALSE when one is missing.
    BOOL Exchange(LPCSTR a, LPCSTR b);

    // The records in use, in their order. Loading replaces the list, whose records then have use count 0; when it raises an
    // exception, the list is as it was.
    void Serialize(CArchive& ar) override;
    // The folder "UnitContexts": storing replaces what it holds by the records in use. Loading adds its units to the list in the
    // order of their "Index", each replacing a record of its name; folders that lack a value are left out.
    void OnDBSet(IPropertyDB* db) const;
    void OnDBGet(IPropertyDB* db);

private:
    POSITION FindName(LPCSTR name) const;
    POSITION FindLastName(LPCSTR name) const;
};

// A text as one segment of a property key. One that is empty or holds "." or a quote is put between quotes: those that it does
// not hold, or double ones, with its own doubled, when it holds both.
ORVIK_API CString ReQuote(LPCSTR text);
// The text of such a segment.
ORVIK_API CString UnQuote(LPCSTR segment);
