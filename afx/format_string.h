// Texts from the string table with places to fill in. Any thread.
#pragma once

#include "afx/string.h"

// The text of a string resource with every "%1" replaced by the given text, in which nothing is replaced again. Without such a
// resource the result is empty.
ORVIK_API void AfxFormatString1(CString& rString, UINT nIDS, LPCSTR lpsz1);
