#include "platform/port_holder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/serial/port_names_internal.h"

namespace fs = std::filesystem;

namespace {
// Whether any descriptor of the process leads to the device. A process that ends meanwhile, or that is not ours to look at, has
// none.
bool HoldsDevice(const fs::path& process, const fs::path& device) {
    std::error_code error;
    for (fs::directory_iterator at(process / "fd", error), end; !error && at != end; at.increment(error)) {
        std::error_code gone;
        if (fs::read_symlink(at->path(), gone) == device) return true;
    }
    return false;
}
}  // namespace

BOOL OrvikPortHolder(LPCSTR port, LPSTR out, DWORD size) {
    std::error_code error;
    const fs::path device = fs::canonical(orvik::detail::DeviceOfPort(port), error);
    if (error) return FALSE;
    std::string holders;
    for (fs::directory_iterator at("/proc", error), end; !error && at != end; at.increment(error)) {
        const std::string number = at->path().filename();
        if (number.find_first_not_of("0123456789") != std::string::npos || !HoldsDevice(at->path(), device)) continue;
        std::string name;
        std::ifstream comm(at->path() / "comm");
        std::getline(comm, name);
        holders += (holders.empty() ? "" : ", ") + orvik::detail::HousePath(name) + " (" + number + ")";
    }
    if (holders.empty() || out == nullptr || holders.size() >= size) return FALSE;
    holders.copy(out, holders.size());
    out[holders.size()] = 0;
    return TRUE;
}
