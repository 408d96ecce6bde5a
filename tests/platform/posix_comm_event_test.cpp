// Line events, line settings and the refusals of a port.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>
#include <thread>
#include <tuple>

#include "tests/platform/posix_port_fixture.h"
#include "tests/support/last_error.h"

TEST_F(PortTest, SettingsReadBackAsAsked) {
    Open();
    using Row = std::tuple<DWORD, BYTE, BYTE, BYTE, bool>;
    for (const auto& [baud, size, parity, stop, taken] :
         {Row{9600, 8, NOPARITY, ONESTOPBIT, true}, Row{19200, 7, EVENPARITY, TWOSTOPBITS, true},
          Row{12345, 8, ODDPARITY, ONESTOPBIT, true}, Row{300, 5, MARKPARITY, ONE5STOPBITS, true},
          Row{115200, 6, SPACEPARITY, ONESTOPBIT, true}, Row{0, 8, NOPARITY, ONESTOPBIT, false},
          Row{MAXDWORD, 8, NOPARITY, ONESTOPBIT, false}, Row{9600, 9, NOPARITY, ONESTOPBIT, false},
          Row{9600, 8, 5, ONESTOPBIT, false}, Row{9600, 8, NOPARITY, 3, false}, Row{9600, 8, NOPARITY, ONE5STOPBITS, false},
          Row{9600, 5, NOPARITY, TWOSTOPBITS, false}}) {
        SCOPED_TRACE(testing::Message() << baud << ' ' << int{size} << ' ' << int{parity} << ' ' << int{stop});
        DCB before{}, wanted{}, after{};
        ASSERT_TRUE(GetCommState(port, &before));
        wanted = before;
        wanted.BaudRate = baud, wanted.ByteSize = size, wanted.Parity = parity, wanted.StopBits = stop;
        wanted.fParity = parity != NOPARITY;
        SetLastError(0);
        EXPECT_EQ(SetCommState(port, &wanted) != FALSE, taken);
        EXPECT_EQ(GetLastError(), taken ? DWORD{0} : DWORD{ERROR_INVALID_PARAMETER});
        ASSERT_TRUE(GetCommState(port, &after));
        EXPECT_EQ(std::memcmp(&after, taken ? &wanted : &before, sizeof after), 0);
    }
}

TEST_F(PortTest, SoftwareHandshakeBytesPassUnlessAskedFor) {
    Open();
    DWORD count;
    Overlapped ov;
    // With output flow control on, an Xoff from the far end holds what is written until its Xon.
    DCB dcb{};
    ASSERT_TRUE(GetCommState(port, &dcb));
    dcb.fOutX = TRUE;
    ASSERT_TRUE(SetCommState(port, &dcb));
    FarSends("\x13"), FarSends("\x11");
    ASSERT_TRUE(WriteFile(port, "go", 2, &count, &ov) || WaitForSingleObject(ov.hEvent, kLong) == WAIT_OBJECT_0);
    EXPECT_EQ(FarGets(2), "go");
    dcb.fOutX = FALSE;
    ASSERT_TRUE(SetCommState(port, &dcb));
    SetReading(0, 0, 0);
    FarSends("\x13\x11");
    char got[2];
    ASSERT_TRUE(ReadFile(port, got, 2, &count, &ov) || WaitForSingleObject(ov.hEvent, kLong) == WAIT_OBJECT_0);
    EXPECT_EQ(std::string(got, 2), "\x13\x11");
}

TEST_F(PortTest, ModemLinesAreMissingOnAPseudoTerminal) {
    Open();
    DWORD status = 0;
    EXPECT_FAILS(GetCommModemStatus(port, &status), ERROR_INVALID_FUNCTION);
    // A mask with modem lines waits for the rest of it.
    ASSERT_TRUE(SetCommMask(port, EV_CTS | EV_DSR | EV_RING | EV_RLSD | EV_RXCHAR));
    Overlapped ov;
    DWORD events = 0;
    ASSERT_FALSE(WaitCommEvent(port, &events, &ov));
    FarSends("x");
    EXPECT_EQ(WaitForSingleObject(ov.hEvent, kLong), WAIT_OBJECT_0);
    EXPECT_EQ(events, DWORD{EV_RXCHAR});
}

TEST_F(PortTest, OtherProgramsExclusiveUseIsRespected) {
    const int fd = open(far.GetDeviceName().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ioctl(fd, TIOCEXCL), 0);
    EXPECT_FAILS(OpenAgain(), ERROR_ACCESS_DENIED);
    ASSERT_EQ(ioctl(fd, TIOCNXCL), 0);
    Open();
    close(fd);
}

TEST(PortHandles, WrongUseIsRefused) {
    DCB dcb{};
    DWORD count = 0;
    char byte = 0;
    const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    for (const HANDLE bad : {HANDLE{}, INVALID_HANDLE_VALUE, event, reinterpret_cast<HANDLE>(0x1234567890), GetCurrentThread()}) {
        EXPECT_FAILS(GetCommState(bad, &dcb), ERROR_INVALID_HANDLE);
        EXPECT_FAILS(ReadFile(bad, &byte, 1, &count, nullptr), ERROR_INVALID_HANDLE);
        EXPECT_FAILS(CancelIo(bad), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_FAILS(CloseHandle(event), ERROR_INVALID_HANDLE);
    // Its place in the table is used again, and the old handle still names nothing.
    const HANDLE next = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    EXPECT_NE(next, event);
    EXPECT_FALSE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(next, 0), DWORD{WAIT_TIMEOUT});
    CloseHandle(next);
    for (const char* missing :
         {R"(\\.\COM250)", R"(\\.\COM0)", R"(\\.\COM)", R"(\\.\)", R"(\\.\/dev/no-such-port)", R"(\\.\lpt1)"}) {
        EXPECT_FAILS(CreateFileA(missing, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr),
                     ERROR_FILE_NOT_FOUND)
            << missing;
    }
    EXPECT_FAILS(CreateFileA(R"(\\.\/dev/null)", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr),
                 ERROR_INVALID_FUNCTION);
}
