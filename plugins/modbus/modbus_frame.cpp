#include "plugins/modbus/modbus_frame.h"

#include <algorithm>
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

// The CRC over a whole frame, its own two bytes included, is zero.
bool IsWhole(std::span<const BYTE> frame) { return Crc(frame) == 0; }

constexpr size_t kAround = 3;        // bytes of a frame beside its message: slave and CRC
constexpr size_t kPlainRequest = 5;  // function and two words
constexpr WORD kCoilOn = 0xFF00;
}  // namespace

void AppendWord(std::vector<BYTE>& out, WORD value) {
    out.push_back(HIBYTE(value));
    out.push_back(LOBYTE(value));
}

bool Answer::Fits(const Request& request) const {
    if (slave != request.slave || function != request.function) return false;
    if (exception != 0) return true;
    if (Writes(function)) return data == EchoOf(request);
    return data.size() == (ReadsCoils(function) ? (request.count + 7u) / 8u : request.count * 2u);
}

std::vector<BYTE> EchoOf(const Request& request) {
    std::vector<BYTE> echo;
    echo.reserve(kPlainRequest);
    AppendWord(echo, request.first);
    if (request.function == kWriteCoil) {
        AppendWord(echo, !request.data.empty() && (request.data[0] & 1) ? kCoilOn : WORD{0});
    } else if (request.function == kWriteRegister && request.data.size() == 2) {
        AppendWord(echo, WordAt(request.data.data()));
    } else {
        AppendWord(echo, request.count);
    }
    return echo;
}

std::vector<BYTE> RequestMessage(const Request& request) {
    std::vector<BYTE> message = EchoOf(request);
    message.insert(message.begin(), request.function);
    if (request.function == kWriteCoils || request.function == kWriteRegisters) {
        message.push_back(static_cast<BYTE>(request.data.size()));
        message.insert(message.end(), request.data.begin(), request.data.end());
    }
    return message;
}

std::vector<BYTE> AnswerMessage(const Request& request, std::span<const BYTE> data) {
    std::vector<BYTE> message = {request.function};
    if (!Writes(request.function)) message.push_back(static_cast<BYTE>(data.size()));
    message.insert(message.end(), data.begin(), data.end());
    return message;
}

std::vector<BYTE> ExceptionMessage(const Request& request, BYTE code) {
    return {static_cast<BYTE>(request.function | kExceptionFlag), code};
}

std::optional<size_t> AnswerLength(std::span<const BYTE> beginning) {
    if (beginning.empty()) return std::nullopt;
    const BYTE function = beginning[0] & static_cast<BYTE>(~kExceptionFlag);
    const bool coils = ReadsCoils(function), registers = ReadsRegisters(function), writes = Writes(function);
    if (!coils && !registers && !writes) return 0;
    const bool refused = beginning[0] != function;
    if (writes && !refused) return kPlainRequest;
    if (beginning.size() < 2) return std::nullopt;
    const size_t data = beginning[1];
    if (data == 0) return 0;
    if (refused) return 2;
    const bool possible = coils ? data <= kMaxCoils / 8u : data % 2 == 0 && data <= kMaxRegisters * 2u;
    return possible ? 2 + data : 0;
}

std::optional<size_t> RequestLength(std::span<const BYTE> beginning) {
    if (beginning.empty()) return std::nullopt;
    const BYTE function = beginning[0];
    if (function == kWriteCoils || function == kWriteRegisters) {
        constexpr size_t kHead = 6;
        if (beginning.size() < kHead) return std::nullopt;
        return kHead + beginning[5];
    }
    return ReadsCoils(function) || ReadsRegisters(function) || Writes(function) ? kPlainRequest : 0;
}

Answer ReadAnswer(BYTE slave, std::span<const BYTE> message) {
    Answer answer;
    answer.slave = slave;
    answer.function = message[0] & static_cast<BYTE>(~kExceptionFlag);
    if (answer.function != message[0]) {
        answer.exception = message[1];
        return answer;
    }
    const auto data = message.subspan(Writes(answer.function) ? 1 : 2);
    answer.data.assign(data.begin(), data.end());
    return answer;
}

bool ReadRequest(BYTE slave, std::span<const BYTE> message, Request& request) {
    request = {slave, message.empty() ? BYTE{0} : message[0], 0, 0};
    const std::optional<size_t> length = RequestLength(message);
    if (!length) return false;
    if (*length == 0) return true;
    if (message.size() != *length) return false;
    request.first = WordAt(&message[1]);
    request.count = WordAt(&message[3]);
    if (request.function == kWriteRegister) request.data.assign(message.begin() + 3, message.end());
    if (request.function == kWriteCoil) request.data = {static_cast<BYTE>(request.count == kCoilOn)};
    if (request.function == kWriteRegister || request.function == kWriteCoil) {
        const bool known = request.function == kWriteRegister || request.count == kCoilOn || request.count == 0;
        request.count = known ? 1 : 0;
    } else if (Writes(request.function)) {
        request.data.assign(message.begin() + 6, message.end());
        const size_t bytes = request.function == kWriteCoils ? (request.count + 7u) / 8u : request.count * 2u;
        if (bytes != request.data.size()) return false;
    }
    return true;
}

WORD Crc(std::span<const BYTE> bytes) {
    unsigned crc = 0xFFFF;
    for (const BYTE byte : bytes) crc = (crc >> 8) ^ kCrcTable[(crc ^ byte) & 0xFF];
    return static_cast<WORD>(crc);
}

std::vector<BYTE> SerialFrame(BYTE slave, std::span<const BYTE> message) {
    std::vector<BYTE> frame = {slave};
    frame.insert(frame.end(), message.begin(), message.end());
    const WORD crc = Crc(frame);
    frame.push_back(LOBYTE(crc));
    frame.push_back(HIBYTE(crc));
    return frame;
}

std::vector<BYTE> Encode(const Request& request) { return SerialFrame(request.slave, RequestMessage(request)); }

std::vector<BYTE> EncodeReply(const Request& request, std::span<const WORD> registers) {
    std::vector<BYTE> data;
    for (const WORD value : registers) AppendWord(data, value);
    return SerialFrame(request.slave, AnswerMessage(request, data));
}

std::vector<BYTE> EncodeException(const Request& request, BYTE code) {
    return SerialFrame(request.slave, ExceptionMessage(request, code));
}

std::optional<Answer> FindAnswer(std::span<const BYTE> received, size_t& begin, size_t& end) {
    for (size_t at = 0; at + kAround < received.size(); ++at) {
        const auto rest = received.subspan(at);
        const size_t length = AnswerLength(rest.subspan(1)).value_or(0);
        if (length == 0 || rest.size() < kAround + length || !IsWhole(rest.first(kAround + length))) continue;
        begin = at;
        end = at + kAround + length;
        return ReadAnswer(rest[0], rest.subspan(1, length));
    }
    return std::nullopt;
}

bool FindRequest(std::span<const BYTE> received, Request& request, size_t& used) {
    for (size_t at = 0; at + kAround < received.size(); ++at) {
        const auto rest = received.subspan(at);
        const std::optional<size_t> said = RequestLength(rest.subspan(1));
        const size_t length = said.value_or(0) != 0 ? *said : kPlainRequest;
        if (rest.size() < kAround + length || !IsWhole(rest.first(kAround + length))) continue;
        if (!ReadRequest(rest[0], rest.subspan(1, length), request)) continue;
        used = at + kAround + length;
        return true;
    }
    return false;
}

}  // namespace modbus
