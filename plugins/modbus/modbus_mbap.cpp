#include "plugins/modbus/modbus_mbap.h"

namespace modbus {
namespace {
constexpr size_t kHead = 7, kBeforeLength = 6;  // bytes; the slave counts for the length

NetworkEnd FirstMessage(std::span<const BYTE> received, WORD& transaction, std::span<const BYTE>& message) {
    // What shows too early is told early: the rest of a frame that is none may never come.
    if (received.size() >= 4 && WordAt(&received[2]) != 0) return NetworkEnd::Broken;
    if (received.size() < kBeforeLength) return NetworkEnd::More;
    const size_t length = WordAt(&received[4]);
    if (length < 2 || length > 1 + kLongestMessage) return NetworkEnd::Broken;
    if (received.size() < kBeforeLength + length) return NetworkEnd::More;
    transaction = WordAt(received.data());
    message = received.subspan(kHead, length - 1);
    return NetworkEnd::Whole;
}
}  // namespace

std::vector<BYTE> NetworkFrame(WORD transaction, BYTE slave, std::span<const BYTE> message) {
    std::vector<BYTE> frame;
    frame.reserve(kHead + message.size());
    for (const WORD word : {transaction, WORD{0}, static_cast<WORD>(1 + message.size())}) AppendWord(frame, word);
    frame.push_back(slave);
    frame.insert(frame.end(), message.begin(), message.end());
    return frame;
}

NetworkEnd FirstAnswer(std::span<const BYTE> received, WORD& transaction, Answer& answer, size_t& used) {
    std::span<const BYTE> message;
    const NetworkEnd end = FirstMessage(received, transaction, message);
    if (end != NetworkEnd::Whole) return end;
    if (AnswerLength(message) != message.size()) return NetworkEnd::Broken;
    answer = ReadAnswer(received[kBeforeLength], message);
    used = kHead + message.size();
    return end;
}

NetworkEnd FirstRequest(std::span<const BYTE> received, WORD& transaction, Request& request, size_t& used) {
    std::span<const BYTE> message;
    const NetworkEnd end = FirstMessage(received, transaction, message);
    if (end != NetworkEnd::Whole) return end;
    if (!ReadRequest(received[kBeforeLength], message, request)) return NetworkEnd::Broken;
    used = kHead + message.size();
    return end;
}

}  // namespace modbus
