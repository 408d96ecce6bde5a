// The grammar of a real number, for all readers of one.
// Pure; any thread.
#pragma once

#include "time/separator.h"

namespace orvik::detail {

// Reads from leading spaces up to the exponent and moves the cursor behind what was read; `value` has what was read so far also
// on failure. An empty separator matches nothing.
bool ReadReal(const char*& cursor, const Separator& decimalSep, const Separator& thousandSep, double& value);

}  // namespace orvik::detail
