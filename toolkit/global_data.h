// The toolkit's global data: what its windows share of the user's desktop. On the user-interface thread.
#pragma once

#include "platform/win32.h"

class ORVIK_API CBCGPGlobalData {
public:
    // The desktop's fonts and sizes for everything outside client areas. Non-zero for success; `info` is all zero otherwise but
    // for its size.
    BOOL GetNonClientMetrics(NONCLIENTMETRICSA& info) const;
};

extern ORVIK_API CBCGPGlobalData globalData;
