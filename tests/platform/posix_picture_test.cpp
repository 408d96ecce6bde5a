// What becomes of a picture's file when writing it fails or is cut short: the limit on the size of files plays the full disk,
// and, with its signal left alone, whoever kills the program in the middle of a write.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>

#include "platform/file_replacement.h"
#include "tests/platform/png_reader.h"

namespace fs = std::filesystem;
using orvik::detail::ReplaceWholeFile;

namespace {
class WholeFile : public testing::Test {
protected:
    WholeFile() {
        fs::create_directories(m_folder);
        std::ofstream(Target()) << "previous";
    }
    ~WholeFile() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    fs::path Target() const { return m_folder / "a.png"; }
    size_t FileCount() const { return static_cast<size_t>(std::distance(fs::directory_iterator(m_folder), {})); }

    // How a process ends that writes 100,000 bytes where 5,000 may be written.
    int WriteTooMuch(void (*onLimit)(int)) const {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit = {5000, 5000};
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGXFSZ, onLimit);
            _exit(static_cast<int>(ReplaceWholeFile(Target().string(), std::string(100000, 'x'))));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }

    fs::path m_folder = fs::temp_directory_path() / ("orvik-whole-file-" + std::to_string(std::random_device()()));
};

TEST_F(WholeFile, FullDiskLeavesThePreviousFileAlone) {
    const int status = WriteTooMuch(SIG_IGN);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(ERROR_DISK_FULL));
    EXPECT_EQ(FileBytes(Target()), "previous");
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(WholeFile, KillLeavesThePreviousFileAlone) {
    const int status = WriteTooMuch(SIG_DFL);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    EXPECT_EQ(FileBytes(Target()), "previous");
    EXPECT_EQ(ReplaceWholeFile(Target().string(), "next"), static_cast<DWORD>(ERROR_SUCCESS))
        << "the file left over is in nobody's way";
    EXPECT_EQ(FileBytes(Target()), "next");
}

TEST_F(WholeFile, LinksAndPermissionsAreKept) {
    fs::permissions(Target(), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(Target(), m_folder / "link.png");
    EXPECT_EQ(ReplaceWholeFile((m_folder / "link.png").string(), "next"), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(fs::is_symlink(m_folder / "link.png"));
    EXPECT_EQ(FileBytes(Target()), "next");
    EXPECT_EQ(fs::status(Target()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(Target(), fs::perms::owner_read);
    EXPECT_EQ(ReplaceWholeFile(Target().string(), "never"), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    fs::create_symlink(m_folder / "nowhere", m_folder / "dangling.png");
    EXPECT_NE(ReplaceWholeFile((m_folder / "dangling.png").string(), "never"), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(fs::is_symlink(m_folder / "dangling.png"));
    EXPECT_EQ(FileBytes(Target()), "next");
}
}  // namespace
