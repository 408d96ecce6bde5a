// The checksum at the end of a line. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

namespace text {

// Hexadecimal digits in any case at the very end, behind a "*" or without it:
enum class Checksum {
    None,
    Sum,    // two digits: the sum of the characters before it, the "*" left out, modulo 256
    Xor,    // two digits: all characters between a "$" or "!" at the beginning, if there is one, and the "*", exclusive-ored
    Crc16,  // four digits, the high byte first: the CRC that Modbus RTU has, of the characters before it, the "*" left out
};

enum class ChecksumResult { Right, Missing, Wrong };

// Takes the checksum and its "*" off the line.
ChecksumResult TakeChecksum(Checksum kind, std::string_view& line);
// Puts it on, behind a "*".
void AddChecksum(Checksum kind, std::string& line);

}  // namespace text
