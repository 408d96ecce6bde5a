// What a UTF-8 process writes comes back, whichever way it went; what others wrote is read.
#include <gtest/gtest.h>

#include <random>

#include "afx/archive.h"
#include "afx/file.h"
#include "platform/house_text_internal.h"
#include "platform/letters.h"
#include "platform/letters_internal.h"
#include "propdb/property_db.h"
#include "record/recorder.h"
#include "record/recording_reader.h"

using namespace orvik::detail;
using namespace std::string_literals;

namespace {
// Letters of every length, of every direction and of 1252, marks that sit on others, and what the forms escape.
std::string RandomText(std::mt19937& random) {
    constexpr std::pair<char32_t, char32_t> kRanges[] = {
        {'!', '~'},       {0xA1, 0xFF},       {0x370, 0x3FF},      {0x410, 0x44F},   {0x5D0, 0x5EA},
        {0x621, 0x64A},   {0x300, 0x36F},     {0x905, 0x939},      {0x4E00, 0x9FA5}, {0x20A0, 0x20BF},
        {0xE000, 0xE0FF}, {0x1F300, 0x1F5FF}, {0x10FFF0, 0x10FFFF}};
    std::string text = "x";
    for (size_t left = random() % 12; left > 0; --left) {
        const auto [first, last] = kRanges[random() % std::size(kRanges)];
        const char32_t c = first + static_cast<char32_t>(random() % (last - first + 1));
        if (c != ';') AppendUtf8(text, c);  // which parts texts in the XML form
    }
    return text;
}

std::string Bytes(CMemFile& file) {
    std::string bytes(static_cast<size_t>(file.GetLength()), 0);
    file.SeekToBegin();
    file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
    return bytes;
}

CString TextAt(const CPropertyDB& database, const char* key) {
    CString text;
    database.GetValue(key, text);
    return text;
}

CString Loaded(const std::string& xml) {
    CMemFile file;
    file.Write(xml.data(), static_cast<UINT>(xml.size()));
    file.SeekToBegin();
    CPropertyDB database;
    EXPECT_TRUE(database.LoadFromFile(&file, TRUE));
    return TextAt(database, "s");
}
std::string Document(const std::string& text) {
    return "<PROPERTYDB><PROPERTY name=\"s\" type=\"str\" size=\"1\">" + text + "</PROPERTY></PROPERTYDB>";
}
}  // namespace

TEST(Utf8Process, WasChosen) {
    ASSERT_EQ(static_cast<UINT>(CP_UTF8), OrvikTextCodePage());
    WCHAR wide[4] = {};
    EXPECT_EQ(2, MultiByteToWideChar(OrvikTextCodePage(), 0, "\xCE\xA9", -1, wide, 4));
    EXPECT_EQ(0x3A9, wide[0]);
}

TEST(Utf8Process, BytesThatAreNoneCountAsWindows1252) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"k\xCE\xA9", "k\xCE\xA9"},
        {"\xB5m", "\xC2\xB5m"},                            // alone
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                  // overlong
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // half of a pair
        {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xE2\x82\xAC\xE2\x82\xAC"},
        {"\xF0\x9F\x8C\xA1", "\xF0\x9F\x8C\xA1"},
        {"a\xF0\x9F\x8C", "a\xC3\xB0\xC5\xB8\xC5\x92"},  // cut off
        {"a\0b"s, "a\0b"s},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.out, OrvikUtf8FromText(c.in)) << testing::PrintToString(c.in);
        std::string back;
        EXPECT_EQ(IsUtf8(c.in), OrvikTextFromUtf8(c.in, back));
    }
}

TEST(Utf8Process, TextsHaveOneFormAndASide) {
    const struct {
        const char *text, *composed;
        bool fromRight, holdsFromRight;
    } table[] = {{"k\u03A9 \u2126", "k\u03A9 \u03A9", false, false},
                 {"\u212B e\u0301", "\u00C5 \u00E9", false, false},
                 {"\xEA\u2126", "\xEA\u2126", false, false},  // bytes that are none
                 {"12 \u0645 x", "12 \u0645 x", true, true},
                 {"x \u05E9", "x \u05E9", false, true},
                 {"\u0661\u066B\u0662", "\u0661\u066B\u0662", false, true},
                 {"\u4E2D\u0645", "\u4E2D\u0645", false, true},
                 {"(1)", "(1)", false, false}};
    for (const auto& row : table) {
        EXPECT_EQ(row.composed, OrvikComposed(row.text)) << row.text;
        EXPECT_EQ(row.fromRight, IsLineFromRight(row.text)) << row.text;
        EXPECT_EQ(row.holdsFromRight, OrvikHasRightToLeft(row.text)) << row.text;
    }
    EXPECT_EQ(OrvikColumns("\uD55C"), OrvikColumns("\u1112\u1161\u11AB"));
}

TEST(Utf8Process, LettersHaveTheirCase) {
    EXPECT_EQ(0, CString("\xCE\xA9\xCE\x9C\xCE\x88\xCE\x93\xCE\x91").CompareNoCase("\xCF\x89\xCE\xBC\xCE\xAD\xCE\xB3\xCE\xB1"));
    EXPECT_NE(0, CString("\xCE\xA9").CompareNoCase("\xCE\xA8"));
    EXPECT_LT(CString("Abc").CompareNoCase("abd"), 0);
    CString text("k\xCE\xA9 \xC3\xA5\xC3\xBF \xD0\xB6 \xFF");
    EXPECT_STREQ("K\xCE\xA9 \xC3\x85\xC5\xB8 \xD0\x96 \xFF", text.MakeUpper());
    EXPECT_STREQ("k\xCF\x89 \xC3\xA5\xC3\xBF \xD0\xB6 \xFF", text.MakeLower());
}

TEST(Utf8Process, AnyTextComesBackFromEveryForm) {
    std::mt19937 random(15);
    for (int round = 0; round < 300; ++round) {
        const std::string text = RandomText(random);
        CString key;
        for (const char c : RandomText(random))
            if (c != '.' && c != '&' && c != '"' && c != '\'') key += c;  // which are other keys, or escapes in the XML form
        CPropertyDB database;
        database.SetValue(key, text.c_str());
        for (const BOOL xml : {TRUE, FALSE}) {
            CMemFile file;
            ASSERT_TRUE(database.StoreToFile(&file, xml, FALSE));
            const std::string bytes = Bytes(file);
            ASSERT_TRUE(!xml || IsUtf8(bytes));
            CPropertyDB loaded;
            ASSERT_TRUE(loaded.LoadFromFile(&file, xml)) << bytes;
            ASSERT_EQ(text, TextAt(loaded, key).GetString()) << bytes;
        }
    }
}

TEST(Utf8Process, ReadsXmlOfBothKinds) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"k\xCE\xA9", "k\xCE\xA9"},
        {"k&#x3a9; &#937; &#xe5;", "k\xCE\xA9 \xCE\xA9 \xC3\xA5"},
        {"&#x110000;", "&#x110000"},
        {"&#xD800;", "&#xD800"},
        {"&#;", "&#"},
        {"&#x;", "&#x"},
        {"&#xg;", "&#xg"},
        {"&#937 ;", "&#937 "},
        {"&amp;#937;", "&#937"},  // a ";" begins another text
        {"\xB5V &#xb0;C \x80",
         "\xC2\xB5V \xC2\xB0"
         "C \xE2\x82\xAC"},                              // a file of a Windows-1252 process
        {"\xCE\xA9 \xB5", "\xC3\x8E\xC2\xA9 \xC2\xB5"},  // one byte decides for the whole file
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(c.out.c_str(), Loaded(Document(c.in))) << c.in;
        // Where the deciding byte lies far behind, and where a character lies across two blocks.
        for (const size_t before : {16384u, 40001u, 40002u, 40003u}) {
            const std::string distant = "<PROPERTYDB><PROPERTY name=\"s\" type=\"str\" size=\"1\">" + c.in +
                                        "</PROPERTY><PROPERTY name=\"t\" type=\"str\" size=\"1\">" + std::string(before, 'x') +
                                        c.in + "</PROPERTY></PROPERTYDB>";
            EXPECT_STREQ(c.out.c_str(), Loaded(distant)) << c.in << before;
        }
    }
    const std::string attribute = "<PROPERTYDB><PROPERTY name=\"\xB5\" type=\"str\" size=\"1\">1</PROPERTY></PROPERTYDB>";
    CMemFile file;
    file.Write(attribute.data(), static_cast<UINT>(attribute.size()));
    file.SeekToBegin();
    CPropertyDB database;
    ASSERT_TRUE(database.LoadFromFile(&file, TRUE));
    EXPECT_STREQ("1", TextAt(database, "\xC2\xB5"));
}

TEST(Utf8Process, ArchivesHoldWindows1252WhereThatCanSayIt) {
    const struct {
        const char* text;
        std::string bytes;
    } cases[] = {
        {"x", "\1x"},
        {"\xC3\xA5\xE2\x82\xAC", "\2\xE5\x80"},
        {"k\xCE\xA9", "\xFF\xFE\xFF\2k\0\xA9\3"s},
        {"\xF0\x9F\x8C\xA1", "\xFF\xFE\xFF\2\x3C\xD8\x21\xDF"s},
        {"\xB5", "\1\xB5"},
    };
    for (const auto& c : cases) {
        CMemFile file;
        {
            CArchive out(&file, CArchive::store);
            out << CString(c.text);
        }
        EXPECT_EQ(testing::PrintToString(c.bytes), testing::PrintToString(Bytes(file)));
        CArchive in(&file, CArchive::load);
        CString text;
        in >> text;
        EXPECT_EQ(OrvikUtf8FromText(c.text), text.GetString());
    }
    // Lengths that lie.
    for (const std::string& bytes :
         {"\xFF\xFE\xFF\xFF\xFE\xFF\1x"s, "\xFF\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"s, "\xFF\xFE\xFF\5x"s}) {
        CMemFile file;
        file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
        file.SeekToBegin();
        CArchive in(&file, CArchive::load);
        CString text;
        try {
            in >> text;
            ADD_FAILURE() << testing::PrintToString(bytes);
        } catch (CArchiveException* failure) {
            failure->Delete();
        }
    }
}

TEST(Utf8Process, RecordingsTellWhatEitherKindOfProcessWrote) {
    const std::string path = testing::TempDir() + "orvik-utf8-" + std::to_string(GetCurrentThreadId()) + ".rec";
    CPropertyDB facts;
    facts.SetValue("Channels.c0.sName", "\xCE\x91\xCE\xBD\xCF\x84\xCE\xAF\xCF\x83\xCF\x84\xCE\xB1\xCF\x83\xCE\xB7 [k\xCE\xA9]");
    CRecorder recorder;
    ASSERT_EQ(0u, recorder.Create(path, facts));
    ASSERT_EQ(0u, recorder.AddEvent({1, RE_LOST, 0, "\xCE\xA9"}));
    ASSERT_EQ(0u, recorder.AddEvent({2, RE_LOST, 0, "f\xF6rlorad"}));  // as a Windows-1252 process writes it
    ASSERT_EQ(0u, recorder.Close());
    CRecordingReader reader;
    ASSERT_EQ(0u, reader.Open(path));
    std::string told;
    for (auto item = reader.Next(); item != RI_END; item = reader.Next()) {
        ASSERT_NE(RI_FAILED, item);
        if (item == RI_EVENT) told += reader.Event().text + "|";
    }
    EXPECT_EQ("\xCE\xA9|f\xC3\xB6rlorad|", told);
    DeleteFileA(path.c_str());
}
