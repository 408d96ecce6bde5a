// A line of text that is being written: the text and where the next letter goes. A value type; any thread.
#pragma once

#include <string>

#include "platform/letters.h"

struct LineEdit {
    static constexpr size_t kLongest = 1000;  // bytes

    std::string text;
    size_t caret = 0;

    LineEdit() = default;
    explicit LineEdit(std::string begin) : text(std::move(begin)), caret(text.size()) {}

    // A character as it is typed; control characters and what does not fit are passed over.
    void Write(std::string_view character) {
        if (character.empty() || static_cast<unsigned char>(character[0]) < ' ' || text.size() + character.size() > kLongest)
            return;
        text.insert(caret, character);
        caret += character.size();
    }
    // Its letters one by one, as if they were typed; what stood in columns keeps a blank between.
    void WriteAll(std::string_view typed) {
        for (size_t at = 0; at < typed.size();) {
            const size_t next = OrvikNextLetter(typed, at);
            Write(typed[at] == '\t' ? " " : typed.substr(at, next - at));
            at = next;
        }
    }
    // A key that moves or removes; false for any other.
    bool Key(WORD key) {
        switch (key) {
            case VK_LEFT:
                caret = OrvikPreviousLetter(text, caret);
                return true;
            case VK_RIGHT:
                caret = OrvikNextLetter(text, caret);
                return true;
            case VK_HOME:
                caret = 0;
                return true;
            case VK_END:
                caret = text.size();
                return true;
            case VK_BACK:
                caret = Erase(OrvikPreviousLetter(text, caret), caret);
                return true;
            case VK_DELETE:
                Erase(caret, OrvikNextLetter(text, caret));
                return true;
            default:
                return false;
        }
    }

private:
    size_t Erase(size_t from, size_t to) {
        text.erase(from, to - from);
        return from;
    }
};
