// Looking names up, and connecting, with a limit of time: what is the same on both homes.
#include "platform/socket_internal.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>

namespace orvik::detail {
namespace {
using Clock = std::chrono::steady_clock;

// A name being looked up. The system's call cannot be ended and may take half a minute: it has a thread to itself, one a name, so
// that however often a line is tried anew, no more threads wait than there are names.
struct Question {
    std::mutex lock;
    std::condition_variable answered;
    bool done = false;
    DWORD error = ERROR_SUCCESS;
    std::vector<SocketAddress> addresses;
};

// Never destroyed: a thread may come back when the process is about to end.
struct Questions {
    std::mutex lock;
    std::map<std::string, std::shared_ptr<Question>> open;
    static Questions& The() {
        static auto* questions = new Questions;
        return *questions;
    }
};

// Runs `work` on a thread of its own, for which nobody waits. False where the system has no more threads.
using Work = std::function<void()>;
DWORD WINAPI Run(LPVOID work) {
    const std::unique_ptr<Work> mine(static_cast<Work*>(work));
    (*mine)();
    return 0;
}
bool Detach(Work work) {
    auto given = std::make_unique<Work>(std::move(work));
    const HANDLE thread = CreateThread(nullptr, 0, Run, given.get(), 0, nullptr);
    if (thread == nullptr) return false;
    given.release();  // the thread's
    CloseHandle(thread);
    return true;
}

void Answer(const std::string& host, const std::shared_ptr<Question>& question) {
    std::vector<SocketAddress> addresses;
    const DWORD error = LookUp(host.c_str(), 0, addresses);
    {
        const std::lock_guard lock(Questions::The().lock);
        Questions::The().open.erase(host);
    }
    const std::lock_guard lock(question->lock);
    question->error = error;
    question->addresses = std::move(addresses);
    question->done = true;
    question->answered.notify_all();
}

DWORD LookUpUntil(const std::string& host, Clock::time_point until, std::vector<SocketAddress>& addresses) {
    if (LookUp(host.c_str(), AI_NUMERICHOST, addresses) == ERROR_SUCCESS) return ERROR_SUCCESS;
    std::shared_ptr<Question> question;
    {
        const std::lock_guard lock(Questions::The().lock);
        std::shared_ptr<Question>& open = Questions::The().open[host];
        if (!open) {
            open = std::make_shared<Question>();
            if (!Detach([host, asked = open] { Answer(host, asked); })) {
                Questions::The().open.erase(host);
                return ERROR_NOT_ENOUGH_MEMORY;
            }
        }
        question = open;
    }
    std::unique_lock lock(question->lock);
    if (!question->answered.wait_until(lock, until, [&] { return question->done; })) return kSocketNameUnknownYet;
    addresses = question->addresses;
    return question->error;
}

void SetPort(SocketAddress& address, WORD port) {
    // At the same place in both kinds of address.
    if (address.Get()->sa_family == AF_INET6) {
        reinterpret_cast<sockaddr_in6*>(&address.address)->sin6_port = htons(port);
    } else {
        reinterpret_cast<sockaddr_in*>(&address.address)->sin_port = htons(port);
    }
}

// Says nothing of the far end, so that what another address has met tells more.
bool IsHere(DWORD error) {
    return error == ERROR_SUCCESS || error == kSocketNetworkUnreachable || error == kSocketNoSuchAddress ||
           error == kSocketNetworkDown;
}

SystemSocket ConnectUntil(const std::string& host, WORD port, Clock::time_point until, DWORD& error) {
    std::vector<SocketAddress> addresses;
    error = LookUpUntil(host, until, addresses);
    if (error != ERROR_SUCCESS) return kNoSocket;
    for (size_t i = 0; i < addresses.size(); ++i) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
        if (left <= 0) {
            if (IsHere(error)) error = kSocketTimeOut;
            break;
        }
        SetPort(addresses[i], port);
        const SystemSocket socket = NewSocket(addresses[i].Get()->sa_family);
        const auto share = std::max<long long>(1, left / static_cast<long long>(addresses.size() - i));
        const DWORD failure = socket == kNoSocket
                                  ? LastSocketError()
                                  : ConnectWithin(socket, addresses[i], static_cast<int>(std::min(share, 1LL << 30)));
        if (failure == ERROR_SUCCESS) {
            error = ERROR_SUCCESS;
            return socket;
        }
        CloseSystemSocket(socket);
        if (IsHere(error)) error = failure;
    }
    if (error == ERROR_SUCCESS) error = kSocketNoSuchHost;
    return kNoSocket;
}
}  // namespace

SocketAddress::SocketAddress(const addrinfo& info, WORD port) : length(static_cast<socklen_t>(info.ai_addrlen)) {
    std::memcpy(&address, info.ai_addr, std::min<size_t>(info.ai_addrlen, sizeof address));
    SetPort(*this, port);
}

DWORD LookUp(const char* host, int flags, std::vector<SocketAddress>& addresses) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (const int result = getaddrinfo(host, nullptr, &hints, &found)) return ErrorOfLookUp(result);
    for (const addrinfo* at = found; at != nullptr; at = at->ai_next) {
        if (at->ai_family == AF_INET || at->ai_family == AF_INET6) addresses.emplace_back(*at, WORD{0});
    }
    freeaddrinfo(found);
    return addresses.empty() ? static_cast<DWORD>(kSocketNoSuchHost) : ERROR_SUCCESS;
}

SystemSocket OpenListener(const char* host, WORD port, DWORD& error) {
    std::vector<SocketAddress> addresses;
    if (*host == 0) {
        // One socket of the newer kind takes both; a system without it has the older.
        sockaddr_in6 newer{};
        newer.sin6_family = AF_INET6;
        sockaddr_in older{};
        older.sin_family = AF_INET;
        for (int i = 0; i < 2; ++i) {
            SocketAddress& any = addresses.emplace_back();
            any.length = static_cast<socklen_t>(i == 0 ? sizeof newer : sizeof older);
            std::memcpy(&any.address, i == 0 ? static_cast<const void*>(&newer) : &older, static_cast<size_t>(any.length));
        }
    } else if ((error = LookUp(host, 0, addresses)) != ERROR_SUCCESS) {
        return kNoSocket;
    }
    for (SocketAddress& address : addresses) {
        SetPort(address, port);
        const SystemSocket socket = NewSocket(address.Get()->sa_family);
        if (socket != kNoSocket) {
            PrepareListener(socket);
            if (address.Get()->sa_family == AF_INET6 && *host == 0) {
                const int no = 0;
                setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, reinterpret_cast<const char*>(&no), sizeof no);
            }
            if (bind(socket, address.Get(), address.length) == 0 && listen(socket, SOMAXCONN) == 0) return socket;
        }
        error = LastSocketError();
        CloseSystemSocket(socket);
        if (error == kSocketAddressInUse || error == kSocketDenied) break;  // another address would hide it
    }
    return kNoSocket;
}

WORD BoundPort(SystemSocket socket) {
    SocketAddress own;
    own.length = sizeof own.address;
    if (getsockname(socket, reinterpret_cast<sockaddr*>(&own.address), &own.length) != 0) return 0;
    return ntohs(own.Get()->sa_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6*>(own.Get())->sin6_port
                                                  : reinterpret_cast<const sockaddr_in*>(own.Get())->sin_port);
}

}  // namespace orvik::detail

using namespace orvik::detail;

// The thread that connects holds a share: a connection that comes too late is closed with the last one.
struct SocketConnect::State {
    HANDLE done = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    DWORD error = ERROR_IO_PENDING;
    Socket socket;
    ~State() { CloseHandle(done); }

    void Connect(const std::string& host, WORD port, Clock::time_point until) {
        try {
            const SystemSocket connected = ConnectUntil(host, port, until, error);
            if (connected != kNoSocket) socket = Socket(static_cast<ULONG_PTR>(connected));
        } catch (const std::exception&) {  // no memory
            error = ERROR_NOT_ENOUGH_MEMORY;
        }
        SetEvent(done);
    }
};

SocketConnect::SocketConnect(const char* host, WORD port, DWORD timeout) : m_state(std::make_shared<State>()) {
    const auto until = Clock::now() + std::chrono::milliseconds(timeout);
    if (!StartNetwork()) {
        m_state->error = kSocketNetworkDown;
    } else if (!Detach([state = m_state, name = std::string(host), port, until] { state->Connect(name, port, until); })) {
        m_state->error = ERROR_NOT_ENOUGH_MEMORY;
    } else {
        return;
    }
    SetEvent(m_state->done);
}

SocketConnect::~SocketConnect() = default;
HANDLE SocketConnect::Done() const { return m_state->done; }

DWORD SocketConnect::Take(Socket& socket) {
    if (WaitForSingleObject(m_state->done, 0) != WAIT_OBJECT_0) return ERROR_IO_PENDING;
    socket = std::move(m_state->socket);
    return m_state->error;
}
