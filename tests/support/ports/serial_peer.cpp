#include "tests/support/ports/serial_peer.h"

SerialPeer::SerialPeer(std::string port) : m_port(std::move(port)) { Plug(); }

SerialPeer::~SerialPeer() {
    if (m_present) Unplug();
}

void SerialPeer::Plug() {
    m_device = AskPeer("add " + m_port);
    m_present = true;
}

void SerialPeer::Unplug() {
    AskPeer("remove " + m_port);
    m_present = false;
}

void SerialPeer::Send(std::string_view bytes) {
    std::string command = "send " + m_port + " ";
    for (const char c : bytes) {
        command += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
        command += "0123456789abcdef"[c & 15];
    }
    AskPeer(command);
}

std::string SerialPeer::Receive(size_t count, int milliseconds) {
    const std::string hex = AskPeer("receive " + m_port + " " + std::to_string(count) + " " + std::to_string(milliseconds));
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

void SerialPeer::Stream() { AskPeer("stream " + m_port); }
void SerialPeer::Raise(const char* line) { AskPeer("raise " + m_port + " " + line); }
void SerialPeer::Drop(const char* line) { AskPeer("drop " + m_port + " " + line); }
void SerialPeer::Error(const char* kind) { AskPeer("count " + m_port + " " + kind); }

int SerialPeer::Get(const char* field) { return std::stoi(AskPeer("get " + m_port + " " + field)); }
bool SerialPeer::IsBreakOn() { return Get("breakOn") != 0; }
int SerialPeer::BreakCount() { return Get("breakCount"); }
int SerialPeer::BreakMilliseconds() { return Get("breakMilliseconds"); }
bool SerialPeer::Dtr() { return (Get("lines") & 0x002) != 0; }
bool SerialPeer::Rts() { return (Get("lines") & 0x004) != 0; }
