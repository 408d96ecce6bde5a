// The device list, from a made-up device tree and ports directory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/virtual_port.h"
#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace fs = std::filesystem;

class DeviceListTest : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/orvik-devices-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root = pattern;
        fs::create_directories(root / "sys/class/tty");
        fs::create_directories(root / "ports");
        setenv("ORVIK_SYSFS", (root / "sys").c_str(), 1), setenv("ORVIK_PORTS_DIR", (root / "ports").c_str(), 1);
    }
    void TearDown() override {
        unsetenv("ORVIK_SYSFS"), unsetenv("ORVIK_PORTS_DIR");
        fs::remove_all(root);
    }
    // A terminal of the kernel; with hardware behind it if a place in the tree is given.
    void Tty(const std::string& name, const std::string& hardware, const std::string& type = "") {
        const fs::path tty = root / "sys/class/tty" / name;
        fs::create_directories(tty);
        if (!type.empty()) std::ofstream(tty / "type") << type << '\n';
        if (hardware.empty()) return;
        fs::create_directories(root / "sys/devices" / hardware);
        fs::create_directory_symlink(root / "sys/devices" / hardware, tty / "device");
    }
    void Product(const std::string& hardware, const std::string& text) {
        std::ofstream(root / "sys/devices" / hardware / "product") << text << '\n';
    }

    using Listed = std::vector<std::pair<std::string, std::string>>;
    static Listed List() {
        GUID ports;
        DWORD count = 0;
        EXPECT_TRUE(SetupDiClassGuidsFromNameA("Ports", &ports, 1, &count));
        EXPECT_EQ(count, 1u);
        const HDEVINFO set = SetupDiGetClassDevsA(&ports, nullptr, nullptr, DIGCF_PRESENT);
        Listed listed;
        SP_DEVINFO_DATA device{};
        device.cbSize = sizeof device;
        for (DWORD i = 0; SetupDiEnumDeviceInfo(set, i, &device); ++i) {
            const HKEY key = SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
            char name[16], description[300];
            DWORD type = 0, size = sizeof name;
            EXPECT_EQ(RegQueryValueExA(key, "PortName", nullptr, &type, reinterpret_cast<BYTE*>(name), &size), 0);
            EXPECT_EQ(type, DWORD{REG_SZ});
            EXPECT_TRUE(SetupDiGetDeviceRegistryPropertyA(set, &device, SPDRP_DEVICEDESC, &type,
                                                          reinterpret_cast<BYTE*>(description), sizeof description, nullptr));
            listed.emplace_back(name, description);
            EXPECT_EQ(RegCloseKey(key), 0);
            EXPECT_EQ(RegCloseKey(key), LSTATUS{ERROR_INVALID_HANDLE});
        }
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_ITEMS});
        EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set));
        return listed;
    }
    fs::path root;
};

TEST_F(DeviceListTest, ListsHardwareAlone) {
    Tty("tty0", "");                       // a console
    Tty("ptmx", "");                       // pseudo-terminals
    Tty("ttyS0", "pnp/00:01", "4");        // a real chip
    Tty("ttyS1", "platform/serial", "0");  // a place for one
    Tty("ttyUSB1", "usb1/1-1/1-1:1.0/ttyUSB1");
    Product("usb1/1-1", "Pr\xC3\274fkabel");
    Tty("ttyACM0", "usb1/1-2/1-2:1.0");
    Product("usb1/1-2", "Logger \xD0\x96");
    Tty("ttyUSB40", "usb1/1-3/1-3:1.0/ttyUSB40");  // beyond the fixed numbers
    const Listed expected = {{"COM1", "Serial port (ttyS0)"},
                             {"COM34", orvik::detail::HouseFrom1252("Pr\374fkabel (ttyUSB1)")},
                             {"COM65", "Logger \xD0\x96 (ttyACM0)"}};
    EXPECT_EQ(List(), expected);
}

TEST_F(DeviceListTest, LinksNamePortsOnce) {
    VirtualPort far;
    ASSERT_EQ(far.Create((root / "ports/com7").c_str()), DWORD{0});
    fs::create_symlink("/dev/no-such-device", root / "ports/com8");
    fs::create_symlink("/dev/no-such-device", root / "ports/notes");
    Tty("ttyS6", "pnp/00:07", "4");  // its number now means the link
    const Listed expected = {{"COM7", "Serial device (" + far.GetDeviceName() + ")"}};
    EXPECT_EQ(List(), expected);

    // The link opens the device, and its lock is the device's.
    const auto open = [](const std::string& name) {
        return CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    };
    const HANDLE port = open(R"(\\.\com7)");
    ASSERT_NE(port, INVALID_HANDLE_VALUE) << GetLastError();
    EXPECT_FAILS(open(R"(\\.\)" + far.GetDeviceName()), ERROR_ACCESS_DENIED);
    EXPECT_FAILS(open("COM8"), ERROR_FILE_NOT_FOUND);
    COMMCONFIG config{};
    DWORD size = 10;
    EXPECT_FALSE(GetDefaultCommConfigA("COM7", &config, &size));
    EXPECT_EQ(size, 52u);
    EXPECT_TRUE(GetDefaultCommConfigA("COM7", &config, &size));
    EXPECT_TRUE(SetCommConfig(port, &config, size));
    EXPECT_FALSE(GetDefaultCommConfigA("COM8", &config, &size));
    CloseHandle(port);
}
