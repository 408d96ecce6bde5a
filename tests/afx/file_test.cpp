// Files by name and in memory, and the exceptions of what cannot be done.
#include "afx/file.h"

#include <filesystem>

#include "tests/afx/bytes.h"
#include "tests/support/test_folder.h"

using namespace afx_test;

namespace {
class File : public testing::Test, protected TestFolder {
protected:
    CString Path(const char* name) const { return CString(TestFolder::Path(name).c_str()); }
    static std::string Contents(const CString& path) {
        CFile file(path, CFile::modeRead | CFile::shareDenyNone);
        std::string text(static_cast<size_t>(file.GetLength()), 0);
        EXPECT_EQ(file.Read(text.data(), static_cast<UINT>(text.size())), text.size());
        return text;
    }
    static void Put(const CString& path, const std::string& text) {
        CFile file(path, CFile::modeCreate | CFile::modeWrite);
        file.Write(text.data(), static_cast<UINT>(text.size())), file.Close();
    }
};

TEST_F(File, WritesSeeksAndReads) {
    CFile file(Path("a.bin"), CFile::modeCreate | CFile::modeReadWrite);
    file.Write("hello world", 11);
    EXPECT_EQ(file.GetPosition(), 11u);
    EXPECT_EQ(file.Seek(-5, CFile::end), 6u);
    char buffer[16] = {};
    EXPECT_EQ(file.Read(buffer, 16), 5u);
    EXPECT_STREQ(buffer, "world");
    EXPECT_EQ(file.Read(buffer, 16), 0u);
    file.SeekToBegin();
    EXPECT_EQ(file.Seek(2, CFile::current), 2u);
    EXPECT_EQ(FileCause([&] { file.Seek(-3, CFile::current); }), CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 2u);
    file.SetLength(5);
    EXPECT_EQ(file.GetLength(), 5u);
    EXPECT_EQ(file.SeekToEnd(), 5u);
    file.Seek(8, CFile::begin);  // behind the end
    file.Write("!", 1), file.Flush(), file.Close();
    EXPECT_EQ(Contents(Path("a.bin")), std::string("hello\0\0\0!", 9));
}

TEST_F(File, OpensAsTold) {
    Put(Path("f"), "old");
    { CFile keep(Path("f"), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite); }
    EXPECT_EQ(Contents(Path("f")), "old");
    { CFile empty(Path("f"), CFile::modeCreate | CFile::modeWrite); }
    EXPECT_EQ(Contents(Path("f")), "");

    CFile file;
    CFileException failure;
    EXPECT_FALSE(file.Open(Path("none"), CFile::modeRead, &failure));
    EXPECT_EQ(failure.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(failure.m_lOsError, 2);
    EXPECT_EQ(failure.m_strFileName, Path("none"));
    EXPECT_FALSE(file.Open(Path("no/where"), CFile::modeRead, &failure));
    EXPECT_EQ(failure.m_cause, CFileException::badPath);
    EXPECT_EQ(FileCause([&] { CFile thrown(Path("none"), CFile::modeRead); }), CFileException::fileNotFound);
    EXPECT_EQ(FileCause([&] { CFile folder(Path("."), CFile::modeRead); }), CFileException::accessDenied);
    ExpectInvalidArg([&] { file.Open(Path("f"), 3); });
}

TEST_F(File, RefusesWhatTheModeDoesNotAllow) {
    Put(Path("f"), "text");
    CFile reading(Path("f"), CFile::modeRead | CFile::shareDenyNone);
    EXPECT_EQ(FileCause([&] { reading.Write("x", 1); }), CFileException::accessDenied);
    EXPECT_NE(FileCause([&] { reading.SetLength(1); }), -1);  // systems differ in the cause
    EXPECT_EQ(reading.GetLength(), 4u);
    char ch = 0;
    CFile writing(Path("g"), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(FileCause([&] { writing.Read(&ch, 1); }), CFileException::accessDenied);
    CFile none;
    EXPECT_EQ(FileCause([&] { none.Read(&ch, 1); }), CFileException::invalidFile);
    EXPECT_EQ(FileCause([&] { none.Write(&ch, 1); }), CFileException::invalidFile);
    EXPECT_EQ(FileCause([&] { none.GetLength(); }), CFileException::invalidFile);
    none.Close();  // nothing to close
}

TEST_F(File, KnowsItsNames) {
    CFile file(Path("some.name.txt"), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(file.GetFileName(), "some.name.txt");
    EXPECT_EQ(file.GetFileTitle(), "some.name");
    EXPECT_EQ(CString(std::filesystem::path(file.GetFilePath().GetString()).filename().string().c_str()), "some.name.txt");
    file.Close();
    EXPECT_EQ(file.GetFilePath(), "");
}

TEST_F(File, TellsStatus) {
    CFileStatus status;
    EXPECT_FALSE(CFile::GetStatus(Path("f"), status));
    EXPECT_FALSE(CFile::GetStatus("", status));
    Put(Path("f"), "12345");
    EXPECT_TRUE(CFile::GetStatus(Path("f"), status));
    EXPECT_EQ(status.m_size, 5u);
    EXPECT_EQ(status.m_attribute & CFile::directory, 0);
    EXPECT_GT(status.m_mtime.GetTime(), 1600000000);
    EXPECT_TRUE(CFile::GetStatus(Path("."), status));
    EXPECT_NE(status.m_attribute & CFile::directory, 0);
}

TEST_F(File, RenamesAndRemoves) {
    Put(Path("a"), "a"), Put(Path("b"), "b");
    EXPECT_EQ(FileCause([&] { CFile::Rename(Path("a"), Path("b")); }), CFileException::accessDenied);  // never replaces
    EXPECT_EQ(Contents(Path("b")), "b");
    CFile::Rename(Path("a"), Path("c"));
    EXPECT_EQ(Contents(Path("c")), "a");
    EXPECT_EQ(FileCause([&] { CFile::Rename(Path("a"), Path("d")); }), CFileException::fileNotFound);
    CFile::Remove(Path("c"));
    EXPECT_EQ(FileCause([&] { CFile::Remove(Path("c")); }), CFileException::fileNotFound);
}

TEST(MemFile, GrowsAndFillsGapsWithZero) {
    CMemFile file(1);
    file.Write("abc", 3), file.Seek(5, CFile::begin);
    EXPECT_EQ(file.GetLength(), 3u);
    file.Write("f", 1);
    EXPECT_EQ(file.GetLength(), 6u);
    EXPECT_EQ(std::memcmp(file.GetBufferPtr(), "abc\0\0f", 6), 0);
    file.SetLength(2), file.SetLength(4);
    EXPECT_EQ(std::memcmp(file.GetBufferPtr(), "ab\0\0", 4), 0);
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(file.Seek(1, CFile::begin), 1u);
    EXPECT_EQ(file.Read(buffer, 9), 3u);
    EXPECT_EQ(buffer[0], 'b');
    file.Seek(100, CFile::begin);
    EXPECT_EQ(file.Read(buffer, 1), 0u);
    EXPECT_EQ(FileCause([&] { file.Seek(-101, CFile::current); }), CFileException::badSeek);
    EXPECT_EQ(FileCause([&] { file.Seek(INT64_MIN, CFile::end); }), CFileException::badSeek);
}

TEST(MemFile, ServesACallersBlock) {
    BYTE block[4] = {1, 2, 3, 4};
    CMemFile fixed(block, 4);
    EXPECT_EQ(fixed.GetLength(), 4u);
    fixed.Write("\x09", 1);
    EXPECT_EQ(block[0], 9);
    fixed.SeekToEnd();
    EXPECT_EQ(FileCause([&] { fixed.Write("x", 1); }), CFileException::diskFull);

    CMemFile growing(block, 4, 8);
    EXPECT_EQ(growing.GetLength(), 0u);
    growing.Write("abcdef", 6);  // no longer in the block
    EXPECT_EQ(std::memcmp(growing.GetBufferPtr(), "abcdef", 6), 0);
    BYTE* own = growing.Detach();
    EXPECT_EQ(growing.GetLength(), 0u);
    CMemFile::Free(own);
}
}  // namespace
