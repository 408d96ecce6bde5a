#include "host/simulated_line.h"

#include <algorithm>
#include <vector>

#include "host/console.h"

namespace {
// Every third answer comes after stray bytes, every fifth with one bit flipped: a master that asks again gets through.
constexpr unsigned kStrayEvery = 3, kFlipEvery = 5;
constexpr BYTE kStray[] = {0xFF, 0x00, 0x11, 0x04, 0xA5};
constexpr unsigned kAnswersBeforeUnplug = 3;
}  // namespace

SimulatedLine::SimulatedLine(std::unique_ptr<ILoggerSimulator> simulator, LineFault fault, Text withoutPorts,
                             const std::string& link)
    : m_simulator(std::move(simulator)), m_fault(fault) {
    const DWORD error = m_port.Create(link.empty() ? nullptr : link.c_str());
    if (error == ERROR_NOT_SUPPORTED) throw Failure{kWrongUse, Say(withoutPorts)};
    if (error != 0) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(link), Reason(error)})};
}

void SimulatedLine::Serve() {
    CByteArray reply;
    // One that talks by itself does so when its time has come.
    DWORD wait = m_simulator->Speak(reply), spoken = GetTickCount();
    while (!m_stopping && m_port.IsPlugged()) {
        if (wait != INFINITE && GetTickCount() - spoken >= wait) {
            spoken += wait;
            wait = m_simulator->Speak(reply);
            if (m_fault != LineFault::Silent) Answer(reply);
        }
        BYTE block[512];
        DWORD got = 0;
        constexpr DWORD kSlice = 50;  // ms until Stop is seen
        const DWORD due = wait == INFINITE ? kSlice : wait - std::min(wait, GetTickCount() - spoken);
        if (m_port.Read(block, sizeof block, got, std::min(due, kSlice)) != 0) return;
        if (got == 0) continue;
        m_simulator->Receive(block, got, reply);
        if (reply.GetSize() > 0 && m_fault != LineFault::Silent) Answer(reply);
    }
}

void SimulatedLine::Answer(const CByteArray& reply) {
    // The plug is pulled in place of an answer: what was answered before has been read by then.
    if (m_fault == LineFault::Unplug && m_answers == kAnswersBeforeUnplug) return m_port.Unplug();
    ++m_answers;
    std::vector<BYTE> bytes(reply.GetData(), reply.GetData() + reply.GetSize());
    if (m_fault == LineFault::Noise) {
        if (m_answers % kFlipEvery == 0) bytes[bytes.size() / 2] ^= 0x10;
        if (m_answers % kStrayEvery == 0) bytes.insert(bytes.begin(), std::begin(kStray), std::end(kStray));
    }
    m_port.Write(bytes.data(), static_cast<DWORD>(bytes.size()));
}
