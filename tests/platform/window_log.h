// Windows that note what they are told, for tests on both homes. Only messages whose order both homes promise are noted.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace window_test {

using Log = std::vector<std::string>;

struct Noted {
    UINT message;
    const char* name;
};
inline constexpr Noted kNoted[] = {{WM_CREATE, "create"},
                                   {WM_DESTROY, "destroy"},
                                   {WM_NCDESTROY, "gone"},
                                   {WM_SIZE, "size"},
                                   {WM_MOVE, "move"},
                                   {WM_SHOWWINDOW, "show"},
                                   {WM_ACTIVATE, "activate"},
                                   {WM_SETFOCUS, "focus"},
                                   {WM_KILLFOCUS, "unfocus"},
                                   {WM_ENABLE, "enable"},
                                   {WM_CANCELMODE, "cancel"},
                                   {WM_CAPTURECHANGED, "capture"},
                                   {WM_PARENTNOTIFY, "child"},
                                   {WM_WINDOWPOSCHANGED, "placed"},
                                   {WM_PAINT, "paint"},
                                   {WM_ERASEBKGND, "erase"},
                                   {WM_SETCURSOR, "cursor"},
                                   {WM_MOUSEMOVE, "mouse"},
                                   {WM_LBUTTONDOWN, "press"},
                                   {WM_LBUTTONUP, "release"},
                                   {WM_LBUTTONDBLCLK, "double"},
                                   {WM_RBUTTONDOWN, "right"},
                                   {WM_MOUSEWHEEL, "wheel"},
                                   {WM_KEYDOWN, "key"},
                                   {WM_KEYUP, "keyup"},
                                   {WM_SYSKEYDOWN, "syskey"},
                                   {WM_CHAR, "char"},
                                   {WM_COMMAND, "command"},
                                   {WM_INITMENUPOPUP, "menu"},
                                   {WM_CONTEXTMENU, "context"},
                                   {WM_TIMER, "timer"},
                                   {WM_USER, "user"}};

class WindowLogTest : public testing::Test {
protected:
    static constexpr const char* kClass = "OrvikWindowLog";

    void SetUp() override {
        WNDCLASSA info{};
        info.style = CS_DBLCLKS;
        info.lpfnWndProc = Procedure;
        info.lpszClassName = kClass;
        info.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
        ASSERT_NE(RegisterClassA(&info), 0);
        Self() = this;
        // A real pointer over the windows would speak too.
        SetCursorPos(1200, 1000);
        BYTE keys[256] = {};
        SetKeyboardState(keys);
    }
    void TearDown() override {
        for (const auto& [window, name] : std::map<HWND, std::string>(m_names)) {
            if (IsWindow(window)) DestroyWindow(window);
        }
        Pump();
        EXPECT_TRUE(UnregisterClassA(kClass, nullptr));
        Self() = nullptr;
    }
    HWND Make(const char* name, DWORD style, RECT place, HWND parent = nullptr, UINT_PTR id = 0) {
        m_making = name;
        const HWND window =
            CreateWindowExA(0, kClass, name, style, static_cast<int>(place.left), static_cast<int>(place.top),
                            static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top), parent,
                            reinterpret_cast<HMENU>(id), nullptr, nullptr);
        EXPECT_NE(window, nullptr);
        return window;
    }
    // The notes since the last call that have one of these names; all of them if there are none.
    Log Take(const std::set<std::string>& names = {}) {
        Log out;
        for (const std::string& line : m_log) {
            const size_t from = line.find(' ') + 1;
            if (names.empty() || names.count(line.substr(from, line.find(' ', from) - from)) > 0) out.push_back(line);
        }
        m_log.clear();
        return out;
    }
    std::string NameOf(HWND window) const {
        const auto found = m_names.find(window);
        return found != m_names.end() ? found->second : window == nullptr ? "none" : "?";
    }
    static void Pump() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    // What a test does about a message instead of the default; false leaves it alone.
    virtual bool Answer(HWND, UINT, WPARAM, LPARAM, LRESULT&) { return false; }

    std::map<HWND, std::string> m_names;
    Log m_log;

private:
    static WindowLogTest*& Self() {
        static WindowLogTest* self = nullptr;
        return self;
    }
    std::string Arguments(UINT message, WPARAM wParam, LPARAM lParam) const {
        const auto pair = [](LPARAM l) {
            return std::to_string(static_cast<short>(LOWORD(l))) + "," + std::to_string(static_cast<short>(HIWORD(l)));
        };
        switch (message) {
            case WM_SIZE:
            case WM_MOVE:
                return pair(lParam);
            case WM_SHOWWINDOW:
            case WM_ENABLE:
                return std::to_string(wParam);
            case WM_ACTIVATE:
                return std::to_string(LOWORD(wParam)) + " " + NameOf(reinterpret_cast<HWND>(lParam));
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                return NameOf(reinterpret_cast<HWND>(wParam));
            case WM_CAPTURECHANGED:
                return NameOf(reinterpret_cast<HWND>(lParam));
            case WM_PARENTNOTIFY:
                return std::to_string(LOWORD(wParam));
            case WM_SETCURSOR:
                return NameOf(reinterpret_cast<HWND>(wParam)) + " " + std::to_string(static_cast<short>(LOWORD(lParam)));
            case WM_MOUSEMOVE:
            case WM_LBUTTONDOWN:
            case WM_LBUTTONUP:
            case WM_LBUTTONDBLCLK:
            case WM_RBUTTONDOWN:
                return std::to_string(wParam) + " " + pair(lParam);
            case WM_MOUSEWHEEL:
                return std::to_string(static_cast<short>(HIWORD(wParam))) + " " + pair(lParam);
            case WM_KEYDOWN:
            case WM_KEYUP:
            case WM_SYSKEYDOWN:
            case WM_CHAR:
                return std::to_string(wParam);
            case WM_COMMAND:
                return std::to_string(LOWORD(wParam)) + "," + std::to_string(HIWORD(wParam));
            default:
                return "";
        }
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        WindowLogTest* self = Self();
        if (self == nullptr) return DefWindowProcA(window, message, wParam, lParam);
        if (self->m_names.count(window) == 0) self->m_names[window] = self->m_making;
        for (const Noted& noted : kNoted) {
            if (noted.message != message) continue;
            const std::string arguments = self->Arguments(message, wParam, lParam);
            self->m_log.push_back(self->NameOf(window) + " " + noted.name + (arguments.empty() ? "" : " ") + arguments);
        }
        LRESULT answer = 0;
        if (self->Answer(window, message, wParam, lParam, answer)) return answer;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    std::string m_making;
};

}  // namespace window_test
