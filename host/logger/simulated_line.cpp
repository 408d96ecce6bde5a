#include "host/logger/simulated_line.h"

#include <algorithm>

#include "host/logger/speech.h"
#include "host/words/console.h"

namespace {
constexpr DWORD kStopSlice = 50;  // ms until Stop is seen
constexpr DWORD kAway = 2000;     // ms for which a dropped port is gone
}  // namespace

SimulatedLine::SimulatedLine(SimulatedLogger& logger, Text withoutPorts, const std::string& link) : m_logger(logger), m_link(link) {
    const DWORD error = m_port.Create(link.empty() ? nullptr : link.c_str());
    if (error == ERROR_NOT_SUPPORTED) throw Failure{kWrongUse, Say(withoutPorts)};
    if (error == ERROR_SHARING_VIOLATION) throw Failure{kFileFailed, Say(Text::LinkTaken, {ToUtf8(link)})};
    if (error != 0) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(link), Reason(error)})};
    m_logger.SetLine(PortName());
}

void SimulatedLine::Serve() {
    SimulatedLogger::Asker asker;
    Speech speech(m_logger);
    while (!m_stopping && m_port.IsPlugged()) {
        LineFaults::Fate fate;
        if (speech.Next(fate)) Deliver(fate);
        BYTE block[512];
        DWORD got = 0;
        if (m_port.Read(block, sizeof block, got, speech.Wait(kStopSlice)) != 0) return;
        if (got != 0 && m_logger.Receive(asker, block, got, fate)) Deliver(fate);
    }
}

void SimulatedLine::Deliver(const LineFaults::Fate& fate) {
    // A serial line has no connection to drop: its device goes away.
    if (fate.unplug || fate.drop) {
        m_port.Unplug();
        return fate.unplug || m_link.empty() ? void() : ComeBack();
    }
    if (fate.bytes.empty()) return;
    Pause(fate.late);
    if (fate.first != 0) {
        m_port.Write(fate.bytes.data(), static_cast<DWORD>(fate.first));
        Pause(kBetweenPieces);
    }
    m_port.Write(fate.bytes.data() + fate.first, static_cast<DWORD>(fate.bytes.size() - fate.first));
}

// Its place may have been taken meanwhile, for as long as somebody likes.
void SimulatedLine::ComeBack() {
    do {
        Pause(kAway);
    } while (!m_stopping && m_port.Create(m_link.c_str()) != ERROR_SUCCESS);
    if (m_port.IsPlugged()) m_logger.SetLine(PortName());
}

void SimulatedLine::Pause(DWORD milliseconds) const {
    for (; milliseconds != 0 && !m_stopping; milliseconds -= std::min(milliseconds, kStopSlice))
        Sleep(std::min(milliseconds, kStopSlice));
}
