#include "frame/plugin_stamp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "afx/file.h"

namespace {

class PluginStamp : public testing::Test {
protected:
    PluginStamp() {
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        m_path = folder + ("orvik-stamp-" + std::to_string(GetCurrentThreadId())) + ".bin";
    }
    ~PluginStamp() override { DeleteFileA(m_path.c_str()); }

    EPluginFit Check(const std::string& content) {
        CFile file(m_path.c_str(), CFile::modeCreate | CFile::modeWrite);
        file.Write(content.data(), static_cast<UINT>(content.size())), file.Close();
        return OrvikCheckPlugin(m_path.c_str(), family, version);
    }
    static std::string Stamp(const char* moduleVersion, const char* familyName) {
        OrvikPluginStamp stamp = {"\x7FOrvikPlugin\x01\n", "", ""};
        std::strncpy(stamp.moduleVersion, moduleVersion, sizeof stamp.moduleVersion);
        std::strncpy(stamp.family, familyName, sizeof stamp.family);
        return std::string(reinterpret_cast<const char*>(&stamp), sizeof stamp);
    }

    std::string m_path;
    CString family, version;
};
}  // namespace

TEST_F(PluginStamp, FitsOrNamesTheOtherVersion) {
    EXPECT_EQ(Check("head" + Stamp(ORVIK_MODULE_VERSION, "Cedar") + "tail"), PF_FITS);
    EXPECT_STREQ(family, "Cedar");
    EXPECT_EQ(Check(Stamp("0.9.1", "Birch")), PF_OTHER_VERSION);
    EXPECT_STREQ(family, "Birch");
    EXPECT_STREQ(version, "0.9.1");
}

TEST_F(PluginStamp, IsFoundAcrossTheBordersOfBlocks) {
    const std::string stamp = Stamp(ORVIK_MODULE_VERSION, "Cedar");
    for (size_t before = (1 << 16) - stamp.size() - 1; before <= (1 << 16) + 1; ++before)
        ASSERT_EQ(Check(std::string(before, '\x7F') + stamp), PF_FITS) << before;
}

TEST_F(PluginStamp, EverythingElseIsNoPlugin) {
    const std::string stamp = Stamp(ORVIK_MODULE_VERSION, "Cedar");
    EXPECT_EQ(Check(""), PF_NO_PLUGIN);
    EXPECT_EQ(Check(stamp.substr(0, stamp.size() - 1)), PF_NO_PLUGIN);
    EXPECT_EQ(Check(stamp + stamp), PF_NO_PLUGIN);  // which of them would count?
    EXPECT_EQ(Check(Stamp(ORVIK_MODULE_VERSION, "")), PF_NO_PLUGIN);
    EXPECT_EQ(Check(Stamp(ORVIK_MODULE_VERSION, std::string(32, 'x').c_str())), PF_NO_PLUGIN);  // not ended within its field
    EXPECT_EQ(OrvikCheckPlugin((m_path + ".absent").c_str(), family, version), PF_UNREADABLE);
}
