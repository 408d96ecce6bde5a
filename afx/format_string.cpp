#include "afx/format_string.h"

void AfxFormatString1(CString& rString, UINT nIDS, LPCSTR lpsz1) {
    const CString filling(lpsz1);  // may be a part of the result's present text
    rString.LoadString(nIDS);
    rString.Replace("%1", filling);
}
