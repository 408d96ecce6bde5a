// Texts of letters of every length and of bytes that are none, through every way in and out: what comes back is the same letters,
// with a byte that belongs to none as the Windows-1252 character of its value.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "afx/archive.h"
#include "afx/file.h"
#include "platform/house_text_internal.h"
#include "propdb/property_db.h"
#include "record/recorder.h"
#include "record/recording_reader.h"

using namespace orvik::detail;

namespace {
std::string RandomText(std::mt19937& random) {
    static const char* const kPieces[] = {"a", "Z", "7", " x", "_", "\xC3\xA5", "\xC3\x9F", "\xCE\xA9", "\xCF\x82", "\xC4\xB0",
                                          "\xC4\xB1", "\xD0\x96", "\xE6\xB8\xA9", "\xE2\x82\xAC", "\xE0\xA4\x95\xE0\xA5\x8D",
                                          "\xEF\xB7\xBA", "\xF0\x9F\x8C\xA1", "\xF4\x8F\xBF\xBF", "e\xCC\x81",
                                          // None: alone, overlong, halves of pairs, too large, cut off.
                                          "\xE5", "\x80", "\xFF", "\xB5", "\xC0\xAF", "\xE0\x80\xAF", "\xF0\x80\x80\xAF",
                                          "\xED\xA0\xBC", "\xED\xBC\xA1", "\xF4\x90\x80\x80", "\xF0\x9F\x8C", "\xE6\xB8", "\xCE"};
    std::string text = "x";
    for (size_t left = random() % 20; left > 0; --left) text += kPieces[random() % std::size(kPieces)];
    return text + 'x';
}

CString ThroughDatabase(const std::string& text, BOOL xml) {
    CPropertyDB database, loaded;
    database.SetValue("s", text.c_str());
    CMemFile file;
    EXPECT_TRUE(database.StoreToFile(&file, xml, FALSE));
    file.SeekToBegin();
    EXPECT_TRUE(loaded.LoadFromFile(&file, xml));
    CString back;
    loaded.GetValue("s", back);
    return back;
}

CString ThroughArchive(const std::string& text) {
    CMemFile file;
    {
        CArchive out(&file, CArchive::store);
        out << CString(std::string_view(text));
    }
    file.SeekToBegin();
    CArchive in(&file, CArchive::load);
    CString back;
    in >> back;
    return back;
}

CString ThroughWide(const std::string& text) {
    std::vector<WCHAR> wide(text.size() + 1);
    const int units = MultiByteToWideChar(OrvikTextCodePage(), 0, OrvikUtf8FromText(text).c_str(), -1, nullptr, 0);
    wide.resize(static_cast<size_t>(units));
    MultiByteToWideChar(OrvikTextCodePage(), 0, OrvikUtf8FromText(text).c_str(), -1, wide.data(), units);
    std::vector<char> narrow(static_cast<size_t>(units) * 3);
    WideCharToMultiByte(OrvikTextCodePage(), 0, wide.data(), -1, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                        nullptr);
    return CString(narrow.data());
}

CString ThroughRecording(const std::string& text) {
    const std::string path = testing::TempDir() + "orvik-walk-" + std::to_string(GetCurrentThreadId()) + ".rec";
    CPropertyDB facts;
    facts.SetValue("Channels.c0.sName", "c");
    CRecorder recorder;
    EXPECT_EQ(0u, recorder.Create(path, facts));
    EXPECT_EQ(0u, recorder.AddEvent({1, RE_LOST, 0, text}));
    EXPECT_EQ(0u, recorder.Close());
    CRecordingReader reader;
    EXPECT_EQ(0u, reader.Open(path));
    CString back;
    for (auto item = reader.Next(); item != RI_END && item != RI_FAILED; item = reader.Next())
        if (item == RI_EVENT) back = reader.Event().text.c_str();
    DeleteFileA(path.c_str());
    return back;
}

CString ThroughFileName(const std::string& text) {
    const std::string folder = testing::TempDir() + "orvik-walk-" + std::to_string(GetCurrentThreadId());
    CreateDirectoryA(folder.c_str(), nullptr);
    const std::string path = folder + "/" + OrvikUtf8FromText(text);
    CFile(path.c_str(), CFile::modeCreate | CFile::modeWrite).Close();
    WIN32_FIND_DATAA found = {};
    const HANDLE search = FindFirstFileA((folder + "/x*").c_str(), &found);
    EXPECT_NE(INVALID_HANDLE_VALUE, search);
    FindClose(search);
    EXPECT_TRUE(DeleteFileA(path.c_str()));
    std::filesystem::remove(folder);
    return CString(found.cFileName);
}
}  // namespace

TEST(Utf8Process, RandomTextsComeBackFromEveryWay) {
    const struct {
        const char* name;
        std::function<CString(const std::string&)> way;
        int rounds;
        bool valid;  // whether what comes out is UTF-8 whatever went in
    } ways[] = {
        {"xml", [](const std::string& text) { return ThroughDatabase(text, TRUE); }, 400, true},
        {"binary", [](const std::string& text) { return ThroughDatabase(text, FALSE); }, 400, true},
        {"archive", ThroughArchive, 400, true},
        {"wide", ThroughWide, 400, true},
        {"recording", ThroughRecording, 20, true},
        {"file name", ThroughFileName, 60, true},
        {"format",
         [](const std::string& text) {
             CString out;
             out.Format("%s|%d", text.c_str(), 7);
             return out.Left(out.GetLength() - 2);
         },
         400, false},
    };
    for (const auto& way : ways) {
        std::mt19937 random(1511);
        for (int round = 0; round < way.rounds; ++round) {
            const std::string text = RandomText(random), back = way.way(text).GetString();
            ASSERT_EQ(OrvikUtf8FromText(text), OrvikUtf8FromText(back)) << way.name << ' ' << round;
            ASSERT_TRUE(!way.valid || IsUtf8(back)) << way.name << ' ' << round;
        }
    }
}

TEST(Utf8Process, CasesOfRandomTextsKeepTheirLetters) {
    std::mt19937 random(42);
    for (int round = 0; round < 2000; ++round) {
        std::string text = RandomText(random);
        if (round % 5 == 0) text.insert(text.size() / 2, 1, '\0');
        const CString given{std::string_view(text)};
        CString upper = given, lower = given;
        upper.MakeUpper(), lower.MakeLower();
        CString again = upper;
        again.MakeUpper();
        ASSERT_EQ(again, upper);
        ASSERT_TRUE(text.find(char{}) != std::string::npos || given.CompareNoCase(lower) == 0) << text;
        ASSERT_EQ(std::count(text.begin(), text.end(), '\0'),
                  std::count(upper.GetString(), upper.GetString() + upper.GetLength(), '\0'));
        ASSERT_TRUE(!IsUtf8(text) || (IsUtf8(upper.GetView()) && IsUtf8(lower.GetView()))) << text;
        ASSERT_EQ(OrvikUtf8FromText(text), ThroughArchive(text).GetView());
    }
}
