// Names of files in commands that a user is told, to be copied into a shell of this home. Any thread.
#pragma once

#include <string>
#include <string_view>

// The name as one word of the shell, quoted where it needs to be; UTF-8, whatever bytes the name has.
std::string ShellWord(std::string_view name);
