// Files and disks as dialogs use them, on both homes by the same names.
#include "ui/disk.h"

#include <vector>

#include "tests/support/dialog_fixture.h"
#include "tests/ui/scratch_folder.h"

namespace {

class Disk : public testing::Test {
protected:
    std::vector<std::string> List(const std::string& pattern, int sort = 1, eDIRSPECIFIER kind = dirFilesOnly) {
        CStringArray names;
        names.Add("left from before");
        CDisk::ListDir(pattern.c_str(), names, sort, kind);
        std::vector<std::string> out;
        for (INT_PTR i = 0; i < names.GetSize(); ++i) out.emplace_back(names[i].GetString());
        return out;
    }
    std::string Dir() {
        CString dir;
        EXPECT_EQ(CDisk::GetDir(dir), 1);
        return dir.GetString();
    }
    // The one message since the last call.
    std::string Told() {
        for (const UINT type : app.types) EXPECT_EQ(type, UINT{MB_ICONHAND});
        return app.Told();
    }

    TellingApp app;
    TextLanguage english{LANG_ENGLISH};
    ScratchFolder folder;
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(Disk, ADirectoryIsToldWithItsDriveAndOneBackslash) {
    EXPECT_EQ(folder.Path()[1], ':');
    EXPECT_EQ(folder.Path()[2], '\\');
    EXPECT_EQ(folder.Path().back(), '\\');
    EXPECT_NE(folder.Path()[folder.Path().size() - 2], '\\');
    EXPECT_EQ(folder.Path().find('/'), std::string::npos);
    ASSERT_EQ(CDisk::ChDir("C:\\"), 1);
    EXPECT_EQ(Dir(), "C:\\");
}

TEST_F(Disk, ADirectoryToldCanBeGoneBackTo) {
    folder.MakeFolder("logs");
    ASSERT_EQ(CDisk::ChDir("C:\\"), 1);
    ASSERT_EQ(CDisk::ChDir(folder("logs\\").c_str()), 1);
    EXPECT_EQ(Dir(), folder("logs\\"));
    ASSERT_EQ(CDisk::ChDir(folder("logs").c_str()), 1);
    EXPECT_EQ(Dir(), folder("logs\\"));
    std::string lower = folder.Path();
    lower[0] = static_cast<char>(lower[0] | 0x20);
    EXPECT_EQ(CDisk::ChDir(lower.c_str()), 1);
    folder.Write("here.txt", "1");
    EXPECT_EQ(List("here.*"), Names{"here.txt"});
}

TEST_F(Disk, AFailedChangeLeavesTheDirectory) {
    folder.Write("file.txt", "1");
    for (const std::string& path :
         {folder("missing"), folder("file.txt"), std::string("Q:\\"), std::string("Q:\\logs"), std::string("logs"),
          std::string("\\"), std::string("\xE5:\\"), std::string("["), std::string()}) {
        EXPECT_EQ(CDisk::ChDir(path.c_str()), 0) << path;
        EXPECT_EQ(Dir(), folder.Path()) << path;
    }
    EXPECT_EQ(CDisk::ChDir(nullptr), 0);
}

TEST_F(Disk, ListsByKindSortedByTheirBytes) {
    for (const char* name : {"a.txt", "B.txt", "c.dat", "b"}) folder.Write(name, "1");
    folder.MakeFolder("Sub");
    EXPECT_EQ(List(folder("*.*")), (Names{"B.txt", "a.txt", "b", "c.dat"}));
    EXPECT_EQ(List(folder("*"), 1, dirDirectoriesOnly), (Names{".", "..", "Sub"}));
    EXPECT_EQ(List(folder("*"), 1, dirAll), (Names{".", "..", "B.txt", "Sub", "a.txt", "b", "c.dat"}));
    EXPECT_EQ(List(folder("*"), 1, static_cast<eDIRSPECIFIER>(3)), Names());
    EXPECT_EQ(List(folder("*"), 1, static_cast<eDIRSPECIFIER>(-1)), Names());
    Names any = List(folder("*.txt"), 0);
    std::sort(any.begin(), any.end());
    EXPECT_EQ(any, (Names{"B.txt", "a.txt"}));
}

TEST_F(Disk, PatternsLookAtNoCase) {
    for (const char* name : {"LOG1.TXT", "log2.txt", "log10.txt", "log3.txt.bak"}) folder.Write(name, "1");
    EXPECT_EQ(List("*.txt"), (Names{"LOG1.TXT", "log10.txt", "log2.txt"}));
    EXPECT_EQ(List(folder("Log?.TXT")), (Names{"LOG1.TXT", "log2.txt"}));
    EXPECT_EQ(List("*1*"), (Names{"LOG1.TXT", "log10.txt"}));
    EXPECT_EQ(List("log2.txt"), Names{"log2.txt"});
    EXPECT_EQ(List("log[2].txt"), Names());
    EXPECT_EQ(List("*.dat"), Names());
}

TEST_F(Disk, WhatCannotBeListedIsEmpty) {
    EXPECT_EQ(List(folder("missing\\*.*")), Names());
    EXPECT_EQ(List("Q:\\*.*"), Names());
    EXPECT_EQ(List(""), Names());
    CStringArray names;
    names.Add("left");
    CDisk::ListDir(nullptr, names, 1, dirAll);
    EXPECT_TRUE(names.IsEmpty());
}

TEST_F(Disk, LongListsAreSortedToo) {
    for (int i = 0; i < 300; ++i) folder.Write("f" + std::to_string(i * 7919 % 1000), "");
    const Names names = List(folder("f*"));
    EXPECT_EQ(names.size(), 300u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST_F(Disk, CopiesBytesToANewName) {
    std::string bytes(300000, 'x');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 >> 3);
    folder.Write("a.bin", bytes);
    folder.MakeFolder("sub");
    EXPECT_EQ(CDisk::CopyFileA(folder("a.bin").c_str(), folder("sub\\b.bin").c_str()), 1);
    EXPECT_EQ(folder.Read("sub/b.bin"), bytes);
    EXPECT_EQ(CDisk::CopyFileA("a.bin", "m\xE4tning \x80.bin"), 1);
    EXPECT_EQ(List("m*"), Names{"m\xE4tning \x80.bin"});
    EXPECT_TRUE(app.told.empty());
}

TEST_F(Disk, TheSameNameInAnyCaseIsTold) {
    folder.Write("a.txt", "1");
    EXPECT_EQ(CDisk::CopyFileA("a.txt", "A.TXT"), 0);
    EXPECT_EQ(Told(), "Source and target directories\nare the same.");
    EXPECT_EQ(CDisk::CopyFileA("\xE5.txt", "\xC5.TXT"), 0);
    EXPECT_EQ(Told(), "Source and target directories\nare the same.");
    EXPECT_EQ(folder.Count(), 1);
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(CDisk::CopyFileA(nullptr, ""), 0);
    EXPECT_EQ(Told(), "K\xE4lla och m\xE5lmapp\n\xE4r samma.");
}

TEST_F(Disk, ACopyNeverOverwrites) {
    folder.Write("a.txt", "new");
    folder.Write("b.txt", "old");
    EXPECT_EQ(CDisk::CopyFileA("a.txt", "b.txt"), 0);
    EXPECT_EQ(Told(), "Could not copy file.\n\nThe file already exists.");
    EXPECT_EQ(folder.Read("b.txt"), "old");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(CDisk::CopyFileA("a.txt", folder("b.txt").c_str()), 0);
    EXPECT_EQ(Told(), "Kunde inte kopiera filen.\n\nFilen finns redan.");
    EXPECT_EQ(folder.Count(), 2);
}

TEST_F(Disk, OtherReasonsAreTold) {
    folder.Write("a.txt", "1");
    folder.MakeFolder("sub");
    EXPECT_EQ(CDisk::CopyFileA("missing.txt", "b.txt"), 0);
    EXPECT_EQ(Told(), "Could not copy file.\n\nError code: 2.");
    EXPECT_EQ(CDisk::CopyFileA("a.txt", "missing\\b.txt"), 0);
    EXPECT_EQ(Told(), "Could not copy file.\n\nError code: 3.");
    EXPECT_EQ(CDisk::CopyFileA("sub", "b.txt"), 0);
    EXPECT_EQ(Told(), "Could not copy file.\n\nAccess denied.");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(CDisk::CopyFileA("sub", "b.txt"), 0);
    EXPECT_EQ(Told(), "Kunde inte kopiera filen.\n\n\xC5tkomst nekad.");
    EXPECT_EQ(folder.Count(), 2);
}

TEST_F(Disk, AccessAsksForOneUse) {
    folder.Write("a.txt", "1");
    EXPECT_EQ(CDisk::Access(folder("a.txt").c_str(), accessExist), 1);
    EXPECT_EQ(CDisk::Access("a.txt", accessReadWrite), 1);
    EXPECT_EQ(CDisk::Access("missing.txt", accessExist), 0);
    EXPECT_EQ(CDisk::Access("", accessExist), 0);
    EXPECT_EQ(CDisk::Access(nullptr, accessExist), 0);
    EXPECT_EQ(CDisk::Access(folder.Path().c_str(), accessExist), 1);
    ASSERT_TRUE(SetFileAttributesA("a.txt", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(CDisk::Access("a.txt", accessRead), 1);
    EXPECT_EQ(CDisk::Access("a.txt", accessWrite), 0);
    EXPECT_EQ(CDisk::Access("a.txt", accessReadWrite), 0);
    ASSERT_TRUE(SetFileAttributesA("a.txt", FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(CDisk::Access("a.txt", accessWrite), 1);
}

TEST_F(Disk, FreeSpaceIsInWholeSectors) {
    EXPECT_EQ(CDisk::FreeSpace('C') % 512, 0);
    EXPECT_NE(CDisk::FreeSpace('c'), -1);
    EXPECT_EQ(CDisk::FreeSpace('Q'), -1);
    EXPECT_EQ(CDisk::FreeSpace('\\'), -1);
    EXPECT_EQ(CDisk::FreeSpace(0), -1);
}

TEST_F(Disk, AssignmentDoesNothing) {
    CDisk one, two;
    EXPECT_EQ(&(one = two), &one);
}
