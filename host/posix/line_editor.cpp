#include "host/command_line/line_editor.h"

#include <editline/readline.h>

#include <clocale>
#include <cstdlib>
#include <iostream>

#include "platform/arguments.h"

bool ReadUserLine(const std::string& prompt, std::string& line) {
    DWORD mode = 0;
    std::string typed;
    static const char* const letters = std::setlocale(LC_CTYPE, "");  // by which the editor steps
    static_cast<void>(letters);
    if (GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode)) {
        char* const read = readline(prompt.c_str());
        if (read == nullptr) return false;
        typed = read;
        if (!typed.empty()) add_history(read);
        std::free(read);
    } else if (!std::getline(std::cin, typed)) {
        return false;
    }
    line = OrvikArgumentText(typed);
    return true;
}
