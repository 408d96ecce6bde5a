// Windows behind objects: message maps, life and death, posted messages, timers and fonts. Message-only windows, so no screen is
// needed.
#include "afx/wnd.h"

#include <cstring>
#include <thread>
#include <vector>

#include "afx/app.h"
#include "afx/gdi.h"
#include "afx/module.h"
#include "tests/afx/bytes.h"
#include "tests/support/dialog_fixture.h"
#include "toolkit/bcgp_rect.h"
#include "toolkit/global_data.h"

using namespace afx_test;

namespace {
const UINT g_registered = RegisterWindowMessageA("afx_test_registered");
UINT g_late = 0;

class CTestWnd : public CWnd {
    DECLARE_DYNAMIC(CTestWnd)

public:
    explicit CTestWnd(std::vector<UINT>* seen = nullptr) : m_seen(seen) {}
    BOOL Create() {
        return CreateEx(0, AfxRegisterWndClass(CS_PARENTDC | CS_SAVEBITS), "afx test", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE,
                        nullptr, this);
    }
    LRESULT OnUser(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) * 10 + lParam; }
    LRESULT OnRegistered(WPARAM, LPARAM lParam) { return m_last = lParam; }
    LRESULT OnThrow(WPARAM, LPARAM) { AfxThrowInvalidArgException(); }
    LPARAM m_last = 0;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (m_seen != nullptr) m_seen->push_back(message);
        if (message == WM_CREATE) m_createParameter = reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams;
        return CWnd::WindowProc(message, wParam, lParam);
    }
    void PostNcDestroy() override {
        EXPECT_EQ(m_hWnd, nullptr);
        if (m_seen != nullptr) m_seen->push_back(0);
    }
    DECLARE_MESSAGE_MAP()

public:
    void* m_createParameter = nullptr;

private:
    std::vector<UINT>* m_seen;
};

class CDerivedWnd : public CTestWnd {
public:
    LRESULT OnOther(WPARAM, LPARAM) { return 77; }
    LRESULT OnUserToo(WPARAM, LPARAM) { return 88; }
    DECLARE_MESSAGE_MAP()
};
}  // namespace

IMPLEMENT_DYNAMIC(CTestWnd, CWnd)
BEGIN_MESSAGE_MAP(CTestWnd, CWnd)
ON_MESSAGE(WM_USER + 1, OnUser)
ON_MESSAGE(WM_USER + 3, OnThrow)
ON_REGISTERED_MESSAGE(g_registered, OnRegistered)
ON_REGISTERED_MESSAGE(g_late, OnRegistered)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(CDerivedWnd, CTestWnd)
ON_MESSAGE(WM_USER + 1, OnUserToo)
ON_MESSAGE(WM_USER + 2, OnOther)
END_MESSAGE_MAP()

namespace {
TEST(Wnd, MapsSayWhoAnswers) {
    CTestWnd window;
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(window.m_createParameter, &window);
    EXPECT_EQ(window.SendMessage(WM_USER + 1, 4, 2), 42);
    EXPECT_EQ(window.SendMessage(g_registered, 0, 5), 5);
    EXPECT_EQ(window.SendMessage(WM_USER + 2), 0);
    EXPECT_EQ(window.SendMessage(WM_NULL), 0);
    EXPECT_EQ(window.m_last, 5);  // the number 0 of a message not registered yet is nobody's
    g_late = RegisterWindowMessageA("afx_test_late");
    EXPECT_EQ(window.SendMessage(g_late, 0, 6), 6);

    CDerivedWnd derived;
    ASSERT_TRUE(derived.Create());
    EXPECT_EQ(derived.SendMessage(WM_USER + 1, 4, 2), 88);  // its own map before its base's
    EXPECT_EQ(derived.SendMessage(WM_USER + 2), 77);
    EXPECT_EQ(derived.SendMessage(g_registered, 0, 9), 9);
}

TEST(Wnd, AWindowThatDiesIsForgotten) {
    std::vector<UINT> seen;
    CTestWnd window(&seen);
    EXPECT_FALSE(window.DestroyWindow());
    ASSERT_TRUE(window.Create());
    EXPECT_FALSE(window.Create());  // it has one
    const HWND handle = window.m_hWnd;
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), &window);
    EXPECT_EQ(CWnd::FromHandle(handle), &window);
    seen.clear();
    EXPECT_TRUE(DestroyWindow(handle));  // behind the object's back
    ASSERT_GE(seen.size(), 3u);
    EXPECT_EQ(seen[seen.size() - 2], static_cast<UINT>(WM_NCDESTROY));
    EXPECT_EQ(seen.back(), 0u);  // then PostNcDestroy
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_FALSE(window.PostMessage(WM_USER));
    EXPECT_EQ(window.SetTimer(1, 10), 0u);
    ASSERT_TRUE(window.Create());  // and may have another
}

TEST(Wnd, AttachesToAForeignWindowAndGivesItBack) {
    const HWND handle =
        CreateWindowExA(0, "static", "text", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(handle, nullptr);
    CWnd* temporary = CWnd::FromHandle(handle);
    ASSERT_NE(temporary, nullptr);
    EXPECT_EQ(temporary->m_hWnd, handle);
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
    const auto before = GetWindowLongPtrA(handle, GWLP_WNDPROC);
    CTestWnd window;
    EXPECT_FALSE(window.Attach(nullptr));
    ASSERT_TRUE(window.Attach(handle));
    CTestWnd second;
    EXPECT_FALSE(second.Attach(handle));
    EXPECT_EQ(window.SendMessage(WM_USER + 1, 1, 1), 11);
    CString text;
    window.GetWindowText(text);  // through the class's own procedure
    EXPECT_EQ(text, "text");
    window.SetWindowText("other"), window.GetWindowText(text);
    EXPECT_EQ(text, "other");
    EXPECT_EQ(window.Detach(), handle);
    EXPECT_EQ(GetWindowLongPtrA(handle, GWLP_WNDPROC), before);
    EXPECT_TRUE(DestroyWindow(handle));
}

TEST(Wnd, ClassesAreRegisteredOnce) {
    const LPCSTR name = AfxRegisterWndClass(0x0880);
    EXPECT_STREQ(AfxRegisterWndClass(0x0880), name);
    EXPECT_STRNE(AfxRegisterWndClass(0), name);
    WNDCLASSA windowClass;
    ASSERT_TRUE(GetClassInfoA(AfxGetInstanceHandle(), name, &windowClass));
    EXPECT_EQ(windowClass.style, 0x0880u);
    CWnd plain;
    EXPECT_FALSE(plain.CreateEx(0, "no such class", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr));
    EXPECT_EQ(plain.m_hWnd, nullptr);
    ASSERT_TRUE(plain.CreateEx(0, nullptr, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr));  // the default class
    EXPECT_TRUE(plain.DestroyWindow());
}

TEST(Wnd, AnEscapingExceptionIsShownAndTheMessageAnswersZero) {
    TellingApp app;
    CTestWnd window;
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(window.SendMessage(WM_USER + 3), 0);
    EXPECT_EQ(app.Told(), "An argument is not valid.");
}

class QuitWnd : public CTestWnd {
public:
    int m_ticks = 0;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_TIMER && wParam == 7 && ++m_ticks == 2) PostQuitMessage(3);
        return CTestWnd::WindowProc(message, wParam, lParam);
    }
};

TEST(Wnd, TimersTickUntilTheThreadQuits) {
    TellingApp app;
    QuitWnd window;
    ASSERT_TRUE(window.Create());
    EXPECT_NE(window.SetTimer(7, 10), 0u);
    EXPECT_EQ(app.Run(), 3);
    EXPECT_EQ(window.m_ticks, 2);
    EXPECT_TRUE(window.KillTimer(7));
    EXPECT_FALSE(window.KillTimer(7));
}

TEST(Gdi, AFontKeepsItsDescription) {
    LOGFONTA description = {};
    description.lfHeight = -12, description.lfWeight = 700;
    CFont font;
    EXPECT_FALSE(font.DeleteObject());
    ASSERT_TRUE(font.CreateFontIndirect(&description));
    EXPECT_FALSE(font.CreateFontIndirect(&description));
    EXPECT_FALSE(font.CreateFontIndirect(nullptr));
    LOGFONTA back = {};
    EXPECT_NE(font.GetLogFont(&back), 0);
    EXPECT_TRUE(back.lfHeight == -12 && back.lfWeight == 700);
    const HGDIOBJ object = font.Detach();
    EXPECT_EQ(font.GetLogFont(&back), 0);
    EXPECT_TRUE(font.Attach(object));
    EXPECT_FALSE(font.Attach(object));
    EXPECT_TRUE(font.DeleteObject());
    EXPECT_EQ(font.GetSafeHandle(), nullptr);
}

TEST(Toolkit, GlobalDataTellsTheMenuFont) {
    NONCLIENTMETRICSA metrics;
    ASSERT_TRUE(globalData.GetNonClientMetrics(metrics));
    EXPECT_EQ(metrics.cbSize, 344u);
    EXPECT_NE(metrics.lfMenuFont.lfHeight, 0);
    EXPECT_EQ(sizeof(CBCGPRect), 4 * sizeof(double));
    const CBCGPRect rect(1, 2, 4, 8);
    EXPECT_TRUE(rect.right == 4 && rect.Width() == 3 && rect.Height() == 6);
}
}  // namespace
