// An independent judge: ICU writes the same numbers and dates for the same countries.
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include <cstdlib>
#include <random>

#include "tests/time/regional_fixture.h"
#include "time/date_text.h"
#include "time/number_text.h"

namespace {

// The characters here are all Windows-1252's own first 256.
std::string Narrow(const icu::UnicodeString& text) {
    std::string narrow;
    for (int32_t i = 0; i < text.length(); ++i) narrow += text[i] == 0x2212 ? '-' : static_cast<char>(text[i]);
    return narrow;
}

const char* LocaleOf(std::string_view region) {
    return region == "Swedish" ? "sv_SE" : region == "German" ? "de_DE" : region == "American" ? "en_US" : nullptr;
}

class Peer : public RegionTest {};
INSTANTIATE_TEST_SUITE_P(Regions, Peer, testing::ValuesIn(std::begin(kRegions), std::begin(kRegions) + 3), RegionName);

}  // namespace

// Groups and decimals of numbers with two decimals, which leave nothing to round; India groups otherwise, on purpose.
TEST_P(Peer, GroupsAndDecimals) {
    using icu::number::NumberFormatter, icu::number::Precision;
    const auto peer = NumberFormatter::withLocale(LocaleOf(GetParam().name))
                          .precision(Precision::fixedFraction(2))
                          .grouping(UNUM_GROUPING_ON_ALIGNED);
    std::mt19937_64 random(4);
    CString text;
    for (int i = 0; i < 5'000; ++i) {
        const auto cents = static_cast<__int64>(random() >> (10 + random() % 50));
        if (cents > 1'000'000'000'000'000) continue;  // beyond this two decimals are not sure
        const double value = static_cast<double>(random() % 2 ? cents : -cents) / 100;
        if (cents == 0) continue;
        UErrorCode error = U_ZERO_ERROR;
        const std::string expected = Narrow(peer.formatDouble(value, error).toString(error));
        ASSERT_TRUE(U_SUCCESS(error));
        _NlsSetReal(text, value, "#.##");
        ASSERT_STREQ(text, expected.c_str());
    }
}

TEST_P(Peer, ShortDates) {
    UErrorCode error = U_ZERO_ERROR;
    const CString picture = NlsGetShortDateSpec();
    icu::SimpleDateFormat peer(icu::UnicodeString(picture.GetString(), ""), icu::Locale(LocaleOf(GetParam().name)), error);
    const char* const zone = std::getenv("TZ");
    peer.adoptTimeZone(zone != nullptr ? icu::TimeZone::createTimeZone(zone) : icu::TimeZone::createDefault());
    ASSERT_TRUE(U_SUCCESS(error));
    std::mt19937_64 random(5);
    CString text;
    for (int i = 0; i < 5'000; ++i) {
        CVXTTime time;
        time.SetBinaryTime(70'000'000'000'000 + static_cast<__int64>(random() % 1'940'000'000'000'000));  // 1972 to 2033
        icu::UnicodeString expected;
        peer.format(static_cast<UDate>(time.GetBinaryTime() / 1'000), expected);
        _NlsSetShortDate(text, time);
        ASSERT_STREQ(text, Narrow(expected).c_str());
    }
}
