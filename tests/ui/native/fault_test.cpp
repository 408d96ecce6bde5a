// Disks that fail or are larger than the numbers that tell of them.
#include <cerrno>

#include "platform/win32.h"
#include "tests/support/dialog_fixture.h"
#include "tests/ui/scratch_folder.h"

namespace {
struct Space {
    BOOL result = TRUE;
    DWORD sectors = 0, bytes = 0, free = 0;
};
const Space* g_space = nullptr;  // what the disk says, if not the truth
std::string g_root;
long g_writes = -1;  // how many bytes still go to the disk, -1 for all
}  // namespace

extern "C" {
BOOL __real__Z17GetDiskFreeSpaceAPKcPjS1_S1_S1_(LPCSTR, LPDWORD, LPDWORD, LPDWORD, LPDWORD);
BOOL __wrap__Z17GetDiskFreeSpaceAPKcPjS1_S1_S1_(LPCSTR root, LPDWORD sectors, LPDWORD bytes, LPDWORD free, LPDWORD all) {
    g_root = root;
    if (g_space == nullptr) return __real__Z17GetDiskFreeSpaceAPKcPjS1_S1_S1_(root, sectors, bytes, free, all);
    *sectors = g_space->sectors, *bytes = g_space->bytes, *free = g_space->free, *all = 0xFFFFFFFF;
    SetLastError(ERROR_NOT_READY);
    return g_space->result;
}
ssize_t __real_write(int, const void*, size_t);
ssize_t __wrap_write(int fd, const void* bytes, size_t size) {
    if (g_writes < 0) return __real_write(fd, bytes, size);
    if (g_writes == 0) {
        errno = ENOSPC;
        return -1;
    }
    const size_t part = std::min(size, static_cast<size_t>(g_writes));
    g_writes -= static_cast<long>(part);
    return __real_write(fd, bytes, part);
}
}

namespace {
class DiskFaults : public testing::Test {
protected:
    ~DiskFaults() override {
        g_space = nullptr;
        g_writes = -1;
    }
    LONG Free(const Space& space) {
        g_space = &space;
        const LONG bytes = CDisk::FreeSpace('x');
        g_space = nullptr;
        return bytes;
    }
    TextLanguage english{LANG_ENGLISH};
    ScratchFolder folder;
};
}  // namespace

TEST_F(DiskFaults, FreeSpaceIsCountedIn32Bits) {
    EXPECT_EQ(Free({TRUE, 8, 512, 3}), 12288);
    EXPECT_EQ(g_root, "x:\\");
    EXPECT_EQ(Free({TRUE, 8, 512, 0x00100001}), 4096);             // 4 GiB and one cluster
    EXPECT_EQ(Free({TRUE, 8, 512, 0x00080000}), -0x7FFFFFFF - 1);  // 2 GiB
    EXPECT_EQ(Free({TRUE, 0x10000, 0x10000, 7}), 0);
    EXPECT_EQ(Free({FALSE, 8, 512, 3}), -1);
}

TEST_F(DiskFaults, AFullDiskIsToldAndLeavesNothing) {
    folder.Write("a.bin", std::string(400000, 'x'));
    TellingApp app;
    for (const long fits : {0L, 1L, 131072L, 399999L}) {
        g_writes = fits;
        EXPECT_EQ(CDisk::CopyFileA("a.bin", "b.bin"), 0) << fits;
        g_writes = -1;
        EXPECT_EQ(folder.Count(), 1u) << fits;
        EXPECT_EQ(app.Told(), "Could not copy file.\n\nThe disk is full.");
    }
}

TEST_F(DiskFaults, APathBeyondTheBufferIsNotTold) {
    const std::string name(50, 'd');
    for (int i = 0; i < 6; ++i) {
        std::filesystem::create_directory(name);
        std::filesystem::current_path(name);
    }
    CString dir("as before");
    EXPECT_EQ(CDisk::GetDir(dir), 0);
    EXPECT_STREQ(dir, "as before");
}
