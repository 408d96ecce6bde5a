// Round trips over a connection of this machine: a server on a thread of its own that answers at once, a bare client of send and
// recv to hold others against, and the time that a trip takes.
#pragma once

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include "bench/bench_support.h"

namespace bench {
using Octets = std::vector<uint8_t>;

inline int NewSocket() { return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }
inline sockaddr_in Loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}
inline void NoDelay(int fd) {
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// Serves one that connects, until that one goes.
class LoopbackServer {
public:
    // Requests of that many bytes; the answer to one.
    LoopbackServer(size_t request, std::function<const Octets&(const Octets&)> answer) {
        sockaddr_in address = Loopback(0);
        BENCH_REQUIRE(bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(m_listener, 1) == 0);
        socklen_t length = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this, request, answer] {
            const int fd = accept(m_listener, nullptr, nullptr);
            NoDelay(fd);
            Octets asked(request);
            while (recv(fd, asked.data(), request, MSG_WAITALL) == static_cast<ssize_t>(request)) {
                const Octets& said = answer(asked);
                if (send(fd, said.data(), said.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(said.size())) break;
            }
            close(fd);
        });
    }
    ~LoopbackServer() {
        m_thread.join();
        close(m_listener);
    }
    uint16_t Port() const { return m_port; }

private:
    const int m_listener = NewSocket();
    uint16_t m_port = 0;
    std::thread m_thread;
};

// A trip of bare system calls.
class BareTrip {
public:
    BareTrip(const LoopbackServer& server, Octets request, size_t answer) : m_request(std::move(request)), m_answer(answer) {
        sockaddr_in address = Loopback(server.Port());
        BENCH_REQUIRE(connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
        NoDelay(m_fd);
    }
    ~BareTrip() { close(m_fd); }
    BareTrip(const BareTrip&) = delete;
    BareTrip& operator=(const BareTrip&) = delete;
    void operator()() {
        BENCH_REQUIRE(send(m_fd, m_request.data(), m_request.size(), 0) == static_cast<ssize_t>(m_request.size()));
        BENCH_REQUIRE(recv(m_fd, m_answer.data(), m_answer.size(), MSG_WAITALL) == static_cast<ssize_t>(m_answer.size()));
    }

private:
    const int m_fd = NewSocket();
    const Octets m_request;
    Octets m_answer;
};

// Nanoseconds for one of some trips, after one for nothing: the machine has just done something else.
template <class Trip>
double TimeTrips(Trip& trip) {
    constexpr int trips = 50;
    trip();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < trips; ++i) trip();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / trips;
}

inline double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}
}  // namespace bench
