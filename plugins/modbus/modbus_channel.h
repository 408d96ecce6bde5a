// A channel: where its value stands in a slave, and how registers become a value and back. Plain data for any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/modbus/modbus_frame.h"

namespace modbus {

// Bool is a coil, or a bit of a register. Bcd: packed decimal, four digits a register. Text: the number that its letters say.
enum class ValueType : BYTE { Bool, Int16, Uint16, Int32, Uint32, Int64, Uint64, Float32, Float64, Bcd16, Bcd32, Text };

// What has to be exchanged to bring a value's bytes to the highest first, and its registers with them.
using ByteOrder = BYTE;
inline constexpr ByteOrder kHighFirst = 0;
inline constexpr ByteOrder kSwapBytes = 1;   // the bytes of every register
inline constexpr ByteOrder kSwapWords = 2;   // the registers of every 32 bits
inline constexpr ByteOrder kSwapHalves = 4;  // the 32 bits of 64
inline constexpr ByteOrder kLowFirst = kSwapWords | kSwapHalves;

struct Channel {
    std::string key = {};  // the node's name in the description
    std::string name = {};
    size_t slave = 0;  // index into the description's slaves
    BYTE function = kReadHoldingRegisters;
    WORD first = 0;
    ValueType type = ValueType::Int16;
    ByteOrder order = kHighFirst;
    BYTE bit = 0;                     // of a Bool in a register, 0 the lowest
    WORD length = 1;                  // of a Text, in registers
    double scale = 1, offset = 0;     // value = registers as a number * scale + offset
    std::vector<uint64_t> none = {};  // registers, highest byte first, that say "no value"; of a Text the number's own bits
    BYTE write = 0;                   // the function that writes it; 0: it is not to be written

    WORD Count() const;  // registers or coils that it takes up
};

// The value in the answer to a request, `offset` registers or coils from the beginning of its data. NaN: it says that there is
// none, or nothing that is a number. Exact before scale and offset, but for 64-bit numbers beyond 2^53, which are rounded to the
// nearest double.
double Decode(const Channel& channel, const BYTE* data, WORD offset = 0);

// The registers for a value, the nearest ones within the type's range; of a coil one word, 0 or 1.
std::vector<WORD> Encode(const Channel& channel, double value);
// Whether the type can hold that value: it is in its range, and no digits are lost beyond what rounding takes from a float. Whole
// numbers beyond 2^53 count as not held: a double does not tell them from their neighbours.
bool CanHold(const Channel& channel, double value);
// A number before scale and offset as the registers hold it, highest byte first; for `none`.
uint64_t BitsOf(ValueType type, double number);
// The same bits out of a channel's registers, and into them; not for coils and texts.
uint64_t BitsIn(const Channel& channel, const std::vector<WORD>& registers);
std::vector<WORD> RegistersOf(const Channel& channel, uint64_t bits);

}  // namespace modbus
