// Damaged PE and ELF files: whatever a file says, the reader stays inside it (the sanitizers watch) and inside its block.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/last_error.h"
#include "tests/ui/scratch_folder.h"
#include "ui/version_info.h"

namespace {
std::string Bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void Use(const CVersionInfo& info) {
    for (const char* text : {info.GetFileDescription(), info.GetFileVersion(), info.GetInternalName(), info.GetLegalCopyright(),
                             info.GetProductName(), info.GetSpecialBuild()})
        EXPECT_LT(std::string(text).size(), 65536u);
    if (!info.IsValid()) return;
    DWORD ms = 0, ls = 0;
    info.GetFileVersion(&ms, &ls), info.GetProductVersion(&ms, &ls), info.GetFileFlag(CVersionInfo::flagDebug);
    info.GetFileOS(), info.GetFileType(), info.GetSubType();
}

class DamagedVersion : public testing::TestWithParam<const char*> {
protected:
    ~DamagedVersion() override { close(file); }
    bool IsValid(const std::string& bytes) {
        EXPECT_EQ(ftruncate(file, 0), 0);
        EXPECT_EQ(pwrite(file, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        const CVersionInfo info(("/proc/self/fd/" + std::to_string(file)).c_str());
        Use(info);
        return info.IsValid() != FALSE;
    }
    const int file = memfd_create("sample", 0);
    const std::string whole = Bytes(std::string(SAMPLES) + GetParam());
};
}  // namespace

TEST_P(DamagedVersion, EveryPrefix) {
    ASSERT_TRUE(IsValid(whole));
    int valid = 0;
    for (size_t length = 0; length < whole.size(); ++length) valid += IsValid(whole.substr(0, length));
    // What may miss is what stands behind the record: padding up to the file alignment, an ELF file's other parts.
    EXPECT_LT(valid, 1024);
}

TEST_P(DamagedVersion, EveryByteChanged) {
    for (size_t at = 0; at < whole.size(); ++at)
        for (const char byte : {'\x00', '\x01', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = whole;
            bytes[at] = byte;
            IsValid(bytes);
        }
}

INSTANTIATE_TEST_SUITE_P(Samples, DamagedVersion, testing::Values("module-x86.dll", "american.dll", "module-elf.so"));

TEST(DamagedVersionFile, ErrorsTellWhatIsWrong) {
    const ScratchFolder folder;
    folder.Write("text.dll", "no program at all"), folder.MakeFolder("folder.dll");
    const std::string samples = SAMPLES;
    using Row = std::tuple<std::string, DWORD>;
    for (const auto& [name, error] :
         {Row{"missing.dll", ERROR_FILE_NOT_FOUND}, Row{"text.dll", ERROR_BAD_FORMAT}, Row{"folder.dll", ERROR_ACCESS_DENIED},
          Row{"/dev/null", ERROR_BAD_FORMAT}, Row{samples + "plain.dll", ERROR_RESOURCE_TYPE_NOT_FOUND}}) {
        DWORD zero = 7;
        EXPECT_EQ(GetFileVersionInfoSizeA(name.c_str(), &zero), 0u) << name;
        EXPECT_EQ(GetLastError(), error) << name;
        EXPECT_EQ(zero, 0u);
    }
}

TEST(DamagedVersionFile, ABlockIsAskedByPath) {
    const std::string name = std::string(SAMPLES) + "order.dll";
    const DWORD size = GetFileVersionInfoSizeA(name.c_str(), nullptr);
    ASSERT_GT(size, 0u);
    std::vector<unsigned char> block(size);
    EXPECT_FAILS(GetFileVersionInfoA(name.c_str(), 0, size - 1, block.data()), ERROR_INSUFFICIENT_BUFFER);
    ASSERT_TRUE(GetFileVersionInfoA(name.c_str(), 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\stringfileinfo\\041D04B0\\PRODUCTNAME", &value, &length));
    EXPECT_STREQ(static_cast<char*>(value), "Swedish");
    EXPECT_EQ(length, 8u);
    ASSERT_TRUE(VerQueryValueA(block.data(), "", &value, &length));
    EXPECT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    EXPECT_EQ(static_cast<VS_FIXEDFILEINFO*>(value)->dwSignature, VS_FFI_SIGNATURE);
    EXPECT_FALSE(VerQueryValueA(block.data(), "\\StringFileInfo\\041D04B0\\Product", &value, &length));
    EXPECT_FALSE(VerQueryValueA(block.data(), "\\VarFileInfo\\Translation\\x", &value, &length));
}
