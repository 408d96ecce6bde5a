// The local turn of a year. Any thread.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {

// Local midnight of 1 January of a year, in seconds since 1970; raises the framework's exception for E_INVALIDARG if `makeTime`
// (the C library's _mktime64 but for tests) cannot tell.
__int64 LocalNewYear(int year, __time64_t (*makeTime)(tm*) = &_mktime64);

}  // namespace orvik::detail
