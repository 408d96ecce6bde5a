// System calls that fail at the wrong moment. The linker puts the functions here in front of the platform's own.
#include <gtest/gtest.h>

#include <functional>

#include "comm/orvik_connection.h"
#include "comm/serial_device.h"
#include "comm/serial_orvik.h"
#include "tests/comm/mailbox.h"
#include "tests/support/ports/serial_peer.h"

namespace fault {
int g_events = 0;  // of the events to come: that many succeed, then one fails; 0 for no fault
bool g_queues = false, g_threads = false, g_windows = false, g_memory = false;

bool Strikes(int& countdown) { return countdown > 0 && --countdown == 0; }

HANDLE RealCreateEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCSTR) asm("__real__Z12CreateEventAP19SECURITY_ATTRIBUTESiiPKc");
HANDLE WrapCreateEvent(LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCSTR) asm("__wrap__Z12CreateEventAP19SECURITY_ATTRIBUTESiiPKc");
HANDLE WrapCreateEvent(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL state, LPCSTR name) {
    if (!Strikes(g_events)) return RealCreateEvent(security, manual, state, name);
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL RealSetupComm(HANDLE, DWORD, DWORD) asm("__real__Z9SetupCommPvjj");
BOOL WrapSetupComm(HANDLE, DWORD, DWORD) asm("__wrap__Z9SetupCommPvjj");
BOOL WrapSetupComm(HANDLE port, DWORD in, DWORD out) {
    if (!g_queues) return RealSetupComm(port, in, out);
    ::SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

HANDLE RealCreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD,
                        LPDWORD) asm("__real__Z12CreateThreadP19SECURITY_ATTRIBUTESmPFjPvES1_jPj");
HANDLE WrapCreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD,
                        LPDWORD) asm("__wrap__Z12CreateThreadP19SECURITY_ATTRIBUTESmPFjPvES1_jPj");
HANDLE WrapCreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                        LPDWORD id) {
    if (!g_threads) return RealCreateThread(security, stack, start, parameter, flags, id);
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

HWND RealCreateWindow(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                      LPVOID) asm("__real__Z15CreateWindowExAjPKcS0_jiiiiP6HWND__P7HMENU__P11HINSTANCE__Pv");
HWND WrapCreateWindow(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                      LPVOID) asm("__wrap__Z15CreateWindowExAjPKcS0_jiiiiP6HWND__P7HMENU__P11HINSTANCE__Pv");
HWND WrapCreateWindow(DWORD exStyle, LPCSTR windowClass, LPCSTR text, DWORD style, int x, int y, int w, int h, HWND parent,
                      HMENU menu, HINSTANCE instance, LPVOID parameter) {
    if (!g_windows) {
        return RealCreateWindow(exStyle, windowClass, text, style, x, y, w, h, parent, menu, instance, parameter);
    }
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL RealSetCommMask(HANDLE, DWORD) asm("__real__Z11SetCommMaskPvj");
BOOL WrapSetCommMask(HANDLE, DWORD) asm("__wrap__Z11SetCommMaskPvj");
bool g_masks = false;
BOOL WrapSetCommMask(HANDLE port, DWORD mask) {
    if (!g_masks) return RealSetCommMask(port, mask);
    ::SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
}
}  // namespace fault

namespace {
class Quiet : public CSerialEx {
public:
    ~Quiet() override { Close(); }
    void OnEvent(EEvent, EError) override {}
    using CSerialEx::m_hThread;
};

class FaultTest : public testing::Test {
protected:
    void TearDown() override {
        fault::g_events = 0;
        fault::g_queues = fault::g_threads = fault::g_windows = fault::g_masks = false;
    }
    const Awaiting m_call{"a call of the port, or its listener, to end"};
    SerialPeer peer;
};

TEST_F(FaultTest, AnOpenThatFailsLeavesThePortFree) {
    CSerial port;
    fault::g_events = 1;
    EXPECT_EQ(8, port.Open(peer.Name(), 0, 0, true));
    EXPECT_FALSE(port.IsOpen());
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
    fault::g_queues = true;
    EXPECT_EQ(87, port.Open(peer.Name(), 4096, 4096, true));
    EXPECT_EQ(87, port.GetLastError());
    EXPECT_FALSE(port.IsOpen());
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
    EXPECT_EQ(0, port.Open(peer.Name(), 0, 0, true)) << "no queue sizes, no SetupComm";
}

TEST_F(FaultTest, AMaskThatIsRefusedIsNotRemembered) {
    CSerial port;
    ASSERT_EQ(0, port.Open(peer.Name(), 0, 0, true));
    fault::g_masks = true;
    EXPECT_EQ(31, port.SetMask(1));
    EXPECT_EQ(0xC1u, port.GetEventMask());
    EXPECT_EQ(0, port.SetEventChar(3, true)) << "the mask's failure is not reported";
    EXPECT_EQ(3, port.GetEventChar());
    EXPECT_EQ(0xC1u, port.GetEventMask());
}

TEST_F(FaultTest, AListenerWithoutItsEventLooksLikeASuccess) {
    Quiet quiet;
    fault::g_events = 2;
    EXPECT_EQ(0, quiet.Open(peer.Name(), 0, 0, true));
    EXPECT_FALSE(quiet.IsOpen());
    EXPECT_EQ(nullptr, quiet.m_hThread);
    // With a window it says farewell.
    Mailbox box;
    CSerialWnd port;
    fault::g_events = 2;
    EXPECT_EQ(0, port.Open(peer.Name(), box.Window(), WM_APP, 7, 0, 0));
    EXPECT_FALSE(port.IsOpen());
    const auto message = box.Next();
    ASSERT_TRUE(message);
    EXPECT_EQ(0x04000800u, message->wParam);
    EXPECT_EQ(7, message->lParam);
    EXPECT_EQ(0, port.Close());
    EXPECT_FALSE(box.Waiting());
}

TEST_F(FaultTest, AListenerThatDoesNotStart) {
    fault::g_threads = true;
    Quiet quiet;
    EXPECT_EQ(8, quiet.Open(peer.Name(), 0, 0, true));
    EXPECT_TRUE(quiet.IsOpen()) << "open, without a listener";
    EXPECT_EQ(0, quiet.Close());
    Mailbox box;
    CSerialWnd window;
    EXPECT_EQ(8, window.Open(peer.Name(), box.Window(), WM_APP, 0, 0, 0));
    EXPECT_EQ(8, window.GetLastError());
    EXPECT_FALSE(window.IsOpen());
    EXPECT_EQ(CSerial::PortAvailable, CSerial::CheckPort(peer.Name()));
}

TEST_F(FaultTest, AListenerThatCannotBeWokenIsTerminated) {
    Mailbox box;
    CSerialWnd port;
    ASSERT_EQ(0, port.Open(peer.Name(), box.Window(), WM_APP, 0, 0, 0));
    fault::g_masks = true;
    EXPECT_EQ(0, port.Close());
    EXPECT_FALSE(box.Waiting()) << "no farewell: it was stopped";
    fault::g_masks = false;
    EXPECT_EQ(0, port.Open(peer.Name(), box.Window(), WM_APP, 0, 0, 0));
    peer.Send("x");
    EXPECT_TRUE(box.Next());
}

TEST_F(FaultTest, APortWithoutItsWindowChangesNothing) {
    COrvikConnection connection;
    CSerialOrvik port;
    fault::g_windows = true;
    EXPECT_EQ(1400, port.Open(peer.Name(), &connection, 0, 0));
    EXPECT_FALSE(port.IsOpen());
    EXPECT_TRUE(CSerialOrvik::m_mapPorts.IsEmpty());
    COrvikConnection* holder = nullptr;
    EXPECT_FALSE(CSerialDevice::LookupBusyPort(peer.Name(), holder));
    fault::g_windows = false;
    EXPECT_EQ(0, port.Open(peer.Name(), &connection, 0, 0));
    EXPECT_EQ(0, port.Close());
}
}  // namespace
