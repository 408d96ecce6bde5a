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
