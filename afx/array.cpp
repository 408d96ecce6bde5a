#include "afx/array.h"

IMPLEMENT_SERIAL(CByteArray, CObject, 0)
IMPLEMENT_SERIAL(CWordArray, CObject, 0)
IMPLEMENT_SERIAL(CDWordArray, CObject, 0)
IMPLEMENT_SERIAL(CStringArray, CObject, 0)
IMPLEMENT_DYNAMIC(CPtrArray, CObject)

static_assert(sizeof(CWordArray) == 2 * sizeof(void*) + 8 || sizeof(void*) == 4, "values of one number are to stay small");

void SerializeElements(CArchive& ar, CString* elements, INT_PTR count) {
    for (INT_PTR i = 0; i < count; ++i) {
        if (ar.IsStoring())
            ar << static_cast<const CString&>(elements[i]);
        else
            ar >> elements[i];
    }
}

INT_PTR CStringArray::Add(LPCSTR newElement) { return Add(CString(newElement)); }

void CPtrArray::Serialize(CArchive&) { AfxThrowNotSupportedException(); }
