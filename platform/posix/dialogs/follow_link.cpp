#include <unistd.h>
#include <climits>

#include <string>

#include "platform/new_file_internal.h"
#include "platform/posix/files/path_internal.h"

namespace orvik::detail {
// Not by /proc, which names a file that is replaced meanwhile "(deleted)"; and folders are left to the system, whose names may be
// such as this house cannot say.
bool FollowLink(std::string& path) {
    constexpr int kMost = 40;  // as the system does
    std::string name = SystemPath(path);
    bool any = false;
    for (int i = 0; i < kMost; ++i) {
        char target[PATH_MAX];
        const ssize_t length = readlink(name.c_str(), target, sizeof target);
        if (length < 0) {
            if (!any) return true;
            const std::string said = HousePath(name);
            if (SystemPath(said) != name) return false;
            path = said;
            return true;
        }
        any = true;
        const std::string led(target, static_cast<size_t>(length));
        name = !led.empty() && led[0] == '/' ? led : name.substr(0, name.find_last_of('/') + 1) + led;
    }
    return false;
}
}  // namespace orvik::detail
