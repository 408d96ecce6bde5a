// Reads the short form of a span with given words for its units.
// Pure but for the cached decimal separator.
#pragma once

#include <array>

#include "afx/string.h"
#include "time/time_span.h"

namespace orvik::detail {

// Lists of words between semicolons, with a semicolon at both ends, from weeks down to microseconds.
using SpanWords = std::array<const CString*, 7>;

int ReadShortSpan(const char* text, const SpanWords& words, CVXTTimeSpan& span, int strict);

}  // namespace orvik::detail
