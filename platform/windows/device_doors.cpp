// Devices, the registry and kernel objects.
#include "platform/windows/door_text_internal.h"

#include <cstring>
#include <vector>

using namespace orvik::detail;

namespace {
bool IsText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// UTF-16 of the registry, which promises no final 0, nor whole characters.
std::string TextOf(const std::vector<BYTE>& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    if (!text.empty()) std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return NarrowText(text);
}
}  // namespace

HANDLE WINAPI OrvikCreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL set, LPCSTR name) {
    return HouseIsUtf8() ? CreateEventW(security, manual, set, WideArgument(name)) : CreateEventA(security, manual, set, name);
}

BOOL WINAPI OrvikGetDefaultCommConfigA(LPCSTR port, LPCOMMCONFIG config, LPDWORD size) {
    return HouseIsUtf8() ? GetDefaultCommConfigW(WideArgument(port), config, size) : GetDefaultCommConfigA(port, config, size);
}

LONG WINAPI OrvikRegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE out, LPDWORD size) {
    if (!HouseIsUtf8()) return RegQueryValueExA(key, name, reserved, type, out, size);
    const WideArgument wide(name);
    DWORD kind = 0;
    std::vector<BYTE> bytes;
    LONG code = ERROR_MORE_DATA;
    for (DWORD room = 256; code == ERROR_MORE_DATA;) {
        bytes.resize(room);
        code = RegQueryValueExW(key, wide, reserved, &kind, bytes.data(), &room);
        if (code == ERROR_SUCCESS) bytes.resize(room);
        if (code == ERROR_MORE_DATA && room <= bytes.size()) room = static_cast<DWORD>(2 * bytes.size());
    }
    if (code != ERROR_SUCCESS) return code;
    if (type != nullptr) *type = kind;
    if (size == nullptr) return out == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    if (IsText(kind)) {
        const std::string text = TextOf(bytes);
        bytes.assign(text.begin(), text.end());
    }
    const DWORD room = *size;
    *size = static_cast<DWORD>(bytes.size());
    if (out == nullptr) return ERROR_SUCCESS;
    if (room < bytes.size()) return ERROR_MORE_DATA;
    if (!bytes.empty()) std::memcpy(out, bytes.data(), bytes.size());
    return ERROR_SUCCESS;
}

BOOL WINAPI OrvikSetupDiClassGuidsFromNameA(LPCSTR name, LPGUID classes, DWORD size, PDWORD needed) {
    return HouseIsUtf8() ? SetupDiClassGuidsFromNameW(WideArgument(name), classes, size, needed)
                         : SetupDiClassGuidsFromNameA(name, classes, size, needed);
}

HDEVINFO WINAPI OrvikSetupDiGetClassDevsA(CONST GUID* kind, PCSTR enumerator, HWND parent, DWORD flags) {
    return HouseIsUtf8() ? SetupDiGetClassDevsW(kind, WideArgument(enumerator), parent, flags)
                         : SetupDiGetClassDevsA(kind, enumerator, parent, flags);
}

WINBOOL WINAPI OrvikSetupDiGetDeviceRegistryPropertyA(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD property, PDWORD type,
                                                      PBYTE out, DWORD size, PDWORD needed) {
    if (!HouseIsUtf8()) return SetupDiGetDeviceRegistryPropertyA(set, device, property, type, out, size, needed);
    DWORD kind = 0, room = 0;
    std::vector<BYTE> bytes(256);
    while (
        !SetupDiGetDeviceRegistryPropertyW(set, device, property, &kind, bytes.data(), static_cast<DWORD>(bytes.size()), &room)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || room <= bytes.size()) return FALSE;
        bytes.resize(room);
    }
    bytes.resize(room < bytes.size() ? room : bytes.size());
    if (type != nullptr) *type = kind;
    if (IsText(kind)) {
        const std::string text = TextOf(bytes);
        bytes.assign(text.begin(), text.end());
    }
    if (needed != nullptr) *needed = static_cast<DWORD>(bytes.size());
    if (out == nullptr || size < bytes.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (!bytes.empty()) std::memcpy(out, bytes.data(), bytes.size());
    return TRUE;
}
