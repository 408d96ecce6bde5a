// The far end behind a loopback connection: it runs beside Wine, at the port that $ORVIK_PEER_PORT names.
#include <winsock2.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/ports/serial_peer.h"
#include "tests/support/time_limit.h"

namespace {
[[noreturn]] void Give(const char* why, const std::string& what) {
    std::fprintf(stderr, "far end: %s: %s\n", why, what.c_str());
    std::abort();
}

SOCKET Connect() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const char* const port = std::getenv("ORVIK_PEER_PORT");
    if (!port) Give("not running", "ORVIK_PEER_PORT is not set; start the program through run-with-ports");
    const SOCKET link = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(std::atoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(link, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) Give("no connection", port);
    const char on = 1;
    setsockopt(link, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return link;
}
}  // namespace

std::string AskPeer(const std::string& command) {
    const Awaiting farEnd("the far end to answer");
    static const SOCKET link = Connect();
    const std::string line = command + "\n";
    for (size_t done = 0; done < line.size();) {
        const int count = send(link, line.data() + done, static_cast<int>(line.size() - done), 0);
        if (count <= 0) Give("connection lost", command);
        done += static_cast<size_t>(count);
    }
    std::string answer;
    for (char c = 0; c != '\n';) {
        if (recv(link, &c, 1, 0) != 1) Give("connection lost", command);
        if (c != '\n') answer += c;
    }
    if (answer.compare(0, 2, "ok") != 0) Give(command.c_str(), answer);
    return answer.size() > 3 ? answer.substr(3) : std::string();
}
