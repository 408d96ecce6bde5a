// Runs a test under the settings of four countries and under a deliberately strange one, with English texts.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/regional_settings.h"
#include "time/locale_cache.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

struct Region {
    const char* name;
    void (RegionalSettings::*country)();  // null for the strange one
    const char* longDate;
    friend std::ostream& operator<<(std::ostream& out, const Region& region) { return out << region.name; }
};

inline const Region kRegions[] = {{"Swedish", &RegionalSettings::Swedish, "'den 'd MMMM yyyy"},
                                  {"American", &RegionalSettings::American, "dddd, MMMM d, yyyy"},
                                  {"German", &RegionalSettings::German, "dddd, d. MMMM yyyy"},
                                  {"Indian", &RegionalSettings::Indian, "dd MMMM yyyy"},
                                  {"Strange", nullptr, "d--yyyy--MMMM"}};

// Fills the cache anew whenever something is set.
class RegionalText {
public:
    void Enter(const Region& region) {
        if (region.country)
            (m_settings.*region.country)();
        else
            Strange("");
        Set(LOCALE_SLONGDATE, region.longDate);
    }
    void Set(LCTYPE item, const char* text) {
        m_settings.Set(item, text);
        NlsToolsUpdate();
    }
    // Separators of two characters, no designators, no grouping; the cache still has this thousand separator from before.
    void Strange(const char* thousandBefore) {
        Set(LOCALE_SGROUPING, "3;0"), Set(LOCALE_STHOUSAND, thousandBefore), Set(LOCALE_SGROUPING, "0");
        Set(LOCALE_SDECIMAL, "::"), Set(LOCALE_SLIST, "||"), Set(LOCALE_SSHORTDATE, "d--M--yyyy");
        Set(LOCALE_STIMEFORMAT, "H..mm..ss"), Set(LOCALE_S1159, ""), Set(LOCALE_S2359, "");
    }

private:
    const TextLanguage m_english{LANG_ENGLISH};
    RegionalSettings m_settings;
};

class RegionTest : public testing::TestWithParam<Region> {
protected:
    RegionTest() {
        m_text.Enter(GetParam());
        NlsToolsRegister();
    }
    bool Is(const char* name) const { return std::string_view(GetParam().name) == name; }
    RegionalText m_text;
};

inline std::string RegionName(const testing::TestParamInfo<Region>& region) { return region.param.name; }
#define FOR_EVERY_REGION(Suite) INSTANTIATE_TEST_SUITE_P(Regions, Suite, testing::ValuesIn(kRegions), RegionName)
