// Where the letters (text/letters_internal.h) of one line of text stand when a DC draws it: for carets, selections and pointers.
// x counts pixels from the left end of the text, whose length is what GetTextExtentPoint32 gives. Offsets are bytes; one within a
// letter counts as the letter's start, one beyond the end as the end. One thread at a time for a DC; with a bad handle all is 0.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/posix/drawing/dc.h"

namespace orvik::detail {
// The edge where the letter at this offset begins: its left one, or its right one in a run that is read from the right. At the
// end of the text its right end.
int LetterX(HDC dc, std::string_view text, size_t at);
// The offset of the letter's edge that is nearest to x, as a click chooses it: 0 to text.size().
size_t LetterAtX(HDC dc, std::string_view text, int x);

struct TextSpan {
    int left, right;
};
// The stretches that the letters of [from, to) cover, from left to right; several where runs of both directions meet.
std::vector<TextSpan> LetterSpans(HDC dc, std::string_view text, size_t from, size_t to);
}  // namespace orvik::detail
