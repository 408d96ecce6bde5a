// Storing over an existing file: every way in which the system can fail on the way.
#include "platform/win32.h"
#include "tests/propdb/property_db_fixture.h"
#include "tests/support/test_folder.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {
// What the next system calls are to do; put in the place of the real ones when the program is linked.
enum class Fault { None, Fail, Short, Die };
struct Calls {
    int count = 0;     // calls of any of the three so far
    int faultAt = -1;  // the call that the fault strikes
    Fault fault = Fault::None;
} g_calls;

bool Struck() {
    const bool now = g_calls.count++ == g_calls.faultAt;
    if (now && g_calls.fault == Fault::Die) _exit(9);
    return now;
}
}  // namespace

BOOL RealWriteFile(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) asm("__real__Z9WriteFilePvPKvjPjP10OVERLAPPED");
BOOL WrapWriteFile(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) asm("__wrap__Z9WriteFilePvPKvjPjP10OVERLAPPED");
BOOL RealFlushFileBuffers(HANDLE) asm("__real__Z16FlushFileBuffersPv");
BOOL WrapFlushFileBuffers(HANDLE) asm("__wrap__Z16FlushFileBuffersPv");
BOOL RealMoveFileExA(LPCSTR, LPCSTR, DWORD) asm("__real__Z11MoveFileExAPKcS0_j");
BOOL WrapMoveFileExA(LPCSTR, LPCSTR, DWORD) asm("__wrap__Z11MoveFileExAPKcS0_j");

BOOL WrapWriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    if (!Struck()) return RealWriteFile(file, data, size, written, overlapped);
    if (g_calls.fault == Fault::Short) return RealWriteFile(file, data, size / 2, written, overlapped);
    RealWriteFile(file, data, size / 2, written, overlapped);  // some of it gets out even so
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}
BOOL WrapFlushFileBuffers(HANDLE file) {
    if (!Struck()) return RealFlushFileBuffers(file);
    SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
}
BOOL WrapMoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    if (!Struck()) return RealMoveFileExA(from, to, flags);
    SetLastError(ERROR_DISK_FULL);  // where nothing may stand beside the file it would be written over
    return FALSE;
}

namespace {
class Replacement : public testing::Test, protected TestFolder {
protected:
    CPropertyDB db;

    void SetUp() override {
        g_calls = {};
        // More than one block in either form.
        for (int i = 0; i < 3000; ++i) db.SetValue(("node.value" + std::to_string(i)).c_str(), i * 1.5);
    }
    void TearDown() override { g_calls = {}; }
};
}  // namespace

TEST_F(Replacement, EveryFailingCallLeavesTheOldFileAndNothingElse) {
    for (const char* name : {"a.xml", "a.odb"}) {
        const std::string path = Path(name);
        CPropertyDB before;
        before.SetValue("old", 1);
        ASSERT_TRUE(before.StoreToFile(path.c_str(), 0));
        const std::string old = BytesOf(path);
        const size_t files = Count();
        for (const Fault fault : {Fault::Fail, Fault::Short}) {
            CPropertyDB changed(db);
            for (int at = 0;; ++at) {
                ASSERT_LT(at, 1000);
                changed.SetValue("changed", at);
                g_calls = {0, at, fault};
                const bool stored = changed.StoreToFile(path.c_str(), 0) != 0;
                const int calls = g_calls.count;
                g_calls = {};
                if (calls <= at) {  // the fault came too late: this was the whole
                    EXPECT_TRUE(stored);
                    EXPECT_GT(calls, 3);
                    break;
                }
                EXPECT_FALSE(stored) << at;
                EXPECT_TRUE(changed.IsModified());
                EXPECT_EQ(changed.GetLoadFilePath(), "");
                ASSERT_TRUE(BytesOf(path) == old) << at;
                ASSERT_EQ(Count(), files) << at;
            }
            CPropertyDB read;
            EXPECT_TRUE(read.LoadFromFile(path.c_str()));
            EXPECT_EQ(Contents(read), Contents(changed));
            ASSERT_TRUE(before.StoreToFile(path.c_str(), 0));
        }
    }
}

TEST_F(Replacement, DyingAtAnyCallLeavesTheOldFileOrTheNew) {
    for (const char* name : {"a.xml", "a.odb"}) {
        const std::string path = Path(name);
        CPropertyDB before;
        before.SetValue("old", 1);
        ASSERT_TRUE(before.StoreToFile(path.c_str(), 0));
        const std::string old = BytesOf(path);
        int at = 0;
        for (bool died = true; died; ++at) {
            ASSERT_LT(at, 1000);
            const pid_t child = fork();
            if (child == 0) {
                g_calls = {0, at, Fault::Die};
                db.StoreToFile(path.c_str(), 0);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            died = WIFEXITED(status) && WEXITSTATUS(status) == 9;
            CPropertyDB read;
            ASSERT_TRUE(read.LoadFromFile(path.c_str())) << at;
            ASSERT_EQ(Contents(read), Contents(died ? before : db)) << at;
        }
        EXPECT_GT(at, 4);
    }
}

TEST_F(Replacement, NamesOutsideAsciiAreFound) {
    const std::string path = Folder().string() + "/m\xE4tning.odb";  // Windows-1252, as all text here
    ASSERT_TRUE(db.StoreToFile(path.c_str(), 0));
    EXPECT_TRUE(fs::exists(Folder() / "m\xC3\xA4tning.odb"));
    CPropertyDB read;
    EXPECT_TRUE(read.LoadFromFile(path.c_str()));
    EXPECT_EQ(read.GetFileName(0), "m\xE4tning");
}
