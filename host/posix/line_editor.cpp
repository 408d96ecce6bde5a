#include "host/command_line/line_editor.h"

#include <editline/readline.h>

#include <cstdlib>
#include <iostream>

#include "platform/arguments.h"

namespace {
std::string HouseText(const std::string& typed) {
    std::string text(OrvikArgumentText(typed.c_str(), nullptr, 0), 0);
    text.resize(OrvikArgumentText(typed.c_str(), text.data(), static_cast<DWORD>(text.size())));
    return text;
}
}  // namespace

bool ReadUserLine(const std::string& prompt, std::string& line) {
    DWORD mode = 0;
    std::string typed;
    if (GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode)) {
        char* const read = readline(prompt.c_str());
        if (read == nullptr) return false;
        typed = read;
        if (!typed.empty()) add_history(read);
        std::free(read);
    } else if (!std::getline(std::cin, typed)) {
        return false;
    }
    line = HouseText(typed);
    return true;
}
