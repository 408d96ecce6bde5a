#include "platform/posix/modules.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/errors.h"
#include "platform/posix/text.h"

using namespace orvik::detail;

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
