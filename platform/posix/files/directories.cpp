#include "platform/posix/files/directories.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

#include "platform/posix/files/files.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

std::mutex g_lock;                      // held over changes of the working directory made here
char g_chosen = 0;                      // the drive last changed to, 0 at first
std::map<char, std::string> g_folders;  // where each drive was left, in the system's names

char Upper(char letter) { return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter; }

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string DrivesDirectory() {
    if (std::string given = Environment("ORVIK_DRIVES_DIR"); !given.empty()) return given;
    if (const std::string config = Environment("XDG_CONFIG_HOME"); !config.empty()) return config + "/orvik/drives";
    return Environment("HOME") + "/.config/orvik/drives";
}

std::string WorkingDirectory() {
    char folder[PATH_MAX];
    return getcwd(folder, sizeof folder) == nullptr ? std::string() : folder;
}

bool IsFolder(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool LiesUnder(const std::string& folder, const std::string& root) {
    if (root.empty() || folder.compare(0, root.size(), root) != 0) return false;
    return root == "/" || folder.size() == root.size() || folder[root.size()] == '/';
}

// The drive that a working directory is told by; C: holds everything.
char DriveOf(const std::string& folder) {
    if (g_chosen != 0 && LiesUnder(folder, DriveRoot(g_chosen))) return g_chosen;
    char best = 'C';
    size_t length = 1;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const std::string root = DriveRoot(letter);
        if (root.size() <= length || !LiesUnder(folder, root)) continue;
        best = letter;
        length = root.size();
    }
    return best;
}

// Under the lock. Keeps where the drive that is left stood.
int GoTo(const std::string& path, char drive) {
    const std::string before = WorkingDirectory();
    const char left = DriveOf(before);
    if (chdir(path.c_str()) != 0) return -1;
    if (!before.empty()) g_folders[left] = before;
    if (drive != 0) g_chosen = drive;
    return 0;
}

// Under the lock. The folder that a name without a root counts from on that drive.
std::string FolderOn(char drive) {
    const std::string root = DriveRoot(drive);
    if (root.empty()) return {};
    const std::string now = WorkingDirectory();
    if (!now.empty() && DriveOf(now) == drive) return now;
    const auto left = g_folders.find(drive);
    return left != g_folders.end() && LiesUnder(left->second, root) && IsFolder(left->second) ? left->second : root;
}

}  // namespace

bool HasDrive(std::string_view name) {
    return name.size() >= 2 && name[1] == ':' && Upper(name[0]) >= 'A' && Upper(name[0]) <= 'Z';
}

std::string DriveRoot(char letter) {
    letter = Upper(letter);
    if (letter == 'C') return "/";
    if (letter < 'A' || letter > 'Z') return {};
    const std::string link = DrivesDirectory() + '/' + static_cast<char>(letter + 32) + ':';
    char* whole = realpath(link.c_str(), nullptr);
    if (whole == nullptr) return {};
    std::string root = whole;
    std::free(whole);
    return IsFolder(root) ? root : std::string();
}

std::string DrivePath(std::string_view name) {
    const char letter = Upper(name[0]);
    std::string_view rest = name.substr(2);
    std::string folder;
    if (!rest.empty() && rest[0] == '/') {
        folder = DriveRoot(letter);
        rest.remove_prefix(1);
    } else {
        const std::lock_guard lock(g_lock);
        folder = FolderOn(letter);
    }
    if (folder.empty()) folder = kNowhere;
    if (rest.empty()) return folder;
    if (folder.back() != '/') folder += '/';
    return folder.append(rest);
}

}  // namespace orvik::detail

using namespace orvik::detail;

int _access(const char* path, int mode) {
    if (path == nullptr || (mode & ~6) != 0) {
        errno = EINVAL;
        return -1;
    }
    const std::string name = SystemPath(path);
    if (access(name.c_str(), ((mode & 2) != 0 ? W_OK : 0) | ((mode & 4) != 0 ? R_OK : 0)) != 0) return -1;
    const DWORD attributes = mode & 2 ? GetFileAttributesA(path) : 0;
    if ((attributes & FILE_ATTRIBUTE_READONLY) == 0 || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return 0;
    errno = EACCES;
    return -1;
}

char* _getcwd(char* buffer, int maxlen) {
    if (buffer == nullptr || maxlen <= 0) {
        errno = EINVAL;
        return nullptr;
    }
    std::string folder = WorkingDirectory();
    if (folder.empty()) return nullptr;
    const std::lock_guard lock(g_lock);
    const char drive = DriveOf(folder);
    const std::string root = DriveRoot(drive);
    std::string told{drive, ':'};
    told += root == "/" ? folder : folder.substr(root.size());
    if (told.size() == 2) told += '/';
    std::replace(told.begin(), told.end(), '/', '\\');
    told = HousePath(told);
    if (told.size() >= static_cast<size_t>(maxlen)) {
        errno = ERANGE;
        return nullptr;
    }
    return std::strcpy(buffer, told.c_str());
}

int _chdir(const char* path) {
    if (path == nullptr || *path == 0) {
        errno = path == nullptr ? EINVAL : ENOENT;
        return -1;
    }
    const std::string name = SystemPath(path);
    const std::lock_guard lock(g_lock);
    return GoTo(name, HasDrive(path) ? Upper(path[0]) : 0);
}

int _getdrive() {
    const std::lock_guard lock(g_lock);
    return DriveOf(WorkingDirectory()) - 'A' + 1;
}

int _chdrive(int drive) {
    const std::lock_guard lock(g_lock);
    const char letter = static_cast<char>(drive >= 1 && drive <= 26 ? 'A' + drive - 1 : 0);
    const std::string folder = letter != 0 ? FolderOn(letter) : std::string();
    if (folder.empty()) {
        errno = EACCES;
        return -1;
    }
    return GoTo(folder, letter);
}
