// Windows that note what they are told, for tests on both homes. Only messages whose order both homes promise are noted.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "tests/support/table.h"

namespace window_test {

using Log = std::vector<std::string>;

using Noted = std::pair<UINT, const char*>;
inline const auto kNoted =
    Table(Noted{WM_CREATE, "create"}, Noted{WM_DESTROY, "destroy"}, Noted{WM_NCDESTROY, "gone"}, Noted{WM_SIZE, "size"},
          Noted{WM_MOVE, "move"}, Noted{WM_SHOWWINDOW, "show"}, Noted{WM_ACTIVATE, "activate"}, Noted{WM_SETFOCUS, "focus"},
          Noted{WM_KILLFOCUS, "unfocus"}, Noted{WM_ENABLE, "enable"}, Noted{WM_CANCELMODE, "cancel"},
          Noted{WM_CAPTURECHANGED, "capture"}, Noted{WM_PARENTNOTIFY, "child"}, Noted{WM_WINDOWPOSCHANGED, "placed"},
          Noted{WM_PAINT, "paint"}, Noted{WM_ERASEBKGND, "erase"}, Noted{WM_SETCURSOR, "cursor"}, Noted{WM_MOUSEMOVE, "mouse"},
          Noted{WM_LBUTTONDOWN, "press"}, Noted{WM_LBUTTONUP, "release"}, Noted{WM_LBUTTONDBLCLK, "double"},
          Noted{WM_RBUTTONDOWN, "right"}, Noted{WM_MOUSEWHEEL, "wheel"}, Noted{WM_KEYDOWN, "key"}, Noted{WM_KEYUP, "keyup"},
          Noted{WM_SYSKEYDOWN, "syskey"}, Noted{WM_CHAR, "char"}, Noted{WM_COMMAND, "command"}, Noted{WM_INITMENUPOPUP, "menu"},
          Noted{WM_CONTEXTMENU, "context"}, Noted{WM_TIMER, "timer"}, Noted{WM_USER, "user"});

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
        for (const auto& [window, name] : std::map<HWND, std::string>(m_names))
            if (IsWindow(window)) DestroyWindow(window);
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
        const auto is = [message](std::initializer_list<UINT> these) {
            return std::find(these.begin(), these.end(), message) != these.end();
        };
        const auto name = [this](auto window) { return NameOf(reinterpret_cast<HWND>(window)); };
        if (is({WM_SIZE, WM_MOVE})) return pair(lParam);
        if (is({WM_SHOWWINDOW, WM_ENABLE, WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN, WM_CHAR})) return std::to_string(wParam);
        if (is({WM_ACTIVATE})) return std::to_string(LOWORD(wParam)) + " " + name(lParam);
        if (is({WM_SETFOCUS, WM_KILLFOCUS})) return name(wParam);
        if (is({WM_CAPTURECHANGED})) return name(lParam);
        if (is({WM_PARENTNOTIFY})) return std::to_string(LOWORD(wParam));
        if (is({WM_SETCURSOR})) return name(wParam) + " " + std::to_string(static_cast<short>(LOWORD(lParam)));
        if (is({WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN}))
            return std::to_string(wParam) + " " + pair(lParam);
        if (is({WM_MOUSEWHEEL})) return std::to_string(static_cast<short>(HIWORD(wParam))) + " " + pair(lParam);
        if (is({WM_COMMAND})) return std::to_string(LOWORD(wParam)) + "," + std::to_string(HIWORD(wParam));
        return "";
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        WindowLogTest* self = Self();
        if (self == nullptr) return DefWindowProcA(window, message, wParam, lParam);
        if (self->m_names.count(window) == 0) self->m_names[window] = self->m_making;
        for (const auto& [number, name] : kNoted) {
            if (number != message) continue;
            const std::string arguments = self->Arguments(message, wParam, lParam);
            self->m_log.push_back(self->NameOf(window) + " " + name + (arguments.empty() ? "" : " ") + arguments);
        }
        LRESULT answer = 0;
        if (self->Answer(window, message, wParam, lParam, answer)) return answer;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    std::string m_making;
};

}  // namespace window_test
