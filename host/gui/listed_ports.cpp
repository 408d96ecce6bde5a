#include "host/gui/listed_ports.h"

#include "comm/serial_device.h"

std::vector<ListedPort> ListPorts() {
    std::vector<ListedPort> ports;
    CArray<CSerialDevice, const CSerialDevice&> devices;
    CSerialDevice::EnumSerialDevices(devices);
    for (INT_PTR i = 0; i < devices.GetSize(); ++i) {
        CSerialDevice device = devices.GetAt(i);
        ports.push_back({static_cast<const char*>(device.GetPortName()), static_cast<const char*>(device.GetDescription())});
    }
    return ports;
}

// Letters count alike in a COM port's name, and so does what the system puts before it.
bool SamePort(const std::string& one, const std::string& other) {
    const auto plain = [](const std::string& name) {
        CString text = name.c_str();
        text.MakeUpper();
        const bool com = text.Left(3) == "COM" || text.Left(7) == "\\\\.\\COM";
        return com ? text.Mid(text.ReverseFind('\\') + 1) : CString(name.c_str());
    };
    return plain(one) == plain(other);
}
