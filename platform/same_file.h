// Whether two names lead to one file, whatever the way. Any thread.
#pragma once

#include "platform/win32.h"

// Names of files that are there are followed through links of either kind; names of which neither is there are the same file if
// they are the same name in the same folder. On Windows the case of letters makes no difference.
ORVIK_API BOOL OrvikSameFile(LPCSTR one, LPCSTR other);
