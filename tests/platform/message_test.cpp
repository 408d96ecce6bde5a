// Windows without a screen, their messages and timers. Message-only windows, so that this runs on both homes.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace {
constexpr DWORD kLong = 10'000;
const char* const kClass = "OrvikMessageTest";

// Every window of the test notes what it is told; creation parameters may name a message to refuse.
struct Note {
    HWND window;
    UINT message;
    WPARAM wParam;
};
std::vector<Note> g_notes;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_USER + 1) return static_cast<LRESULT>(wParam * 2);
    if (message == WM_USER + 2) {  // answers by a question back to the asking thread's window
        return SendMessageA(reinterpret_cast<HWND>(lParam), WM_USER + 1, wParam, 0) + 1;
    }
    g_notes.push_back({window, message, wParam});
    if (message == WM_CREATE || message == WM_NCCREATE) {
        const auto refused = reinterpret_cast<UINT_PTR>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
        if (refused == message) return message == WM_CREATE ? -1 : 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

class MessageTest : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSA info{};
        info.lpfnWndProc = Procedure;
        info.cbWndExtra = 16;
        info.hInstance = Instance();
        info.lpszClassName = kClass;
        ASSERT_NE(RegisterClassA(&info), 0);
        Drain();
        g_notes.clear();
    }
    void TearDown() override {
        if (IsWindow(window)) DestroyWindow(window);
        EXPECT_TRUE(UnregisterClassA(kClass, Instance()));
        Drain();
    }
    static HINSTANCE Instance() { return reinterpret_cast<HINSTANCE>(static_cast<UINT_PTR>(0x400000)); }
    static HWND Make(UINT_PTR refuse = 0, HWND parent = HWND_MESSAGE, DWORD style = WS_POPUP) {
        return CreateWindowExA(0, kClass, "Serial", style, 0, 0, 0, 0, parent, nullptr, Instance(),
                               reinterpret_cast<LPVOID>(refuse));
    }
    static void Drain() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    HWND window = nullptr;
};
}  // namespace

TEST_F(MessageTest, RefusedCreationLeavesNothing) {
    EXPECT_EQ(Make(WM_NCCREATE), nullptr);
    g_notes.clear();
    EXPECT_EQ(Make(WM_CREATE), nullptr);
    ASSERT_FALSE(g_notes.empty());
    EXPECT_EQ(g_notes.back().message, UINT{WM_NCDESTROY});
    EXPECT_FALSE(IsWindow(g_notes.back().window));
}

TEST_F(MessageTest, ClassesAreKnownByNameAndInstance) {
    WNDCLASSA info{};
    EXPECT_TRUE(GetClassInfoA(Instance(), "ORVIKmessagetest", &info));
    EXPECT_EQ(info.lpfnWndProc, &Procedure);
    EXPECT_FAILS(RegisterClassA(&info), ERROR_CLASS_ALREADY_EXISTS);
    EXPECT_FAILS(GetClassInfoA(Instance(), "OrvikNoSuchClass", &info), ERROR_CLASS_DOES_NOT_EXIST);
    EXPECT_TRUE(GetClassInfoA(nullptr, "static", &info));
    EXPECT_EQ(CreateWindowExA(0, "OrvikNoSuchClass", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, Instance(), nullptr), nullptr);
    window = Make();
    EXPECT_FAILS(UnregisterClassA(kClass, Instance()), ERROR_CLASS_HAS_WINDOWS);
}

TEST_F(MessageTest, PostedMessagesKeepTheirOrderAndFilter) {
    window = Make();
    EXPECT_TRUE(PostMessageA(window, WM_USER + 10, 1, 0));
    EXPECT_TRUE(PostMessageA(nullptr, WM_USER + 11, 2, 0));
    EXPECT_TRUE(PostMessageA(window, WM_USER + 12, 3, 0));
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_USER + 12, WM_USER + 12, PM_NOREMOVE));
    EXPECT_EQ(message.wParam, 3u);
    EXPECT_TRUE(PeekMessageA(&message, reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)), 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 2u);
    EXPECT_TRUE(PeekMessageA(&message, window, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 1u);
    EXPECT_GT(GetMessageA(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 3u);
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(MessageTest, QuitComesLastAndThroughAnyFilter) {
    window = Make();
    MSG message{};
    PostQuitMessage(5);
    PostMessageA(window, WM_USER + 10, 1, 0);
    EXPECT_GT(GetMessageA(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(GetMessageA(&message, window, WM_USER, WM_USER), 0);
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, 5u);
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(MessageTest, MessagesOfADeadWindowAreDropped) {
    window = Make();
    PostMessageA(window, WM_USER + 10, 1, 0);
    DestroyWindow(window);
    MSG message{};
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_USER, WM_APP, PM_REMOVE));
    EXPECT_FAILS(PostMessageA(window, WM_USER + 10, 1, 0), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_EQ(SendMessageA(window, WM_USER + 1, 1, 0), 0);
}

TEST_F(MessageTest, SendingToAnotherThreadWaitsForTheAnswer) {
    window = Make();
    HANDLE done = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    LRESULT plain = 0, back = 0;
    std::thread asker([&] {
        const HWND own = Make();
        plain = SendMessageA(window, WM_USER + 1, 21, 0);
        back = SendMessageA(window, WM_USER + 2, 4, reinterpret_cast<LPARAM>(own));  // asked back while it waits
        DestroyWindow(own);
        SetEvent(done);
    });
    while (MsgWaitForMultipleObjects(1, &done, FALSE, kLong, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) Drain();
    asker.join();
    CloseHandle(done);
    EXPECT_EQ(plain, 42);
    EXPECT_EQ(back, 9);
}

TEST_F(MessageTest, WindowsEndWithTheirThread) {
    HWND other = nullptr;
    std::thread([&] {
        other = Make();
        EXPECT_TRUE(IsWindow(other));
    }).join();
    EXPECT_FALSE(IsWindow(other));
    EXPECT_FALSE(PostMessageA(other, WM_USER + 10, 0, 0));
}

TEST_F(MessageTest, OtherThreadsMayNotDestroy) {
    window = Make();
    std::thread([this] { EXPECT_FAILS(DestroyWindow(window), ERROR_ACCESS_DENIED); }).join();
    EXPECT_TRUE(IsWindow(window));
}

TEST_F(MessageTest, MsgWaitSeesOnlyWhatIsNew) {
    window = Make();
    Drain();
    PostMessageA(window, WM_USER + 10, 0, 0);
    EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLong, QS_ALLINPUT), DWORD{WAIT_OBJECT_0});
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    // Seen and left: no reason to wake.
    EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, QS_ALLINPUT), DWORD{WAIT_TIMEOUT});
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
}
