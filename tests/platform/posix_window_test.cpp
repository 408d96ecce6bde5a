// The tree of windows, which needs a desktop on Windows and none here.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace {
std::vector<std::string> g_told;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    char name[16];
    if (message == WM_DESTROY || message == WM_NCDESTROY) {
        GetWindowTextA(window, name, sizeof name);
        g_told.push_back(std::string(name) + (message == WM_DESTROY ? " goes" : " is gone"));
    }
    if (message == WM_ENABLE) g_told.push_back(wParam ? "enabled" : "disabled");
    return DefWindowProcA(window, message, wParam, lParam);
}

class WindowTreeTest : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSA info{};
        info.lpfnWndProc = Procedure;
        info.lpszClassName = "OrvikTreeTest";
        ASSERT_NE(RegisterClassA(&info), 0);
        g_told.clear();
    }
    void TearDown() override { EXPECT_TRUE(UnregisterClassA("OrvikTreeTest", nullptr)); }
    static HWND Make(const char* name, HWND parent, DWORD style, UINT_PTR id = 0) {
        return CreateWindowExA(0, "OrvikTreeTest", name, style, 1, 2, 30, 40, parent, reinterpret_cast<HMENU>(id), nullptr,
                               nullptr);
    }
};
}  // namespace

TEST_F(WindowTreeTest, OwnedWindowsGoFirstAndChildrenWithTheirParent) {
    const HWND top = Make("top", nullptr, WS_POPUP);
    const HWND child = Make("child", top, WS_CHILD, 7);
    const HWND grandchild = Make("grandchild", child, WS_CHILD);
    const HWND owned = Make("owned", top, WS_POPUP);
    ASSERT_NE(grandchild, nullptr);
    EXPECT_EQ(GetParent(child), top);
    EXPECT_EQ(GetParent(owned), top);
    EXPECT_EQ(GetParent(top), nullptr);
    EXPECT_TRUE(IsChild(top, grandchild));
    EXPECT_FALSE(IsChild(top, owned));
    EXPECT_EQ(GetDlgItem(top, 7), child);
    EXPECT_EQ(GetDlgItem(top, 8), nullptr);
    EXPECT_TRUE(DestroyWindow(top));
    const std::vector<std::string> expected = {"owned goes",      "owned is gone",      "top goes",      "child goes",
                                               "grandchild goes", "grandchild is gone", "child is gone", "top is gone"};
    EXPECT_EQ(g_told, expected);
    for (const HWND gone : {top, child, grandchild, owned}) EXPECT_FALSE(IsWindow(gone));
}

TEST_F(WindowTreeTest, MessagesForAWindowIncludeItsChildren) {
    const HWND top = Make("top", HWND_MESSAGE, WS_POPUP);
    const HWND child = Make("child", top, WS_CHILD);
    PostMessageA(child, WM_USER, 1, 0);
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, top, WM_USER, WM_USER, PM_NOREMOVE));
    DestroyWindow(child);
    EXPECT_FALSE(PeekMessageA(&message, top, WM_USER, WM_USER, PM_REMOVE));
    EXPECT_EQ(GetMessageA(&message, child, 0, 0), -1);
    DestroyWindow(top);
}

TEST_F(WindowTreeTest, WrongParentsAreRefused) {
    EXPECT_FAILS(Make("child", nullptr, WS_CHILD), ERROR_TLW_WITH_WSCHILD);
    EXPECT_FAILS(Make("child", reinterpret_cast<HWND>(static_cast<UINT_PTR>(0x22)), WS_CHILD), ERROR_INVALID_WINDOW_HANDLE);
    const HWND top = Make("top", nullptr, WS_POPUP), child = Make("child", top, WS_CHILD);
    EXPECT_FAILS(SetParent(top, child), ERROR_INVALID_PARAMETER);
    DestroyWindow(top);
}

TEST(Queues, AreBoundedAndBelongToThreadsThatRead) {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    int posted = 0;
    while (posted < 20'000 && PostThreadMessageA(GetCurrentThreadId(), WM_USER, 0, 0)) ++posted;
    EXPECT_EQ(posted, 10'000);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_QUOTA});
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    EXPECT_FAILS(PostThreadMessageA(0x7FFFFFFF, WM_USER, 0, 0), ERROR_INVALID_THREAD_ID);
}

// What is posted must not make the reader jump to any address.
TEST(Timers, MadeUpProceduresAreNotCalled) {
    MSG message{};
    message.message = WM_TIMER;
    message.lParam = 0x1234;
    EXPECT_EQ(DispatchMessageA(&message), 0);
}
