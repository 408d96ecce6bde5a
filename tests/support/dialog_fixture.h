// What tests of dialogs share: an application that keeps what its user would have been told, a window to stand over, and keys and
// clicks as messages.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "afx/app.h"
#include "afx/dc.h"
#include "afx/message_map.h"
#include "afx/wnd.h"
#include "tests/support/regional_settings.h"

// An application that keeps what its user would have been told.
class TellingApp : public CWinApp {
public:
    explicit TellingApp(LPCSTR name = "Dialog test", int answer = IDOK) : CWinApp(name), m_answer(answer) {}
    int DoMessageBox(LPCSTR prompt, UINT type, UINT) override {
        told.emplace_back(prompt);
        types.push_back(type);
        return m_answer;
    }
    // The one message since the last call; empty, with a failure, if it was none or several.
    std::string Told() {
        EXPECT_EQ(told.size(), 1u);
        const std::string text = told.size() == 1 ? told[0] : "";
        told.clear(), types.clear();
        return text;
    }
    std::vector<std::string> told;
    std::vector<UINT> types;

private:
    int m_answer;
};

// Handles what waits.
inline void PumpAll() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

inline void Press(HWND window, UINT key) {
    SendMessageA(window, WM_KEYDOWN, key, 1);
    if (IsWindow(window)) SendMessageA(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

inline void ClickAt(HWND window, POINT at) {
    SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    SendMessageA(window, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
}

inline std::string TextOf(HWND window) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(window)) + 1, 0);
    text.resize(static_cast<size_t>(GetWindowTextA(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

inline RECT PlaceIn(HWND parent, HWND child) {
    RECT place;
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Texts fit, each mnemonic is there once, Tab reaches every control that can be reached.
inline void ExpectUsable(HWND dialog, const std::string& name) {
    std::set<char> mnemonics;
    for (HWND each = ::GetWindow(dialog, GW_CHILD); each != nullptr; each = ::GetWindow(each, GW_HWNDNEXT)) {
        char kind[32] = "";
        ::GetClassNameA(each, kind, sizeof kind);
        const bool button = lstrcmpiA(kind, "Button") == 0;
        const std::string text = TextOf(each);
        if (!::IsWindowVisible(each) || text.empty() || (!button && lstrcmpiA(kind, "Static") != 0)) continue;
        const size_t mark = text.find('&');
        if (mark != std::string::npos) {
            EXPECT_TRUE(mnemonics.insert(static_cast<char>(::tolower(text[mark + 1]))).second) << name << ": " << text;
        }
        CClientDC dc(CWnd::FromHandle(each));
        const HGDIOBJ before = ::SelectObject(dc.m_hDC, reinterpret_cast<HFONT>(::SendMessageA(each, WM_GETFONT, 0, 0)));
        std::string shown = text;
        if (mark != std::string::npos) shown.erase(mark, 1);
        const CSize needed = dc.GetTextExtent(shown.c_str(), static_cast<int>(shown.size()));
        ::SelectObject(dc.m_hDC, before);
        CRect place;
        ::GetClientRect(each, place);
        const int lines = std::max(1, place.Height() / std::max<int>(1, needed.cy));
        EXPECT_LE(needed.cx, place.Width() * lines) << name << ": " << text;
        EXPECT_LE(needed.cy, place.Height()) << name << ": " << text;
    }
    const HWND first = ::GetNextDlgTabItem(dialog, nullptr, FALSE);
    std::set<HWND> reached;
    for (HWND each = first; reached.insert(each).second;) each = ::GetNextDlgTabItem(dialog, each, FALSE);
    for (HWND each = ::GetWindow(dialog, GW_CHILD); each != nullptr; each = ::GetWindow(each, GW_HWNDNEXT)) {
        const auto style = ::GetWindowLongPtrA(each, GWL_STYLE);
        if ((style & WS_TABSTOP) != 0 && ::IsWindowVisible(each) && ::IsWindowEnabled(each)) {
            EXPECT_TRUE(reached.count(each)) << name << ": " << TextOf(each);
        }
    }
}

// Keys that are held, until the test ends.
class HeldKey {
public:
    explicit HeldKey(int key) : m_key(key) { Set(0x80); }
    ~HeldKey() { Set(0); }
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;

private:
    void Set(BYTE state) {
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[m_key] = state;
        SetKeyboardState(keys);
    }
    int m_key;
};

class DialogTest : public testing::Test {
protected:
    void SetUp() override { MakeOwner(WS_VISIBLE); }
    void TearDown() override {
        if (owner.m_hWnd != nullptr) owner.DestroyWindow();
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    void MakeOwner(DWORD style) {
        if (owner.m_hWnd != nullptr) owner.DestroyWindow();
        ASSERT_TRUE(owner.CreateEx(0, AfxRegisterWndClass(0), "owner", WS_POPUP | style, 40, 30, 600, 500, nullptr, nullptr));
        SetActiveWindow(owner);
    }

    TellingApp app;
    TextLanguage english{LANG_ENGLISH};
    CWnd owner;
};
