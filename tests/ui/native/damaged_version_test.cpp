// What the reader of versions says of files that have none, and of paths into a block. Damaged files are the fuzzer's.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/last_error.h"
#include "tests/ui/scratch_folder.h"
#include "ui/version_info.h"

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
