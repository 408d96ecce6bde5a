// Texts and numbers as JSON has them. Pure functions; any thread.
#pragma once

#include <string>
#include <string_view>

// Between quotes. UTF-8.
std::string JsonText(std::string_view utf8);
// As many digits as bring back the same bits; null for what is no finite number.
std::string JsonNumber(double value);
