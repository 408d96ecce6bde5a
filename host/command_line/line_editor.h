// One line after another from the user: with editing and history at a terminal, plainly from a pipe.
#pragma once

#include <string>

// False at the end of the input. The line comes as this house's text, without its end.
bool ReadUserLine(const std::string& prompt, std::string& line);
