// The grammar of a real number, for all readers of one.
// Pure; any thread.
#pragma once

namespace orvik::detail {

// Reads from leading spaces up to the exponent and moves the cursor behind what was read; `value` has what was read so far also
// on failure. A separator of 0 matches nothing.
bool ReadReal(const char*& cursor, char decimalSep, char thousandSep, double& value);

}  // namespace orvik::detail
