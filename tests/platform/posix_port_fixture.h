// A port on a pseudo-terminal, opened by its name, and the far end played by the test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/virtual_port.h"
#include "platform/win32.h"
#include "tests/support/time_limit.h"

class PortTest : public testing::Test {
protected:
    static constexpr DWORD kLong = 10'000;  // ms; only reached by a failing test

    void SetUp() override { ASSERT_EQ(far.Create(), DWORD{0}); }
    void TearDown() override {
        if (port != INVALID_HANDLE_VALUE) CloseHandle(port);
    }

    HANDLE OpenAgain(DWORD flags = 0) const {
        return CreateFileA((R"(\\.\)" + far.GetDeviceName()).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           flags, nullptr);
    }
    void Open(DWORD flags = FILE_FLAG_OVERLAPPED) {
        port = OpenAgain(flags);
        ASSERT_NE(port, INVALID_HANDLE_VALUE) << GetLastError();
    }
    void Close() {
        EXPECT_TRUE(CloseHandle(port));
        port = INVALID_HANDLE_VALUE;
    }
    void SetReading(DWORD interval, DWORD multiplier, DWORD constant) {
        COMMTIMEOUTS timeouts{interval, multiplier, constant, 0, 0};
        ASSERT_TRUE(SetCommTimeouts(port, &timeouts));
    }
    void FarSends(std::string_view text) { ASSERT_EQ(far.Write(text.data(), static_cast<DWORD>(text.size())), DWORD{0}); }
    std::string FarGets(size_t count) {
        const Awaiting arrival("bytes at the far end");
        std::string all;
        while (all.size() < count) {
            char bytes[4096];
            DWORD got = 0;
            if (far.Read(bytes, static_cast<DWORD>(std::min(sizeof bytes, count - all.size())), got, kLong) != 0 || got == 0)
                break;
            all.append(bytes, got);
        }
        return all;
    }
    // Waits until that many bytes lie ready for reading.
    void Arrive(DWORD count) {
        const Awaiting arrival("bytes to arrive at the port");
        COMSTAT status{};
        for (ULONGLONG start = GetTickCount64(); status.cbInQue < count && GetTickCount64() - start < kLong;)
            ASSERT_TRUE(ClearCommError(port, nullptr, &status));
        ASSERT_GE(status.cbInQue, count);
    }

    const Awaiting m_call{"a call of the port to end"};
    VirtualPort far;
    HANDLE port = INVALID_HANDLE_VALUE;
};

// An operation with an event of its own.
struct Overlapped : OVERLAPPED {
    Overlapped() : OVERLAPPED{} { hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr); }
    ~Overlapped() { CloseHandle(hEvent); }
    Overlapped(const Overlapped&) = delete;
    Overlapped& operator=(const Overlapped&) = delete;
};
