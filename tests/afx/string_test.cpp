// CString against tables of texts, positions and expected results.
#include "afx/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "tests/afx/bytes.h"

namespace {
using afx_test::ExpectInvalidArg;

TEST(String, IsOnePointerAndNullIsEmpty) {
    EXPECT_EQ(sizeof(CString), sizeof(void*));
    const CString null(static_cast<LPCSTR>(nullptr));
    EXPECT_TRUE(null.IsEmpty());
    EXPECT_STREQ(null, "");
    EXPECT_EQ(null, "");
    CString text("abc");
    text = static_cast<LPCSTR>(nullptr);
    EXPECT_EQ(text.GetLength(), 0);
    text += static_cast<LPCSTR>(nullptr);
    EXPECT_EQ(text, "");
}

TEST(String, CopiesAreDeepAndMovesLeaveAnEmptyText) {
    CString a("logger");
    CString b(a);
    b.SetAt(0, 'L');
    EXPECT_EQ(a, "logger");
    EXPECT_EQ(b, "Logger");
    CString c(std::move(a));
    EXPECT_EQ(c, "logger");
    a = "again";
    EXPECT_EQ(a, "again");
    c = c.GetString() + 3;  // a part of itself
    EXPECT_EQ(c, "ger");
    c += c;
    EXPECT_EQ(c, "gerger");
}

TEST(String, IndexMayReadTheFinalZeroButNotBeyond) {
    CString text("ab");
    EXPECT_EQ(text[0], 'a');
    EXPECT_EQ(text[2], 0);
    ExpectInvalidArg([&] { (void)text[3]; });
    ExpectInvalidArg([&] { (void)text.GetAt(-1); });
    ExpectInvalidArg([&] { text.SetAt(2, 'x'); });
    ExpectInvalidArg([&] { CString().SetAt(0, 'x'); });
    EXPECT_EQ(CString()[0], 0);
}

TEST(String, PartsAreCutToTheText) {
    const CString text("abcdef");
    struct {
        int first, count;
        const char* expected;
    } const cases[] = {{0, 3, "abc"}, {2, 2, "cd"},  {4, 9, "ef"}, {6, 1, ""},
                       {9, 1, ""},    {-2, 2, "ab"}, {1, -1, ""},  {2, INT_MAX, "cdef"}};
    for (const auto& c : cases) EXPECT_EQ(text.Mid(c.first, c.count), c.expected) << c.first << ',' << c.count;
    EXPECT_EQ(text.Mid(4), "ef");
    EXPECT_EQ(text.Left(2), "ab");
    EXPECT_EQ(text.Left(99), "abcdef");
    EXPECT_EQ(text.Right(2), "ef");
    EXPECT_EQ(text.Right(-1), "");
    EXPECT_EQ(text.SpanIncluding("cba"), "abc");
    EXPECT_EQ(text.SpanExcluding("ed"), "abc");
    EXPECT_EQ(text.SpanExcluding("x"), "abcdef");
}

TEST(String, FindsPositions) {
    const CString text("a.b.c");
    struct {
        int start, expected;
    } const dots[] = {{0, 1}, {1, 1}, {2, 3}, {4, -1}, {5, -1}, {6, -1}, {-1, -1}};
    for (const auto& c : dots) EXPECT_EQ(text.Find('.', c.start), c.expected) << c.start;
    EXPECT_EQ(text.Find("b.c"), 2);
    EXPECT_EQ(text.Find("b.d"), -1);
    EXPECT_EQ(text.Find(""), 0);
    EXPECT_EQ(text.ReverseFind('.'), 3);
    EXPECT_EQ(text.ReverseFind('x'), -1);
    EXPECT_EQ(text.FindOneOf("cb"), 2);
    EXPECT_EQ(CString().Find('x'), -1);
}

TEST(String, ReplacesAndTellsHowOften) {
    struct {
        const char *text, *from, *to, *expected;
        int count;
    } const cases[] = {{"a&b&", "&", "&amp;", "a&amp;b&amp;", 2},
                       {"aaa", "aa", "b", "ba", 1},
                       {"abc", "", "x", "abc", 0},
                       {"abc", "x", "y", "abc", 0},
                       {"abab", "ab", "", "", 2},
                       {"abc", "b", nullptr, "ac", 1}};
    for (const auto& c : cases) {
        CString text(c.text);
        EXPECT_EQ(text.Replace(c.from, c.to), c.count) << c.text;
        EXPECT_EQ(text, c.expected);
    }
    CString text("1,234,5");
    EXPECT_EQ(text.Replace(',', '.'), 2);
    EXPECT_EQ(text, "1.234.5");
    EXPECT_EQ(text.Remove('.'), 2);
    EXPECT_EQ(text, "12345");
    EXPECT_EQ(CString().Replace('a', 'b'), 0);
    EXPECT_EQ(CString().Remove('a'), 0);
}

TEST(String, CaseFollowsWindows1252) {
    // A with ring, O with diaeresis, S with caron, Y with diaeresis, multiplication sign, sharp s
    CString text("Az\xC5\xD6\x8A\x9F\xD7\xDF");
    text.MakeLower();
    EXPECT_EQ(text, "az\xE5\xF6\x9A\xFF\xD7\xDF");
    text.MakeUpper();
    EXPECT_EQ(text, "AZ\xC5\xD6\x8A\x9F\xD7\xDF");
    EXPECT_EQ(CString("S\xD6NDAG").CompareNoCase("s\xF6ndag"), 0);
    EXPECT_NE(CString("a\xF7").CompareNoCase("a\xD7"), 0);
    CString empty;
    EXPECT_EQ(empty.MakeLower(), "");
}

TEST(String, ComparesUnsignedBytes) {
    EXPECT_LT(CString("Z"), "a");
    EXPECT_GT(CString("\xE5"), "z");
    EXPECT_LT(CString("ab"), "abc");
    EXPECT_TRUE("b" > CString("a"));
    EXPECT_EQ(CString("a").Compare(nullptr), 1);
    EXPECT_FALSE(CString("a") == CString("A"));
}

TEST(String, TrimsSetsAndWhiteSpace) {
    struct {
        const char *text, *both, *left, *right;
    } const cases[] = {{" \t a b\r\n", "a b", "a b\r\n", " \t a b"}, {"   ", "", "", ""}, {"", "", "", ""}, {"x", "x", "x", "x"}};
    for (const auto& c : cases) {
        EXPECT_EQ(CString(c.text).Trim(), c.both);
        EXPECT_EQ(CString(c.text).TrimLeft(), c.left);
        EXPECT_EQ(CString(c.text).TrimRight(), c.right);
    }
    EXPECT_EQ(CString("..a..").Trim('.'), "a");
    EXPECT_EQ(CString("-+7+-").TrimLeft("+-"), "7+-");
    EXPECT_EQ(CString("-+7+-").TrimRight("+-"), "-+7");
}

TEST(String, InsertsAndDeletes) {
    CString text("ad");
    EXPECT_EQ(text.Insert(1, "bc"), 4);
    EXPECT_EQ(text.Insert(99, 'e'), 5);
    EXPECT_EQ(text.Insert(-5, "_"), 6);
    EXPECT_EQ(text, "_abcde");
    EXPECT_EQ(text.Insert(1, text), 12);
    EXPECT_EQ(text, "__abcdeabcde");
    EXPECT_EQ(text.Delete(0, 7), 5);
    EXPECT_EQ(text.Delete(3, 99), 3);
    EXPECT_EQ(text.Delete(3), 3);
    EXPECT_EQ(text.Delete(0, 0), 3);
    EXPECT_EQ(text, "abc");
}

TEST(String, TokenizesSkippingEmptyPieces) {
    const CString text(";a;;bc;");
    int start = 0;
    EXPECT_EQ(text.Tokenize(";", start), "a");
    EXPECT_EQ(text.Tokenize(";", start), "bc");
    EXPECT_EQ(text.Tokenize(";", start), "");
    EXPECT_EQ(start, -1);
    ExpectInvalidArg([&] { (void)text.Tokenize(";", start); });
    start = 0;
    EXPECT_EQ(text.Tokenize("", start), ";a;;bc;");
    EXPECT_EQ(text.Tokenize("", start), "");
    EXPECT_EQ(start, -1);
}

TEST(String, FormatsWithBothLengthSpellings) {
    CString text;
    text.Format("%I64d|%lld|%05.1f|%s|%%I64d", -9000000000LL, 9000000000LL, 2.25, "x");
    EXPECT_EQ(text, "-9000000000|9000000000|002.2|x|%I64d");
    text.Format("%I64u %-8I64x|", 18446744073709551615ULL, 255LL);
    EXPECT_EQ(text, "18446744073709551615 ff      |");
    text.Format("%I32d %G", 7, 1e100);
    EXPECT_EQ(text, "7 1E+100");
    text = "ab";
    text.Format("%s%s", text.GetString(), text.GetString());
    EXPECT_EQ(text, "abab");
    text.AppendFormat("-%s", CString('x', 1000).GetString());
    EXPECT_EQ(text.GetLength(), 1005);
    EXPECT_EQ(text.Left(6), "abab-x");
    text.Format("%s", "");
    EXPECT_EQ(text, "");
    ExpectInvalidArg([&] { text.Format(nullptr); });
}

TEST(String, BuffersAreTakenOver) {
    CString text("abc");
    char* buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, "abc");
    buffer[3] = 'd';
    buffer[4] = 0;
    text.ReleaseBuffer();
    EXPECT_EQ(text, "abcd");
    text.GetBuffer(8);
    text.ReleaseBuffer(2);
    EXPECT_EQ(text, "ab");
    ExpectInvalidArg([&] { text.ReleaseBuffer(1000); });
    CString empty;
    empty.GetBuffer()[0] = 0;  // the shared empty text is never handed out
    empty.ReleaseBuffer();
    EXPECT_EQ(empty, "");
    ExpectInvalidArg([&] { empty.GetBuffer(-1); });
}

TEST(String, KeepsEmbeddedZeros) {
    const CString text("a\0b", 3);
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(CString(text), text);
    EXPECT_NE(text, "a");
    EXPECT_EQ((text + "c").GetLength(), 4);
}

TEST(String, AddsInEveryCombination) {
    const CString a("a");
    EXPECT_EQ(a + a, "aa");
    EXPECT_EQ(a + "b", "ab");
    EXPECT_EQ("b" + a, "ba");
    EXPECT_EQ(a + 'c', "ac");
    EXPECT_EQ('c' + a, "ca");
}
}  // namespace
