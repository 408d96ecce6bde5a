#include "platform/posix/resources/modules.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors_internal.h"

using namespace orvik::detail;

namespace {
// Whether every segment that the loader will map lies inside the file. The loader itself does not look: the pages of a file that
// was cut short end the process when they are touched. What is wrong otherwise, and any other kind of file, is left to it.
bool IsWhole(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return true;
    struct stat info = {};
    ElfW(Ehdr) head = {};
    bool whole = true;
    if (fstat(file, &info) == 0 && S_ISREG(info.st_mode) && pread(file, &head, sizeof head, 0) == sizeof head &&
        std::memcmp(head.e_ident, ELFMAG, SELFMAG) == 0 && head.e_phentsize == sizeof(ElfW(Phdr))) {
        const auto size = static_cast<uint64_t>(info.st_size);
        std::vector<ElfW(Phdr)> segments(head.e_phnum);
        const size_t bytes = segments.size() * sizeof(ElfW(Phdr));
        whole = head.e_phoff <= size &&
                pread(file, segments.data(), bytes, static_cast<off_t>(head.e_phoff)) == static_cast<ssize_t>(bytes);
        for (const ElfW(Phdr) & segment : segments) {
            if (segment.p_type != PT_LOAD) continue;
            whole = whole && segment.p_offset <= size && segment.p_filesz <= size - segment.p_offset;
        }
    }
    close(file);
    return whole;
}
}  // namespace

HMODULE LoadLibraryA(LPCSTR path) {
    if (path == nullptr || *path == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::string name = SystemPath(path);
    // A path is looked at first, since dlopen tells its failures apart in words only.
    if (name.find('/') != std::string::npos && access(name.c_str(), R_OK) != 0) {
        SetLastError(ErrorFromErrno(errno));
        return nullptr;
    }
    if (!IsWhole(name)) {
        SetLastError(ERROR_BAD_FORMAT);
        return nullptr;
    }
    void* library = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        const bool format =
            reason != nullptr && (std::strstr(reason, "invalid ELF header") || std::strstr(reason, "file too short") ||
                                  std::strstr(reason, "wrong ELF class") || std::strstr(reason, "cannot read file data"));
        SetLastError(format ? ERROR_BAD_FORMAT : ERROR_MOD_NOT_FOUND);
    }
    return static_cast<HMODULE>(library);
}

BOOL FreeLibrary(HMODULE module) {
    if (module == nullptr || dlclose(module) != 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    void* address = module == nullptr || name == nullptr ? nullptr : dlsym(module, name);
    if (address == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR out, DWORD size) {
    std::string path;
    link_map* map = nullptr;
    if (module == nullptr) {
        char buffer[PATH_MAX];
        const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
        if (length > 0) path.assign(buffer, static_cast<size_t>(length));
    } else if (dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 && map != nullptr) {
        path = map->l_name;
        if (char* whole = realpath(path.c_str(), nullptr)) {
            path = whole;
            std::free(whole);
        }
    }
    path = HousePath(path);
    if (path.empty() || out == nullptr || size == 0) {
        SetLastError(path.empty() ? ERROR_MOD_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const size_t kept = std::min<size_t>(path.size(), size - 1);
    std::memcpy(out, path.data(), kept);
    out[kept] = 0;
    if (kept == path.size()) return static_cast<DWORD>(kept);
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}
