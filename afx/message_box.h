// The framework's message box: one text under the application's name, through the application object if there is one. On the main
// thread.
#pragma once

#include "platform/win32.h"

// nType 0 and no icon given: an exclamation. The button pressed (IDOK, IDYES, ...), 0 on failure.
ORVIK_API int AfxMessageBox(LPCSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
