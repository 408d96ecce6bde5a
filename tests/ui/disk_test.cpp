// Files and disks as dialogs use them, on both homes by the same names.
#include "ui/disk.h"

#include <tuple>
#include <vector>

#include "platform/house_text_internal.h"
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
    // What the user is told of a copy that is not made.
    std::string Refused(const char* from, const char* to) {
        EXPECT_EQ(CDisk::CopyFileA(from, to), 0);
        EXPECT_EQ(app.types, std::vector<UINT>{MB_ICONHAND});
        return app.Told();
    }

    TellingApp app;
    TextLanguage english{LANG_ENGLISH};
    ScratchFolder folder;
};

using Names = std::vector<std::string>;

}  // namespace

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
    using Row = std::tuple<const char*, eDIRSPECIFIER, Names>;
    for (const auto& [pattern, kind, names] :
         {Row{"*.*", dirFilesOnly, {"B.txt", "a.txt", "b", "c.dat"}}, Row{"*", dirDirectoriesOnly, {".", "..", "Sub"}},
          Row{"*", dirAll, {".", "..", "B.txt", "Sub", "a.txt", "b", "c.dat"}}, Row{"*", static_cast<eDIRSPECIFIER>(3), {}},
          Row{"*", static_cast<eDIRSPECIFIER>(-1), {}}})
        EXPECT_EQ(List(folder(pattern), 1, kind), names) << kind;
    Names any = List(folder("*.txt"), 0);
    std::sort(any.begin(), any.end());
    EXPECT_EQ(any, (Names{"B.txt", "a.txt"}));
}

TEST_F(Disk, PatternsLookAtNoCase) {
    for (const char* name : {"LOG1.TXT", "log2.txt", "log10.txt", "log3.txt.bak"}) folder.Write(name, "1");
    using Row = std::pair<std::string, Names>;
    for (const auto& [pattern, names] :
         {Row{"*.txt", {"LOG1.TXT", "log10.txt", "log2.txt"}}, Row{folder("Log?.TXT"), {"LOG1.TXT", "log2.txt"}},
          Row{"*1*", {"LOG1.TXT", "log10.txt"}}, Row{"log2.txt", {"log2.txt"}}, Row{"log[2].txt", {}}, Row{"*.dat", {}},
          Row{folder("missing\\*.*"), {}}, Row{"Q:\\*.*", {}}, Row{"", {}}})  // what cannot be listed is empty
        EXPECT_EQ(List(pattern), names) << pattern;
    CStringArray names;
    names.Add("left");
    CDisk::ListDir(nullptr, names, 1, dirAll);
    EXPECT_TRUE(names.IsEmpty());
}

TEST_F(Disk, CopiesBytesToANewName) {
    std::string bytes(300000, 'x');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 >> 3);
    folder.Write("a.bin", bytes), folder.MakeFolder("sub");
    EXPECT_EQ(CDisk::CopyFileA(folder("a.bin").c_str(), folder("sub\\b.bin").c_str()), 1);
    EXPECT_EQ(folder.Read("sub/b.bin"), bytes);
    EXPECT_EQ(CDisk::CopyFileA("a.bin", orvik::detail::HouseFrom1252("m\xE4tning \x80.bin").c_str()), 1);
    EXPECT_EQ(List("m*"), Names{orvik::detail::HouseFrom1252("m\xE4tning \x80.bin")});
    EXPECT_TRUE(app.told.empty());
}

TEST_F(Disk, TheSameNameInAnyCaseIsTold) {
    folder.Write("a.txt", "1");
    EXPECT_EQ(Refused("a.txt", "A.TXT"), "Source and target directories\nare the same.");
    EXPECT_EQ(Refused(orvik::detail::HouseFrom1252("\xE5.txt").c_str(), orvik::detail::HouseFrom1252("\xC5.TXT").c_str()),
              "Source and target directories\nare the same.");
    EXPECT_EQ(folder.Count(), 1u);
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(Refused(nullptr, ""), orvik::detail::HouseFrom1252("K\xE4lla och m\xE5lmapp\n\xE4r samma."));
}

TEST_F(Disk, ACopyNeverOverwrites) {
    folder.Write("a.txt", "new"), folder.Write("b.txt", "old");
    EXPECT_EQ(Refused("a.txt", "b.txt"), "Could not copy file.\n\nThe file already exists.");
    EXPECT_EQ(folder.Read("b.txt"), "old");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(Refused("a.txt", folder("b.txt").c_str()), "Kunde inte kopiera filen.\n\nFilen finns redan.");
    EXPECT_EQ(folder.Count(), 2u);
}

TEST_F(Disk, OtherReasonsAreTold) {
    folder.Write("a.txt", "1"), folder.MakeFolder("sub");
    EXPECT_EQ(Refused("missing.txt", "b.txt"), "Could not copy file.\n\nError code: 2.");
    EXPECT_EQ(Refused("a.txt", "missing\\b.txt"), "Could not copy file.\n\nError code: 3.");
    EXPECT_EQ(Refused("sub", "b.txt"), "Could not copy file.\n\nAccess denied.");
    const TextLanguage swedish(LANG_SWEDISH);
    EXPECT_EQ(Refused("sub", "b.txt"), orvik::detail::HouseFrom1252("Kunde inte kopiera filen.\n\n\xC5tkomst nekad."));
    EXPECT_EQ(folder.Count(), 2u);
}

TEST_F(Disk, AccessAsksForOneUse) {
    folder.Write("a.txt", "1");
    for (const std::string& name : {folder("a.txt"), folder.Path(), std::string("a.txt")})
        EXPECT_EQ(CDisk::Access(name.c_str(), accessExist), 1) << name;
    for (const char* name : {"missing.txt", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(CDisk::Access(name, accessExist), 0);
    const auto uses = [] {
        std::string text;
        for (const auto use : {accessRead, accessWrite, accessReadWrite}) text += std::to_string(CDisk::Access("a.txt", use));
        return text;
    };
    EXPECT_EQ(uses(), "111");
    ASSERT_TRUE(SetFileAttributesA("a.txt", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(uses(), "100");
    ASSERT_TRUE(SetFileAttributesA("a.txt", FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(uses(), "111");
}

TEST_F(Disk, FreeSpaceIsInWholeSectors) {
    EXPECT_EQ(CDisk::FreeSpace('C') % 512, 0);
    EXPECT_NE(CDisk::FreeSpace('c'), -1);
    for (const char drive : {'Q', '\\', '\0'}) EXPECT_EQ(CDisk::FreeSpace(drive), -1) << drive;
}
