// Numbers as people type and read them, in decimal digits, and what a channel holds of them. Plain data for any thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/modbus/modbus_channel.h"

namespace modbus {

// What a decimal number says, to its last digit: "21.50", "+21.5" and "2150e-2" are equal.
struct Decimal {
    bool negative = false;
    std::string digits;  // without zeros at either end; empty: 0
    int exponent = 0;    // of ten, for the last digit

    // Of a text that is a number with a point.
    explicit Decimal(std::string_view text);
    bool operator==(const Decimal&) const = default;
    // Its digits where it is a whole number of up to twenty, with a minus if it has one; else empty.
    std::string Whole() const;
};

// The registers that hold a number, a float's nearest; of a coil one word, 0 or 1. Empty where the channel's type cannot hold it.
// 64-bit whole numbers without scale and offset are taken to their last digit, all others as a double.
std::vector<WORD> RegistersFor(const Channel& channel, std::string_view number);
// What registers hold, whether or not it is one of the numbers for "no value": of a float the shortest number that gives it, of
// a 64-bit whole number without scale and offset every digit, of others fifteen, or as many more as tell it from its neighbours.
// "nan" for what is no number.
std::string DigitsOf(const Channel& channel, const std::vector<WORD>& registers);

}  // namespace modbus
