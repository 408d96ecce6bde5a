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

bool Answer::Fits(const Request& request) const {
    return slave == request.slave && function == request.function && (exception != 0 || registers.size() == request.count);
}

std::optional<Answer> FindAnswer(std::span<const BYTE> received, size_t& begin, size_t& end) {
    constexpr size_t kFrame = 5;  // slave, function, length or exception, CRC
    for (size_t at = 0; at + kFrame <= received.size(); ++at) {
        const auto rest = received.subspan(at);
        const BYTE function = rest[1] & static_cast<BYTE>(~kExceptionFlag);
        if (function != kReadHoldingRegisters && function != kReadInputRegisters) continue;
        const bool refused = rest[1] != function;
        const size_t data = refused ? 0 : rest[2];
        if (refused ? rest[2] == 0 : data == 0 || data % 2 != 0 || data > size_t{2} * kMaxRegisters) continue;
        if (rest.size() < kFrame + data || !IsWhole(rest.first(kFrame + data))) continue;
        Answer answer = {rest[0], function, refused ? rest[2] : BYTE{0}, {}};
        for (size_t i = 0; i < data; i += 2) answer.registers.push_back(BigEndian(rest.subspan(3 + i)));
        begin = at;
        end = at + kFrame + data;
        return answer;
    }
    return std::nullopt;
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
