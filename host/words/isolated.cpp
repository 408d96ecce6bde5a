#include "host/words/isolated.h"

#include "platform/letters.h"

std::string Isolated(std::string text) {
    if (!OrvikHasRightToLeft(text)) return text;
    // The last mark keeps what follows from the left where a terminal drops the first one, which has no column before it to sit
    // on, and tells one that goes by a line's first letter that the line is from the left.
    return "\u2068" + text + "\u2069\u200E";
}
