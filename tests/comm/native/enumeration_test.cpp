// CSerialDevice over a made-up device tree and ports directory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "comm/serial_device.h"

namespace {
namespace fs = std::filesystem;

// An environment variable for the length of a test.
class Variable {
public:
    Variable(const char* name, const std::string& value) : m_name(name) {
        if (const char* const before = std::getenv(name)) m_before = before, m_had = true;
        setenv(name, value.c_str(), 1);
    }
    ~Variable() {
        if (m_had) {
            setenv(m_name, m_before.c_str(), 1);
        } else {
            unsetenv(m_name);
        }
    }

private:
    const char* m_name;
    std::string m_before;
    bool m_had = false;
};

class EnumerationTest : public testing::Test {
protected:
    static std::string MakeFolder() {
        std::string pattern = (fs::temp_directory_path() / "orvik-enum-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        fs::create_directories(pattern + "/sys/class/tty");
        fs::create_directories(pattern + "/ports");
        return pattern;
    }
    ~EnumerationTest() override {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }

    // A port with hardware behind it, at `path` below /sys/devices; its product name stands two levels above, as USB has it.
    void Port(const std::string& name, const std::string& path, const char* product) {
        const fs::path device = root + "/sys/devices/" + path;
        fs::create_directories(device);
        if (product) std::ofstream(device.parent_path().parent_path() / "product") << product << "\n";
        fs::create_directories(root + "/sys/class/tty/" + name);
        fs::create_symlink(device, root + "/sys/class/tty/" + name + "/device");
    }
    using List = std::vector<std::string>;
    static List Names(CArray<CSerialDevice, const CSerialDevice&>& devices) {
        List names;
        for (INT_PTR i = 0; i < devices.GetSize(); ++i) {
            names.push_back(std::string(devices[i].GetPortName()) + ": " + devices[i].GetDescription().GetString());
        }
        return names;
    }

    std::string root = MakeFolder();
    Variable sysfs{"ORVIK_SYSFS", root + "/sys"}, ports{"ORVIK_PORTS_DIR", root + "/ports"};
    CArray<CSerialDevice, const CSerialDevice&> devices;
};

TEST_F(EnumerationTest, AMachineWithoutPortsHasNone) {
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    EXPECT_EQ(0, devices.GetSize());
}

TEST_F(EnumerationTest, ListsHardwareByNameAndDescription) {
    Port("ttyUSB0", "pci/usb1/1-1/1-1:1.0/ttyUSB0", "Logger cable");
    Port("ttyACM2", "pci/usb1/1-2/1-2:1.1/acm", nullptr);
    Port("ttyS0", "pnp/00:01/serial", nullptr);
    Port("ttyS1", "platform/serial8250/tty", nullptr);
    std::ofstream(root + "/sys/class/tty/ttyS1/type") << "0\n";  // no chip behind it
    fs::create_directories(root + "/sys/class/tty/console");     // no hardware at all
    Port("ttyXYZ7", "odd/one/two", nullptr);                     // no number, so no name
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    ASSERT_EQ(3, devices.GetSize());
    EXPECT_STREQ("COM1", devices[0].GetPortName());
    EXPECT_STREQ("COM33", devices[1].GetPortName());
    EXPECT_NE(-1, devices[1].GetDescription().Find("Logger cable"));
    EXPECT_STREQ("COM67", devices[2].GetPortName());
}

TEST_F(EnumerationTest, ALinkGivesItsOwnName) {
    // /dev/full stands for a device that is there; nobody opens it.
    fs::create_symlink("/dev/full", root + "/ports/com5");
    fs::create_symlink("/dev/serial/by-id/gone", root + "/ports/com6");
    fs::create_symlink("/dev/full", root + "/ports/readme");
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    ASSERT_EQ(1, devices.GetSize());
    EXPECT_STREQ("COM5", devices[0].GetPortName());
}

TEST_F(EnumerationTest, ASecondCallListsEveryPortAgain) {
    Port("ttyUSB3", "pci/usb1/1-1/1-1:1.0/ttyUSB3", "One");
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    const List names = Names(devices);
    ASSERT_EQ(2u, names.size());
    EXPECT_EQ(names[0], names[1]);
}
}  // namespace
