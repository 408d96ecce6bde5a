// What the Linux reader makes of rich text that Wine's control reads in another way, or that is meant to break a reader.
#include <gtest/gtest.h>

#include <string>

#include "platform/rich_text.h"

TEST(PosixRichText, ReadsWhatWineLeavesOut) {
    const struct {
        const char *rich, *plain;
    } cases[] = {
        {"{\\rtf1 a\\line b\\line}", "a\r\nb\r\n"},
        {"{\\rtf1 {\\field{\\*\\fldinst HYPERLINK x}{\\fldrslt link}}}", "link"},
        {"{\\rtf1\\trowd\\cellx100\\cellx200 a\\cell b\\cell\\row c}", "a\tb\t\r\nc"},
        {"{\\rtf1 {\\pict\\bin4 }}}}z}y}", "y"},
        {"{\\rtf1 {\\*\\listtable l}{\\listtable l}{\\revtbl v}w}", "w"},
        {"{\\rtf1 a\\_b}", "a-b"},
    };
    const orvik::RichTextReader reader(nullptr);
    for (const auto& c : cases) EXPECT_EQ(reader.ToPlain(c.rich), c.plain) << c.rich;
}

TEST(PosixRichText, HostileTextIsBounded) {
    const orvik::RichTextReader reader(nullptr);
    const std::string open(100000, '{'), close(100000, '}');
    EXPECT_EQ(reader.ToPlain(("{\\rtf1 a" + open + "b\\uc3\\u228 xyz" + close + "c").c_str()),
              "ab\xE4"
              "c");
    EXPECT_EQ(reader.ToPlain(("{\\rtf1 a" + open + "{\\*x y}b" + close).c_str()), "ab");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\bin99999999999 a"), "a");  // no number
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\bin2147483647 a"), "");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\u99999999999 ?\\u70000 ?\\u0 ?a\\'"), "???a");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\uc-5\\u228 b\\'4\\'zz\\"),
              "\xE4"
              "b4zz");
    EXPECT_EQ(reader.ToPlain("{\\rtf1}}}}}a"), "");
}
