// TCP connections that never keep their caller waiting: each says what it can do now, and gives an event to wait for. Failures
// are the system's own codes, those of SocketError among them. An object belongs to one thread at a time, and closes what it
// holds.
#pragma once

#include <memory>
#include <string>

#include "platform/api.h"
#include "platform/win32.h"

// The codes that a program may want to tell apart; the same numbers on both homes.
enum SocketError : DWORD {
    kSocketClosedByPeer = 1226,  // in good order; a reset is 10054
    kSocketDenied = 10013,
    kSocketAddressInUse = 10048,
    kSocketNoSuchAddress = 10049,  // none of this machine's
    kSocketNetworkDown = 10050,
    kSocketNetworkUnreachable = 10051,
    kSocketAborted = 10053,
    kSocketReset = 10054,
    kSocketTimeOut = 10060,
    kSocketRefused = 10061,
    kSocketHostUnreachable = 10065,
    kSocketNoSuchHost = 11001,
    kSocketNameUnknownYet = 11002,  // the name service gave no answer
};

// One end of a connection. Small pieces go out at once. An idle connection is tried every 10 s, and one whose far end
// acknowledges nothing any more fails after 10 to 20 s, with 10060.
class ORVIK_API Socket {
public:
    Socket();
    ~Socket();
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;

    bool IsOpen() const { return m_state != nullptr; }
    void Close();

    // Sends what there is room for: `sent` may be less than `size`, and 0.
    DWORD Send(const void* data, DWORD size, DWORD& sent);
    // Takes what has come, up to `size`; `got` is 0 while there is nothing. 1226 when everything is read and the far end has
    // closed. Who is sure of an answer may `linger` for it, some 2 ms: where the system has a cheaper wait than that for an
    // event.
    DWORD Receive(void* data, DWORD size, DWORD& got, bool linger = false);
    // The event that tells that Receive is worth a try, or Send after one that sent nothing; then Receive comes before the next
    // wait for it. To be asked for before every wait. It stays this object's.
    HANDLE Await(bool toSend = false);

private:
    friend class SocketConnect;
    friend class SocketListener;
    struct State;
    explicit Socket(ULONG_PTR connected);  // the system's own handle, taken over
    std::unique_ptr<State> m_state;
};

// A connection in the making. A name is looked up and all its addresses are tried on a thread of its own, the time shared among
// them; whoever loses patience destroys this object and waits for nothing.
class ORVIK_API SocketConnect {
public:
    // `host`: a name, or an address without brackets. `timeout`: milliseconds for the whole of it.
    SocketConnect(const char* host, WORD port, DWORD timeout);
    ~SocketConnect();
    SocketConnect(const SocketConnect&) = delete;
    SocketConnect& operator=(const SocketConnect&) = delete;

    HANDLE Done() const;  // signalled at the end, whatever it is
    // Once done: 0 and the connection, or why there is none.
    DWORD Take(Socket& socket);

private:
    struct State;
    std::shared_ptr<State> m_state;
};

// Where connections come in.
class ORVIK_API SocketListener {
public:
    SocketListener();
    ~SocketListener();
    SocketListener(const SocketListener&) = delete;
    SocketListener& operator=(const SocketListener&) = delete;

    // An empty host: all interfaces. Port 0: a free one. 1247 if it listens already.
    DWORD Listen(const char* host, WORD port);
    WORD Port() const;  // 0 while it does not listen
    void Close();
    // The next one who has come; `socket` stays closed while there is nobody.
    DWORD Accept(Socket& socket);
    HANDLE Await();  // as that of a Socket

private:
    struct State;
    std::unique_ptr<State> m_state;
};
