#include "platform/socket_internal.h"

#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "platform/posix/kernel/wait_internal.h"

namespace orvik::detail {
namespace {
void Set(int socket, int level, int option, int value) { setsockopt(socket, level, option, &value, sizeof value); }

bool WouldWait(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

// A descriptor to wait for: the thread that waits for the event watches the descriptor itself, as it does for ports.
class Watched {
public:
    explicit Watched(int fd)
        : m_fd(fd), m_event(std::make_shared<Event>(true, false)), m_source(std::make_shared<Source>(*this)) {
        m_handle = NewHandle(m_event);
    }
    ~Watched() {
        m_event->SetAndDetach(*m_source);
        if (m_handle != nullptr) CloseHandle(m_handle);
        close(m_fd);
    }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;

    int Fd() const { return m_fd; }
    HANDLE Await(short events) {
        m_source->m_events = events;
        if (!m_source->m_attached.exchange(true)) {
            m_event->Reset();
            m_event->Attach(m_source);
        }
        return m_handle;
    }

private:
    struct Source : IoSource {
        explicit Source(Watched& watched) : m_watched(watched), m_fd(watched.m_fd) {}
        Interest GetInterest() override { return {m_fd, m_events, kNever}; }
        void Serve(short) override {
            m_attached = false;
            m_watched.m_event->SetAndDetach(*this);
        }
        Watched& m_watched;
        const int m_fd;
        std::atomic<short> m_events{POLLIN};
        std::atomic<bool> m_attached{false};
    };

    const int m_fd;
    std::shared_ptr<Event> m_event;
    std::shared_ptr<Source> m_source;
    HANDLE m_handle = nullptr;
};
}  // namespace

bool StartNetwork() { return true; }
DWORD LastSocketError() { return errno == ETIMEDOUT ? static_cast<DWORD>(kSocketTimeOut) : ErrorFromErrno(errno); }

DWORD ErrorOfLookUp(int result) {
    switch (result) {
        case EAI_AGAIN:
            return kSocketNameUnknownYet;
        case EAI_MEMORY:
            return ERROR_NOT_ENOUGH_MEMORY;
        case EAI_SYSTEM:
            return LastSocketError();
        default:
            return kSocketNoSuchHost;
    }
}

SystemSocket NewSocket(int family) { return socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0); }

void CloseSystemSocket(SystemSocket socket) {
    if (socket != kNoSocket) close(socket);
}

// A server that was stopped may start again at once, though its last connections still fade away.
void PrepareListener(SystemSocket socket) { Set(socket, SOL_SOCKET, SO_REUSEADDR, 1); }

DWORD ConnectWithin(SystemSocket socket, const SocketAddress& address, int milliseconds) {
    if (connect(socket, address.Get(), address.length) == 0) return ERROR_SUCCESS;
    if (errno != EINPROGRESS && errno != EINTR) return LastSocketError();
    const int64_t deadline = DeadlineIn(static_cast<DWORD>(milliseconds));
    for (;;) {
        pollfd polled{socket, POLLOUT, 0};
        const timespec left = ToTimespec(std::max<int64_t>(0, deadline - NowNs()));
        const int ready = ppoll(&polled, 1, &left, nullptr);
        if (ready > 0) break;
        if (ready == 0) return kSocketTimeOut;
        if (errno != EINTR) return LastSocketError();
    }
    int error = 0;
    socklen_t length = sizeof error;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) == 0) errno = error;
    return errno == 0 ? ERROR_SUCCESS : LastSocketError();
}
}  // namespace orvik::detail

using namespace orvik::detail;

struct Socket::State : Watched {
    using Watched::Watched;
};

Socket::Socket() = default;
Socket::~Socket() = default;
Socket::Socket(Socket&& other) noexcept = default;
Socket& Socket::operator=(Socket&& other) noexcept = default;

Socket::Socket(ULONG_PTR connected) : m_state(std::make_unique<State>(static_cast<int>(connected))) {
    const int fd = m_state->Fd();
    Set(fd, IPPROTO_TCP, TCP_NODELAY, 1);
    Set(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
    Set(fd, IPPROTO_TCP, TCP_KEEPIDLE, 10);
    Set(fd, IPPROTO_TCP, TCP_KEEPINTVL, 3);
    Set(fd, IPPROTO_TCP, TCP_KEEPCNT, 3);
    Set(fd, IPPROTO_TCP, TCP_USER_TIMEOUT, 10'000);
    // For who lingers; all else says by itself that it does not wait.
    const timeval moment{0, 2'000};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &moment, sizeof moment);
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
}

void Socket::Close() { m_state.reset(); }

DWORD Socket::Send(const void* data, DWORD size, DWORD& sent) {
    sent = 0;
    if (!m_state) return ERROR_INVALID_HANDLE;
    const ssize_t count = send(m_state->Fd(), data, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) sent = static_cast<DWORD>(count);
    if (count >= 0 || WouldWait(errno)) return ERROR_SUCCESS;
    return errno == EPIPE ? static_cast<DWORD>(kSocketReset) : LastSocketError();
}

DWORD Socket::Receive(void* data, DWORD size, DWORD& got, bool linger) {
    got = 0;
    if (!m_state) return ERROR_INVALID_HANDLE;
    const ssize_t count = recv(m_state->Fd(), data, size, linger ? 0 : MSG_DONTWAIT);
    if (count > 0) got = static_cast<DWORD>(count);
    if (count == 0 && size != 0) return kSocketClosedByPeer;
    return count >= 0 || WouldWait(errno) ? ERROR_SUCCESS : LastSocketError();
}

HANDLE Socket::Await(bool toSend) { return m_state ? m_state->Await(toSend ? POLLOUT : POLLIN) : nullptr; }

struct SocketListener::State : Watched {
    using Watched::Watched;
};

SocketListener::SocketListener() = default;
SocketListener::~SocketListener() = default;

DWORD SocketListener::Listen(const char* host, WORD port) {
    if (m_state) return ERROR_ALREADY_INITIALIZED;
    DWORD error = ERROR_SUCCESS;
    const SystemSocket socket = OpenListener(host, port, error);
    if (socket == kNoSocket) return error;
    m_state = std::make_unique<State>(socket);
    return ERROR_SUCCESS;
}

WORD SocketListener::Port() const { return m_state ? BoundPort(m_state->Fd()) : WORD{0}; }
void SocketListener::Close() { m_state.reset(); }

DWORD SocketListener::Accept(Socket& socket) {
    socket.Close();
    if (!m_state) return ERROR_INVALID_HANDLE;
    const int fd = accept4(m_state->Fd(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) socket = Socket(static_cast<ULONG_PTR>(fd));
    // One that has gone again before it was taken is nobody.
    return fd >= 0 || WouldWait(errno) || errno == ECONNABORTED ? ERROR_SUCCESS : LastSocketError();
}

HANDLE SocketListener::Await() { return m_state ? m_state->Await(POLLIN) : nullptr; }
