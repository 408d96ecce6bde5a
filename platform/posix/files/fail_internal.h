// How a function of files says that it failed. Any thread.
#pragma once

#include <cerrno>

#include "platform/posix/kernel/errors_internal.h"

namespace orvik::detail {
inline BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}
inline BOOL FailErrno() { return Fail(ErrorFromErrno(errno)); }
}  // namespace orvik::detail
