// The setup interface's device lists, for the one class "Ports": the serial ports that are present now.
// Any thread; a list is one snapshot, taken without opening any port. Ports come from $ORVIK_SYSFS (default /sys), class/tty,
// where real hardware stands behind them, and from the links in the ports directory; they are sorted by number.
#pragma once

#include "platform/posix/kernel/handles.h"

#define DIGCF_PRESENT 0x00000002u
#define DIGCF_ALLCLASSES 0x00000004u
#define DICS_FLAG_GLOBAL 0x00000001u
#define DIREG_DEV 0x00000001u
#define SPDRP_DEVICEDESC 0x00000000u
#define SPDRP_FRIENDLYNAME 0x0000000Cu
#define KEY_QUERY_VALUE 0x0001u
#define REG_NONE 0u
#define REG_SZ 1u
#define REG_BINARY 3u
#define REG_DWORD 4u

using HDEVINFO = PVOID;
using REGSAM = DWORD;
using LSTATUS = LONG;

struct SP_DEVINFO_DATA {
    DWORD cbSize;
    GUID ClassGuid;
    DWORD DevInst;
    ULONG_PTR Reserved;
};
using PSP_DEVINFO_DATA = SP_DEVINFO_DATA*;

// `size` counts identifiers: 1 for "Ports" (in any case), 0 for any other name. A list shorter than that is error 122.
ORVIK_API BOOL WINAPI SetupDiClassGuidsFromNameA(LPCSTR className, GUID* list, DWORD size, LPDWORD required);
ORVIK_API HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* classGuid, LPCSTR enumerator, HWND parent, DWORD flags);
ORVIK_API BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, PSP_DEVINFO_DATA device);  // error 259 past the end
// A key with one value, "PortName"; INVALID_HANDLE_VALUE on failure.
ORVIK_API HKEY WINAPI SetupDiOpenDevRegKey(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD scope, DWORD profile, DWORD keyType,
                                           REGSAM access);
ORVIK_API BOOL WINAPI SetupDiGetDeviceRegistryPropertyA(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD property, LPDWORD type,
                                                        BYTE* buffer, DWORD size, LPDWORD required);
ORVIK_API BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set);

// Gives the error code itself; 234 (more data) when the buffer is too small, with the size needed.
ORVIK_API LSTATUS WINAPI RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size);
ORVIK_API LSTATUS WINAPI RegCloseKey(HKEY key);
