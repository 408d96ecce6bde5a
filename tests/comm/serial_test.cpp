// CSerial: opening, settings, queries.
#include "tests/comm/serial_fixture.h"

#include <functional>

namespace {
constexpr LONG kInvalidArgument = static_cast<LONG>(0x80070057u);

TEST(SerialClosed, AnswersEveryOperationWithItsOwnNumber) {
    OpenSerial port;
    char byte = 0;
    DWORD count = 7;
    OVERLAPPED ov{};
    const struct {
        const char* what;
        std::function<LONG()> call;
        LONG result, error;
    } cases[] = {
        {"Setup", [&] { return port.Setup(CSerial::Baudrate9600, CSerial::DataBits8, CSerial::ParityNone, CSerial::StopBits1); },
         6, 6},
        {"SetEventChar", [&] { return port.SetEventChar(13, true); }, 6, 6},
        {"SetMask", [&] { return port.SetMask(1); }, 6, 6},
        {"WaitEvent", [&] { return port.WaitEvent(nullptr, INFINITE); }, 6, 6},
        {"WaitEvent, overlapped", [&] { return port.WaitEvent(&ov, 500); }, 6, 6},
        {"SetupHandshaking", [&] { return port.SetupHandshaking(CSerial::HandshakeOff); }, 6, 6},
        {"SetupHandshaking, unknown", [&] { return port.SetupHandshaking(static_cast<CSerial::EHandshake>(3)); }, 6, 6},
        {"SetupReadTimeouts", [&] { return port.SetupReadTimeouts(CSerial::ReadBlocking); }, 6, 6},
        {"Write text", [&] { return port.Write("text", &count, nullptr, INFINITE); }, 6, 6},
        {"Write bytes", [&] { return port.Write(&byte, size_t{1}, &count, nullptr, INFINITE); }, 6, 6},
        {"Read", [&] { return port.Read(&byte, 1, &count, nullptr, INFINITE); }, 6, 6},
        {"Purge", [&] { return port.Purge(); }, 6, 6},
        {"Break", [&] { return port.Break(); }, 6, 6},
        {"GetBaudrate", [&] { return port.GetBaudrate(); }, -1, 6},
        {"GetDataBits", [&] { return port.GetDataBits(); }, -1, 6},
        {"GetParity", [&] { return port.GetParity(); }, -1, 6},
        {"GetStopBits", [&] { return port.GetStopBits(); }, -1, 6},
        {"GetHandshaking", [&] { return port.GetHandshaking(); }, -1, 6},
        {"GetEventMask", [&] { return port.GetEventMask(); }, 0, 6},
        {"GetEventChar", [&] { return port.GetEventChar(); }, 0, 6},
        {"GetError", [&] { return port.GetError(); }, 0, 6},
        {"GetCTS", [&] { return port.GetCTS(); }, 0, 6},
        {"GetDSR", [&] { return port.GetDSR(); }, 0, 6},
        {"GetRing", [&] { return port.GetRing(); }, 0, 6},
        {"GetRLSD", [&] { return port.GetRLSD(); }, 0, 6},
        {"GetEventType", [&] { return port.GetEventType(); }, 0, 0},
        {"Close", [&] { return port.Close(); }, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        port.m_lLastError = 4711;
        EXPECT_EQ(c.result, c.call());
        EXPECT_EQ(c.error, port.GetLastError());
    }
    EXPECT_EQ(0u, count) << "a refused transfer has moved nothing";
    EXPECT_FALSE(port.IsOpen());
    EXPECT_EQ(nullptr, port.GetCommHandle());
}

TEST(SerialMissing, IsToldByCheckPortAndOpen) {
    OpenSerial port;
    EXPECT_EQ(CSerial::PortMissing, CSerial::CheckPort("COM77"));
    EXPECT_EQ(2, port.Open("COM77", 0, 0, true));
    EXPECT_FALSE(port.IsOpen());
    EXPECT_EQ(nullptr, port.m_hevtOverlapped);
    EXPECT_NE(0, port.Open("", 0, 0, true));
    EXPECT_FALSE(port.IsOpen());
}

TEST_F(SerialTest, OpensByPlainAndByDeviceName) {
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort((R"(\\.\)" + peer.Port()).c_str()));
    EXPECT_EQ(0, port.Open((R"(\\.\)" + peer.Port()).c_str(), 0, 0, false));
    EXPECT_EQ(0, port.Close());
    SerialPeer above9("COM12");
    EXPECT_EQ(0, port.Open("COM12", 0, 0, false));
    port.Write("x", nullptr, nullptr, INFINITE);
    EXPECT_EQ("x", above9.Receive(1));
}

TEST_F(SerialTest, OpensOnceAndAgainAfterClose) {
    ASSERT_EQ(0, port.Open(peer.Name(), 2048, 1024, true));
    EXPECT_TRUE(port.IsOpen());
    EXPECT_NE(nullptr, port.m_hevtOverlapped);
    EXPECT_EQ(0x00C1u, port.GetEventMask());
    EXPECT_EQ(MAXDWORD, Timeouts().ReadIntervalTimeout);
    EXPECT_EQ(0, port.Close());
    EXPECT_FALSE(port.IsOpen());
    EXPECT_EQ(nullptr, port.m_hevtOverlapped);
    ASSERT_EQ(0, port.Open(peer.Name(), 0, 0, false));
    EXPECT_EQ(nullptr, port.m_hevtOverlapped);
    ASSERT_EQ(0, port.Close());
    Open();
    const HANDLE first = port.GetCommHandle();
    EXPECT_EQ(1247, port.Open("COM77", 0, 0, false));
    EXPECT_EQ(1247, port.GetLastError());
    EXPECT_EQ(first, port.GetCommHandle());
    EXPECT_NE(nullptr, port.m_hevtOverlapped);
    port.Write("still open", nullptr, nullptr, kSoon);
    EXPECT_EQ("still open", peer.Receive(10));
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(0, port.GetLastError());
    EXPECT_EQ(0, port.Close()) << "closing a closed port is no error";
}

TEST_F(SerialTest, SetupReadsBackWhatALineHas) {
    Open();
    const struct { LONG baudrate, dataBits, stopBits; } cases[] = {{9600, 8, 0}, {19200, 7, 0}, {115200, 8, 2}, {300, 7, 2}};
    for (const auto& c : cases) {
        EXPECT_EQ(0, port.Setup(static_cast<CSerial::EBaudrate>(c.baudrate), static_cast<CSerial::EDataBits>(c.dataBits),
                                CSerial::ParityNone, static_cast<CSerial::EStopBits>(c.stopBits)));
        EXPECT_EQ(c.baudrate, port.GetBaudrate());
        EXPECT_EQ(c.dataBits, port.GetDataBits());
        EXPECT_EQ(c.stopBits, port.GetStopBits());
        EXPECT_EQ(CSerial::ParityNone, port.GetParity());
    }
    ASSERT_EQ(0, port.Setup(CSerial::Baudrate9600, CSerial::DataBits7, CSerial::ParityNone, CSerial::StopBits2));
    const LONG error =
        port.Setup(CSerial::Baudrate9600, static_cast<CSerial::EDataBits>(17), CSerial::ParityNone, CSerial::StopBits1);
    EXPECT_NE(0, error);  // which one is the driver's business
    EXPECT_EQ(error, port.GetLastError());
    EXPECT_EQ(CSerial::DataBits7, port.GetDataBits());
    EXPECT_EQ(CSerial::StopBits2, port.GetStopBits());
    DCB dcb = State();
    dcb.Parity = 2;
    dcb.fParity = 0;
    ASSERT_TRUE(::SetCommState(port.GetCommHandle(), &dcb));
    EXPECT_EQ(CSerial::ParityNone, port.GetParity());
}

TEST_F(SerialTest, HandshakesReadBack) {
    Open();
    for (const auto mode : {CSerial::HandshakeSoftware, CSerial::HandshakeOff, CSerial::HandshakeSoftware}) {
        EXPECT_EQ(0, port.SetupHandshaking(mode));
        EXPECT_EQ(mode, port.GetHandshaking());
    }
    EXPECT_FALSE(peer.Dtr());
    EXPECT_FALSE(peer.Rts());
    ASSERT_EQ(0, port.SetupHandshaking(CSerial::HandshakeOff));
    EXPECT_TRUE(peer.Dtr());
    EXPECT_TRUE(peer.Rts());
    EXPECT_EQ(kInvalidArgument, port.SetupHandshaking(static_cast<CSerial::EHandshake>(3)));
    EXPECT_EQ(kInvalidArgument, port.SetupHandshaking(CSerial::HandshakeUnknown));
    EXPECT_EQ(kInvalidArgument, port.GetLastError());
    EXPECT_EQ(CSerial::HandshakeOff, port.GetHandshaking());
}

TEST_F(SerialTest, SettingsLeaveTheOthersAlone) {
    Open();
    COMMTIMEOUTS given = Timeouts();
    given.WriteTotalTimeoutConstant = 321;
    given.WriteTotalTimeoutMultiplier = 4;
    given.ReadTotalTimeoutConstant = 5;
    given.ReadTotalTimeoutMultiplier = 6;
    ASSERT_TRUE(::SetCommTimeouts(port.GetCommHandle(), &given));
    for (const DWORD interval : {0u, static_cast<unsigned>(MAXDWORD)}) {
        EXPECT_EQ(0, port.SetupReadTimeouts(interval ? CSerial::ReadNonBlocking : CSerial::ReadBlocking));
        const COMMTIMEOUTS set = Timeouts();
        EXPECT_EQ(interval, set.ReadIntervalTimeout);
        EXPECT_EQ(0u, set.ReadTotalTimeoutConstant);
        EXPECT_EQ(0u, set.ReadTotalTimeoutMultiplier);
        EXPECT_EQ(321u, set.WriteTotalTimeoutConstant);
        EXPECT_EQ(4u, set.WriteTotalTimeoutMultiplier);
    }
    EXPECT_EQ(kInvalidArgument, port.SetupReadTimeouts(static_cast<CSerial::EReadTimeout>(2)));
    EXPECT_EQ(MAXDWORD, Timeouts().ReadIntervalTimeout);
    EXPECT_EQ(0, port.SetEventChar('\r', false));
    EXPECT_EQ(0x00C1u, port.GetEventMask());
    EXPECT_EQ(0, port.SetEventChar('\n', true));
    EXPECT_EQ(0x00C3u, port.GetEventMask());
}

TEST_F(SerialTest, ModemLinesAndBreakReachTheOtherEnd) {
    Open();
    const struct {
        const char* line;
        bool (CSerial::*query)();
    } lines[] = {{"cts", &CSerial::GetCTS}, {"dsr", &CSerial::GetDSR}, {"rng", &CSerial::GetRing}, {"dcd", &CSerial::GetRLSD}};
    for (const auto& raised : lines) {
        SCOPED_TRACE(raised.line);
        peer.Raise(raised.line);
        for (const auto& asked : lines) EXPECT_EQ(asked.line == raised.line, (port.*asked.query)()) << asked.line;
        peer.Drop(raised.line);
        EXPECT_FALSE((port.*raised.query)());
        EXPECT_EQ(0, port.GetLastError());
    }
    EXPECT_EQ(0, port.Break());
    EXPECT_EQ(1, peer.BreakCount());
    EXPECT_GE(peer.BreakMilliseconds(), 99);  // counted in whole milliseconds on two clocks
    EXPECT_FALSE(peer.IsBreakOn());
}

TEST_F(SerialTest, CopiesShareTheHandles) {
    Open();
    port.SetMask(CSerial::EventReceived);
    OpenSerial copy(port);
    EXPECT_EQ(port.m_hFile, copy.m_hFile);
    EXPECT_EQ(port.m_hevtOverlapped, copy.m_hevtOverlapped);
    EXPECT_EQ(1u, copy.m_dwEventMask);
    OpenSerial assigned;
    assigned = copy;
    EXPECT_EQ(port.m_hFile, assigned.m_hFile);
    EXPECT_EQ(0, assigned.Write("shared", nullptr, nullptr, kSoon));
    EXPECT_EQ("shared", peer.Receive(6));
    // One of the three closes them.
    copy.m_hFile = copy.m_hevtOverlapped = assigned.m_hFile = assigned.m_hevtOverlapped = nullptr;
}

TEST_F(SerialTest, AnUnpluggedPortReportsAndOpensAgainOnceItIsBack) {
    Open();
    ASSERT_EQ(0, port.SetupReadTimeouts(CSerial::ReadBlocking));
    peer.Unplug();
    char byte = 0;
    DWORD count = 9;
    EXPECT_NE(0, port.Read(&byte, 1, &count, nullptr, kSoon));
    EXPECT_EQ(0u, count);
    EXPECT_TRUE(port.IsOpen());
    EXPECT_EQ(0, port.Close());
    EXPECT_EQ(2, port.Open(peer.Name(), 0, 0, true));
    peer.Plug();
    Open();
    port.Write("again", nullptr, nullptr, kSoon);
    EXPECT_EQ("again", peer.Receive(5));
}
}  // namespace
