// The console edits lines and keeps their history itself.
#include "host/command_line/line_editor.h"

#include <iostream>

#include "platform/arguments.h"
#include "platform/house_text.h"

namespace {
// What was typed, with its end; nothing at the end of the input. The console's narrow reading loses letters of other code pages.
std::string TypedLine(HANDLE console) {
    std::string line;
    do {
        wchar_t typed[512];
        DWORD read = 0;
        if (!ReadConsoleW(console, typed, static_cast<DWORD>(std::size(typed)), &read, nullptr) || read == 0) break;
        const int size = WideCharToMultiByte(OrvikTextCodePage(), 0, typed, static_cast<int>(read), nullptr, 0, nullptr, nullptr);
        const size_t before = line.size();
        line.resize(before + static_cast<size_t>(size));
        WideCharToMultiByte(OrvikTextCodePage(), 0, typed, static_cast<int>(read), line.data() + before, size, nullptr, nullptr);
    } while (line.empty() || line.back() != '\n');
    const size_t end = line.find('\x1A');  // Ctrl+Z
    return end == 0 ? std::string() : line;
}
}  // namespace

bool ReadUserLine(const std::string& prompt, std::string& line) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(input, &mode)) {
        std::cout << prompt << std::flush;
        line = TypedLine(input);
        if (line.empty()) return false;
        line.pop_back();
    } else {
        if (!std::getline(std::cin, line)) return false;
        line = OrvikArgumentText(line);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}
