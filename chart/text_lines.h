// A text cut into lines for a rectangle. A pure function; any thread. Internal.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvik::detail {

// At most `mostLines` lines (from 1 up) of at most `width` pixels by `measure`, wrapped between words, or within a word that is
// wider than that. Line ends of the text are kept, tabs are spaces. What does not fit is told by an ellipsis at the end of the
// last line. A line has one letter (platform/letters.h) at least, however narrow the rectangle.
std::vector<std::string> FitLines(std::string_view text, int width, size_t mostLines,
                                  const std::function<int(std::string_view)>& measure);

}  // namespace orvik::detail
