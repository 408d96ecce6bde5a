// What becomes of a file that is replaced when writing fails or is cut short, when several write it at once, and where nothing
// can stand beside it. The limit on the size of files plays the full disk and, with its signal left alone, whoever kills the
// program in the middle of a write.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

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

    // How a process ends that writes 100,000 bytes where 5,000 may be written.
    int WriteTooMuch(void (*onLimit)(int)) const {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit = {5000, 5000};
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGXFSZ, onLimit);
            _exit(static_cast<int>(Store(Target(), std::string(100000, 'x'))));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }
    const fs::path& m_folder = Folder();
};

// Other threads start programs: for a moment their child has every open file too.
TEST_F(WholeFile, NoChildKeepsTheLocksOfClosedFiles) {
    const auto lock = [&](DWORD flags, HANDLE& file) {
        file = CreateFileA(Target().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        OVERLAPPED place = {};
        return LockFileEx(file, flags, 0, 1, 0, &place) != 0;
    };
    constexpr DWORD kShared = LOCKFILE_FAIL_IMMEDIATELY, kExclusive = LOCKFILE_FAIL_IMMEDIATELY | LOCKFILE_EXCLUSIVE_LOCK;
    for (const DWORD first : {kShared, kExclusive}) {
        HANDLE held, other, again;
        ASSERT_TRUE(lock(first, held));
        EXPECT_EQ(lock(kShared, other), first == kShared);
        CloseHandle(other);
        EXPECT_FALSE(lock(kExclusive, other));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_LOCK_VIOLATION});
        CloseHandle(other);
        const pid_t child = fork();
        if (child == 0) {
            pause();
            _exit(0);
        }
        CloseHandle(held);
        EXPECT_TRUE(lock(kExclusive, again));
        CloseHandle(again);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

TEST_F(WholeFile, FullDiskLeavesThePreviousFileAlone) {
    const int status = WriteTooMuch(SIG_IGN);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(ERROR_DISK_FULL));
    EXPECT_EQ(BytesOf(Target()), "previous");
    EXPECT_EQ(Count(), 1u);
}

TEST_F(WholeFile, KillLeavesThePreviousFileAlone) {
    const int status = WriteTooMuch(SIG_DFL);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    EXPECT_EQ(BytesOf(Target()), "previous");
    EXPECT_EQ(Store(Target(), "next"), DWORD{ERROR_SUCCESS}) << "the file left over is in nobody's way";
    EXPECT_EQ(BytesOf(Target()), "next");
    EXPECT_EQ(Count(), 1u) << "and gone";
}

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

// Two programs store one file again and again, a third is killed now and then: it is always one of them, whole, and nothing else
// is left. $ORVIK_STORES says how often (500).
TEST_F(WholeFile, OfSeveralWritersTheLastOneWins) {
    const char* const setting = std::getenv("ORVIK_STORES");
    const int stores = setting != nullptr ? std::atoi(setting) : 500;
    fs::remove(Target());
    std::vector<pid_t> writers;
    for (const char letter : {'a', 'b'}) {
        const pid_t child = fork();
        if (child == 0) {
            for (int i = 0; i < stores; ++i)
                if (Store(Target(), std::string(static_cast<size_t>(1000 + i % 7 * 3000), letter)) != ERROR_SUCCESS) _exit(1);
            _exit(0);
        }
        writers.push_back(child);
    }
    std::mt19937 random(1);
    size_t looks = 0, running = writers.size();
    bool ended = true;
    while (running > 0) {
        if (++looks % 50 == 0) {
            const pid_t child = fork();
            if (child == 0) {
                for (;;) Store(Target(), std::string(50'000, 'c'));
            }
            usleep(static_cast<useconds_t>(random() % 3000));
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
        const std::string found = BytesOf(Target());
        if (!found.empty()) {  // there is none before the first store
            ASSERT_EQ(found.find_first_not_of(found[0]), std::string::npos);
            ASSERT_TRUE(found.size() == 50'000 || found.size() % 1000 == 0);
        }
        for (pid_t& writer : writers) {
            int status = 0;
            if (writer == 0 || waitpid(writer, &status, WNOHANG) != writer) continue;
            ended = ended && WIFEXITED(status) && WEXITSTATUS(status) == 0;
            writer = 0;
            --running;
        }
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(Store(Target(), "last"), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(Count(), 1u);
}
}  // namespace
