// Tips for what a window or dialog shows: a sentence that the pointer brings where it rests. House text; user-interface thread.
// They live as long as the object or their window, whatever ends first.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/win32.h"

class ToolTips {
public:
    ToolTips() = default;
    ~ToolTips();
    ToolTips(const ToolTips&) = delete;
    ToolTips& operator=(const ToolTips&) = delete;

    // For this top-level window and what is in it. Without the system's tips there are none.
    void Create(HWND root);
    // For a rectangle of a window's client area, which `id` tells from others of that window; no text: no tip.
    void Put(HWND window, UINT_PTR id, const RECT& place, const std::string& text);
    // For a dialog's control, with the field of a combo box.
    void PutOn(HWND control, const std::string& text);
    // The message that a window handles at the moment, for a tip that was put because of it.
    void Relay(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // What is there; empty for nothing.
    std::string TextAt(HWND window, UINT_PTR id) const;

private:
    struct Tip {
        RECT place;
        std::string text;
    };
    void Send(UINT message, HWND window, UINT_PTR id, const Tip& tip, UINT flags);

    HWND m_root = nullptr, m_tips = nullptr;
    std::map<std::pair<HWND, UINT_PTR>, Tip> m_there;
};
