// Bytes become lines. However long a line is, no more of it is kept than its greatest length. A value; one thread at a time.
#pragma once

#include <string>
#include <string_view>

namespace text {

class Splitter {
public:
    // `end`: the bytes that end a line; empty: a carriage return or a line feed, in any order and number. `most`: characters that
    // a line may have.
    Splitter(std::string end, size_t most);

    struct Line {
        std::string text;  // without its end
        bool cut = false;  // it was longer; the text is its beginning
    };
    // Takes bytes up to the end of a line, or all. Returns how many; `whole` is set when `line` is one. Lines without a character
    // are none.
    size_t Take(std::string_view bytes, Line& line, bool& whole);

    // The line that is under way will not count; it will after all.
    void Drop() { m_dropped = true; }
    void Keep() { m_dropped = false; }
    bool IsDropped() const { return m_dropped; }
    // Whether bytes came that no end has followed yet; and the beginning of that line.
    bool HasHalf() const { return m_length > 0; }
    std::string Half() const { return m_text.substr(0, m_most); }
    bool IsHalfTooLong() const { return m_length > m_most; }

private:
    bool EndsHere(char c);

    std::string m_end;
    size_t m_most;
    std::string m_text;  // of the line under way, its end included
    std::string m_last;  // as many bytes as an end has
    size_t m_length = 0;
    bool m_dropped = false;
};

}  // namespace text
