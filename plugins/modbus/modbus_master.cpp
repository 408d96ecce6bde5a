#include "plugins/modbus/modbus_master.h"

#include <algorithm>
#include <thread>

#include "afx/string.h"
#include "comm/comm_exception.h"

namespace modbus {
namespace {
// An answer comes in one piece; a pause this much longer than a frame gap within one means that the rest was lost. USB adapters
// deliver in steps of 16 ms.
constexpr std::chrono::milliseconds kBrokenOff{100};

// No wait is longer, so that an abort from another thread is seen soon.
constexpr std::chrono::milliseconds kSlice{50};
}  // namespace

void Master::Configure(const Line& line, DWORD timeout) {
    // 3.5 characters of silence separate frames; above 19,200 bit/s a fixed 1.75 ms (the serial line guide, 2.5.1.1).
    m_character = std::chrono::microseconds(static_cast<long long>(1e6 * line.BitsPerCharacter() / line.baud) + 1);
    m_gap = line.baud > 19200 ? std::chrono::microseconds(1750) : m_character * 7 / 2;
    m_timeout = std::chrono::milliseconds(std::max<DWORD>(timeout, 1));
    m_lineDied = false;
}

std::vector<WORD> Master::Read(const Request& request) {
    bool anythingCame = false;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        const Reply reply = Exchange(request, anythingCame);
        if (reply.found == Found::Registers) return reply.registers;
        if (reply.found == Found::Nothing) continue;
        const bool passing = reply.exception == kAcknowledge || reply.exception == kBusy;
        if (!passing || attempt == kAttempts) {
            CString standard, text;
            standard.LoadString(832);  // "Illegal response"
            text.Format("%s (Modbus %u)", static_cast<const char*>(standard), static_cast<unsigned>(reply.exception));
            Fail(CCommException::IllegalResponse, text);
        }
    }
    Fail(anythingCame ? CCommException::BadProtocol : CCommException::ReceiveTimeout);
}

Reply Master::Exchange(const Request& request, bool& anythingCame) {
    AwaitSilence();
    const std::vector<BYTE> frame = Encode(request);
    DWORD written = 0;
    const LONG error = m_port.Write(frame.data(), frame.size(), &written, nullptr, static_cast<DWORD>(m_timeout.count()));
    CheckLine();
    if (error != 0 || written != frame.size()) Fail(CCommException::HardwareError);
    // The port takes the request at once; it is on the line for as long as its characters last.
    const Clock::time_point deadline = Clock::now() + static_cast<int>(frame.size()) * m_character + m_timeout;
    std::vector<BYTE> received;
    for (;;) {
        const Clock::time_point until = received.empty() ? deadline : std::min(deadline, m_lastByte + m_gap + kBrokenOff);
        if (!Receive(received, until)) return {};
        anythingCame = true;
        Reply reply = FindReply(received, request);
        if (reply.found != Found::Nothing) return reply;
        // A line that never falls silent must not grow the buffer: only its end can still become an answer.
        constexpr size_t kKept = 1024;
        if (received.size() > 4 * kKept) received.erase(received.begin(), received.end() - static_cast<std::ptrdiff_t>(kKept));
        if (Clock::now() >= deadline) return {};
    }
}

void Master::AwaitSilence() {
    // Late answers and noise are read away until the line has been silent for a frame gap; a line that chatters for ever gets its
    // request all the same after one time-out.
    const auto limit = Clock::now() + m_timeout;
    std::vector<BYTE> discarded;
    for (;;) {
        CheckLine();
        if (ReadAvailable(discarded) == 0) {
            const auto silentSince = m_lastByte + m_gap;
            const auto now = Clock::now();
            if (now >= silentSince || now >= limit) return;
            std::this_thread::sleep_for(silentSince - now);
        } else if (Clock::now() >= limit) {
            return;
        }
        discarded.clear();
    }
}

bool Master::Receive(std::vector<BYTE>& received, Clock::time_point until) {
    for (;;) {
        CheckLine();
        if (ReadAvailable(received) > 0) return true;
        if (Clock::now() >= until) return false;
        PumpMessages(std::min(until, Clock::now() + kSlice));
    }
}

size_t Master::ReadAvailable(std::vector<BYTE>& received) {
    BYTE block[512];
    DWORD got = 0;
    // The port is in its non-blocking mode: an empty queue gives 0 bytes at once. A driver that lets such a read wait runs into
    // the short time-out instead (1460), which means the same.
    const LONG error = m_port.Read(block, sizeof block, &got, nullptr, 20);
    if (error != 0 && error != static_cast<LONG>(ERROR_TIMEOUT)) {
        CheckLine();
        Fail(CCommException::HardwareError);
    }
    if (got == 0) return 0;
    m_lastByte = Clock::now();
    received.insert(received.end(), block, block + got);
    return got;
}

void Master::PumpMessages(Clock::time_point until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    if (left > 0) MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(left), QS_ALLINPUT);
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {  // not ours to swallow: it ends this exchange and the loop outside
            PostQuitMessage(static_cast<int>(message.wParam));
            Fail(CCommException::SessionAborted);
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

bool Master::OnLineEvent(CSerial::EEvent event, CSerial::EError error) {
    const bool died = event == CSerialEx::ListenerDiedEvent && error == CSerialEx::ListenerDiedError;
    m_lineDied |= died;
    return died;
}

void Master::CheckLine() {
    if (m_aborted) Fail(CCommException::SessionAborted);
    if (!m_port.IsOpen()) Fail(CCommException::DeviceNotOpen);
    if (m_lineDied) Fail(CCommException::HardwareError);
}

void Master::Fail(int code, const char* text) { OrvikThrowCommException(code, text); }

}  // namespace modbus
