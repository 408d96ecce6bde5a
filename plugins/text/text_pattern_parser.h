// The text of a regular expression becomes a tree. Throws std::invalid_argument with the reason.
#pragma once

#include "plugins/text/text_pattern.h"

namespace text {

// Returns the root's place; `names` gets the names of groups.
size_t ParsePattern(std::string_view pattern, std::vector<Pattern::Node>& tree, std::vector<std::string>& names);

}  // namespace text
