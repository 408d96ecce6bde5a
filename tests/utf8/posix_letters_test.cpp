// What counts as a letter in a process that chose UTF-8.
#include <gtest/gtest.h>

#include "platform/posix/text/letters_internal.h"

using namespace orvik::detail;
using Starts = std::vector<size_t>;

TEST(Letters, BeginWhereAReaderSeesThem) {
    const struct {
        std::string text;
        Starts starts;
    } cases[] = {
        {"", {}},
        {"k[V]", {0, 1, 2, 3}},
        {"k\u03A9", {0, 1}},
        {"xe\u0301y", {0, 1, 4}},
        {"a\r\nb", {0, 1, 3}},
        {"\u0301a", {0, 2}},                                        // a mark without a letter
        {"\u0915\u094D\u0937\u093F", {0}},                          // consonants of one syllable, and what sits on them
        {"\u1112\u1161\u11AB\u1100", {0, 9}},                       // parts of one syllable
        {"\U0001F1F8\U0001F1EA\U0001F1E9\U0001F1EA!", {0, 8, 16}},  // flags
        {"\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F44D\U0001F3FD", {0, 18, 19}},
        {"\xB5m\xCE\xA9\xCE", {0, 1, 2, 4}},  // bytes that are none
        {"\xF0\x9F\x8C x", {0, 1, 2, 3, 4}},
        {"e\u0301\u0302\u0303\u0304\u0305o", {0, 11}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.starts, LetterStarts(c.text)) << c.text;
        EXPECT_EQ(c.starts.size(), CountLetters(c.text)) << c.text;
        // From every byte, those within letters too.
        for (size_t at = 0; at <= c.text.size() + 1; ++at) {
            size_t next = c.text.size(), previous = 0, own = c.text.size();
            for (auto start = c.starts.rbegin(); start != c.starts.rend(); ++start)
                if (*start > at) next = *start;
            for (const size_t start : c.starts) {
                if (start < at) previous = start;
                if (start <= at && at < c.text.size()) own = start;
            }
            EXPECT_EQ(next, NextLetter(c.text, at)) << c.text << " from " << at;
            EXPECT_EQ(previous, PreviousLetter(c.text, at)) << c.text << " from " << at;
            EXPECT_EQ(own, LetterStart(c.text, at)) << c.text << " from " << at;
        }
    }
}
