// The plain text of rich text, the same from the system's control and from the reader that stands for it.
#include "platform/rich_text.h"

#include <tuple>
#include "tests/support/table.h"

#include <gtest/gtest.h>

TEST(RichText, IsReadIn1252AsTheSystemsControlShowsIt) {
    const orvik::RichTextReader reader(nullptr);
    ASSERT_TRUE(reader.IsOpen());
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [rich, plain] : Table(
             Row{"a\nb\rc\r\nd", "a\r\nb\r\nc\r\nd"}, Row{"a\r\r\nb", "a b"}, Row{"a\n", "a\r\n"}, Row{"a\tb", "a\tb"},
             Row{"", ""}, Row{"  {\\rtf1 a}", "  {\\rtf1 a}"}, Row{"{\\rtf1 a\\par b\\par}", "a\r\nb"},
             Row{"{\\rtf1 a\\par b\\par\\par}", "a\r\nb\r\n"}, Row{"{\\rtf1 b\\tab c}", "b\tc"},
             Row{"{\\rtf1\\ansi\\uc1 x\\u228 a\\'e5\\u8364?y}", "x\xE4\xE5\x80y"}, Row{"{\\rtf1\\uc2 \\u228 abc}", "\344c"},
             Row{"{\\rtf1\\uc0 a\\u228 b}", "a\344b"}, Row{"{\\rtf1 a\\u9731 ?b}", "a?b"}, Row{"{\\rtf1 a\\u-8704 ?b}", "a?b"},
             Row{"{\\rtf1{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0;}{\\stylesheet{\\s0 Normal;}}{\\info{\\title T}}hello\\par}",
                 "hello"},
             Row{"{\\rtf1{\\*\\unknown secret}seen}", "seen"},
             Row{"{\\rtf1\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt}item\\par}", "item"},
             Row{"{\\rtf1 \\endash\\emdash\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\~\\-\\{\\}\\\\}",
                 "\x96\x97\x91\x92\x93\x94\x95\xA0{}\\"},
             Row{"{\\rtf1 a\r\nb\\\r\nc}", "ab\r\nc"}, Row{"{\\rtf1 {\\header H}{\\footer F}b{\\footnote N}c}", "bc"},
             Row{"{\\rtf1 {\\pict\\wmetafile8 0102}x}", "x"}, Row{"{\\rtf1 a", "a"}, Row{"{\\rtf1 a}b", "a"},
             Row{"{\\urtf1 a}", "a"}, Row{"{\\rtf", ""}, Row{"{\\rtf1 a\\unknown12 b\\par\\par c}", "ab\r\n\r\nc"},
             Row{"{\\rtf1 {\\b a{\\i b}}c}", "abc"}, Row{"{\\rtf1\\par}", ""}))
        EXPECT_EQ(reader.ToPlain(rich), plain) << rich;
    EXPECT_EQ(reader.ToPlain(nullptr), "");
}

TEST(RichText, LongTextsAreNotCut) {
    const orvik::RichTextReader reader(nullptr);
    std::string plain, rich = "{\\rtf1 ";
    for (int i = 0; i < 1000; ++i) {
        plain += "a line of forty characters, or nearly so\r\n";
        rich += "a line of forty characters, or nearly so\\par ";
    }
    EXPECT_EQ(reader.ToPlain(plain.c_str()), plain);
    EXPECT_EQ(reader.ToPlain((rich + "end}").c_str()), plain + "end");
}
