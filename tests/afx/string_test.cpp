// CString against tables of texts, positions and expected results.
#include "afx/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>
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
    using Row = std::tuple<int, int, const char*>;
    for (const auto& [first, count, expected] : {Row{0, 3, "abc"}, Row{2, 2, "cd"}, Row{4, 9, "ef"}, Row{6, 1, ""}, Row{9, 1, ""},
                                                 Row{-2, 2, "ab"}, Row{1, -1, ""}, Row{2, INT_MAX, "cdef"}})
        EXPECT_EQ(text.Mid(first, count), expected) << first << ',' << count;
    using Part = std::pair<CString, const char*>;
    for (const auto& [part, expected] :
         {Part{text.Mid(4), "ef"}, Part{text.Left(2), "ab"}, Part{text.Left(99), "abcdef"}, Part{text.Right(2), "ef"},
          Part{text.Right(-1), ""}, Part{text.SpanIncluding("cba"), "abc"}, Part{text.SpanExcluding("ed"), "abc"},
          Part{text.SpanExcluding("x"), "abcdef"}})
        EXPECT_EQ(part, expected);
}

TEST(String, FindsPositions) {
    const CString text("a.b.c");
    using Row = std::tuple<int, int>;
    for (const auto& [start, expected] : {Row{0, 1}, Row{1, 1}, Row{2, 3}, Row{4, -1}, Row{5, -1}, Row{6, -1}, Row{-1, -1}})
        EXPECT_EQ(text.Find('.', start), expected) << start;
    EXPECT_EQ(std::tuple(text.Find("b.c"), text.Find("b.d"), text.Find(""), CString().Find('x')), std::tuple(2, -1, 0, -1));
    EXPECT_EQ(std::tuple(text.ReverseFind('.'), text.ReverseFind('x'), text.FindOneOf("cb")), std::tuple(3, -1, 2));
}

TEST(String, ReplacesAndTellsHowOften) {
    struct Row {
        const char *text, *from, *to, *expected;
        int count;
    };
    for (const Row& c :
         {Row{"a&b&", "&", "&amp;", "a&amp;b&amp;", 2}, Row{"aaa", "aa", "b", "ba", 1}, Row{"abc", "", "x", "abc", 0},
          Row{"abc", "x", "y", "abc", 0}, Row{"abab", "ab", "", "", 2}, Row{"abc", "b", nullptr, "ac", 1}}) {
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
    using Row = std::tuple<const char*, const char*, const char*, const char*>;
    for (const auto& [text, both, left, right] : {Row{" \t a b\r\n", "a b", "a b\r\n", " \t a b"}, Row{"   ", "", "", ""},
                                                  Row{"", "", "", ""}, Row{"x", "x", "x", "x"}}) {
        EXPECT_EQ(CString(text).Trim(), both);
        EXPECT_EQ(CString(text).TrimLeft(), left);
        EXPECT_EQ(CString(text).TrimRight(), right);
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
    text.GetBuffer(8), text.ReleaseBuffer(2);
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
    using Sum = std::pair<CString, const char*>;
    for (const auto& [sum, expected] :
         {Sum{a + a, "aa"}, Sum{a + "b", "ab"}, Sum{"b" + a, "ba"}, Sum{a + 'c', "ac"}, Sum{'c' + a, "ca"}})
        EXPECT_EQ(sum, expected);
}
}  // namespace
