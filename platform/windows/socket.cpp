#include "platform/socket_internal.h"

#include <mstcpip.h>

#include <algorithm>

#ifndef TCP_MAXRT
#define TCP_MAXRT 5
#endif

namespace orvik::detail {
namespace {
template <class Value>
void Set(SOCKET socket, int level, int option, Value value) {
    setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

// A socket with the event that the system signals when there is something to do.
class Watched {
public:
    Watched(SOCKET socket, long events) : m_socket(socket), m_event(WSACreateEvent()) {
        WSAEventSelect(m_socket, m_event, events);  // which also makes it one that never waits
    }
    ~Watched() {
        closesocket(m_socket);
        if (m_event != WSA_INVALID_EVENT) WSACloseEvent(m_event);
    }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;

    SOCKET Get() const { return m_socket; }
    // The end is told once only: who waits after that is to look again.
    HANDLE Event() const {
        if (m_ended) WSASetEvent(m_event);
        return m_event;
    }
    // Before a try: what comes after this moment signals the event again.
    void Forget() {
        WSANETWORKEVENTS events{};
        if ((Happened(events) & FD_CLOSE) == 0) return;
        m_ended = true;
        m_endError = static_cast<DWORD>(events.iErrorCode[FD_CLOSE_BIT]);
    }
    // What was signalled since it was asked the last time.
    long Happened(WSANETWORKEVENTS& events) const {
        return WSAEnumNetworkEvents(m_socket, m_event, &events) == 0 ? events.lNetworkEvents : 0;
    }
    // Why it ended. The system may tell a reset here alone, and let a receive look like an end in good order.
    DWORD EndError() const { return m_endError != 0 ? m_endError : static_cast<DWORD>(kSocketClosedByPeer); }

private:
    const SOCKET m_socket;
    const WSAEVENT m_event;
    bool m_ended = false;
    DWORD m_endError = 0;
};
}  // namespace

bool StartNetwork() {
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started;
}

DWORD LastSocketError() { return static_cast<DWORD>(WSAGetLastError()); }

DWORD ErrorOfLookUp(int result) {
    switch (result) {
        case WSATRY_AGAIN:
            return kSocketNameUnknownYet;
        case WSA_NOT_ENOUGH_MEMORY:
            return ERROR_NOT_ENOUGH_MEMORY;
        default:
            return kSocketNoSuchHost;
    }
}

SystemSocket NewSocket(int family) {
    const SOCKET made = WSASocketW(family, SOCK_STREAM, 0, nullptr, 0, WSA_FLAG_OVERLAPPED);
    if (made == kNoSocket) return made;
    SetHandleInformation(reinterpret_cast<HANDLE>(made), HANDLE_FLAG_INHERIT, 0);
    u_long on = 1;
    ioctlsocket(made, FIONBIO, &on);
    return made;
}

void CloseSystemSocket(SystemSocket socket) {
    if (socket != kNoSocket) closesocket(socket);
}

// Nobody else may take the port over while it is held.
void PrepareListener(SystemSocket socket) { Set(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, BOOL{TRUE}); }

DWORD ConnectWithin(SystemSocket socket, const SocketAddress& address, int milliseconds) {
    if (connect(socket, address.Get(), address.length) == 0) return ERROR_SUCCESS;
    if (WSAGetLastError() != WSAEWOULDBLOCK) return LastSocketError();
    // Not WSAPoll: it did not tell of a refused connection before Windows 10.
    fd_set writable, failed;
    FD_ZERO(&writable);
    FD_ZERO(&failed);
    FD_SET(socket, &writable);
    FD_SET(socket, &failed);
    timeval left{milliseconds / 1000, milliseconds % 1000 * 1000};
    const int ready = select(0, nullptr, &writable, &failed, &left);
    if (ready == 0) return kSocketTimeOut;
    if (ready < 0) return LastSocketError();
    DWORD error = 0;
    int length = sizeof error;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) != 0) return LastSocketError();
    return error;
}
}  // namespace orvik::detail

using namespace orvik::detail;

struct Socket::State : Watched {
    explicit State(SOCKET socket) : Watched(socket, FD_READ | FD_WRITE | FD_CLOSE) {}
};

Socket::Socket() = default;
Socket::~Socket() = default;
Socket::Socket(Socket&& other) noexcept = default;
Socket& Socket::operator=(Socket&& other) noexcept = default;

Socket::Socket(ULONG_PTR connected) : m_state(std::make_unique<State>(static_cast<SOCKET>(connected))) {
    const SOCKET socket = m_state->Get();
    Set(socket, IPPROTO_TCP, TCP_NODELAY, BOOL{TRUE});
    tcp_keepalive alive{1, 10'000, 3'000};
    DWORD none = 0;
    WSAIoctl(socket, SIO_KEEPALIVE_VALS, &alive, sizeof alive, nullptr, 0, &none, nullptr, nullptr);
    Set(socket, IPPROTO_TCP, TCP_MAXRT, DWORD{10});
}

void Socket::Close() { m_state.reset(); }

DWORD Socket::Send(const void* data, DWORD size, DWORD& sent) {
    sent = 0;
    if (!m_state) return ERROR_INVALID_HANDLE;
    const int most = static_cast<int>(std::min<DWORD>(size, 1u << 30));
    int count = send(m_state->Get(), static_cast<const char*>(data), most, 0);
    if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK) {
        m_state->Forget();  // what has come in would end a wait for room at once
        count = send(m_state->Get(), static_cast<const char*>(data), most, 0);
    }
    if (count >= 0) sent = static_cast<DWORD>(count);
    return count >= 0 || WSAGetLastError() == WSAEWOULDBLOCK ? ERROR_SUCCESS : LastSocketError();
}

DWORD Socket::Receive(void* data, DWORD size, DWORD& got, bool) {
    got = 0;
    if (!m_state) return ERROR_INVALID_HANDLE;
    m_state->Forget();
    const int count = recv(m_state->Get(), static_cast<char*>(data), static_cast<int>(std::min<DWORD>(size, 1u << 30)), 0);
    if (count > 0) got = static_cast<DWORD>(count);
    if (count == 0 && size != 0) return m_state->EndError();
    return count >= 0 || WSAGetLastError() == WSAEWOULDBLOCK ? ERROR_SUCCESS : LastSocketError();
}

HANDLE Socket::Await(bool) { return m_state ? m_state->Event() : nullptr; }

struct SocketListener::State : Watched {
    explicit State(SOCKET socket) : Watched(socket, FD_ACCEPT) {}
};

SocketListener::SocketListener() = default;
SocketListener::~SocketListener() = default;

DWORD SocketListener::Listen(const char* host, WORD port) {
    if (m_state) return ERROR_ALREADY_INITIALIZED;
    if (!StartNetwork()) return kSocketNetworkDown;
    DWORD error = ERROR_SUCCESS;
    const SystemSocket socket = OpenListener(host, port, error);
    if (socket == kNoSocket) return error;
    m_state = std::make_unique<State>(socket);
    return ERROR_SUCCESS;
}

WORD SocketListener::Port() const { return m_state ? BoundPort(m_state->Get()) : WORD{0}; }
void SocketListener::Close() { m_state.reset(); }

DWORD SocketListener::Accept(Socket& socket) {
    socket.Close();
    if (!m_state) return ERROR_INVALID_HANDLE;
    // Only who was signalled is accepted: Wine may signal late for one that was taken before its signal, and after the try in
    // vain that follows it signals nobody any more.
    WSANETWORKEVENTS events{};
    if ((m_state->Happened(events) & FD_ACCEPT) == 0) return ERROR_SUCCESS;
    const SOCKET come = accept(m_state->Get(), nullptr, nullptr);
    if (come == INVALID_SOCKET) {
        const int error = WSAGetLastError();
        return error == WSAEWOULDBLOCK || error == WSAECONNRESET ? ERROR_SUCCESS : LastSocketError();
    }
    SetHandleInformation(reinterpret_cast<HANDLE>(come), HANDLE_FLAG_INHERIT, 0);
    socket = Socket(static_cast<ULONG_PTR>(come));
    return ERROR_SUCCESS;
}

HANDLE SocketListener::Await() { return m_state ? m_state->Event() : nullptr; }
