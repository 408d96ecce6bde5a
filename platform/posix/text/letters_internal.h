// Letters as a reader sees them: in a UTF-8 process a character with the marks that sit on it, a flag, CR with LF (what Unicode
// calls grapheme clusters); a byte that belongs to no character stands alone. In a Windows-1252 process every byte is a letter.
// Offsets are bytes; one that lies within a letter is allowed everywhere, one beyond the end counts as the end. Any thread.
#pragma once

#include <string_view>
#include <vector>

namespace orvik::detail {
// Where the first letter behind `at` begins; text.size() behind the last one.
size_t NextLetter(std::string_view text, size_t at);
// Where the last letter that begins before `at` begins; 0 where there is none.
size_t PreviousLetter(std::string_view text, size_t at);
// Where the letter begins that the byte `at` is part of; text.size() at the end. The longest piece of a text that cuts no letter
// and has at most n bytes is text.substr(0, LetterStart(text, n)).
size_t LetterStart(std::string_view text, size_t at);
size_t CountLetters(std::string_view text);
// Copies as much of the text as fits into `size` bytes, of which the last is 0, and cuts no letter. Returns the length; 0 without
// room.
size_t CopyLetters(std::string_view text, char* out, size_t size);
// Where each letter begins, in order.
std::vector<size_t> LetterStarts(std::string_view text);
// Where a line may end without a blank, between characters beyond ASCII: between two of Chinese, or two words of Thai. In order.
std::vector<size_t> BreaksBeyondBlanks(std::string_view text);
}  // namespace orvik::detail
