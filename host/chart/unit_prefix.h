// Units told in thousands of them or thousandths: "Wh" as "MWh", "nA" as "µA". Pure functions on house text; any thread.
//
// Only units that people write with such prefixes are known, and each with those that people use: no megametres, no kiloseconds.
// Degrees, per cent, decibels, pH and the like take none, nor do powers such as square metres, whose prefix would count twice,
// nor units that have one which is no power of 1000, such as hPa. Of a quotient the numerator takes the prefix: "mS/cm".
#pragma once

#include <optional>
#include <string>

// The unit that is 10 to `power` times this one; `power` is a multiple of 3. Nothing for a unit that takes no prefix, and beyond
// those that it takes.
std::optional<std::string> PrefixedUnit(const std::string& unit, int power);
