// Text and file names at the edge of the Linux twin.
#include <gtest/gtest.h>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/text/text_internal.h"
#include "platform/win32.h"
#include "tests/support/last_error.h"

using namespace orvik::detail;

TEST(PosixText, NamesCrossFromWindows1252AndBack) {
    EXPECT_EQ(SystemPath("m\xE4tning \x80.odb"), "m\xC3\xA4tning \xE2\x82\xAC.odb");
    EXPECT_EQ(HousePath("m\xC3\xA4tning \xE2\x82\xAC.odb"), "m\xE4tning \x80.odb");
}

TEST(PosixText, NamesBeyondWindows1252StayReachable) {
    const char* japanese = "\xE6\xB8\xAC\xE5\xAE\x9A.odb";
    EXPECT_EQ(SystemPath(japanese), japanese);
    EXPECT_EQ(HousePath(japanese), japanese);
    EXPECT_EQ(HousePath("broken \xFF\xFE"), "broken \xFF\xFE");
}

TEST(PosixText, ConversionReportsWhatItCannotSay) {
    WCHAR wide[8];
    EXPECT_FAILS(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3", 2, wide, 8), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "\xF0\x9F\x98\x80", 4, wide, 8), 2);  // a surrogate pair
    EXPECT_EQ(wide[0], 0xD83D);
    EXPECT_EQ(wide[1], 0xDE00);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "\xC0\xAF", 2, wide, 8), 2);  // an overlong form is two faults, never "/"
    EXPECT_EQ(wide[0], 0xFFFD);
    char narrow[4];
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"\u20AC\u6E2C", 2, narrow, 4, "#", &used), 2);
    EXPECT_EQ(std::string(narrow, 2), "\x80#");
    EXPECT_TRUE(used);
    EXPECT_FAILS(WideCharToMultiByte(CP_UTF8, 0, u"\u6E2C", 1, narrow, 2, nullptr, nullptr), ERROR_INSUFFICIENT_BUFFER);
}

TEST(PosixFiles, FullNameIsResolvedInTheText) {
    char out[64];
    EXPECT_EQ(GetFullPathNameA("/a/./b/../../c//d", 64, out, nullptr), 4u);
    EXPECT_STREQ(out, "/c/d");
    EXPECT_EQ(GetFullPathNameA("/..", 64, out, nullptr), 1u);
    EXPECT_STREQ(out, "/");
    EXPECT_EQ(GetFullPathNameA("/abc", 3, out, nullptr), 5u);
}

TEST(PosixFiles, MissingFileAndMissingFolderDiffer) {
    EXPECT_FAILS(GetFileAttributesA("/tmp/no-such-file-here"), ERROR_FILE_NOT_FOUND);
    EXPECT_FAILS(GetFileAttributesA("/tmp/no-such-folder/file"), ERROR_PATH_NOT_FOUND);
}

TEST(PosixModules, AFileThatIsNoLibraryIsRefused) {
    EXPECT_FAILS(LoadLibraryA("/proc/self/maps"), ERROR_BAD_FORMAT);
    EXPECT_FAILS(LoadLibraryA("/tmp/no-such-library.so"), ERROR_FILE_NOT_FOUND);
}
