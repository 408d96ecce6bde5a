// Version records of sample libraries (samples/make) and of this module's own, on both homes.
#include "ui/version_info.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "frame/version.h"
#include "platform/house_text.h"

namespace {

std::string Sample(const char* name) { return std::string(SAMPLES) + name; }

// The system's language, which chooses the texts.
unsigned long SystemLanguage() {
    char text[16] = "";
    EXPECT_NE(GetLocaleInfoA(LOCALE_SYSTEM_DEFAULT, LOCALE_ILANGUAGE, text, sizeof text), 0);
    return std::strtoul(text, nullptr, 16);
}

// The four numbers of each version, "2.3.4.5 6.7.8.9".
std::string Versions(const CVersionInfo& info) {
    DWORD ms = 0, ls = 0, productMs = 0, productLs = 0;
    info.GetFileVersion(&ms, &ls), info.GetProductVersion(&productMs, &productLs);
    std::string text;
    for (const DWORD each : {ms, ls, productMs, productLs})
        text += std::to_string(HIWORD(each)) + "." + std::to_string(LOWORD(each)) + ".";
    return text;
}

constexpr unsigned long kSwedish = 0x041D, kAmerican = 0x0409;

void ExpectModule(const CVersionInfo& info, bool windows) {
    ASSERT_TRUE(info.IsValid());
    EXPECT_EQ(Versions(info), ORVIK_MODULE_VERSION ".0." ORVIK_MODULE_VERSION ".0.");  // samples/make brings them up to date
    EXPECT_STREQ(info.GetFileVersion(), ORVIK_MODULE_VERSION);
    EXPECT_STREQ(info.GetProductVersion(), ORVIK_MODULE_VERSION);
    EXPECT_STREQ(info.GetInternalName(), "OrvikShared");
    EXPECT_STREQ(info.GetOriginalFilename(), windows ? "OrvikShared.dll" : "libOrvikShared.so");
    EXPECT_STREQ(info.GetProductName(), "Orvik");
    EXPECT_STREQ(info.GetFileDescription(),
                 SystemLanguage() == kSwedish ? "Systemmodul f\xF6r dataloggrar" : "System module for data loggers");
    EXPECT_STREQ(info.GetLegalCopyright(), "");
    EXPECT_EQ(std::tuple(info.GetFileOS(), info.GetFileType(), info.GetSubType()),
              std::tuple(static_cast<DWORD>(windows ? VOS_NT_WINDOWS32 : VOS_UNKNOWN), CVersionInfo::typeDll,
                         CVersionInfo::subTypeUnknown));
    EXPECT_EQ(info.GetFileFlag(CVersionInfo::flagDebug), 0);
}

}  // namespace

TEST(VersionInfo, TheModuleTellsItsVersionInBothLanguages) {
    ExpectModule(CVersionInfo(MODULE_FILE), MODULE_IS_WINDOWS);
    ExpectModule(CVersionInfo(Sample("module-x64.dll").c_str()), true);
    ExpectModule(CVersionInfo(Sample("module-x86.dll").c_str()), true);
}

TEST(VersionInfo, FixedInformationComesAsItStands) {
    const CVersionInfo info(Sample("american.dll").c_str());
    ASSERT_TRUE(info.IsValid());
    EXPECT_EQ(Versions(info), "2.3.4.5.6.7.8.65535.");
    EXPECT_EQ(info.GetFileType(), CVersionInfo::typeDriver);
    EXPECT_EQ(info.GetSubType(), CVersionInfo::subTypeComm);
}

TEST(VersionInfo, FlagsCountWhateverTheMaskSays) {
    const CVersionInfo info(Sample("american.dll").c_str());  // its mask is 0
    ASSERT_TRUE(info.IsValid());
    EXPECT_EQ(info.GetFileFlag(CVersionInfo::flagDebug), 1);
    EXPECT_EQ(info.GetFileFlag(CVersionInfo::flagPrerelease), 1);
    EXPECT_EQ(info.GetFileFlag(CVersionInfo::flagPatched), 0);
    // Every bit, not any.
    EXPECT_EQ(info.GetFileFlag(static_cast<CVersionInfo::EFileFlag>(VS_FF_DEBUG | VS_FF_PRERELEASE)), 1);
    EXPECT_EQ(info.GetFileFlag(static_cast<CVersionInfo::EFileFlag>(VS_FF_DEBUG | VS_FF_PATCHED)), 0);
}

TEST(VersionInfo, TheOnlyLanguageIsTakenOnEverySystem) {
    const CVersionInfo info(Sample("american.dll").c_str());
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [found, expected] :
         {Row{info.GetFileDescription(),
              OrvikTextCodePage() == CP_UTF8 ? "Logger driver, 5 € at 10 測" : "Logger driver, 5 \x80 at 10 ?"},
          Row{info.GetFileVersion(), "2.3.4 build 5"}, Row{info.GetInternalName(), "american"},
          Row{info.GetLegalCopyright(), "Copyright"}, Row{info.GetLegalTrademarks(), "Trademarks"},
          Row{info.GetOriginalFilename(), "american.dll"}, Row{info.GetPrivateBuild(), "Private"},
          Row{info.GetProductName(), "Sample"}, Row{info.GetProductVersion(), "6.7"}, Row{info.GetSpecialBuild(), "Special"}})
        EXPECT_STREQ(found, expected);
}

TEST(VersionInfo, TheSystemsLanguageElseTheFirst) {
    const CVersionInfo info(Sample("order.dll").c_str());
    const unsigned long language = SystemLanguage();
    const bool first = language != kSwedish && language != kAmerican;
    EXPECT_STREQ(info.GetProductName(), first ? "Japanese" : language == kSwedish ? "Swedish" : "American");
    EXPECT_STREQ(info.GetInternalName(), "");
    EXPECT_STREQ(info.GetSpecialBuild(), first ? "after the empty one" : "");
}

TEST(VersionInfo, TextsUnderAnotherCodePageAreNotFound) {
    const CVersionInfo info(Sample("other_page.dll").c_str());
    EXPECT_TRUE(info.IsValid());
    EXPECT_STREQ(info.GetProductName(), "");
}

TEST(VersionInfo, WithoutTranslationsThereAreNoTexts) {
    const CVersionInfo info(Sample("no_translation.dll").c_str());
    ASSERT_TRUE(info.IsValid());
    EXPECT_STREQ(info.GetProductName(), "");
    EXPECT_EQ(Versions(info).substr(0, 4), "4.3.");
}

TEST(VersionInfo, FilesWithoutAVersionAreNotValid) {
    for (const std::string& name : {Sample("plain.dll"), Sample("plain.rc"), Sample("missing.dll"), Sample(""), std::string()}) {
        const CVersionInfo info(name.c_str());
        EXPECT_FALSE(info.IsValid()) << name;
        EXPECT_STREQ(info.GetProductName(), "") << name;
    }
    EXPECT_FALSE(CVersionInfo(static_cast<const char*>(nullptr)).IsValid());
}

TEST(VersionInfo, AModuleIsReadFromItsFile) {
    ExpectModule(CVersionInfo(static_cast<HINSTANCE>(nullptr)), MODULE_IS_WINDOWS);  // this program holds the module's record
}

TEST(VersionInfo, EmptiedItIsNotValid) {
    CVersionInfo info(Sample("american.dll").c_str());
    ASSERT_STREQ(info.GetProductName(), "Sample");
    info.Empty();
    EXPECT_FALSE(info.IsValid());
    EXPECT_STREQ(info.GetProductName(), "");
    info.Empty();
    EXPECT_FALSE(info.IsValid());
}
