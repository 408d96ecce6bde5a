// A server of somebody else's that a test starts on loopback, stops, kills, and ends.
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

// One that nothing has at the moment.
inline int FreePort() {
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool found = bind(probe, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(probe);
    return found ? ntohs(address.sin_port) : 0;
}

inline bool Listens(int port) {
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    const bool listens = connect(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return listens;
}

// Looks again and again, for half a minute at most.
template <class Condition>
bool Becomes(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// What a shell's command says, on both streams.
inline std::string OutputOf(const std::string& command) {
    std::string out;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> block;
    for (size_t got; (got = fread(block.data(), 1, block.size(), pipe)) != 0;) out.append(block.data(), got);
    pclose(pipe);
    return out;
}

class ServerProcess {
public:
    // What it says goes into `log`, behind what is there. In a group of its own, so that its children end with it.
    ServerProcess(const std::vector<std::string>& words, const std::string& log) {
        std::vector<char*> arguments;
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        m_process = fork();
        if (m_process != 0) return;
        setpgid(0, 0);
        const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        dup2(out, 1);
        dup2(out, 2);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    ~ServerProcess() { Kill(); }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    void Pause() { Signal(SIGSTOP); }
    void Continue() { Signal(SIGCONT); }
    // In order; the exit status.
    int Stop(int signal = SIGTERM) { return End(signal); }
    // Itself and its children.
    void Kill() { End(SIGKILL); }
    bool Runs() {
        if (m_process > 0 && waitpid(m_process, &m_status, WNOHANG) == m_process) m_process = -1;
        return m_process > 0;
    }

private:
    void Signal(int signal) {
        if (m_process > 0) kill(-m_process, signal);
    }
    int End(int signal) {
        if (m_process > 0) {
            if (signal == SIGKILL) {
                Signal(signal);
            } else {
                kill(m_process, signal);
            }
            waitpid(m_process, &m_status, 0);
            m_process = -1;
        }
        return m_status;
    }

    pid_t m_process;
    int m_status = 0;
};
