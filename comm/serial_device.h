// CSerialDevice: one serial port that is present on this machine, by name and description; and the process's record of
// which connection holds which port.
// Threads: a value for any thread; the record may be used by any thread, the connections that it names by their own.
// Ownership: connections are not owned; whoever adds one removes it before it dies.
#pragma once

#include "afx/archive.h"
#include "afx/array.h"
#include "afx/map.h"
#include "afx/string.h"

class COrvikConnection;

class ORVIK_API CSerialDevice {
public:
    CSerialDevice();
    CSerialDevice(const CString& strPortName, const CString& strDescription);

    // Appends every present port whose name is COM and digits, in the system's order; the array is not emptied first.
    // No port is opened. FALSE, and nothing appended, only if the enumeration could not start.
    static BOOL EnumSerialDevices(CArray<CSerialDevice, const CSerialDevice&>& devices);

    CString GetPortName();
    CString GetDescription();  // empty if the device has none

    // Port names are compared exactly. A later holder replaces an earlier one.
    static void AddBusyPort(const char* port, COrvikConnection* connection);
    // TRUE if the port was listed.
    static BOOL RemoveBusyPort(const char* port);
    static BOOL LookupBusyPort(const char* port, COrvikConnection*& connection);

protected:
    static BOOL IsValidPortName(const char* name);
    // Reads a text value of a registry key into `value`, to be freed with LocalFree. On failure FALSE, `value` null and the
    // thread's last error set: 13 for a value that is no text.
    static BOOL RegQueryValueString(HKEY key, const char* valueName, char*& value);

    static CMap<CString, LPCSTR, COrvikConnection*, COrvikConnection*> mapConnections;

    CString m_strPortName;
    CString m_strDescription;
};

// A list of devices in an archive: name and description of each.
ORVIK_API void SerializeElements(CArchive& ar, CSerialDevice* devices, INT_PTR count);
