#include "plugins/modbus/modbus_frame.h"

#include <array>

namespace modbus {
namespace {
constexpr auto kCrcTable = [] {
    std::array<WORD, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? (crc >> 1) ^ 0xA001 : crc >> 1;
        table[byte] = static_cast<WORD>(crc);
    }
    return table;
}();

WORD BigEndian(std::span<const BYTE> bytes) { return static_cast<WORD>(bytes[0] << 8 | bytes[1]); }

void AppendBigEndian(std::vector<BYTE>& out, WORD value) {
    out.push_back(HIBYTE(value));
    out.push_back(LOBYTE(value));
}

std::vector<BYTE> Closed(std::vector<BYTE> frame) {
    const WORD crc = Crc(frame);
    frame.push_back(LOBYTE(crc));
    frame.push_back(HIBYTE(crc));
    return frame;
}

// The CRC over a whole frame, its own two bytes included, is zero.
bool IsWhole(std::span<const BYTE> frame) { return Crc(frame) == 0; }
}  // namespace

WORD Crc(std::span<const BYTE> bytes) {
    unsigned crc = 0xFFFF;
    for (const BYTE byte : bytes) crc = (crc >> 8) ^ kCrcTable[(crc ^ byte) & 0xFF];
    return static_cast<WORD>(crc);
}

std::vector<BYTE> Encode(const Request& request) {
    std::vector<BYTE> frame = {request.slave, request.function};
    AppendBigEndian(frame, request.first);
    AppendBigEndian(frame, request.count);
    return Closed(std::move(frame));
}

std::vector<BYTE> EncodeReply(const Request& request, std::span<const WORD> registers) {
    std::vector<BYTE> frame = {request.slave, request.function, static_cast<BYTE>(registers.size() * 2)};
    for (const WORD value : registers) AppendBigEndian(frame, value);
    return Closed(std::move(frame));
}

std::vector<BYTE> EncodeException(const Request& request, BYTE code) {
    return Closed({request.slave, static_cast<BYTE>(request.function | kExceptionFlag), code});
}

Reply FindReply(std::span<const BYTE> received, const Request& request) {
    const size_t dataBytes = size_t{2} * request.count;
    Reply reply;
    for (size_t at = 0; at + 5 <= received.size(); ++at) {
        const auto rest = received.subspan(at);
        if (rest[0] != request.slave) continue;
        if (rest[1] == (request.function | kExceptionFlag) && IsWhole(rest.first(5))) {
            reply.found = Found::Exception;
            reply.exception = rest[2];
            return reply;
        }
        if (rest[1] != request.function || rest[2] != dataBytes || rest.size() < dataBytes + 5 ||
            !IsWhole(rest.first(dataBytes + 5)))
            continue;
        reply.found = Found::Registers;
        for (size_t i = 0; i < request.count; ++i) reply.registers.push_back(BigEndian(rest.subspan(3 + 2 * i)));
        return reply;
    }
    return reply;
}

bool FindRequest(std::span<const BYTE> received, Request& request, size_t& used) {
    constexpr size_t kLength = 8;
    for (size_t at = 0; at + kLength <= received.size(); ++at) {
        const auto frame = received.subspan(at, kLength);
        if (!IsWhole(frame)) continue;
        request = {frame[0], frame[1], BigEndian(frame.subspan(2)), BigEndian(frame.subspan(4))};
        used = at + kLength;
        return true;
    }
    return false;
}

}  // namespace modbus
