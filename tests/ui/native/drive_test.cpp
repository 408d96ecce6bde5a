// A second drive, made by a link in the drives directory.
#include <cstdlib>
#include <filesystem>

#include "platform/win32.h"
#include "tests/ui/scratch_folder.h"

namespace {
namespace fs = std::filesystem;

class Drives : public testing::Test {
protected:
    Drives() {
        folder.MakeFolder("drives"), folder.MakeFolder("card");
        fs::create_directory("card/logs");
        card = fs::current_path() / "card";
        fs::create_symlink(card, "drives/d:");
        fs::create_symlink("/no/such/folder", "drives/e:");
        setenv("ORVIK_DRIVES_DIR", (fs::current_path() / "drives").c_str(), 1);
    }
    ~Drives() override {
        CDisk::ChDir("C:\\");
        unsetenv("ORVIK_DRIVES_DIR");
    }
    std::string Dir() {
        CString dir;
        EXPECT_EQ(CDisk::GetDir(dir), 1);
        return dir.GetString();
    }
    ScratchFolder folder;
    fs::path card;
};
}  // namespace

TEST_F(Drives, ChangingToADirectoryChangesTheDrive) {
    EXPECT_EQ(_getdrive(), 3);
    ASSERT_EQ(CDisk::ChDir("d:\\logs\\"), 1);
    EXPECT_EQ(_getdrive(), 4);
    EXPECT_EQ(Dir(), "D:\\logs\\");
    EXPECT_EQ(fs::current_path(), card / "logs");
    ASSERT_EQ(CDisk::ChDir("D:\\"), 1);
    EXPECT_EQ(Dir(), "D:\\");
}

TEST_F(Drives, ADirectoryIsToldByTheDriveItWasReachedBy) {
    ASSERT_EQ(CDisk::ChDir(folder("card\\logs").c_str()), 1);
    EXPECT_EQ(Dir(), folder("card\\logs\\"));  // on C, though D holds it too
    ASSERT_EQ(CDisk::ChDir("D:\\logs"), 1);
    fs::current_path(card);  // the program's own doing
    EXPECT_EQ(Dir(), "D:\\");
    fs::current_path("/");  // no longer on D
    EXPECT_EQ(Dir(), "C:\\");
}

TEST_F(Drives, EachDriveKeepsItsDirectory) {
    ASSERT_EQ(CDisk::ChDir("D:\\logs"), 1);
    ASSERT_EQ(CDisk::ChDir("C:\\"), 1);
    std::ofstream(card / "logs" / "a.txt") << 1;
    EXPECT_EQ(CDisk::Access("d:a.txt", accessRead), 1);
    EXPECT_EQ(CDisk::Access("D:\\a.txt", accessRead), 0);
    ASSERT_EQ(_chdrive(4), 0);
    EXPECT_EQ(Dir(), "D:\\logs\\");
    EXPECT_EQ(CDisk::Access("D:a.txt", accessRead), 1);
    fs::current_path("/");
    fs::remove_all(card / "logs");  // a directory that went away is left for the root
    ASSERT_EQ(_chdrive(4), 0);
    EXPECT_EQ(Dir(), "D:\\");
}

TEST_F(Drives, ADriveThatIsNotThereHoldsNothing) {
    for (const char* name : {"E:\\", "E:", "Q:\\", "Q:new"}) {
        EXPECT_EQ(CDisk::Access(name, accessExist), 0) << name;
        EXPECT_FALSE(CreateDirectoryA(name, nullptr)) << name;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND}) << name;
    }
    EXPECT_EQ(CDisk::FreeSpace('E'), -1);
    EXPECT_NE(CDisk::FreeSpace('D'), -1);
    EXPECT_EQ(_chdrive(5), -1);
    EXPECT_EQ(_chdrive(0), -1);
    EXPECT_EQ(_chdrive(27), -1);
}
