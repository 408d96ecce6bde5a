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
