// What recordings hold, in the line protocol: docs/influx.md has the measurements. Pure functions, any thread.
#pragma once

#include <string>

#include "record/sink.h"

namespace influx {

// Appends the part's readings from row `row` on, until `out` has `most` bytes or more; the row after the last one.
size_t AppendReadings(std::string& out, const CSinkPart& part, const std::string& measurement, size_t row, size_t most);
// Its gaps, events and comments.
void AppendNotes(std::string& out, const CSinkPart& part, const std::string& measurement);

}  // namespace influx
