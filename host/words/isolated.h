// Names, values and times that stand side by side in a line for people. On a terminal that sets both directions, letters that are
// read from the right would draw their neighbours over to their other side. Any thread.
#pragma once

#include <string>

// UTF-8 that is a direction of its own in a line from the left: between marks (U+2068, U+2069, U+200E) that take no column, where
// it holds such letters, else the text as it is; without controls in both cases. What programs read has no marks.
std::string Isolated(std::string text);

// UTF-8 with U+FFFD in the place of what a terminal would obey instead of showing it (control_letters.h), but for tabs and ends
// of lines.
std::string WithoutControls(const std::string& text);
