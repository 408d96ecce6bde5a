// What becomes of a file that is replaced where nothing can stand beside it. The limit on the size of files plays the full disk.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/file_replacement.h"
#include "tests/support/test_folder.h"

namespace fs = std::filesystem;
using orvik::detail::ReplaceWholeFile;

namespace {
class WholeFile : public testing::Test, protected TestFolder {
protected:
    WholeFile() { Write("a.xml", "previous"); }
    fs::path Target() const { return m_folder / "a.xml"; }
    // Whether the file is stored, and if not, why.
    static DWORD Store(const fs::path& path, const std::string& content) { return ReplaceWholeFile(path.string(), content); }
    const fs::path& m_folder = Folder();
};

TEST_F(WholeFile, LinksAndPermissionsAreKept) {
    fs::permissions(Target(), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(Target(), m_folder / "link.xml");
    EXPECT_EQ(Store(m_folder / "link.xml", "next"), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(fs::is_symlink(m_folder / "link.xml"));
    EXPECT_EQ(BytesOf(Target()), "next");
    EXPECT_EQ(fs::status(Target()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(Target(), fs::perms::owner_read);
    EXPECT_EQ(Store(Target(), "never"), DWORD{ERROR_ACCESS_DENIED});
    fs::create_symlink(m_folder / "nowhere", m_folder / "dangling.xml");
    EXPECT_NE(Store(m_folder / "dangling.xml", "never"), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(fs::is_symlink(m_folder / "dangling.xml"));
    EXPECT_EQ(BytesOf(Target()), "next");
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    EXPECT_NE(Store(m_folder / "pipe", "never"), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(fs::is_fifo(m_folder / "pipe"));
}

// A folder that is not ours holds a file that is; the same for a file that is mounted alone, which rename refuses likewise.
TEST_F(WholeFile, WhereNothingCanStandBesideItTheFileIsWrittenOver) {
    if (geteuid() == 0) {  // whom no folder refuses: as somebody else, then
        ASSERT_EQ(chown(m_folder.c_str(), 65534, 65534), 0);
        ASSERT_EQ(chown(Target().c_str(), 65534, 65534), 0);
    }
    const auto write = [&](const std::string& content, rlim_t limit) {
        const pid_t child = fork();
        if (child == 0) {
            if (geteuid() == 0 && seteuid(65534) != 0) _exit(100);
            const rlimit size = {limit, limit};
            setrlimit(RLIMIT_FSIZE, &size);
            signal(SIGXFSZ, SIG_IGN);
            fs::permissions(m_folder, fs::perms::owner_read | fs::perms::owner_exec);
            const DWORD error = Store(Target(), content);
            fs::permissions(m_folder, fs::perms::owner_all);
            _exit(static_cast<int>(error));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WEXITSTATUS(status);
    };
    for (const size_t size : {3000, 20, 0, 4000}) {
        const std::string content(size, 'n');
        EXPECT_EQ(write(content, RLIM_INFINITY), static_cast<int>(ERROR_SUCCESS));
        EXPECT_EQ(BytesOf(Target()), content);
    }
    EXPECT_EQ(write(std::string(100'000, 'x'), 5000), static_cast<int>(ERROR_DISK_FULL));
    EXPECT_EQ(BytesOf(Target()), std::string(4000, 'n'));
    EXPECT_EQ(Count(), 1u);
}

// What only root can show: the file stays its owner's.
TEST_F(WholeFile, AnAdministratorLeavesTheFileItsOwners) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chown(Target().c_str(), 12345, 54321), 0);
    EXPECT_EQ(Store(Target(), "next"), DWORD{ERROR_SUCCESS});
    struct stat info;
    ASSERT_EQ(stat(Target().c_str(), &info), 0);
    EXPECT_TRUE(info.st_uid == 12345 && info.st_gid == 54321 && BytesOf(Target()) == "next");
}

// Names that this house cannot say, on the way to the file and in a link to it.
TEST_F(WholeFile, FoldersOfAnyNameAreReached) {
    const fs::path odd = m_folder / "back\\slash \xFF";
    fs::create_directory(odd);
    std::ofstream(odd / "f.xml") << "previous";
    fs::create_symlink(odd.filename(), m_folder / "way");
    fs::create_symlink(odd.filename() / "f.xml", m_folder / "link.xml");
    for (const char* name : {"way/f.xml", "link.xml"}) {
        for (const std::string content : {"one", "longer than before"}) {
            EXPECT_EQ(Store(m_folder / name, content), DWORD{ERROR_SUCCESS}) << name;
            EXPECT_EQ(BytesOf(odd / "f.xml"), content) << name;
        }
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(odd), {}), 1);
    EXPECT_EQ(Count(), 4u);
}

}  // namespace
