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

TEST_F(EnumerationTest, ASecondCallListsEveryPortAgain) {
    Port("ttyUSB3", "pci/usb1/1-1/1-1:1.0/ttyUSB3", "Logger cable");
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    EXPECT_TRUE(CSerialDevice::EnumSerialDevices(devices));
    const List names = Names(devices);
    ASSERT_EQ(2u, names.size());
    EXPECT_EQ(names[0], "COM36: Logger cable (ttyUSB3)");
    EXPECT_EQ(names[0], names[1]);
}
}  // namespace
