// Modbus RTU frames: requests for registers, their replies, and finding a frame among noise. Bytes only; no port, no clock.
// Layouts and the CRC (reflected polynomial 0xA001, start 0xFFFF, low byte first) are those of the Modbus over serial line guide,
// V1.02. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/win32.h"

namespace modbus {

inline constexpr BYTE kReadHoldingRegisters = 3;
inline constexpr BYTE kReadInputRegisters = 4;
inline constexpr BYTE kExceptionFlag = 0x80;  // set in the function code of an exception reply
inline constexpr WORD kMaxRegisters = 125;    // what fits the 256 bytes of a frame

// Exception codes used by the simulated logger and told to the user.
inline constexpr BYTE kIllegalFunction = 1;
inline constexpr BYTE kIllegalAddress = 2;
inline constexpr BYTE kIllegalValue = 3;
inline constexpr BYTE kAcknowledge = 5;  // worth asking again
inline constexpr BYTE kBusy = 6;         // worth asking again
inline constexpr BYTE kNoPath = 10;      // from a gateway: worth asking once more
inline constexpr BYTE kNoTarget = 11;    // from a gateway that got no answer: worth asking once more

struct Request {
    BYTE slave = 1;
    BYTE function = kReadHoldingRegisters;
    WORD first = 0;
    WORD count = 1;
};

WORD Crc(std::span<const BYTE> bytes);

std::vector<BYTE> Encode(const Request& request);
std::vector<BYTE> EncodeReply(const Request& request, std::span<const WORD> registers);
std::vector<BYTE> EncodeException(const Request& request, BYTE code);

// An answer as it stands on the line. It does not say which request it belongs to; any request of the same shape may be meant.
struct Answer {
    BYTE slave = 0;
    BYTE function = 0;            // without the flag
    BYTE exception = 0;           // 0: registers
    std::vector<WORD> registers;  // empty in an exception
    bool Fits(const Request& request) const;
};
// Looks for the first whole answer (functions 3 and 4, right CRC), whoever it is for, and passes over the bytes before it. It
// takes up the bytes from `begin` to `end`.
std::optional<Answer> FindAnswer(std::span<const BYTE> received, size_t& begin, size_t& end);

// Looks for a whole request; `used` gets the bytes up to its end. Function codes other than 3 and 4 are found as well (count 0).
bool FindRequest(std::span<const BYTE> received, Request& request, size_t& used);

}  // namespace modbus
