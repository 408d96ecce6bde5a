#include <sys/stat.h>

#include <charconv>
#include <cstdlib>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/serial/port_names_internal.h"

namespace orvik::detail {
namespace {
struct Family {
    std::string_view device;
    int first;  // the number of the family's device 0
};
constexpr Family kFamilies[] = {{"ttyS", 1}, {"ttyUSB", 33}, {"ttyACM", 65}};
constexpr int kFamilySize = 32;

// A number without sign or leading zeros, all of the text; -1 if it is none.
int PlainNumber(std::string_view text) {
    int value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0) return -1;
    return text.size() > 1 && text[0] == '0' ? -1 : value;
}

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}
}  // namespace

std::string PortsDirectory() {
    if (const std::string given = Environment("ORVIK_PORTS_DIR"); !given.empty()) return given;
    if (const std::string config = Environment("XDG_CONFIG_HOME"); !config.empty()) return config + "/orvik/ports";
    return Environment("HOME") + "/.config/orvik/ports";
}

int PortNumber(std::string_view name) {
    if (name.size() < 4 || name.size() > 6) return 0;
    constexpr std::string_view kWord = "com";
    for (size_t i = 0; i < kWord.size(); ++i) {
        if ((name[i] | 0x20) != kWord[i]) return 0;
    }
    const int number = PlainNumber(name.substr(kWord.size()));
    return number < 0 ? 0 : number;
}

std::string DeviceOfPort(std::string_view name) {
    if (!name.empty() && name[0] == '/') return SystemPath(name);
    const int number = PortNumber(name);
    if (number == 0) return {};
    // A link counts even when what it points to is away: its name is taken, and must not mean another device meanwhile.
    std::string link = PortsDirectory() + "/com" + std::to_string(number);
    struct stat info;
    if (lstat(link.c_str(), &info) == 0) return link;
    for (const Family& family : kFamilies) {
        const int index = number - family.first;
        if (index >= 0 && index < kFamilySize) return "/dev/" + std::string(family.device) + std::to_string(index);
    }
    return {};
}

int FixedPortNumber(std::string_view deviceName) {
    for (const Family& family : kFamilies) {
        if (deviceName.substr(0, family.device.size()) != family.device) continue;
        const int index = PlainNumber(deviceName.substr(family.device.size()));
        if (index >= 0 && index < kFamilySize) return family.first + index;
    }
    return 0;
}

}  // namespace orvik::detail
