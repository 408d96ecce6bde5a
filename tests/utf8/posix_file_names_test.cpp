// Names of files in a UTF-8 process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "afx/file.h"

TEST(Utf8Process, NamesOfFilesAreFoundByLettersOfEitherCase) {
    std::string name = testing::TempDir() + "orvik-names-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(name.data()));
    const CString folder(name.c_str());
    CFile(folder + "/\xCE\xA9\xE6\xB8\xA9 \xC3\x85.txt", CFile::modeCreate | CFile::modeWrite);
    for (const char* const pattern : {"\xCF\x89*", "?? \xC3\xA5.*", "*\xE6\xB8\xA9*", "\xCE\xA9\xE6\xB8\xA9 \xC3\x85.TX?"}) {
        WIN32_FIND_DATAA found;
        const HANDLE search = FindFirstFileA(folder + "/" + pattern, &found);
        ASSERT_NE(INVALID_HANDLE_VALUE, search) << pattern;
        EXPECT_STREQ("\xCE\xA9\xE6\xB8\xA9 \xC3\x85.txt", found.cFileName);
        FindClose(search);
    }
    std::filesystem::remove_all(name);
}
