// What names lead to on this system, and what a search finds.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/text/text_internal.h"
#include "platform/win32.h"
#include "tests/support/last_error.h"

using namespace orvik::detail;
namespace fs = std::filesystem;

namespace {
class PosixFileNames : public testing::Test {
protected:
    PosixFileNames() {
        fs::create_directories(folder);
        fs::current_path(folder);
    }
    ~PosixFileNames() override {
        fs::current_path(before);
        fs::remove_all(folder);
    }
    static void Make(const char* name) { std::ofstream(name) << name; }
    static bool IsThere(const std::string& name) { return GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES; }
    static std::vector<std::string> Find(const char* pattern) {
        std::vector<std::string> names;
        WIN32_FIND_DATAA data;
        const HANDLE find = FindFirstFileA(pattern, &data);
        if (find == INVALID_HANDLE_VALUE) return names;
        do {
            names.emplace_back(data.cFileName);
        } while (FindNextFileA(find, &data));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_TRUE(FindClose(find));
        std::sort(names.begin(), names.end());
        return names;
    }
    const fs::path before = fs::current_path();
    const fs::path folder = fs::temp_directory_path() / ("orvik-names-" + std::to_string(std::random_device()()));
};
using Names = std::vector<std::string>;
}  // namespace

TEST_F(PosixFileNames, DrivesAndBackslashesLeadToTheSameFile) {
    fs::create_directory("sub");
    Make("sub/a.txt");
    const std::string path = folder.string();
    const std::string slashes = "C:" + path + "/sub/a.txt";
    std::string windows = slashes;
    std::replace(windows.begin(), windows.end(), '/', '\\');
    for (const std::string& name : {slashes, windows, "c" + windows.substr(1), windows.substr(2), "\\\\?\\" + windows,
                                    std::string("sub\\a.txt"), std::string(".\\sub/..\\sub\\a.txt"), std::string("c:sub\\a.txt")})
        EXPECT_TRUE(IsThere(name)) << name;
    EXPECT_EQ(SystemPath("C:"), path);
    EXPECT_EQ(SystemPath("C:\\"), "/");
    EXPECT_EQ(SystemPath(orvik::detail::HouseFrom1252("C:\\m\xE4t\\\x80")), "/m\xC3\xA4t/\xE2\x82\xAC");
}

static Names InHouseText(const Names& names) {
    Names in;
    for (const auto& name : names) in.insert(in.end(), orvik::detail::HouseFrom1252(name));
    std::sort(in.begin(), in.end());
    return in;
}

TEST_F(PosixFileNames, NamesHaveTheirCaseAndPatternsDoNot) {
    for (const char* name : {"a.txt", "A.TXT", "\xC3\xA5.txt", "\xC3\x85.TXT", "none"}) Make(name);
    EXPECT_FALSE(IsThere("a.TXT"));
    using Row = std::pair<const char*, Names>;
    for (const auto& [pattern, names] :
         {Row{"a.txt", {"a.txt"}}, Row{"a.TXT", {}}, Row{"a.tx?", {"A.TXT", "a.txt"}}, Row{"\xE5*", {"\xC5.TXT", "\xE5.txt"}},
          Row{"?.txt", {"A.TXT", "a.txt", "\xC5.TXT", "\xE5.txt"}}, Row{"n*.*", {"none"}}, Row{"**n**e**", {"none"}}})
        EXPECT_EQ(Find(orvik::detail::HouseFrom1252(pattern).c_str()), InHouseText(names)) << pattern;
    EXPECT_EQ(Find("*.*").size(), 7u);
}

TEST_F(PosixFileNames, NamesThatCannotBeNamedBackArePassedOver) {
    Make("a\\b.txt"), Make("c:d.txt");
    Make("\xE6\xB8\xAC.txt");  // beyond Windows-1252: as it stands
    EXPECT_EQ(Find("*.txt"), (Names{"c:d.txt", "\xE6\xB8\xAC.txt"}));
    EXPECT_TRUE(IsThere("./c:d.txt"));
    EXPECT_FALSE(IsThere("a\\b.txt"));
    EXPECT_TRUE(IsThere(".\\\xE6\xB8\xAC.txt"));
}

TEST_F(PosixFileNames, ABasicListKnowsFoldersBehindLinks) {
    fs::create_directory("folder");
    fs::create_directory_symlink("folder", "link");
    fs::create_symlink("nowhere", "dangling");
    Make("file");
    std::map<std::string, bool> isFolder;
    WIN32_FIND_DATAA data;
    const HANDLE find = FindFirstFileExA("*", FindExInfoBasic, &data, FindExSearchNameMatch, nullptr, 0);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    do {
        isFolder[data.cFileName] = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    } while (FindNextFileA(find, &data));
    FindClose(find);
    const std::map<std::string, bool> expected = {{".", true},    {"..", true},    {"folder", true},
                                                  {"link", true}, {"file", false}, {"dangling", false}};
    EXPECT_EQ(isFolder, expected);
}

TEST_F(PosixFileNames, ACopyKeepsTimeAndPermissions) {
    Make("a.txt");
    fs::permissions("a.txt", fs::perms::owner_read);
    fs::last_write_time("a.txt", fs::file_time_type::clock::now() - std::chrono::hours(1000));
    ASSERT_TRUE(CopyFileA("a.txt", "b.txt", TRUE));
    EXPECT_EQ(fs::last_write_time("a.txt"), fs::last_write_time("b.txt"));
    EXPECT_EQ(fs::status("b.txt").permissions(), fs::perms::owner_read);
    EXPECT_FAILS(CopyFileA("a.txt", "b.txt", FALSE), ERROR_NOT_SUPPORTED);
    EXPECT_FAILS(CopyFileA("/dev/null", "c.txt", TRUE), ERROR_NOT_SUPPORTED);
    fs::create_symlink("nowhere", "link");
    EXPECT_FAILS(CopyFileA("a.txt", "link", TRUE), ERROR_FILE_EXISTS);
}

TEST_F(PosixFileNames, FreeSpaceIsThatOfTheDisk) {
    DWORD sectors = 0, bytes = 0, free = 0, all = 0;
    ASSERT_TRUE(GetDiskFreeSpaceA("C:\\", &sectors, &bytes, &free, &all));
    EXPECT_LE(free, all);
    ULARGE_INTEGER mine{}, whole{}, any{};
    ASSERT_TRUE(GetDiskFreeSpaceExA("C:\\", &mine, &whole, &any));
    EXPECT_EQ(ULONGLONG{sectors} * bytes * all, whole.QuadPart);
    EXPECT_LE(mine.QuadPart, any.QuadPart);
    EXPECT_FAILS(GetDiskFreeSpaceA("C:\\tmp", &sectors, &bytes, &free, &all), ERROR_DIR_NOT_ROOT);
    EXPECT_FAILS(GetDiskFreeSpaceExA("Q:\\", &mine, nullptr, nullptr), ERROR_PATH_NOT_FOUND);
}

TEST(PosixText, ComparesWithoutCase) {
    // two characters beyond Windows-1252
    using Row = std::tuple<LPCSTR, LPCSTR, int>;
    for (const auto& [first, second, order] :
         {Row{"a.txt", "A.TXT", 0}, Row{"\xE5 \x9A", "\xC5 \x8A", 0}, Row{"\xFF", "\x9F", 0}, Row{"a", "B", -1}, Row{"b", "A", 1},
          Row{"a", "ab", -1}, Row{"", "", 0}, Row{nullptr, "", -1}, Row{nullptr, nullptr, 0},
          Row{"\xD7", "\xF7", -1},  // signs, not letters
          Row{"\xE6\xB8\x8A", "\xE6\xB8\x9A", -1}}) {
        EXPECT_EQ(lstrcmpiA(first, second), order);
        EXPECT_EQ(lstrcmpiA(second, first), -order);
    }
}
