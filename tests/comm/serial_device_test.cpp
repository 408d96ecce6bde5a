// CSerialDevice: what needs no port.
#include "comm/serial_device.h"

#include <gtest/gtest.h>

namespace {
class Device : public CSerialDevice {
public:
    using CSerialDevice::IsValidPortName;
    using CSerialDevice::RegQueryValueString;
};

TEST(RegistryText, AKeyThatIsNoneGivesTheSystemsError) {
    char* value = reinterpret_cast<char*>(1);
    ::SetLastError(0);
    EXPECT_FALSE(Device::RegQueryValueString(nullptr, "PortName", value));
    EXPECT_EQ(nullptr, value);
    EXPECT_EQ(6u, ::GetLastError());
}

TEST(SerialDevices, EnumerationAppends) {
    CArray<CSerialDevice, const CSerialDevice&> devices;
    devices.Add(CSerialDevice("mine", ""));
    CSerialDevice::EnumSerialDevices(devices);
    ASSERT_GE(devices.GetSize(), 1);
    EXPECT_STREQ("mine", devices[0].GetPortName());
    for (INT_PTR i = 1; i < devices.GetSize(); ++i) EXPECT_TRUE(Device::IsValidPortName(devices[i].GetPortName()));
}
}  // namespace
