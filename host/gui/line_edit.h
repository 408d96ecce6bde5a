// A line of text that is being written: the text and where the next letter goes. A value type; any thread. Windows-1252.
#pragma once

#include <string>

#include "platform/win32.h"

struct LineEdit {
    static constexpr size_t kLongest = 1000;

    std::string text;
    size_t caret = 0;

    LineEdit() = default;
    explicit LineEdit(std::string begin) : text(std::move(begin)), caret(text.size()) {}

    void Write(char letter) {
        if (static_cast<unsigned char>(letter) < ' ' || text.size() >= kLongest) return;
        text.insert(caret++, 1, letter);
    }
    // A key that moves or removes; false for any other.
    bool Key(WORD key) {
        switch (key) {
            case VK_LEFT:
                caret -= caret > 0 ? 1 : 0;
                return true;
            case VK_RIGHT:
                caret += caret < text.size() ? 1 : 0;
                return true;
            case VK_HOME:
                caret = 0;
                return true;
            case VK_END:
                caret = text.size();
                return true;
            case VK_BACK:
                if (caret > 0) text.erase(--caret, 1);
                return true;
            case VK_DELETE:
                if (caret < text.size()) text.erase(caret, 1);
                return true;
            default:
                return false;
        }
    }
};
