// The console edits lines and keeps their history itself.
#include "host/command_line/line_editor.h"

#include <cstdio>
#include <iostream>

#include "platform/win32.h"

bool ReadUserLine(const std::string& prompt, std::string& line) {
    DWORD mode = 0;
    if (GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode)) {
        std::fputs(prompt.c_str(), stdout);
        std::fflush(stdout);
    }
    if (!std::getline(std::cin, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}
