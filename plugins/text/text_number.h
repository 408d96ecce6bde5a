// The number that a field says. Nothing is guessed: a field in which something else stands than a number and what may stand
// around it has no value. Pure functions, any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text {

struct NumberRule {
    char decimal = '.';
    std::string prefix;                 // stands before the number
    std::optional<std::string> suffix;  // stands behind it; nothing: a unit may
    std::vector<std::string> others;    // units with which the number is another channel's, and none here
    std::vector<std::string> noValue;   // texts that mean no value, in any case; one that is a number means that number
};

enum class NumberResult { Number, NoValue, OtherUnit, Wrong };

// Blanks around the field, the number, its sign and its unit are passed over. There are no thousands separators. What may stand
// behind the number without being asked for is a unit: letters, signs as in "m/s", "%" or "W/m2", and no other number.
NumberResult ReadNumber(std::string_view field, const NumberRule& rule, double& number);

// Splits "-23.5 C" into sign and digits, and the rest without the blanks around it. False if no number stands at the beginning.
bool SplitNumber(std::string_view field, char decimal, double& number, std::string_view& rest);
// Whether such a rest can be a unit.
bool IsUnit(std::string_view rest);

std::string_view Trimmed(std::string_view text);

}  // namespace text
