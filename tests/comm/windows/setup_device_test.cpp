// CSerialDevice over the setup interface, with devices made for the test.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "comm/serial_device.h"

namespace {
// Devices of the class "Ports" that are present while the object lives.
class Devices {
public:
    Devices() {
        DWORD count = 0;
        ::SetupDiClassGuidsFromNameA("Ports", &m_class, 1, &count);
        m_set = ::SetupDiCreateDeviceInfoList(&m_class, nullptr);
    }
    ~Devices() {
        for (SP_DEVINFO_DATA& device : m_devices) ::SetupDiCallClassInstaller(DIF_REMOVE, m_set, &device);
        ::SetupDiDestroyDeviceInfoList(m_set);
    }

    SP_DEVINFO_DATA* Add(const char* id) {
        SP_DEVINFO_DATA device{};
        device.cbSize = sizeof(device);
        if (!::SetupDiCreateDeviceInfoA(m_set, id, &m_class, nullptr, nullptr, 0, &device) ||
            !::SetupDiRegisterDeviceInfo(m_set, &device, 0, nullptr, nullptr, nullptr)) {
            return nullptr;
        }
        m_devices.push_back(device);
        return &m_devices.back();
    }
    HKEY Key(SP_DEVINFO_DATA* device) {
        return ::SetupDiCreateDevRegKeyA(m_set, device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, nullptr, nullptr);
    }
    void Name(SP_DEVINFO_DATA* device, DWORD type, const std::string& name) {
        const HKEY key = Key(device);
        ::RegSetValueExA(key, "PortName", 0, type, reinterpret_cast<const BYTE*>(name.data()), static_cast<DWORD>(name.size()));
        ::RegCloseKey(key);
    }
    void Describe(SP_DEVINFO_DATA* device, const char* text) {
        ::SetupDiSetDeviceRegistryPropertyA(m_set, device, SPDRP_DEVICEDESC, reinterpret_cast<const BYTE*>(text),
                                            static_cast<DWORD>(std::strlen(text) + 1));
    }

private:
    GUID m_class{};
    HDEVINFO m_set = INVALID_HANDLE_VALUE;
    std::vector<SP_DEVINFO_DATA> m_devices;
};

std::string Listed(const char* port) {
    CArray<CSerialDevice, const CSerialDevice&> devices;
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    for (INT_PTR i = 0; i < devices.GetSize(); ++i) {
        if (devices[i].GetPortName() == port) return std::string("described: ") + devices[i].GetDescription().GetString();
    }
    return "not listed";
}

TEST(SetupDevices, AreListedByNameAndDescription) {
    Devices made;
    const struct {
        const char *id, *name, *description;
        DWORD type;
    } devices[] = {{R"(ROOT\ORVIKTEST\0000)", "COM210", "Logger cable", REG_SZ},
                   {R"(ROOT\ORVIKTEST\0001)", "COM211", nullptr, REG_SZ},
                   {R"(ROOT\ORVIKTEST\0002)", "CNCA0", nullptr, REG_SZ},
                   {R"(ROOT\ORVIKTEST\0003)", "COM212", nullptr, REG_BINARY}};
    for (const auto& [id, name, description, type] : devices) {
        SP_DEVINFO_DATA* const device = made.Add(id);
        ASSERT_NE(nullptr, device) << id;
        made.Name(device, type, std::string(name, std::strlen(name) + 1));
        if (description != nullptr) made.Describe(device, description);
    }
    SP_DEVINFO_DATA* const nameless = made.Add(R"(ROOT\ORVIKTEST\0004)");
    ASSERT_NE(nullptr, nameless);
    ::RegCloseKey(made.Key(nameless));

    EXPECT_EQ("described: Logger cable", Listed("COM210"));
    EXPECT_EQ("described: ", Listed("COM211"));
    EXPECT_EQ("not listed", Listed("CNCA0"));
    EXPECT_EQ("not listed", Listed("COM212"));
}

}  // namespace
