// A user's hands for tests: a window with a session, gestures into it, and its pixels.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "afx/dc.h"
#include "host/gui/main_window.h"
#include "host/gui/shown_pixels.h"
#include "platform/scripted_input.h"

// The host, keeping what its user would have been told.
class TellingHost : public CHostApp {
public:
    int DoMessageBox(LPCSTR prompt, UINT, UINT) override {
        told.emplace_back(prompt);
        return IDOK;
    }
    static inline std::vector<std::string> told;
};

class Hands {
public:
    explicit Hands(SIZE client = {640, 420}) {
        static TellingHost app;  // one in a program
        window = std::make_unique<MainWindow>(app, MainWindow::Manner::Quiet);
        window->CreateWindowOf(client, SW_SHOWNOACTIVATE);
        Pump();
    }
    // Four channels of three units, with two tags; on a file so that a window opens it as a user would.
    static void WriteSession(const std::string& path, int readings = 200);

    void Pump() {
        MSG message;
        while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            ::TranslateMessage(&message);
            ::DispatchMessageA(&message);
        }
    }
    void Point(UINT message, POINT at, int wheel = 0) { ::OrvikPostPointer(window->m_hWnd, message, at.x, at.y, wheel); }
    void Key(UINT key, bool shift = false, bool control = false) {
        Hold(shift, control, TRUE);
        ::OrvikPostKey(window->m_hWnd, key, TRUE);
        ::OrvikPostKey(window->m_hWnd, key, FALSE);
        Hold(shift, control, FALSE);
        Pump();
    }
    void Hold(bool shift, bool control, BOOL down) {
        if (shift) ::OrvikPostKey(window->m_hWnd, VK_SHIFT, down);
        if (control) ::OrvikPostKey(window->m_hWnd, VK_CONTROL, down);
    }
    // From a to b by way of a point between; everything is posted at once, as a fast hand would.
    void Press(POINT a, POINT b) {
        Point(WM_MOUSEMOVE, a);
        Point(WM_LBUTTONDOWN, a);
        Point(WM_MOUSEMOVE, {(a.x + b.x) / 2, (a.y + b.y) / 2});
        Point(WM_MOUSEMOVE, b);
    }
    void Drag(POINT a, POINT b, bool shift = false, bool control = false) {
        Hold(shift, control, TRUE);
        Press(a, b);
        Point(WM_LBUTTONUP, b);
        Hold(shift, control, FALSE);
        Pump();
    }
    void DoubleClick(POINT at) {
        for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}) Point(message, at);
        Pump();
    }
    void Type(const char* text) {
        ::OrvikPostText(::GetFocus() != nullptr ? ::GetFocus() : window->m_hWnd, text);
        Pump();
    }

    const ViewParts& Parts() { return window->Chart().Parts(); }  // the chart lies at the window's origin
    const ViewState& State() { return window->Document().State(); }
    ViewHistory& History() { return window->Document().History(); }
    static POINT Middle(const RECT& rect) { return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}; }

    // What the window shows, but for the line of hints. Drags leave no trace in it once they have ended.
    std::vector<COLORREF> Pixels() {
        Pump();
        return ShownPixels(*window);
    }

    // As if nobody had touched it: no focus mark, the keys on the chart.
    std::vector<COLORREF> Settled() {
        window->Chart().SetFocusMark({});
        ::SetFocus(window->Chart().m_hWnd);
        window->List().Settle();
        return Pixels();
    }
    // What differs between two pictures, for a message; empty for nothing.
    std::string Difference(const std::vector<COLORREF>& a, const std::vector<COLORREF>& b) const {
        if (a == b) return {};
        if (a.size() != b.size()) return "another size";
        RECT client = {};
        ::GetClientRect(window->m_hWnd, &client);
        RECT box = {client.right, client.bottom, 0, 0};
        size_t count = 0;
        for (size_t i = 0; i < a.size(); ++i) {
            if (a[i] == b[i]) continue;
            const auto x = static_cast<LONG>(i % static_cast<size_t>(client.right)),
                       y = static_cast<LONG>(i / static_cast<size_t>(client.right));
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), std::max(box.bottom, y + 1)};
            ++count;
        }
        return std::to_string(count) + " pixels within " + std::to_string(box.left) + "," + std::to_string(box.top) + " " +
               std::to_string(box.right) + "," + std::to_string(box.bottom);
    }

    std::unique_ptr<MainWindow> window;
};
