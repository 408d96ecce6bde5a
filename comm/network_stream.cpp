#include "comm/network_stream_internal.h"

#include <algorithm>

#include "comm/comm_exception.h"
#include "comm/serial_ex.h"

namespace orvik::detail {
namespace {
// Texts, which take the address.
constexpr UINT kNoSuchHost = 8210, kNameUnknownYet = 8211, kRefused = 8212, kNoAnswer = 8213, kNoRoute = 8214, kClosed = 8215,
               kBrokenOff = 8216, kSilent = 8217, kOther = 8218;

constexpr std::chrono::milliseconds kSoon{50}, kPrompt{1};

UINT TextFor(DWORD error, bool connected) {
    switch (error) {
        case kSocketNoSuchHost:
            return kNoSuchHost;
        case kSocketNameUnknownYet:
            return kNameUnknownYet;
        case kSocketRefused:
            return kRefused;
        case kSocketTimeOut:
            return connected ? kSilent : kNoAnswer;
        case kSocketNetworkDown:
        case kSocketNetworkUnreachable:
        case kSocketHostUnreachable:
        case kSocketNoSuchAddress:
            return kNoRoute;
        case kSocketClosedByPeer:
            return kClosed;
        case kSocketReset:
        case kSocketAborted:
            return kBrokenOff;
        default:
            return kOther;
    }
}

DWORD MillisecondsUntil(ITransport::TimePoint until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
    return static_cast<DWORD>(std::clamp<long long>(left, 0, 0x7FFFFFFF));
}
}  // namespace

void NetworkStream::Open(const CLineAddress& address, TimePoint until) {
    Close();
    m_address = address.Text();
    m_address.erase(0, m_address.find("://") + 3);
    if (m_user->abort.IsRaised()) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
    SocketConnect connecting(address.host.c_str(), address.port, MillisecondsUntil(until));
    Socket socket;
    for (;;) {
        const DWORD error = connecting.Take(socket);
        if (error == ERROR_SUCCESS) break;
        if (error != ERROR_IO_PENDING) FailBy(CCommException::DeviceNotOpen, error, false);
        PumpMessages();
        if (m_user->abort.IsRaised()) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        // The attempt ends by itself at this time; a little later it must have.
        if (std::chrono::steady_clock::now() >= until + std::chrono::milliseconds(100))
            FailBy(CCommException::DeviceNotOpen, kSocketTimeOut, false);
        Wait(connecting.Done(), until + std::chrono::milliseconds(100));
    }
    m_socket = std::move(socket);
    m_lost = m_asked = m_pending = false;
    m_prompt = true;
    m_early.clear();
    m_used = std::chrono::steady_clock::now();
    m_user->connection.SetOnline(true);
}

void NetworkStream::Send(std::span<const BYTE> bytes, TimePoint until) {
    for (;;) {
        CheckLine();
        DWORD sent = 0;
        if (const DWORD error = m_socket.Send(bytes.data(), static_cast<DWORD>(bytes.size()), sent)) Lose(error);
        bytes = bytes.subspan(sent);
        m_pending = true;
        m_asked = bytes.empty();
        if (m_asked) return;
        if (sent != 0) continue;
        // Half a request is worse than none: what follows would be taken for the rest of it.
        if (std::chrono::steady_clock::now() >= until) Lose(kSocketTimeOut);
        PumpMessages();
        CheckLine();
        Wait(m_socket.Await(true), until);
    }
}

bool NetworkStream::Receive(std::vector<BYTE>& received, TimePoint until) {
    CheckLine();
    // The first look after a request lingers, as long as the far end is one that answers at once.
    const TimePoint now = std::chrono::steady_clock::now(), soon = now + kSoon;
    if (TakeWaiting(received, m_asked && m_prompt && soon <= until)) return true;
    if (until <= now) return false;  // whoever only looks
    // Messages that came before wake nobody: they are looked at soon, but not in the way of an answer.
    TimePoint next = std::min(until, soon);
    for (;;) {
        Wait(m_socket.Await(), next);
        CheckLine();
        if (TakeWaiting(received, false)) return true;
        if (std::chrono::steady_clock::now() >= until) return false;
        PumpMessages();
        CheckLine();
        next = until;
    }
}

bool NetworkStream::WasClosedWhileIdle(ITransport::Duration idle) {
    if (m_lost || m_pending || !m_socket.IsOpen() || std::chrono::steady_clock::now() < m_used + idle) return false;
    BYTE block[2048];
    DWORD got = 0;
    const bool closed = m_socket.Receive(block, sizeof block, got) != 0;
    m_early.insert(m_early.end(), block, block + got);
    return closed && m_early.empty();
}

bool NetworkStream::TakeWaiting(std::vector<BYTE>& received, bool linger) {
    if (!m_early.empty()) {
        received.insert(received.end(), m_early.begin(), m_early.end());
        m_early.clear();
        return true;
    }
    BYTE block[2048];
    DWORD got = 0;
    if (const DWORD error = m_socket.Receive(block, sizeof block, got, linger)) Lose(error);
    if (got == 0) {
        if (linger) m_prompt = false;
        if (m_asked) m_askedAt = std::chrono::steady_clock::now();
        m_asked = false;
        return false;
    }
    if (!m_asked && !m_prompt) m_prompt = std::chrono::steady_clock::now() < m_askedAt + kPrompt;
    m_asked = m_pending = false;
    m_used = std::chrono::steady_clock::now();
    received.insert(received.end(), block, block + got);
    return true;
}

void NetworkStream::Wait(HANDLE event, TimePoint until) {
    const HANDLE handles[] = {m_user->abort.Event(), event};
    MsgWaitForMultipleObjects(2, handles, FALSE, MillisecondsUntil(until), QS_ALLINPUT);
}

void NetworkStream::PumpMessages() const {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {  // not ours to swallow: it ends this exchange and the loop outside
            PostQuitMessage(static_cast<int>(message.wParam));
            OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void NetworkStream::CheckLine() const {
    if (m_user->abort.IsRaised()) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
    if (!m_user->open || !m_socket.IsOpen()) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
    if (m_lost) FailBy(CCommException::HardwareError, m_lossError, true);
}

void NetworkStream::Lose(DWORD error) {
    m_lost = true;
    m_lossError = error;
    // What the listener of an unplugged port says.
    m_user->connection.OnSerialCommEvent(CSerialEx::ListenerDiedEvent, CSerialEx::ListenerDiedError);
    FailBy(CCommException::HardwareError, error, true);
}

void NetworkStream::FailBy(int code, DWORD error, bool connected) const {
    const UINT text = TextFor(error, connected);
    if (text != kOther) Fail(code, text);
    CString picture, sentence;
    picture.LoadString(text);
    sentence.Format(picture, m_address.c_str(), static_cast<unsigned>(error));
    OrvikThrowCommException(code, sentence);
}

void NetworkStream::Fail(int code, UINT text) const {
    CString picture, sentence;
    picture.LoadString(text);
    sentence.Format(picture, m_address.c_str());
    OrvikThrowCommException(code, sentence);
}

}  // namespace orvik::detail
