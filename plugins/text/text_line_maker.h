// The reverse of text_fields.h: the texts of fields become the lines of a reading, as a simulated logger says them. Pure
// functions, any thread.
#pragma once

#include <string>
#include <vector>

#include "plugins/text/text_description.h"

namespace text {

// `fields`: one for each channel. Lines without checksums and ends; what no channel names is filled with zeros.
std::vector<std::string> MakeLines(const Description& description, const std::vector<std::string>& fields);

// Channel names as a heading.
std::string MakeHeading(const Description& description);

}  // namespace text
