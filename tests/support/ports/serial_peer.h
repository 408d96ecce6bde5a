// The other end of a serial port, in a test's own words. The same on both homes: the far end is a pseudo terminal, played
// in this process natively and by a server beside Wine on Windows.
#pragma once

#include <string>
#include <string_view>

// One command of the far end (pty_peer.h) and its answer without "ok "; a failure ends the test program, since nothing
// after it means anything.
std::string AskPeer(const std::string& command);

class SerialPeer {
public:
    // The port of this name is present while the object lives.
    explicit SerialPeer(std::string port = "COM7");
    ~SerialPeer();
    SerialPeer(const SerialPeer&) = delete;
    SerialPeer& operator=(const SerialPeer&) = delete;

    const std::string& Port() const { return m_port; }
    const char* Name() const { return m_port.c_str(); }
    // The device's path on the system that the far end runs on.
    const std::string& Device() const { return m_device; }

    // Bytes that arrive at the port.
    void Send(std::string_view bytes);
    // Bytes that were written to the port: `count` of them, or fewer when the time ran out.
    std::string Receive(size_t count, int milliseconds = 2000);
    // From now on bytes arrive without an end.
    void Stream();

    // The device is pulled out; Plug puts another one in.
    void Unplug();
    void Plug();

    // Modem lines by name: cts, dsr, rng, dcd.
    void Raise(const char* line);
    void Drop(const char* line);
    // A line error comes in: frame, overrun, parity, brk (a break), buf_overrun.
    void Error(const char* kind);

    bool IsBreakOn();
    int BreakCount();
    int BreakMilliseconds();  // of the last break that ended
    // The outputs that the program under test holds.
    bool Dtr();
    bool Rts();

private:
    int Get(const char* field);
    std::string m_port, m_device;
    bool m_present = false;
};
