// Letters as a reader sees them, for whoever lets people write, shortens texts or sets them in columns. In a UTF-8 process a
// letter is a character with the marks that sit on it; in a Windows-1252 process (house_text.h) it is a byte. Text is this
// process's own; offsets are bytes, one that lies within a letter is allowed everywhere, one beyond the end counts as the end.
// Any thread.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32.h"

// Where the first letter behind `at` begins; text.size() behind the last one.
ORVIK_API size_t OrvikNextLetter(std::string_view text, size_t at);
// Where the last letter that begins before `at` begins; 0 where there is none.
ORVIK_API size_t OrvikPreviousLetter(std::string_view text, size_t at);
// The longest beginning of the text of at most `bytes` bytes that cuts no letter.
ORVIK_API std::string_view OrvikWholeLetters(std::string_view text, size_t bytes);

// Columns that UTF-8 takes on a terminal: two for a Chinese letter, none for a mark that sits on another.
ORVIK_API size_t OrvikColumns(std::string_view utf8);

// Whether UTF-8 holds a letter or digits that make a terminal of two directions set some of their line from the right: letters of
// Arabic or Hebrew, and Arabic digits.
ORVIK_API bool OrvikHasRightToLeft(std::string_view utf8);

// The one form of all texts that Unicode says are the same: a letter and its marks as one character where there is one, and the
// ohm and ångström signs as letters. Text of this process; what is no UTF-8 comes back as it is.
ORVIK_API std::string OrvikComposed(std::string_view text);

// Characters of UTF-8 that no font of this machine has, each once and in order; empty where the system does not tell (Windows,
// which brings fonts for most scripts).
ORVIK_API std::string OrvikLettersWithoutFont(std::string_view utf8);

// Characters out of WM_CHAR messages, whose wParam is a byte in a Windows-1252 process and a UTF-16 unit in a UTF-8 one, where a
// character beyond the first 65,536 comes as two messages. A value; the thread of the window.
class OrvikTypedText {
public:
    // The character's bytes; nothing yet for the first of two messages, and nothing for a second one without a first.
    ORVIK_API std::string Take(WPARAM typed);

private:
    WCHAR m_first = 0;
};
