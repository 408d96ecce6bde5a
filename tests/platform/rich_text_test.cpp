// The plain text of rich text, the same from the system's control and from the reader that stands for it.
#include "platform/rich_text.h"

#include <gtest/gtest.h>

TEST(RichText, IsReadAsTheSystemsControlShowsIt) {
    const struct {
        const char *rich, *plain;
    } cases[] = {
        {"a\nb\rc\r\nd", "a\r\nb\r\nc\r\nd"},
        {"a\r\r\nb", "a b"},
        {"a\n", "a\r\n"},
        {"a\tb", "a\tb"},
        {"", ""},
        {"  {\\rtf1 a}", "  {\\rtf1 a}"},
        {"{\\rtf1 a\\par b\\par}", "a\r\nb"},
        {"{\\rtf1 a\\par b\\par\\par}", "a\r\nb\r\n"},
        {"{\\rtf1 b\\tab c}", "b\tc"},
        {"{\\rtf1\\ansi\\uc1 x\\u228 a\\'e5\\u8364?y}", "x\xE4\xE5\x80y"},
        {"{\\rtf1\\uc2 \\u228 abc}",
         "\xE4"
         "c"},
        {"{\\rtf1\\uc0 a\\u228 b}",
         "a\xE4"
         "b"},
        {"{\\rtf1 a\\u9731 ?b}", "a?b"},
        {"{\\rtf1 a\\u-8704 ?b}", "a?b"},
        {"{\\rtf1{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0;}{\\stylesheet{\\s0 Normal;}}{\\info{\\title T}}hello\\par}",
         "hello"},
        {"{\\rtf1{\\*\\unknown secret}seen}", "seen"},
        {"{\\rtf1\\pard{\\pntext\\f1\\'B7\\tab}{\\*\\pn\\pnlvlblt}item\\par}", "item"},
        {"{\\rtf1 \\endash\\emdash\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\~\\-\\{\\}\\\\}",
         "\x96\x97\x91\x92\x93\x94\x95\xA0{}\\"},
        {"{\\rtf1 a\r\nb\\\r\nc}", "ab\r\nc"},
        {"{\\rtf1 {\\header H}{\\footer F}b{\\footnote N}c}", "bc"},
        {"{\\rtf1 {\\pict\\wmetafile8 0102}x}", "x"},
        {"{\\rtf1 a", "a"},
        {"{\\rtf1 a}b", "a"},
        {"{\\urtf1 a}", "a"},
        {"{\\rtf", ""},
        {"{\\rtf1 a\\unknown12 b\\par\\par c}", "ab\r\n\r\nc"},
        {"{\\rtf1 {\\b a{\\i b}}c}", "abc"},
        {"{\\rtf1\\par}", ""},
    };
    const orvik::RichTextReader reader(nullptr);
    ASSERT_TRUE(reader.IsOpen());
    for (const auto& c : cases) EXPECT_EQ(reader.ToPlain(c.rich), c.plain) << c.rich;
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
