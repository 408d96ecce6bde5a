// What the Linux reader makes of rich text that Wine's control reads in another way, or that is meant to break a reader.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "platform/house_text_internal.h"
#include "platform/rich_text.h"

TEST(PosixRichText, ReadsWhatWineLeavesOut) {
    const orvik::RichTextReader reader(nullptr);
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [rich, plain] :
         {Row{"{\\rtf1 a\\line b\\line}", "a\r\nb\r\n"},
          Row{"{\\rtf1 {\\field{\\*\\fldinst HYPERLINK x}{\\fldrslt link}}}", "link"},
          Row{"{\\rtf1\\trowd\\cellx100\\cellx200 a\\cell b\\cell\\row c}", "a\tb\t\r\nc"},
          Row{"{\\rtf1 {\\pict\\bin4 }}}}z}y}", "y"}, Row{"{\\rtf1 {\\*\\listtable l}{\\listtable l}{\\revtbl v}w}", "w"},
          Row{"{\\rtf1 a\\_b}", "a-b"}})
        EXPECT_EQ(reader.ToPlain(rich), plain) << rich;
}

TEST(PosixRichText, IsThisProcessesText) {
    const bool utf8 = OrvikTextCodePage() == CP_UTF8;
    EXPECT_EQ(orvik::RichTextReader(nullptr).ToPlain("{\\rtf1 a\\'e5\\endash\\~\\u937 ?}"),
              orvik::detail::HouseFrom1252("a\xE5\x96\xA0") + (utf8 ? "Ω" : "?"));
}

TEST(PosixRichText, HostileTextIsBoundedIn1252) {
    const orvik::RichTextReader reader(nullptr);
    const std::string open(100000, '{'), close(100000, '}');
    EXPECT_EQ(reader.ToPlain(("{\\rtf1 a" + open + "b\\uc3\\u228 xyz" + close + "c").c_str()), "ab\344c");
    EXPECT_EQ(reader.ToPlain(("{\\rtf1 a" + open + "{\\*x y}b" + close).c_str()), "ab");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\bin99999999999 a"), "a");  // no number
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\bin2147483647 a"), "");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\u99999999999 ?\\u70000 ?\\u0 ?a\\'"), "???a");
    EXPECT_EQ(reader.ToPlain("{\\rtf1\\uc-5\\u228 b\\'4\\'zz\\"), "\344b4zz");
    EXPECT_EQ(reader.ToPlain("{\\rtf1}}}}}a"), "");
}
