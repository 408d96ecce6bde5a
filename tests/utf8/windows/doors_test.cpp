// What only Windows has between a UTF-8 process and its system.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "afx/file.h"
#include "platform/win32.h"
#include "tests/support/test_folder.h"

namespace {
// std::filesystem goes its own way with narrow text.
std::string In(const TestFolder& folder, const char* name) { return folder.Path("") + name; }

constexpr LCID kGerman = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
}  // namespace

TEST(Doors, NamesOfFilesAreTheirLetters) {
    const TestFolder folder;
    const std::string path = In(folder, "\xCE\xA9\xE6\xB8\xA9.txt");
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        file.Write("x", 1);
    }
    WIN32_FIND_DATAW wide;
    const std::string narrow = In(folder, "*.txt");
    const std::wstring pattern(narrow.begin(), narrow.end());
    const HANDLE other = FindFirstFileW(pattern.c_str(), &wide);
    ASSERT_NE(INVALID_HANDLE_VALUE, other);
    FindClose(other);
    EXPECT_STREQ(L"\x3A9\x6E29.txt", wide.cFileName);
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(In(folder, "\xCE\xA9*").c_str(), &found);
    ASSERT_NE(INVALID_HANDLE_VALUE, search);
    EXPECT_STREQ("\xCE\xA9\xE6\xB8\xA9.txt", found.cFileName);
    FindClose(search);
    EXPECT_EQ(0, _access(path.c_str(), 0));
    EXPECT_TRUE(MoveFileExA(path.c_str(), In(folder, "\xD0\x96").c_str(), 0));
    char full[MAX_PATH];
    char* name = nullptr;
    ASSERT_GT(GetFullPathNameA(In(folder, "\xD0\x96").c_str(), sizeof full, full, &name), 0u);
    EXPECT_STREQ("\xD0\x96", name);
    EXPECT_EQ(strlen(full) + 1, GetFullPathNameA(full, static_cast<DWORD>(strlen(full)), full, nullptr));
    EXPECT_TRUE(DeleteFileA(full));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(full));
}

TEST(Doors, ANameThatDoesNotFitIsPassedOver) {
    const TestFolder folder;
    const std::string narrow = In(folder, "");
    std::wstring path(narrow.begin(), narrow.end());
    path += std::wstring(100, L'\x6E29');  // 300 bytes
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    CloseHandle(file);
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(In(folder, "*").c_str(), &found);
    ASSERT_NE(INVALID_HANDLE_VALUE, search);
    do {
        // By its short name, where the disk has such.
        EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(In(folder, found.cFileName).c_str()));
    } while (FindNextFileA(search, &found));
    FindClose(search);
    DeleteFileW(path.c_str());
}

TEST(Doors, SettingsAndEnvironmentAreText) {
    char text[64] = "";
    EXPECT_EQ(4, GetLocaleInfoA(kGerman, LOCALE_SCURRENCY, text, sizeof text));
    EXPECT_STREQ("\xE2\x82\xAC", text);
    EXPECT_EQ(4, GetLocaleInfoA(kGerman, LOCALE_SCURRENCY, nullptr, 0));
    EXPECT_EQ(0, GetLocaleInfoA(kGerman, LOCALE_SCURRENCY, text, 3));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), GetLastError());
    const SYSTEMTIME march = {2024, 3, 5, 1, 12, 0, 0, 0};
    EXPECT_GT(GetDateFormatA(kGerman, 0, &march, "MMM'\xCE\xA9'", text, sizeof text), 0);
    EXPECT_EQ("M\xC3\xA4r", std::string(text).substr(0, 4));
    EXPECT_NE(nullptr, strstr(text, "\xCE\xA9"));
    EXPECT_EQ(CSTR_EQUAL, CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, "\xCE\xA9", -1, "\xCF\x89", 2));

    ASSERT_TRUE(SetEnvironmentVariableA("ORVIK_TEST_\xCE\xA9", "\xE6\xB8\xA9"));
    EXPECT_EQ(3u, GetEnvironmentVariableA("ORVIK_TEST_\xCE\xA9", text, sizeof text));
    EXPECT_STREQ("\xE6\xB8\xA9", text);
    EXPECT_EQ(4u, GetEnvironmentVariableA("ORVIK_TEST_\xCE\xA9", text, 3));
    SetEnvironmentVariableA("ORVIK_TEST_\xCE\xA9", nullptr);
    EXPECT_EQ(0u, GetEnvironmentVariableA("ORVIK_TEST_\xCE\xA9", text, sizeof text));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND), GetLastError());
}

TEST(Doors, LettersAreSteppedOverWhole) {
    const char text[] = "a\xC3\xA5\xE2\x82\xAC\xF0\x9F\x8C\xA1\xB5";
    std::string steps, back;
    for (const char* at = text; *at != 0; at = CharNextA(at)) steps += std::to_string(at - text) + " ";
    EXPECT_EQ("0 1 3 6 10 ", steps);
    for (const char* at = text + 11; at > text;) at = CharPrevA(text, at), back += std::to_string(at - text) + " ";
    EXPECT_EQ("10 6 3 1 0 ", back);
    WCHAR wide[4] = {};
    EXPECT_EQ(2, MultiByteToWideChar(CP_ACP, 0, "\xCE\xA9", -1, wide, 4));
    EXPECT_EQ(0x3A9, wide[0]);
}

TEST(Doors, TheRegistryGivesText) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\OrvikTest", &key));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key, L"\x3A9", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"k\x3A9"), 6));
    char text[16];
    DWORD size = 0, type = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExA(key, "\xCE\xA9", nullptr, &type, nullptr, &size));
    EXPECT_EQ(std::pair(4ul, static_cast<unsigned long>(REG_SZ)), std::pair(size, type));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExA(key, "\xCE\xA9", nullptr, &type, reinterpret_cast<BYTE*>(text), &size));
    EXPECT_STREQ("k\xCE\xA9", text);
    size = 3;
    EXPECT_EQ(ERROR_MORE_DATA, RegQueryValueExA(key, "\xCE\xA9", nullptr, &type, reinterpret_cast<BYTE*>(text), &size));
    RegCloseKey(key);
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\OrvikTest");
}

TEST(Doors, AnOwnerWhoKeepsNoTextsKeepsItsData) {
    const HWND list =
        CreateWindowExA(0, "ListBox", "", WS_POPUP | LBS_OWNERDRAWFIXED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(0, SendMessageA(list, LB_ADDSTRING, 0, 0x1234));
    EXPECT_EQ(0x1234, SendMessageA(list, LB_GETITEMDATA, 0, 0));
    DestroyWindow(list);
}
