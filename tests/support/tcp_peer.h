// The far end of a network line, in a test's own words: a server on this machine that serves one connection at a time, on the
// thread of the test. Every wait ends after five seconds; the test then fails by what it did not get.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/socket.h"

class TcpPeer {
public:
    TcpPeer() { EXPECT_EQ(0u, m_listener.Listen("127.0.0.1", 0)); }

    std::string Address(const char* scheme = "tcp") const {
        return std::string(scheme) + "://127.0.0.1:" + std::to_string(m_listener.Port());
    }
    // Whoever connects next, in the place of the one before.
    void Accept() {
        do ASSERT_EQ(0u, m_listener.Accept(m_socket));
        while (!m_socket.IsOpen() && Wait(m_listener.Await()));
        ASSERT_TRUE(m_socket.IsOpen());
    }
    void StopListening() { m_listener.Close(); }

    void Send(std::string_view bytes) {
        DWORD sent = 0;
        EXPECT_EQ(0u, m_socket.Send(bytes.data(), static_cast<DWORD>(bytes.size()), sent));
        EXPECT_EQ(bytes.size(), sent);
    }
    // So many bytes, or fewer when the far end closes.
    std::string Receive(size_t count) {
        std::string bytes;
        while (bytes.size() < count) {
            char block[32768];
            DWORD got = 0;
            if (m_socket.Receive(block, static_cast<DWORD>(std::min(sizeof block, count - bytes.size())), got) != 0) break;
            bytes.append(block, got);
            if (got == 0 && !Wait(m_socket.Await())) break;
        }
        return bytes;
    }
    // In good order; with bytes that nobody has received it is a reset.
    void Close() { m_socket.Close(); }

private:
    static bool Wait(HANDLE event) { return ::WaitForSingleObject(event, 5000) == WAIT_OBJECT_0; }

    SocketListener m_listener;
    Socket m_socket;
};
