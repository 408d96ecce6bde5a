// A window that holds one control and writes down what the control tells it, in words.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/win32.h"

class ControlHost : public ::testing::Test {
public:
    static constexpr int kId = 77;

protected:
    void SetUp() override {
        INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
        ASSERT_TRUE(InitCommonControlsEx(&classes));
        WNDCLASSA hostClass = {};
        hostClass.lpfnWndProc = &Procedure;
        hostClass.hInstance = GetModuleHandleA(nullptr);
        hostClass.lpszClassName = "OrvikControlHost";
        hostClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
        RegisterClassA(&hostClass);
        parent = CreateWindowExA(0, "OrvikControlHost", "host", WS_POPUP | WS_VISIBLE, 10, 10, 300, 200, nullptr, nullptr,
                                 GetModuleHandleA(nullptr), this);
        ASSERT_NE(parent, nullptr);
        SetActiveWindow(parent);
    }
    void TearDown() override {
        BYTE keys[256] = {};
        SetKeyboardState(keys);
        if (IsWindow(parent)) DestroyWindow(parent);
    }

public:
    HWND Make(const char* name, DWORD style, const char* text = "", int width = 200, int height = 100, int id = kId) {
        control = CreateWindowExA(0, name, text, WS_CHILD | WS_VISIBLE | style, 0, 0, width, height, parent,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
        log.clear();
        return control;
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) { return SendMessageA(control, message, wParam, lParam); }
    LRESULT Ask(UINT message, WPARAM wParam, const void* record) {
        return SendMessageA(control, message, wParam, reinterpret_cast<LPARAM>(record));
    }
    void Type(const char* text) {
        for (; *text != 0; ++text) Send(WM_CHAR, static_cast<unsigned char>(*text), 1);
    }
    static void Hold(int key, bool down) {
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[key] = down ? 0x80 : 0;
        SetKeyboardState(keys);
    }
    void Press(int key, int with = 0) {
        if (with != 0) Hold(with, true);
        Send(WM_KEYDOWN, static_cast<WPARAM>(key), 1);
        Send(WM_KEYUP, static_cast<WPARAM>(key), static_cast<LPARAM>(0xC0000001));
        if (with != 0) Hold(with, false);
    }
    void Click(int x, int y) { Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y)), Send(WM_LBUTTONUP, 0, MAKELPARAM(x, y)); }
    std::string Text() const {
        char text[1024];
        const int length = GetWindowTextA(control, text, sizeof text);
        return std::string(text, static_cast<size_t>(length));
    }
    // What was told since the last call, in words between blanks.
    std::string Told() { return std::exchange(log, {}); }

    // What a notification is called, where it has a name.
    std::map<UINT, std::string> names;
    std::string Name(UINT code) const {
        const auto found = names.find(code);
        return found != names.end() ? found->second : std::to_string(static_cast<int>(code));
    }
    // The answer to a WM_NOTIFY message.
    virtual LRESULT Notified(const NMHDR&) { return 0; }

    HWND parent = nullptr, control = nullptr;
    std::string log;

    void Note(const std::string& word) { log += log.empty() ? word : " " + word; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrA(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
        auto* host = reinterpret_cast<ControlHost*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (host != nullptr && message == WM_COMMAND && lParam != 0) host->Note(host->Name(HIWORD(wParam)));
        if (host != nullptr && message == WM_NOTIFY) return host->Notified(*reinterpret_cast<const NMHDR*>(lParam));
        if (host != nullptr && (message == WM_HSCROLL || message == WM_VSCROLL))
            host->Note((message == WM_HSCROLL ? "h" : "v") + std::to_string(LOWORD(wParam)));
        return DefWindowProcA(window, message, wParam, lParam);
    }
};
