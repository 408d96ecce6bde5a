#include "comm/serial_device.h"

#include <cstring>
#include <mutex>

CMap<CString, LPCSTR, COrvikConnection*, COrvikConnection*> CSerialDevice::mapConnections;

CSerialDevice::CSerialDevice() = default;
CSerialDevice::CSerialDevice(const CString& strPortName, const CString& strDescription)
    : m_strPortName(strPortName), m_strDescription(strDescription) {}

CString CSerialDevice::GetPortName() { return m_strPortName; }
CString CSerialDevice::GetDescription() { return m_strDescription; }

namespace {
// The identifiers of the device classes named "Ports"; null if there is none. Free with HeapFree on the process heap.
GUID* PortClasses() {
    DWORD count = 0;
    ::SetupDiClassGuidsFromNameA("Ports", nullptr, 0, &count);
    if (count == 0) return nullptr;
    auto* const classes = static_cast<GUID*>(::HeapAlloc(::GetProcessHeap(), 0, count * sizeof(GUID)));
    if (!classes) return nullptr;
    if (::SetupDiClassGuidsFromNameA("Ports", classes, count, &count)) return classes;
    ::HeapFree(::GetProcessHeap(), 0, classes);
    return nullptr;
}

CString Description(HDEVINFO set, SP_DEVINFO_DATA& device) {
    char text[1024] = "";
    DWORD type = 0;
    const BOOL read = ::SetupDiGetDeviceRegistryPropertyA(set, &device, SPDRP_DEVICEDESC, &type, reinterpret_cast<BYTE*>(text),
                                                          sizeof(text), nullptr);
    if (!read || type != REG_SZ) return CString();
    text[sizeof(text) - 1] = '\0';
    return text;
}
}  // namespace

BOOL CSerialDevice::EnumSerialDevices(CArray<CSerialDevice, const CSerialDevice&>& devices) {
    GUID* const classes = PortClasses();
    if (!classes) return FALSE;
    const HDEVINFO set = ::SetupDiGetClassDevsA(classes, nullptr, nullptr, DIGCF_PRESENT);
    if (set == INVALID_HANDLE_VALUE) {
        ::HeapFree(::GetProcessHeap(), 0, classes);
        return FALSE;
    }
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
        const HKEY key = ::SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
        if (key == reinterpret_cast<HKEY>(INVALID_HANDLE_VALUE)) continue;
        CString port;
        char* value = nullptr;
        if (RegQueryValueString(key, "PortName", value)) {
            if (IsValidPortName(value)) port = value;
            ::LocalFree(value);
        }
        ::RegCloseKey(key);
        if (!port.IsEmpty()) devices.Add(CSerialDevice(port, Description(set, device)));
    }
    ::SetupDiDestroyDeviceInfoList(set);
    ::HeapFree(::GetProcessHeap(), 0, classes);
    return TRUE;
}

BOOL CSerialDevice::IsValidPortName(const char* name) {
    if (std::strncmp(name, "COM", 3) != 0) return FALSE;
    const char* const digits = name + 3;
    return *digits && digits[std::strspn(digits, "0123456789")] == '\0';
}

BOOL CSerialDevice::RegQueryValueString(HKEY key, const char* valueName, char*& value) {
    value = nullptr;
    DWORD type = 0;
    DWORD size = 0;
    LONG code = ::RegQueryValueExA(key, valueName, nullptr, &type, nullptr, &size);
    if (code == ERROR_SUCCESS && type != REG_SZ) code = ERROR_INVALID_DATA;
    if (code != ERROR_SUCCESS) {
        ::SetLastError(static_cast<DWORD>(code));
        return FALSE;
    }

    const DWORD room = size + 1;  // for the final 0 that the registry does not promise
    value = static_cast<char*>(::LocalAlloc(LMEM_FIXED, room));
    if (!value) return FALSE;
    value[0] = '\0';
    size = room;
    code = ::RegQueryValueExA(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(value), &size);
    if (code == ERROR_SUCCESS && (type != REG_SZ || size >= room)) code = ERROR_INVALID_DATA;
    if (code != ERROR_SUCCESS) {
        ::LocalFree(value);
        value = nullptr;
        ::SetLastError(static_cast<DWORD>(code));
        return FALSE;
    }
    if (size > 0 && value[size - 1] != '\0') value[size] = '\0';
    return TRUE;
}

namespace {
std::mutex g_busyPorts;
}

void CSerialDevice::AddBusyPort(const char* port, COrvikConnection* connection) {
    const std::lock_guard lock(g_busyPorts);
    mapConnections[port] = connection;
}

BOOL CSerialDevice::RemoveBusyPort(const char* port) {
    const std::lock_guard lock(g_busyPorts);
    return mapConnections.RemoveKey(port);
}

BOOL CSerialDevice::LookupBusyPort(const char* port, COrvikConnection*& connection) {
    const std::lock_guard lock(g_busyPorts);
    return mapConnections.Lookup(port, connection);
}

void SerializeElements(CArchive& ar, CSerialDevice* devices, INT_PTR count) {
    for (CSerialDevice* device = devices; device != devices + count; ++device) {
        CString texts[] = {device->GetPortName(), device->GetDescription()};
        SerializeElements(ar, texts, 2);
        if (ar.IsLoading()) *device = CSerialDevice(texts[0], texts[1]);
    }
}
