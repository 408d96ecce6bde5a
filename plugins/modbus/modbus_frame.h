// Modbus messages: requests for registers and coils, their answers, and finding a frame of a serial line among noise. Bytes only;
// no port, no clock. A message ("PDU") is a function and what belongs to it, the same on every kind of line. Layouts and the CRC
// (reflected polynomial 0xA001, start 0xFFFF, low byte first) are those of the Modbus application protocol, V1.1b3, and of the
// Modbus over serial line guide, V1.02. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/win32.h"

namespace modbus {

inline constexpr BYTE kReadCoils = 1;
inline constexpr BYTE kReadDiscreteInputs = 2;
inline constexpr BYTE kReadHoldingRegisters = 3;
inline constexpr BYTE kReadInputRegisters = 4;
inline constexpr BYTE kWriteCoil = 5;
inline constexpr BYTE kWriteRegister = 6;
inline constexpr BYTE kWriteCoils = 15;
inline constexpr BYTE kWriteRegisters = 16;
inline constexpr BYTE kExceptionFlag = 0x80;  // set in the function code of an exception reply
// What fits the 253 bytes of a message.
inline constexpr WORD kMaxRegisters = 125, kMaxCoils = 2000;
inline constexpr WORD kMaxWrittenRegisters = 123, kMaxWrittenCoils = 1968;
inline constexpr size_t kLongestMessage = 253;

// Exception codes used by the simulated logger and told to the user.
inline constexpr BYTE kIllegalFunction = 1;
inline constexpr BYTE kIllegalAddress = 2;
inline constexpr BYTE kIllegalValue = 3;
inline constexpr BYTE kAcknowledge = 5;  // worth asking again
inline constexpr BYTE kBusy = 6;         // worth asking again
inline constexpr BYTE kNoPath = 10;      // from a gateway: worth asking once more
inline constexpr BYTE kNoTarget = 11;    // from a gateway that got no answer: worth asking once more

inline bool ReadsCoils(BYTE function) { return function == kReadCoils || function == kReadDiscreteInputs; }
inline bool ReadsRegisters(BYTE function) { return function == kReadHoldingRegisters || function == kReadInputRegisters; }
inline bool Writes(BYTE function) {
    return function == kWriteCoil || function == kWriteRegister || function == kWriteCoils || function == kWriteRegisters;
}

struct Request {
    BYTE slave = 1;
    BYTE function = kReadHoldingRegisters;
    WORD first = 0;
    WORD count = 1;               // of registers or coils
    std::vector<BYTE> data = {};  // of a write: registers high byte first, or coils, eight to a byte, the first one lowest
};

// An answer as it was given. It does not say which request it belongs to; any request of the same shape may be meant.
struct Answer {
    BYTE slave = 0;
    BYTE function = 0;            // without the flag
    BYTE exception = 0;           // 0: data
    std::vector<BYTE> data = {};  // of a reading as in Request; of a write the four bytes that it repeats; empty in an exception
    bool Fits(const Request& request) const;
};

// Messages.
std::vector<BYTE> RequestMessage(const Request& request);
std::vector<BYTE> AnswerMessage(const Request& request, std::span<const BYTE> data);  // `data` as in Answer
std::vector<BYTE> ExceptionMessage(const Request& request, BYTE code);
// The four bytes that the answer to a write repeats.
std::vector<BYTE> EchoOf(const Request& request);
// How long the message is that begins so, by what it says itself: 0 when no answer, or request, that is known here begins so;
// nothing when that does not show yet.
std::optional<size_t> AnswerLength(std::span<const BYTE> beginning);
std::optional<size_t> RequestLength(std::span<const BYTE> beginning);
// A whole message of that length, and who said it.
Answer ReadAnswer(BYTE slave, std::span<const BYTE> message);
// The same for a request. False where its lengths contradict each other; functions that are not known here have a count of 0.
bool ReadRequest(BYTE slave, std::span<const BYTE> message, Request& request);

// Frames of a serial line: slave, message, CRC.
WORD Crc(std::span<const BYTE> bytes);
std::vector<BYTE> SerialFrame(BYTE slave, std::span<const BYTE> message);
std::vector<BYTE> Encode(const Request& request);
std::vector<BYTE> EncodeReply(const Request& request, std::span<const WORD> registers);
std::vector<BYTE> EncodeException(const Request& request, BYTE code);

// Looks for the first whole answer (known function, right CRC), whoever it is for, and passes over the bytes before it. It takes
// up the bytes from `begin` to `end`.
std::optional<Answer> FindAnswer(std::span<const BYTE> received, size_t& begin, size_t& end);
// Looks for a whole request; `used` gets the bytes up to its end. Functions that are not known here are found in frames of 8
// bytes.
bool FindRequest(std::span<const BYTE> received, Request& request, size_t& used);

// Registers as bytes.
inline WORD WordAt(const BYTE* bytes) { return static_cast<WORD>(bytes[0] << 8 | bytes[1]); }
void AppendWord(std::vector<BYTE>& out, WORD value);

}  // namespace modbus
