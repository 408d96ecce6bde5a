// What socket_connect.cpp needs of the twins. Included before any other header of the house: Windows' own headers want this
// order.
#pragma once

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

#include <vector>

#include "platform/socket.h"

namespace orvik::detail {

#if defined(_WIN32)
using SystemSocket = SOCKET;
constexpr SystemSocket kNoSocket = INVALID_SOCKET;
#else
using SystemSocket = int;
constexpr SystemSocket kNoSocket = -1;
#endif

struct SocketAddress {
    sockaddr_storage address{};
    socklen_t length = 0;

    SocketAddress() = default;
    SocketAddress(const addrinfo& info, WORD port);
    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

// The addresses of a name, in the order in which the system would try them. `flags` are getaddrinfo's.
DWORD LookUp(const char* host, int flags, std::vector<SocketAddress>& addresses);
// Listens at the first address that lets it; kNoSocket and why, where none does.
SystemSocket OpenListener(const char* host, WORD port, DWORD& error);
WORD BoundPort(SystemSocket socket);

// The twins' part.
bool StartNetwork();
DWORD LastSocketError();
DWORD ErrorOfLookUp(int result);
// Neither waits nor goes to child processes; kNoSocket on failure.
SystemSocket NewSocket(int family);
void CloseSystemSocket(SystemSocket socket);
void PrepareListener(SystemSocket socket);
// Waits up to `milliseconds` for the connection to stand.
DWORD ConnectWithin(SystemSocket socket, const SocketAddress& address, int milliseconds);

}  // namespace orvik::detail
