#include "record/recording_file.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "platform/same_file_internal.h"

namespace {
OVERLAPPED PlaceOf(unsigned __int64 at) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    return place;
}

// Far behind what any file holds: on Windows a lock keeps others from the bytes it covers, and readers must have them all.
constexpr unsigned __int64 kLockPlace = 1ull << 62;

// A check whether a file is free has its lock for a moment; who opens it to write waits for that.
constexpr int kLockTries = 50;
constexpr auto kLockPause = std::chrono::milliseconds(20);

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

DWORD Lock(HANDLE file, DWORD flags) {
    OVERLAPPED place = PlaceOf(kLockPlace);
    if (LockFileEx(file, flags, 0, 1, 0, &place)) return ERROR_SUCCESS;
    return GetLastError() == ERROR_LOCK_VIOLATION ? DWORD{ERROR_SHARING_VIOLATION} : GetLastError();
}
}  // namespace

// Forces a file to the disk some time after it was written, through a handle of its own: on the writer's, a write would wait for
// the disk.
class CRecordingFile::Forcing {
public:
    Forcing(HANDLE file, DWORD every) : m_file(file), m_every(every), m_thread([this] { Run(); }) {}
    ~Forcing() {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_wake.notify_one();
        m_thread.join();
        CloseHandle(m_file);
    }

    void Written() {
        bool first;
        {
            const std::lock_guard lock(m_mutex);
            first = !m_dirty;
            m_dirty = true;
        }
        if (first) m_wake.notify_one();
    }
    DWORD Now() {
        {
            const std::lock_guard lock(m_mutex);
            m_dirty = false;
        }
        return Flush();
    }
    DWORD Result() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_error, DWORD{ERROR_SUCCESS});
    }

private:
    DWORD Flush() { return FlushFileBuffers(m_file) ? DWORD{ERROR_SUCCESS} : GetLastError(); }
    void Run() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return m_dirty || m_ending; });
            if (!m_dirty) return;
            m_wake.wait_for(lock, std::chrono::milliseconds(m_every), [this] { return m_ending; });
            if (!m_dirty) continue;  // forced meanwhile
            m_dirty = false;
            lock.unlock();
            const DWORD error = Flush();
            lock.lock();
            if (error != ERROR_SUCCESS) m_error = error;
        }
    }

    const HANDLE m_file;
    const DWORD m_every;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_dirty = false, m_ending = false;
    DWORD m_error = ERROR_SUCCESS;
    std::thread m_thread;
};

// The name under which it was opened, and the file that it led to.
struct CRecordingFile::Place {
    std::string path;
    std::optional<orvik::detail::FileIdentity> identity;
};

CRecordingFile::CRecordingFile(HANDLE file, const std::string& path)
    : m_file(file), m_place(std::make_unique<Place>(Place{path, orvik::detail::IdentityOf(path)})) {}

CRecordingFile::~CRecordingFile() {
    m_forcing.reset();
    CloseHandle(m_file);
}

DWORD CRecordingFile::OpenToRead(const std::string& path, std::unique_ptr<IRecordingFile>& file) {
    const HANDLE handle =
        CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return GetLastError();
    file.reset(new CRecordingFile(handle, path));
    return ERROR_SUCCESS;
}

DWORD CRecordingFile::CheckFree(const std::string& path) {
    const HANDLE handle = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return GetLastError();
    // Shared, so that checks do not meet each other.
    const DWORD error = Lock(handle, LOCKFILE_FAIL_IMMEDIATELY);
    CloseHandle(handle);
    return error;
}

DWORD CRecordingFile::OpenToWrite(const std::string& path, DWORD forceEvery, std::unique_ptr<IRecordingFile>& file) {
    const auto open = [&](DWORD access) {
        return CreateFileA(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    const HANDLE handle = open(GENERIC_READ | GENERIC_WRITE);
    if (handle == INVALID_HANDLE_VALUE) return GetLastError();
    std::unique_ptr<CRecordingFile> opened(new CRecordingFile(handle, path));
    DWORD error = Lock(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY);
    for (int tries = 1; error == ERROR_SHARING_VIOLATION && tries < kLockTries; ++tries) {
        std::this_thread::sleep_for(kLockPause);
        error = Lock(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY);
    }
    if (error != ERROR_SUCCESS) return error;
    const HANDLE second = open(GENERIC_WRITE);
    if (second == INVALID_HANDLE_VALUE) return GetLastError();
    opened->m_forcing = std::make_unique<Forcing>(second, forceEvery);
    file = std::move(opened);
    return ERROR_SUCCESS;
}

DWORD CRecordingFile::Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) {
    OVERLAPPED place = PlaceOf(at);
    got = 0;
    if (ReadFile(m_file, bytes, size, &got, &place)) return ERROR_SUCCESS;
    return GetLastError() == ERROR_HANDLE_EOF ? DWORD{ERROR_SUCCESS} : GetLastError();
}

DWORD CRecordingFile::Write(unsigned __int64 at, const void* bytes, DWORD size) {
    OVERLAPPED place = PlaceOf(at);
    DWORD written = 0;
    if (!WriteFile(m_file, bytes, size, &written, &place)) return GetLastError();
    if (written != size) return ERROR_DISK_FULL;
    m_forcing->Written();
    return ERROR_SUCCESS;
}

DWORD CRecordingFile::Cut(unsigned __int64 size) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(size);
    if (!SetFilePointerEx(m_file, place, nullptr, FILE_BEGIN) || !SetEndOfFile(m_file)) return GetLastError();
    m_forcing->Written();
    return ERROR_SUCCESS;
}

bool CRecordingFile::IsInPlace() { return orvik::detail::IdentityOf(m_place->path) == m_place->identity; }

DWORD CRecordingFile::Force() { return m_forcing->Now(); }

DWORD CRecordingFile::Forced() { return m_forcing != nullptr ? m_forcing->Result() : DWORD{ERROR_SUCCESS}; }

DWORD CRecordingFile::Size(unsigned __int64& size) {
    LARGE_INTEGER found;
    if (!GetFileSizeEx(m_file, &found)) return GetLastError();
    size = static_cast<unsigned __int64>(found.QuadPart);
    return ERROR_SUCCESS;
}
