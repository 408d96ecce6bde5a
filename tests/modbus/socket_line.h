// Network connections for tests: a listening socket at this machine, and a transport over a connected one. Plain and blocking;
// what a product's transport has to tell of lost connections is not its affair.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "comm/comm_exception.h"
#include "comm/line_address.h"
#include "comm/transport.h"

inline sockaddr_in LocalAddress(WORD port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}
inline WORD PortOf(int socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}
inline std::string UrlOf(int socket) { return "tcp://127.0.0.1:" + std::to_string(PortOf(socket)); }
// A socket that waits for connections, at a port of the system's choice.
inline int Listening() {
    const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = LocalAddress(0);
    EXPECT_EQ(bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listening, 1), 0);
    return listening;
}

class SocketLine : public ITransport {
public:
    ~SocketLine() override { Close(); }
    void Open(const char* address, const CLineSettings&, TimePoint) override {
        const sockaddr_in far = LocalAddress(CLineAddress::Parse(address).port);
        m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(m_socket, reinterpret_cast<const sockaddr*>(&far), sizeof far) != 0)
            OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
    }
    void Close() override {
        if (m_socket >= 0) close(m_socket);
        m_socket = -1;
    }
    bool IsOpen() const override { return m_socket >= 0; }
    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Send(std::span<const BYTE> bytes, TimePoint) override {
        if (send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size()))
            OrvikThrowCommException(CCommException::HardwareError, nullptr);
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Now()).count();
        pollfd waiting = {m_socket, POLLIN, 0};
        if (poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0) <= 0) return false;
        BYTE block[512];
        const ssize_t got = recv(m_socket, block, sizeof block, 0);
        if (got <= 0) OrvikThrowCommException(CCommException::HardwareError, nullptr);
        received.insert(received.end(), block, block + got);
        return true;
    }
    void Abort() override {}

private:
    int m_socket = -1;
};
