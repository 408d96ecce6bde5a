#include "comm/serial_transport_internal.h"

#include <algorithm>

#include "comm/comm_exception.h"

namespace orvik::detail {
namespace {
// Room for several of the longest frames in either direction.
constexpr DWORD kQueue = 4096;

// No wait is longer, so that an abort from another thread is seen soon.
constexpr std::chrono::milliseconds kSlice{50};

[[noreturn]] void Fail(int code) { OrvikThrowCommException(code, nullptr); }
}  // namespace

void SerialTransport::Open(const char* port, const CLineSettings& line, TimePoint until) {
    const LONG error = m_user->port.Open(port, &m_user->connection, kQueue, kQueue);
    if (error != 0)
        Fail(error == static_cast<LONG>(ERROR_ACCESS_DENIED) ? CCommException::AccessDenied : CCommException::DeviceNotOpen);
    m_opener = m_user;
    m_opener->connection.SetOnline(true);
    try {
        SetUp(line, until);
    } catch (CCommException*) {
        Close();
        throw;
    }
}

void SerialTransport::SetUp(const CLineSettings& line, TimePoint) {
    CSerialOrvik& port = m_opener->port;
    if (port.Setup(static_cast<CSerial::EBaudrate>(line.baud), line.dataBits, line.parity, line.stopBits) != 0 ||
        port.SetupHandshaking(CSerial::HandshakeOff) != 0)
        Fail(CCommException::HardwareError);
}

void SerialTransport::Close() {
    if (!IsOpen()) return;
    m_opener->port.Close();
    m_opener->connection.SetOnline(false);
    m_opener = nullptr;
    // The listener may have said farewell shortly before: left in the queue, it would be taken for the end of the next line.
    MSG message;
    while (PeekMessageA(&message, nullptr, COrvikComWnd::ComMsg, COrvikComWnd::ComMsg, PM_REMOVE)) {
        if (message.message != COrvikComWnd::ComMsg) {  // WM_QUIT comes through every filter, and is not ours to swallow
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        DispatchMessageA(&message);
    }
}

void SerialTransport::Send(std::span<const BYTE> bytes, TimePoint until) {
    CheckLine();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Now()).count();
    DWORD written = 0;
    const LONG error = m_opener->port.Write(bytes.data(), bytes.size(), &written, nullptr,
                                            static_cast<DWORD>(std::clamp<long long>(left, 1, 0x7FFFFFFF)));
    CheckLine();
    if (error != 0 || written != bytes.size()) Fail(CCommException::HardwareError);
}

bool SerialTransport::Receive(std::vector<BYTE>& received, TimePoint until) {
    for (;;) {
        CheckLine();
        if (ReadAvailable(received)) return true;
        if (Now() >= until) return false;
        PumpMessages(std::min(until, Now() + kSlice));
    }
}

bool SerialTransport::ReadAvailable(std::vector<BYTE>& received) {
    BYTE block[512];
    DWORD got = 0;
    // The port is in its non-blocking mode: an empty queue gives 0 bytes at once. A driver that lets such a read wait runs into
    // the short time-out instead (1460), which means the same.
    const LONG error = m_opener->port.Read(block, sizeof block, &got, nullptr, 20);
    if (error != 0 && error != static_cast<LONG>(ERROR_TIMEOUT)) {
        CheckLine();
        Fail(CCommException::HardwareError);
    }
    received.insert(received.end(), block, block + got);
    return got != 0;
}

void SerialTransport::PumpMessages(TimePoint until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Now()).count();
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

void SerialTransport::CheckLine() {
    if (m_user->abort.IsRaised()) Fail(CCommException::SessionAborted);
    if (!m_user->open || !IsOpen()) Fail(CCommException::DeviceNotOpen);
    if (IsLost()) Fail(CCommException::HardwareError);
}

}  // namespace orvik::detail
