// The one translator from errno to Win32 codes.
#pragma once

#include "platform/posix/kernel/errors.h"

namespace orvik::detail {
// The Win32 code for an errno value; 31 (general failure) for one that has no better.
DWORD ErrorFromErrno(int error);
}  // namespace orvik::detail
