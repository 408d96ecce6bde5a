// A port under test and its far end.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "comm/serial.h"
#include "tests/support/ports/serial_peer.h"
#include "tests/support/time_limit.h"

// Opens what CSerial keeps to itself and its heirs.
class OpenSerial : public CSerial {
public:
    using CSerial::m_dwEventMask;
    using CSerial::m_eEvent;
    using CSerial::m_hevtOverlapped;
    using CSerial::m_hFile;
    using CSerial::m_lLastError;
};

class SerialTest : public testing::Test {
protected:
    static constexpr DWORD kSoon = 5000;  // ms in which everything that is bound to happen happens

    void Open(bool overlapped = true) { ASSERT_EQ(0, port.Open(peer.Name(), 0, 0, overlapped)); }

    // Waits until bytes have come in, through the port's own event.
    void AwaitArrival() {
        const Awaiting arrival("bytes to arrive at the port");
        ASSERT_EQ(0, port.WaitEvent(nullptr, kSoon));
        ASSERT_EQ(CSerial::EventReceived, port.GetEventType() & CSerial::EventReceived);
    }

    // One read of at most `count` bytes.
    std::string Read(size_t count, DWORD timeout = kSoon) {
        const Awaiting end("a read of the port to end");
        std::string bytes(count, '?');
        DWORD got = 99;
        EXPECT_EQ(0, port.Read(bytes.data(), count, &got, nullptr, port.m_hevtOverlapped ? timeout : INFINITE));
        bytes.resize(got);
        return bytes;
    }

    DCB State() {
        DCB dcb{};
        dcb.DCBlength = sizeof(dcb);
        EXPECT_TRUE(::GetCommState(port.GetCommHandle(), &dcb));
        return dcb;
    }

    COMMTIMEOUTS Timeouts() {
        COMMTIMEOUTS timeouts{};
        EXPECT_TRUE(::GetCommTimeouts(port.GetCommHandle(), &timeouts));
        return timeouts;
    }

    const Awaiting m_call{"a call of the port to end"};
    SerialPeer peer;
    OpenSerial port;
};
