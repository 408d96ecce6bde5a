// Names and units as people compare them: by what they see. UTF-8; any thread.
#pragma once

#include <string>
#include <string_view>

// Equal for texts that look the same: a letter with its mark in one character or in two, the signs for ohm and ångström and the
// letters that they are, the micro sign and the Greek letter.
std::string LooksOf(std::string_view text);
bool LookTheSame(std::string_view a, std::string_view b);
