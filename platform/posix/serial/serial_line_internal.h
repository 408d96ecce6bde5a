// The line under a port: a locked terminal device in raw mode, its settings, modem lines and counters. Every request to the
// device is here. One thread at a time. Failures are Win32 codes; 21 means that the device is gone, 1 that it has no such thing.
#pragma once

#include <termios.h>

#include <memory>
#include <string>

#include "platform/posix/serial/serial.h"

namespace orvik::detail {

class SerialLine {
public:
    // Opens, locks and sets raw mode; null and the code in `error` on failure. The lock comes before any setting is touched.
    static std::unique_ptr<SerialLine> Open(const std::string& device, DWORD access, DWORD& error);
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    int Descriptor() const { return m_fd; }

    // Gives up the lock and puts the settings back as they were found. What is still to be sent gets a moment to go out (80 ms at
    // most) and is thrown away then, for the system would keep the closing thread waiting for it. The descriptor stays open.
    void Release();

    const DCB& Settings() const { return m_dcb; }
    DWORD Apply(const DCB& dcb);
    DWORD Probe() const;  // whether the device still answers

    bool HasModemLines() const { return m_hasModemLines; }
    bool HasCounters() const { return m_hasCounters; }
    DWORD GetModemLines(DWORD& status);                // MS_ bits
    DWORD SetModemLines(bool on, bool dtr, bool rts);  // those of the two that are chosen
    DWORD TakeErrors(DWORD& errors);                   // CE_ bits of what was counted since the last call
    DWORD BytesWaiting(DWORD& bytes) const;            // received, still with the system
    DWORD BytesToSend(DWORD& bytes) const;
    bool IsTransmitterEmpty() const;
    DWORD DropReceived();
    DWORD DropUnsent();
    DWORD Break(bool on);
    DWORD Hold(bool sending);  // stops or restarts sending, as an Xoff or Xon from the far end would

private:
    explicit SerialLine(int fd) : m_fd(fd) {}
    DWORD Begin();

    const int m_fd;
    bool m_released = false, m_isPseudo = false, m_hasModemLines = false, m_hasCounters = false;
    termios m_found{};
    DCB m_dcb{};
    struct Counters {
        int frame = 0, overrun = 0, parity = 0, breaks = 0, full = 0;
    } m_counted;
    DWORD Count(Counters& now) const;
};

// Sets any rate, with the system's own number for it. In a file of its own, for its header excludes <termios.h>. Error code of
// errno, 0 if fine.
int SetAnySpeed(int fd, unsigned rate);

}  // namespace orvik::detail
