// PtyPeer as a server of its own, for test programs that run under Wine.
//
//     orvik_pty_peer PORTS RECORDS FILE
//
// listens on a free port of the loopback interface, writes its number to FILE once it does, and serves one client after
// another, each command a line and each answer a line, until it is ended. A client's ports go when it does.
#include "pty_peer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>

namespace {
void Serve(int client, PtyPeer& peer) {
    std::string line;
    for (char c; read(client, &c, 1) == 1;) {
        if (c != '\n') {
            line += c;
            continue;
        }
        const std::string answer = peer.Execute(line) + "\n";
        line.clear();
        for (size_t done = 0; done < answer.size();) {
            const ssize_t count = write(client, answer.data() + done, answer.size() - done);
            if (count <= 0) return;
            done += static_cast<size_t>(count);
        }
    }
}
}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "use: orvik_pty_peer PORTS RECORDS FILE\n";
        return 1;
    }
    std::signal(SIGPIPE, SIG_IGN);
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 4) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        std::perror("orvik_pty_peer");
        return 1;
    }
    {
        const std::string file = argv[3];
        std::ofstream(file + ".new") << ntohs(address.sin_port) << "\n";
        if (std::rename((file + ".new").c_str(), file.c_str()) != 0) return 1;
    }
    for (;;) {
        const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) continue;
        const int on = 1;
        setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        PtyPeer peer(argv[1], argv[2]);
        Serve(client, peer);
        close(client);
    }
}
