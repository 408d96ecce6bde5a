// A listening socket at this machine, and its address.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "platform/win32.h"

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
