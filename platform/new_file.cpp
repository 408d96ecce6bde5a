#include "platform/new_file_internal.h"

#include <cstdint>
#include <cstdio>

namespace orvik::detail {
namespace {
constexpr unsigned kMostWriters = 256;  // of one target at once
constexpr unsigned kLookedAt = 8;       // places in which remains are looked for

// Who holds this writes the file; it ends with the program.
bool Lock(HANDLE file) {
    constexpr DWORD kFar = 1u << 30;  // behind what is written: on Windows a lock keeps others from the bytes it covers
    OVERLAPPED place = {};
    place.OffsetHigh = kFar;
    if (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) return true;
    return GetLastError() != ERROR_LOCK_VIOLATION;  // a file system without locks: nobody can have it
}

HANDLE Open(const std::string& name, DWORD disposition) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // DELETE, so that it can be moved while it is open.
    return CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kShareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Whether the name still leads to the open file.
bool IsNamed(HANDLE file, const std::string& name) {
    const auto identity = [](HANDLE of, BY_HANDLE_FILE_INFORMATION& info) { return GetFileInformationByHandle(of, &info) != 0; };
    const HANDLE again = Open(name, OPEN_EXISTING);
    if (again == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION one = {}, other = {};
    const bool told = identity(file, one) && identity(again, other);
    CloseHandle(again);
    return told && one.dwVolumeSerialNumber == other.dwVolumeSerialNumber && one.nFileIndexHigh == other.nFileIndexHigh &&
           one.nFileIndexLow == other.nFileIndexLow;
}

// The same for every program that writes this target.
std::string Stem(const std::string& folder, const std::string& target) {
    uint32_t hash = 2166136261u;  // FNV-1a
    for (const char c : target) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    char text[16];
    std::snprintf(text, sizeof text, "~orv%08x", static_cast<unsigned>(hash));
    return folder + text;
}

std::string NameOf(const std::string& stem, unsigned number) { return stem + '-' + std::to_string(number) + ".tmp"; }
}  // namespace

// A new file under the name, locked; INVALID_HANDLE_VALUE with the error, 0 where another program was faster.
HANDLE NewFile::Claim(const std::string& name, DWORD& error) {
    const HANDLE file = Open(name, CREATE_NEW);
    error = file != INVALID_HANDLE_VALUE ? DWORD{ERROR_SUCCESS} : GetLastError();
    if (file == INVALID_HANDLE_VALUE) return file;
    // Somebody who took it for remains before it was locked has removed it, or does so now.
    if (Lock(file) && IsNamed(file, name)) return file;
    CloseHandle(file);
    return INVALID_HANDLE_VALUE;
}

// Removes what is under the name, if nobody writes it.
bool NewFile::IsLeftOver(const std::string& name) {
    const HANDLE file = Open(name, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE) return false;
    // Under the lock nobody gives the name to another file.
    const bool removed = Lock(file) && IsNamed(file, name) && DeleteFileA(name.c_str());
    CloseHandle(file);
    return removed;
}

std::unique_ptr<NewFile> NewFile::Make(const std::string& folder, const std::string& target, DWORD& error) {
    const std::string stem = Stem(folder, target);
    for (unsigned number = 0; number < kMostWriters; ++number) {
        const std::string name = NameOf(stem, number);
        for (int attempt = 0; attempt < 2; ++attempt) {
            const HANDLE file = Claim(name, error);
            if (file != INVALID_HANDLE_VALUE) {
                for (unsigned other = 0; other < kLookedAt; ++other) {
                    if (other != number) IsLeftOver(NameOf(stem, other));
                }
                return std::unique_ptr<NewFile>(new NewFile(file, name));
            }
            const bool taken = error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS;
            // On Windows a name that is being removed is refused so, too.
            const bool leaving = error == ERROR_ACCESS_DENIED && GetFileAttributesA(name.c_str()) == INVALID_FILE_ATTRIBUTES && number == 0;
            if (error != ERROR_SUCCESS && !taken && !leaving) return nullptr;
            if (!taken || !IsLeftOver(name)) break;
        }
    }
    if (error == ERROR_SUCCESS) error = ERROR_FILE_EXISTS;
    return nullptr;
}

NewFile::~NewFile() {
    if (!m_moved) DeleteFileA(m_name.c_str());
    CloseHandle(m_file);
}

// While it is open and locked: between closing and moving it would look like remains.
DWORD NewFile::MoveTo(const std::string& target, DWORD flags) {
    if (!MoveFileExA(m_name.c_str(), target.c_str(), flags)) return GetLastError();
    m_moved = true;
    return ERROR_SUCCESS;
}

}  // namespace orvik::detail
