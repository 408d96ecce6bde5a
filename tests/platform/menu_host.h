// A window with menus that writes down what their loop tells it. What a user does is a list of words, done one after the other by
// messages that the loop hands on: a key's name, "'x" for a character, and what a test adds.
#pragma once

#include <sstream>

#include "platform/scripted_input.h"
#include "tests/platform/window_log.h"

class MenuHost : public window_test::WindowLogTest {
protected:
    void SetUp() override {
        WindowLogTest::SetUp();
        top = Make("top", WS_POPUP | WS_VISIBLE, {100, 100, 500, 400});
        SetForegroundWindow(top);
        more = CreatePopupMenu();
        AppendMenuA(more, MF_STRING, 11, "&One");
        AppendMenuA(more, MF_STRING | MF_CHECKED, 12, "&Two");
        edit = CreatePopupMenu();
        AppendMenuA(edit, MF_STRING, 1, "&Undo\tCtrl+Z");
        AppendMenuA(edit, MF_STRING | MF_GRAYED, 2, "&Redo");
        AppendMenuA(edit, MF_SEPARATOR, 0, nullptr);
        AppendMenuA(edit, MF_POPUP, reinterpret_cast<UINT_PTR>(more), "&More");
        AppendMenuA(edit, MF_STRING, 4, "Same &x");
        AppendMenuA(edit, MF_STRING, 5, "Other &x");
        Pump();
        Take();
        log.clear();
    }
    void TearDown() override {
        DestroyMenu(edit);
        WindowLogTest::TearDown();
    }
    // The menu at a point of the desktop, with that done in it; what came of it.
    BOOL Track(const std::string& doing, UINT flags = 0, POINT at = {150, 150}) {
        Plan(doing), Begin();
        const BOOL result = TrackPopupMenu(edit, flags, static_cast<int>(at.x), static_cast<int>(at.y), 0, top, nullptr);
        Pump();
        return result;
    }
    void Plan(const std::string& doing) {
        log.clear();
        closed = 0;
        m_steps = {};
        std::istringstream words(doing);
        for (std::string word; words >> word;) m_steps.push_back(word);
    }
    void Begin() { PostMessageA(top, WM_APP, 0, 0); }
    virtual void Do(const std::string& word) {
        static const std::map<std::string, UINT> kKeys = {{"up", VK_UP},        {"down", VK_DOWN},     {"left", VK_LEFT},
                                                          {"right", VK_RIGHT},  {"home", VK_HOME},     {"end", VK_END},
                                                          {"enter", VK_RETURN}, {"escape", VK_ESCAPE}, {"alt", VK_MENU}};
        const auto key = kKeys.find(word);
        if (key != kKeys.end()) {
            PostMessageA(top, key->second == VK_MENU ? WM_SYSKEYDOWN : WM_KEYDOWN, key->second, 1);
            if (word == "enter") PostMessageA(top, WM_CHAR, '\r', 1);  // some loops wait for the character
        } else if (word[0] == '\'')
            PostMessageA(top, WM_CHAR, static_cast<unsigned char>(word[1]), 1);
        else if (word == "quit")
            PostQuitMessage(7);
        else if (word == "cancel")
            SendMessageA(top, WM_CANCELMODE, 0, 0);
        else if (word == "end!")
            EndMenu();
        else if (word == "destroy")
            DestroyWindow(top);
    }
    bool Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& answer) override {
        if (window != top) return false;
        const auto note = [this](const std::string& text) { log += (log.empty() ? "" : " ") + text; };
        const auto name = [this](HMENU menu) {
            return menu == edit ? "edit" : menu == more ? "more" : menu == bar ? "bar" : "?";
        };
        const auto menu =
            reinterpret_cast<HMENU>(message == WM_MENUSELECT || message == WM_MENUCHAR ? lParam : static_cast<LPARAM>(wParam));
        switch (message) {
            case WM_ENTERMENULOOP:
                m_open = true;
                note(wParam != 0 ? "enter" : "enter-bar");
                break;
            case WM_INITMENU:
                note(std::string("init:") + name(menu));
                break;
            case WM_INITMENUPOPUP:
                note(std::string("open:") + name(menu) + std::to_string(LOWORD(lParam)));
                break;
            case WM_MENUSELECT: {
                if (HIWORD(wParam) == 0xFFFF && lParam == 0) {
                    note("none");
                    break;
                }
                // Telling of the same item twice in a row is telling it once.
                const std::string chosen = std::to_string(LOWORD(wParam)) + ((HIWORD(wParam) & MF_POPUP) != 0 ? "p" : "") +
                                           ((HIWORD(wParam) & MF_GRAYED) != 0 ? "g" : "") +
                                           ((HIWORD(wParam) & MF_CHECKED) != 0 ? "c" : "");
                if (!(" " + log).ends_with(" " + chosen)) note(chosen);
                break;
            }
            case WM_MENUCHAR:
                note(std::string("char:") + static_cast<char>(LOWORD(wParam)));
                answer = menuChar;
                return true;
            case WM_UNINITMENUPOPUP:
                ++closed;  // homes differ in when they tell it
                break;
            case WM_EXITMENULOOP:
                m_open = false;
                note("exit");
                break;
            case WM_COMMAND:
                note("command:" + std::to_string(wParam));
                break;
            case WM_APP: {
                if (m_steps.empty()) {
                    EXPECT_FALSE(m_open) << "the menu is still open: " << log;
                    EndMenu();
                    break;
                }
                const std::string word = m_steps.front();
                m_steps.erase(m_steps.begin());
                Do(word);
                if (IsWindow(top) && word != "quit") Begin();  // the quit message comes when nothing else waits
                break;
            }
            default:
                break;
        }
        return false;
    }
    HWND top = nullptr;
    HMENU edit = nullptr, more = nullptr, bar = nullptr;
    LRESULT menuChar = 0;
    int closed = 0;
    std::string log;

private:
    std::vector<std::string> m_steps;
    bool m_open = false;
};
