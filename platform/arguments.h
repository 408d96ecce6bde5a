// The words that a program is given as this process's text (house_text.h). Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

// The words behind the program's name on its command line. In a Windows-1252 process on Linux a word with characters beyond that
// stays UTF-8, so that it still names its file; on Windows it has lost them: OrvikArgumentsAreWhole.
ORVIK_API std::vector<std::string> OrvikArguments(int argc, const char* const* argv);

// Non-zero when the command line came whole: in a Windows-1252 process on Windows, characters beyond the system's narrow code
// page arrive as others ("?", or the nearest letter), which no program should take for what was typed.
ORVIK_API BOOL OrvikArgumentsAreWhole();

// The same for a line that was read from the terminal or a pipe.
ORVIK_API std::string OrvikArgumentText(const std::string& typed);
