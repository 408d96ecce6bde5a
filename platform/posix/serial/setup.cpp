// Device lists of present serial ports, from the system's device tree and the ports directory.
#include "platform/posix/serial/setup.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/serial/port_names_internal.h"

namespace orvik::detail {
namespace {
// The setup class of serial and parallel ports: {4D36E978-E325-11CE-BFC1-08002BE10318}.
constexpr GUID kPortsClass = {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

struct Device {
    std::string portName, description;  // as the house writes text
};

class DeviceList final : public KernelObject {
public:
    static constexpr Kind kKind = kDeviceList;
    explicit DeviceList(std::vector<Device> devices) : KernelObject(kDeviceList), m_devices(std::move(devices)) {}
    const std::vector<Device> m_devices;
};

class RegistryKey final : public KernelObject {
public:
    static constexpr Kind kKind = kRegistryKey;
    explicit RegistryKey(std::string portName) : KernelObject(kRegistryKey), m_portName(std::move(portName)) {}
    const std::string m_portName;
};

std::string RealPath(const std::string& path) {
    char* whole = realpath(path.c_str(), nullptr);
    if (whole == nullptr) return {};
    std::string result = whole;
    std::free(whole);
    return result;
}

// The first line of a device's attribute; empty if there is none. Attributes are small, so longer text is cut.
std::string Attribute(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
    return line.substr(0, 250);
}

std::vector<std::string> EntriesOf(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* opened = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(opened)) {
            if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
        }
        closedir(opened);
    }
    return names;
}

// What a user knows the device by: a USB adapter's product name, else the driver's kind of port; with the kernel's name, which
// tells two of one kind apart.
std::string Describe(const std::string& root, const std::string& name, const std::string& hardware) {
    std::string text;
    // The product name belongs to a device some levels above the port.
    for (std::string at = hardware; text.empty() && at.size() > root.size(); at.erase(at.find_last_of('/'))) {
        text = Attribute(at + "/product");
        if (at.find('/') == at.find_last_of('/')) break;
    }
    if (text.empty()) text = name.starts_with("ttyS") ? "Serial port" : "Serial device";
    return HousePath(text) + " (" + name + ")";
}

// Numbers of the ports directory's links: by the device they lead to now, empty for one that is away.
std::map<int, std::string> LinkedPorts() {
    std::map<int, std::string> linked;
    const std::string folder = PortsDirectory();
    for (const std::string& name : EntriesOf(folder)) {
        const int number = name.starts_with("com") ? PortNumber(name) : 0;
        if (number != 0) linked[number] = RealPath(folder + '/' + name);
    }
    return linked;
}

std::vector<Device> PresentPorts() {
    const char* given = std::getenv("ORVIK_SYSFS");
    const std::string root = RealPath(given != nullptr && *given != 0 ? given : "/sys");
    std::map<int, std::string> linked = LinkedPorts();
    std::map<int, std::string> found;  // the description by number
    std::map<std::string, std::string> described;

    const std::string tty = root + "/class/tty/";
    for (const std::string& name : EntriesOf(tty)) {
        const std::string hardware = RealPath(tty + name + "/device");
        if (hardware.empty()) continue;  // consoles and pseudo-terminals
        // The driver of old ports makes a fixed number of them; those without a chip have the type 0.
        if (Attribute(tty + name + "/type") == "0") continue;
        described["/dev/" + name] = Describe(root, name, hardware);
    }
    // A link's name comes first, and then the device is not listed under its fixed number as well.
    for (const auto& [number, device] : linked) {
        if (device.empty()) continue;
        struct stat info;
        const auto known = described.find(device);
        if (known != described.end()) {
            found[number] = known->second;
        } else if (stat(device.c_str(), &info) == 0 && S_ISCHR(info.st_mode)) {
            found[number] = "Serial device (" + HousePath(device) + ")";
        }
    }
    for (const auto& entry : described) {
        const std::string& device = entry.first;
        const int number = FixedPortNumber(device.substr(5));
        const bool isLinked = std::any_of(linked.begin(), linked.end(), [&](const auto& link) { return link.second == device; });
        // A number that a link has taken means the link's device.
        if (number != 0 && !isLinked && linked.find(number) == linked.end()) found[number] = entry.second;
    }
    std::vector<Device> devices;
    for (const auto& [number, description] : found) devices.push_back({"COM" + std::to_string(number), description});
    return devices;
}

// The device's entry in the list; null for a foreign one.
const Device* DeviceOf(const Pinned<DeviceList>& list, const SP_DEVINFO_DATA* data) {
    if (!list || data == nullptr || data->cbSize != sizeof(SP_DEVINFO_DATA)) return nullptr;
    const size_t index = data->DevInst;
    return index >= 1 && index <= list->m_devices.size() ? &list->m_devices[index - 1] : nullptr;
}

// Copies the text with its end as far as the caller has room: 0, or the code for too little.
DWORD Deliver(const std::string& text, void* out, DWORD room, DWORD& needed, DWORD tooSmall) {
    needed = static_cast<DWORD>(text.size() + 1);
    if (out == nullptr || room < needed) return tooSmall;
    std::memcpy(out, text.c_str(), needed);
    return ERROR_SUCCESS;
}

bool IsSameName(LPCSTR a, LPCSTR b) { return strcasecmp(a, b) == 0; }
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

BOOL SetupDiClassGuidsFromNameA(LPCSTR className, GUID* list, DWORD size, LPDWORD required) {
    if (className == nullptr || required == nullptr || (list == nullptr && size != 0)) return Finish(ERROR_INVALID_PARAMETER);
    *required = IsSameName(className, "Ports") ? 1 : 0;
    if (size < *required) return Finish(ERROR_INSUFFICIENT_BUFFER);
    if (*required != 0) list[0] = kPortsClass;
    return TRUE;
}

HDEVINFO SetupDiGetClassDevsA(const GUID* classGuid, LPCSTR, HWND, DWORD flags) {
    const bool all = (flags & DIGCF_ALLCLASSES) != 0;
    if (classGuid == nullptr && !all) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    std::vector<Device> devices;
    if (all || std::memcmp(classGuid, &kPortsClass, sizeof kPortsClass) == 0) devices = PresentPorts();
    const HANDLE handle = NewHandle(std::make_shared<DeviceList>(std::move(devices)));
    return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
}

BOOL SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, PSP_DEVINFO_DATA device) {
    const Pinned<DeviceList> list(set);
    if (!list) return Finish(ERROR_INVALID_HANDLE);
    if (device == nullptr || device->cbSize != sizeof *device) return Finish(ERROR_INVALID_PARAMETER);
    if (index >= list->m_devices.size()) return Finish(ERROR_NO_MORE_ITEMS);
    device->ClassGuid = kPortsClass;
    device->DevInst = index + 1;
    device->Reserved = 0;
    return TRUE;
}

HKEY SetupDiOpenDevRegKey(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD scope, DWORD profile, DWORD keyType, REGSAM access) {
    const auto refused = [](DWORD error) {
        SetLastError(error);
        return static_cast<HKEY>(INVALID_HANDLE_VALUE);
    };
    const Pinned<DeviceList> list(set);
    if (!list) return refused(ERROR_INVALID_HANDLE);
    const Device* found = DeviceOf(list, device);
    if (found == nullptr || scope != DICS_FLAG_GLOBAL || profile != 0 || keyType != DIREG_DEV)
        return refused(ERROR_INVALID_PARAMETER);
    if ((access & ~KEY_QUERY_VALUE) != 0) return refused(ERROR_ACCESS_DENIED);  // nothing here can be written
    const HANDLE key = NewHandle(std::make_shared<RegistryKey>(found->portName));
    return static_cast<HKEY>(key == nullptr ? INVALID_HANDLE_VALUE : key);
}

BOOL SetupDiGetDeviceRegistryPropertyA(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD property, LPDWORD type, BYTE* buffer,
                                       DWORD size, LPDWORD required) {
    const Pinned<DeviceList> list(set);
    if (!list) return Finish(ERROR_INVALID_HANDLE);
    const Device* found = DeviceOf(list, device);
    if (found == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (property != SPDRP_DEVICEDESC && property != SPDRP_FRIENDLYNAME)
        return Finish(ERROR_INVALID_DATA);  // as for a property not set
    if (type != nullptr) *type = REG_SZ;
    DWORD needed = 0;
    const DWORD error = Deliver(found->description, buffer, size, needed, ERROR_INSUFFICIENT_BUFFER);
    if (required != nullptr) *required = needed;
    return Finish(error);
}

BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) {
    const Pinned<DeviceList> list(set);
    return Finish(list ? RemoveHandle(set) : ERROR_INVALID_HANDLE);
}

LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size) {
    const Pinned<RegistryKey> pinned(key);
    if (!pinned) return ERROR_INVALID_HANDLE;
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    if (name == nullptr || !IsSameName(name, "PortName")) return ERROR_FILE_NOT_FOUND;
    if (type != nullptr) *type = REG_SZ;
    if (size == nullptr) return ERROR_SUCCESS;
    DWORD needed = 0;
    const DWORD error = Deliver(pinned->m_portName, data, *size, needed, ERROR_MORE_DATA);
    *size = needed;
    return static_cast<LSTATUS>(data == nullptr ? ERROR_SUCCESS : error);  // asking for the size is no failure
}

LSTATUS RegCloseKey(HKEY key) {
    const Pinned<RegistryKey> pinned(key);
    return static_cast<LSTATUS>(pinned ? RemoveHandle(key) : ERROR_INVALID_HANDLE);
}
