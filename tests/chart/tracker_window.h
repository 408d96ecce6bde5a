// What the trackers' tests share: a shown window with a picture, messages posted to it by a script, and the pixels that it shows.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "afx/dc.h"
#include "afx/wnd.h"
#include "chart/tracker.h"
#include "chart/unit_axis.h"

namespace tracker_test {

using Pixels = std::vector<DWORD>;

// One thing that happens during a drag. Posted in order, when the ones before have been read; after a `paint` the next are posted
// when the window has painted itself.
struct Step {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    std::function<void()> action;  // instead of a message of its own
    bool paint = false;
};
using Script = std::vector<Step>;

inline LPARAM At(int x, int y) { return MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)); }
inline Step Move(int x, int y) { return {WM_MOUSEMOVE, MK_LBUTTON, At(x, y), {}, false}; }
inline Step Up(int x, int y) { return {WM_LBUTTONUP, 0, At(x, y), {}, false}; }
inline Step Down(int x, int y) { return {WM_LBUTTONDOWN, MK_LBUTTON, At(x, y), {}, false}; }
inline Step Right() { return {WM_RBUTTONDOWN, 0, 0, {}, false}; }
inline Step Key(WPARAM key) { return {WM_KEYDOWN, key, 0, {}, false}; }
inline Step KeyUp(WPARAM key) { return {WM_KEYUP, key, 0, {}, false}; }
inline Step Do(std::function<void()> action) { return {0, 0, 0, std::move(action), false}; }

class CPaintedWnd : public CWnd {
public:
    static constexpr int kWidth = 200;
    static constexpr int kHeight = 150;

    ~CPaintedWnd() override {
        if (m_hWnd != nullptr) DestroyWindow();
    }

    void Create() {
        ASSERT_TRUE(CreateEx(0, AfxRegisterWndClass(CS_DBLCLKS), "trackers", WS_POPUP, 0, 0, kWidth, kHeight, nullptr, nullptr));
        // Not activated: the end of an active window takes two seconds on a screen without a window manager.
        ::ShowWindow(m_hWnd, SW_SHOWNA);
        // What the system itself still has to say about a new window is none of the script's.
        ::SetCursorPos(kWidth + 300, kHeight + 300);
        Settle();
        ::UpdateWindow(m_hWnd);
        m_seen.clear();
    }

    // Everything that waits, handled: also the paints.
    static void Settle() {
        MSG message;
        while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageA(&message);
    }
    static void Discard() {
        MSG message;
        while (::PeekMessageA(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE) ||
               ::PeekMessageA(&message, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE) ||
               ::PeekMessageA(&message, nullptr, WM_APP, WM_APP, PM_REMOVE) ||
               ::PeekMessageA(&message, reinterpret_cast<HWND>(-1), 0, 0, PM_REMOVE)) {
        }
    }

    Pixels Picture() {
        const BITMAPINFO info = {{sizeof(BITMAPINFOHEADER), kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
        CClientDC window(this);
        CDC memory;
        memory.CreateCompatibleDC(&window);
        void* bits = nullptr;
        const HBITMAP bitmap = ::CreateDIBSection(window, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        const HGDIOBJ old = ::SelectObject(memory, bitmap);
        memory.BitBlt(0, 0, kWidth, kHeight, &window, 0, 0, SRCCOPY);
        ::SelectObject(memory, old);  // and what is still to be drawn is drawn
        Pixels pixels(kWidth * kHeight);
        std::memcpy(pixels.data(), bits, pixels.size() * sizeof(DWORD));
        for (DWORD& pixel : pixels) pixel &= 0xFFFFFF;
        ::DeleteObject(bitmap);
        return pixels;
    }
    DWORD Pixel(int x, int y) { return Picture()[static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)]; }
    // The picture as it is painted from nothing.
    Pixels Fresh() {
        ::InvalidateRect(m_hWnd, nullptr, TRUE);
        ::UpdateWindow(m_hWnd);
        return Picture();
    }

    Step Paint(const RECT& invalid) {
        Step step = Do([this, invalid] { ::InvalidateRect(m_hWnd, &invalid, FALSE); });
        step.paint = true;
        return step;
    }

    // Tracks from `start` on while the script happens.
    int Track(CTracker& tracker, CPoint start, Script script) {
        m_script = std::move(script);
        m_next = 0;
        Continue();
        const int result = tracker.TrackCursor(this, start);
        m_next = m_script.size();
        return result;
    }

    std::vector<std::pair<UINT, LPARAM>> m_seen;  // input and posted messages that came through
    std::function<void(CDC&)> m_draw;             // upon the picture
    std::function<LRESULT(WPARAM, LPARAM)> m_onUser;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case WM_PAINT: {
                {
                    CPaintDC dc(this);
                    DrawPicture(dc);
                    if (m_draw) m_draw(dc);
                }
                if (m_waiting) {
                    m_waiting = false;
                    Continue();
                }
                return 0;
            }
            case WM_ERASEBKGND:
                return 1;
            case WM_APP: {
                // The window may go in the middle, and this object's steps with it.
                const std::function<void()> action = m_script[static_cast<size_t>(wParam)].action;
                action();
                return 0;
            }
            case WM_USER + 4:
                if (m_onUser) return m_onUser(wParam, lParam);
                break;
            default:
                if ((message >= WM_KEYFIRST && message <= WM_KEYLAST) || (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) ||
                    message > WM_APP)
                    m_seen.emplace_back(message, lParam);
                if (message == WM_LBUTTONDOWN && m_onDown) m_onDown();
                break;
        }
        return CWnd::WindowProc(message, wParam, lParam);
    }

public:
    std::function<void()> m_onDown;

private:
    // Stripes and blocks, such that no two neighbourhoods look alike and every colour has another one for its inverse.
    static void DrawPicture(CDC& dc) {
        for (int i = 0; i < 20; ++i) {
            const RECT stripe = {i * 10, 0, i * 10 + 10, kHeight};
            CBrush brush(RGB(i * 12, 255 - i * 7, (i * 53) % 256));
            dc.FillRect(&stripe, &brush);
            const RECT block = {i * 10 + i % 4, i * 7, i * 10 + 9, i * 7 + 9};
            CBrush dark(RGB(20, i * 10, 90));
            dc.FillRect(&block, &dark);
        }
    }
    void Continue() {
        while (m_next < m_script.size()) {
            const Step& step = m_script[m_next];
            if (step.action)
                ::PostMessageA(m_hWnd, WM_APP, static_cast<WPARAM>(m_next), 0);
            else
                ::PostMessageA(m_hWnd, step.message, step.wParam, step.lParam);
            ++m_next;
            if (step.paint) {
                m_waiting = true;
                return;
            }
        }
    }

    Script m_script;
    size_t m_next = 0;
    bool m_waiting = false;
};

// Pixel for pixel; says where the first difference is.
inline testing::AssertionResult Same(const Pixels& a, const Pixels& b) {
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i])
            return testing::AssertionFailure() << "pixel " << i % CPaintedWnd::kWidth << "," << i / CPaintedWnd::kWidth << " is "
                                               << std::hex << a[i] << " and " << b[i];
    return testing::AssertionSuccess();
}

// An axis that its owner and one view hold, as trackers find it.
class ShownAxis {
public:
    explicit ShownAxis(int horizontal, LONG position, LONG start, LONG end, int holders = 2)
        : m_axis(new CUnitAxis(horizontal)), m_holders(holders) {
        m_axis->SetPosition(position, start, end);
        for (int i = 0; i < holders; ++i) m_axis->AddRef();
    }
    ShownAxis(const ShownAxis&) = delete;
    ShownAxis& operator=(const ShownAxis&) = delete;
    ~ShownAxis() { Remove(); }
    void Remove() {
        for (; m_holders > 0; --m_holders) m_axis->Release();
    }
    CUnitAxis* operator->() const { return m_axis; }
    operator CUnitAxis*() const { return m_axis; }

private:
    CUnitAxis* m_axis;
    int m_holders;
};

// Shift and Ctrl as the system sees them, until the end.
class HeldKeys {
public:
    explicit HeldKeys(std::vector<int> keys = {}) {
        ::GetKeyboardState(m_before);
        Hold(std::move(keys));
    }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
    ~HeldKeys() { ::SetKeyboardState(m_before); }
    static void Hold(const std::vector<int>& keys) {
        BYTE state[256] = {};
        for (const int key : keys) state[key] = 0x80;
        ::SetKeyboardState(state);
    }

private:
    BYTE m_before[256] = {};
};

class TrackerTest : public testing::Test {
protected:
    void SetUp() override { m_wnd.Create(); }
    void TearDown() override {
        EXPECT_EQ(::GetCapture(), nullptr);
        CPaintedWnd::Discard();
    }
    CPaintedWnd m_wnd;
};

}  // namespace tracker_test
