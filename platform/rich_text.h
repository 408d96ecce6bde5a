// The plain text of rich text (RTF), as the system's rich-edit control shows it: on Windows by such a control, elsewhere by a
// reader of its own. A reader belongs to the thread that made it, on Windows to a user-interface thread.
//
// What begins with "{\rtf" or "{\urtf" is rich text, anything else is plain and passes as it stands, but for its line ends. In
// the result paragraphs and lines end in carriage return and line feed, tabs stand as tabs, and the last paragraph of a rich text
// has no end. Text is Windows-1252 up to its final 0; characters beyond it become "?". Fonts, colours, styles, pictures, headers
// and unknown destinations are no text. Damaged rich text gives the text up to where it makes sense.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32.h"

namespace orvik {

class ORVIK_API RichTextReader {
public:
    // `owner`: the window that a hidden control is made on, where one is needed; null for none.
    explicit RichTextReader(HWND owner);
    ~RichTextReader();
    RichTextReader(const RichTextReader&) = delete;
    RichTextReader& operator=(const RichTextReader&) = delete;

    // Whether the system has the means; without them nothing can be read.
    bool IsOpen() const { return m_open; }
    std::string ToPlain(const char* text) const;

private:
    bool m_open = false;
    HMODULE m_library = nullptr;
    HWND m_control = nullptr;
};

namespace detail {
// The one form of line ends: carriage return and line feed for each of them alone, for both together, and for a vertical tab. Two
// carriage returns and a line feed, a wrapped line of an edit control, are a space.
inline std::string WithPlainLineEnds(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch != '\r' && ch != '\n' && ch != '\v') {
            plain += ch;
        } else if (text.substr(at, 3) == "\r\r\n") {
            plain += ' ';
            at += 2;
        } else {
            plain += "\r\n";
            if (text.substr(at, 2) == "\r\n") ++at;
        }
    }
    return plain;
}
}  // namespace detail

}  // namespace orvik
