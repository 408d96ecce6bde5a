// Where version.cpp gets its bytes from.
#pragma once

#include <vector>

#include "platform/posix/types.h"
#include "platform/posix/version.h"

namespace orvik::detail {
// The bytes of a file's version resource, at most 65,535. An error code, as GetFileVersionInfoSizeA has it.
DWORD ReadVersionResource(LPCSTR name, std::vector<unsigned char>& bytes);
}  // namespace orvik::detail
