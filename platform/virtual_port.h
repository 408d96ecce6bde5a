// A serial port without hardware: the two ends of a pseudo-terminal. A program opens the port by its name like any other, and
// this object plays the device on the other end. One thread at a time on an object; the port's own end may be opened by any
// thread or process.
#pragma once

#include <memory>
#include <string>

#include "platform/api.h"
#include "platform/win32.h"

class ORVIK_API VirtualPort {
public:
    VirtualPort();
    ~VirtualPort();  // unplugs
    VirtualPort(const VirtualPort&) = delete;
    VirtualPort& operator=(const VirtualPort&) = delete;

    // 0, or the Win32 code: 50 where the system has no such ports (Windows), 1247 when created already. With `link` (a path) a
    // symbolic link of that name points to the device, and goes with the port; an existing link is replaced, unless it is that of
    // another such port that lives: error 32. Any other existing file is error 183.
    DWORD Create(const char* link = nullptr);
    // Pulls the plug: who holds the port sees its device gone. Again harmless.
    void Unplug();
    bool IsPlugged() const;

    // The name that opens the port ("/dev/pts/7"); empty while unplugged.
    const std::string& GetDeviceName() const;

    // Takes what the port's user sent: waits up to `timeout` ms for the first byte and gives what is there, up to `size`. 0 with
    // `read` 0 after the time-out; 6 while unplugged.
    DWORD Read(void* data, DWORD size, DWORD& read, DWORD timeout);
    // Sends all bytes to the port's user. 1460 when its buffer stays full for `timeout` ms; 6 while unplugged.
    DWORD Write(const void* data, DWORD size, DWORD timeout = 1000);

private:
    struct State;
    std::unique_ptr<State> m_state;
};
