// What Wine does differently from Windows, and this home does like Windows (docs/wine.md).
#include <thread>

#include "comm/serial_device.h"
#include "comm/serial_wnd.h"
#include "tests/comm/mailbox.h"
#include "tests/comm/serial_fixture.h"
#include "tests/comm/transport_user.h"

namespace {
constexpr DWORD kBriefly = 30;  // ms in which something that must not happen would have happened

TEST_F(SerialTest, AHeldPortIsInUse) {
    for (const bool overlapped : {true, false}) {
        Open(overlapped);
        EXPECT_EQ(CSerial::PortInUse, CSerial::CheckPort(peer.Name()));
        OpenSerial second;
        EXPECT_EQ(5, second.Open(peer.Name(), 0, 0, true));
        EXPECT_FALSE(second.IsOpen());
        EXPECT_EQ(0, port.Write("held", nullptr, nullptr, INFINITE)) << "the holder does not notice";
        EXPECT_EQ("held", peer.Receive(4));
        EXPECT_EQ(0, port.Close());
        EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
    }
    OpenSerial other;
    EXPECT_EQ(0, other.Open(peer.Device().c_str(), 0, 0, true));
    EXPECT_EQ(0, other.Write("path", nullptr, nullptr, kSoon));
    EXPECT_EQ("path", peer.Receive(4));
    EXPECT_EQ(5, port.Open(peer.Name(), 0, 0, true)) << "one device, however it is called";
}

TEST_F(SerialTest, APortOfAnotherThreadIsNotShared) {
    TransportUser holder;
    holder.Open(peer.Name());
    std::thread([&] {
        TransportUser late;
        EXPECT_EQ(CCommException::AccessDenied, FailureOf([&] { late.Open(peer.Name()); }).code);
    }).join();
}

TEST_F(SerialTest, TheRecordsStayWithTheHolder) {
    CSerialOrvik first, second;
    COrvikConnection connection, intruder;
    ASSERT_EQ(0, first.Open(peer.Name(), &connection, 0, 0));
    EXPECT_EQ(5, second.Open(peer.Name(), &intruder, 0, 0));
    CSerialOrvik* holder = nullptr;
    EXPECT_TRUE(CSerialOrvik::m_mapPorts.Lookup(peer.Name(), holder));
    EXPECT_EQ(&first, holder);
    EXPECT_EQ(0, second.Close());
    EXPECT_TRUE(CSerialOrvik::m_mapPorts.Lookup(peer.Name(), holder));
    EXPECT_EQ(0, first.Close());
}

TEST_F(SerialTest, ParityAndHandshakeReadBack) {
    Open();
    for (const auto parity : {CSerial::ParityOdd, CSerial::ParityEven, CSerial::ParityMark, CSerial::ParitySpace}) {
        EXPECT_EQ(0, port.Setup(CSerial::Baudrate19200, CSerial::DataBits7, parity, CSerial::StopBits1));
        EXPECT_EQ(parity, port.GetParity());
        EXPECT_NE(0u, static_cast<unsigned>(State().fParity));
    }
    EXPECT_EQ(0, port.Setup(CSerial::Baudrate19200, CSerial::DataBits7, CSerial::ParityNone, CSerial::StopBits1));
    EXPECT_EQ(0u, static_cast<unsigned>(State().fParity));
    const struct {
        CSerial::EHandshake mode;
        DWORD dtr, rts, cts, dsr, xon;
    } cases[] = {{CSerial::HandshakeHardware, 2, 2, 1, 1, 0},
                 {CSerial::HandshakeOff, 1, 1, 0, 0, 0},
                 {CSerial::HandshakeSoftware, 0, 0, 0, 0, 1}};
    for (const auto& c : cases) {
        EXPECT_EQ(0, port.SetupHandshaking(c.mode));
        EXPECT_EQ(c.mode, port.GetHandshaking());
        const DCB dcb = State();
        EXPECT_EQ(c.dtr, dcb.fDtrControl);
        EXPECT_EQ(c.rts, dcb.fRtsControl);
        EXPECT_EQ(c.cts, dcb.fOutxCtsFlow);
        EXPECT_EQ(c.dsr, dcb.fOutxDsrFlow);
        EXPECT_EQ(c.xon, dcb.fOutX);
        EXPECT_EQ(c.xon, dcb.fInX);
    }
}

TEST_F(SerialTest, EventsAreToldForNewBytesOnly) {
    Open();
    EXPECT_EQ(0, port.SetEventChar('\r', true));
    EXPECT_EQ('\r', port.GetEventChar());
    ASSERT_EQ(0, port.SetMask(CSerial::EventCharReceived));
    peer.Send("no end");
    EXPECT_EQ(1460, port.WaitEvent(nullptr, kBriefly));
    peer.Send(" yet\r");
    EXPECT_EQ(0, port.WaitEvent(nullptr, kSoon));
    EXPECT_EQ(CSerial::EventCharReceived, port.GetEventType());
    EXPECT_EQ("no end yet\r", Read(64));
    ASSERT_EQ(0, port.SetMask(CSerial::EventReceived));
    peer.Send("1");
    AwaitArrival();
    EXPECT_EQ(1460, port.WaitEvent(nullptr, kBriefly)) << "the byte is unread, but not new";
    peer.Send("2");
    AwaitArrival();
    EXPECT_EQ("12", Read(10));
}

TEST_F(SerialTest, LineErrorsAreToldOnce) {
    Open();
    const struct {
        const char* kind;
        DWORD error;
    } cases[] = {{"frame", CSerial::ErrorFraming},
                 {"parity", CSerial::ErrorParity},
                 {"overrun", CSerial::ErrorOverrun},
                 {"brk", CSerial::ErrorBreak},
                 {"buf_overrun", CSerial::ErrorReceiveOverflow}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        peer.Error(c.kind);
        EXPECT_EQ(c.error, static_cast<DWORD>(port.GetError()));
        EXPECT_EQ(CSerial::ErrorNone, port.GetError());
    }
    peer.Error("frame");
    peer.Error("parity");
    EXPECT_EQ(CSerial::ErrorFraming | CSerial::ErrorParity, static_cast<DWORD>(port.GetError()));
    EXPECT_EQ("", Read(10, INFINITE)) << "a read of nothing ends at once";
}

TEST_F(SerialTest, WhatHappenedBetweenTwoWaitsIsTold) {
    Open();
    ASSERT_EQ(0, port.SetMask(CSerial::EventRing | CSerial::EventBreak | CSerial::EventCts));
    peer.Raise("rng");
    peer.Raise("cts");
    peer.Error("brk");
    EXPECT_EQ(0, port.WaitEvent(nullptr, kSoon));
    EXPECT_EQ(CSerial::EventRing | CSerial::EventBreak | CSerial::EventCts, static_cast<DWORD>(port.GetEventType()));
}

TEST_F(SerialTest, WhatCameBeforeTheUnpluggingCanStillBeRead) {
    Open();
    peer.Send("last");
    AwaitArrival();
    peer.Unplug();
    EXPECT_EQ("last", Read(10));
    char byte = 0;
    DWORD count = 9;
    EXPECT_EQ(21, port.Read(&byte, 1, &count, nullptr, kSoon));
    EXPECT_EQ(21, port.GetLastError());
    EXPECT_EQ(21, port.Write("x", nullptr, nullptr, kSoon));
    EXPECT_EQ(21, port.Setup(CSerial::Baudrate9600, CSerial::DataBits8, CSerial::ParityNone, CSerial::StopBits1));
    EXPECT_EQ(CSerial::BaudrateUnknown, port.GetBaudrate());
    EXPECT_EQ(21, port.WaitEvent(nullptr, kSoon));
    EXPECT_EQ(0, port.Close());
}

TEST_F(SerialTest, LineErrorsComeInTheHighHalfOfTheMessage) {
    Mailbox box;
    CSerialWnd window;
    ASSERT_EQ(0, window.Open(peer.Name(), box.Window(), WM_APP, 0, 0, 0));
    peer.Error("parity");
    peer.Error("frame");
    DWORD events = 0, errors = 0;
    while ((errors & 0x0C) != 0x0C) {
        const auto message = box.Next();
        ASSERT_TRUE(message);
        events |= LOWORD(message->wParam);
        errors |= HIWORD(message->wParam);
    }
    EXPECT_EQ(0x80u, events);
    EXPECT_EQ(0x0Cu, errors);
    EXPECT_EQ(0, window.Close());
}

TEST_F(SerialTest, ASecondEnumerationListsEveryPortAgain) {
    CArray<CSerialDevice, const CSerialDevice&> devices;
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    const INT_PTR count = devices.GetSize();
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    ASSERT_EQ(2 * count, devices.GetSize());
    bool found = false;
    for (INT_PTR i = 0; i < count; ++i) {
        EXPECT_STREQ(devices[i].GetPortName(), devices[count + i].GetPortName());
        found |= devices[i].GetPortName() == peer.Name();
    }
    EXPECT_TRUE(found);
}
}  // namespace
