// Digits that people type, of whichever script their keyboard writes. UTF-8; any thread.
#pragma once

#include <string>
#include <string_view>

// Digits of every script as 0 to 9, and the wide forms of signs and letters ("\uFF0E", "\uFF0D") as ASCII's.
std::string WithPlainDigits(std::string_view text);

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
