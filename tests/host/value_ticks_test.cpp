#include "host/chart/value_ticks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/chart/unit_prefix.h"
#include "tests/host/value_ranges.h"
#include "tests/support/regional_settings.h"
#include "time/locale_cache.h"

namespace {
class ValueTicksTest : public testing::Test {
protected:
    ValueTicksTest() {
        m_settings.American();
        NlsToolsRegister();
    }
    using Texts = std::vector<std::string>;

    const TextLanguage m_english{LANG_ENGLISH};
    RegionalSettings m_settings;
};

// Read again without the code under test: numbers of the form "-1,234.50", units such as "×10^6 °C" and "MWh".
double NumberOf(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), ','), text.end());
    size_t end = 0;
    const double number = std::stod(text, &end);
    EXPECT_EQ(end, text.size()) << text;
    return number;
}
double FactorOf(const std::string& text, const std::string& unit) {
    if (text.starts_with("×10^")) return std::pow(10, std::stoi(text.substr(5)));
    if (text == unit) return 1;
    const std::string prefixes = "pnum kMGT";
    const auto power = [&](std::string one) {
        if (one.starts_with("µ")) one.replace(0, 2, "u");
        const size_t base = one.find_first_of("WPAVSmb", one.size() > 1 && one.find_first_of("WPAVSb") != 0 ? 1 : 0);
        return base == 0 ? 0 : static_cast<int>(prefixes.find(one[0])) * 3 - 12;
    };
    return std::pow(10, power(text) - power(unit));
}
}  // namespace

TEST_F(ValueTicksTest, LabelsAreShortAndTheHeadHasTheRest) {
    // On 80 pixels, with labels of 10: a step is at least 0.1875 of the range.
    const struct {
        double low, high;
        const char* unit;
        Texts labels;
        const char* head;
    } cases[] = {{0, 100, "%", {"0", "20", "40", "60", "80", "100"}, "%"},
                 {0.1, 0.3, "V", {"0.10", "0.15", "0.20", "0.25", "0.30"}, "V"},
                 {1'234'567, 1'234'667, "Wh", {"1.23458", "1.23460", "1.23462", "1.23464", "1.23466"}, "MWh"},
                 {1'234'567, 1'234'577, "Wh", {"8", "10", "12", "14", "16"}, "Wh + 1,234,560"},
                 {-1'234'577, -1'234'567, "Wh", {"4", "6", "8", "10", "12"}, "Wh - 1,234,580"},
                 {101'250, 101'350, "Pa", {"101.26", "101.28", "101.30", "101.32", "101.34"}, "kPa"},
                 {101'250, 101'260, "Pa", {"101.250", "101.252", "101.254", "101.256", "101.258", "101.260"}, "kPa"},
                 {12'340, 12'350, "Pa", {"12,340", "12,342", "12,344", "12,346", "12,348", "12,350"}, "Pa"},
                 {1012.5, 1013.5, "hPa", {"1,012.6", "1,012.8", "1,013.0", "1,013.2", "1,013.4"}, "hPa"},
                 {0.0005, 0.0006, "A", {"500", "520", "540", "560", "580", "600"}, "µA"},
                 {2.4e-6, 2.6e-6, "A", {"2.40", "2.45", "2.50", "2.55", "2.60"}, "µA"},
                 {2.4e-6, 2.6e-6, "uA", {"2.40", "2.45", "2.50", "2.55", "2.60"}, "pA"},
                 {0, 1e6, "°C", {"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}, "×10^6 °C"},
                 {0, 1e-5, "pH", {"0", "2", "4", "6", "8", "10"}, "×10^-6 pH"},
                 {850'000, 1'550'000, "W", {"1.0", "1.2", "1.4"}, "MW"},
                 {0.5, 0.5000003, "A", {"0", "100", "200", "300"}, "nA + 0.5 A"},
                 {2e9, 2'000'000'001, "W", {"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}, "W + 2 GW"},
                 {0, 12'000, "m", {"0", "5", "10"}, "km"},
                 {0, 5'000, "W", {"0", "1,000", "2,000", "3,000", "4,000", "5,000"}, "W"},
                 {-5, 5, "", {"-4", "-2", "0", "2", "4"}, ""},
                 {3, 3, "V", {}, "V"},
                 {0, HUGE_VAL, "V", {}, "V"}};
    for (const auto& c : cases) {
        const ValueTicks ticks = DivideValues(c.low, c.high, 80, 10, c.unit);
        EXPECT_EQ(ticks.labels, c.labels) << c.low << " " << c.high << " " << c.unit;
        EXPECT_EQ(ticks.head, c.head) << c.low << " " << c.high << " " << c.unit;
    }
}

TEST_F(ValueTicksTest, OnlyUnitsThatAreWrittenWithPrefixesTakeThem) {
    const struct {
        const char* unit;
        int power;
        const char* wanted;  // null: none
    } cases[] = {{"Wh", 6, "MWh"},     {"kWh", 3, "MWh"},    {"mA", -3, "µA"},    {"µS/cm", 3, "mS/cm"}, {"nm", 6, "mm"},
                 {"Nm", 3, "kNm"},     {"mg/l", -3, "µg/l"}, {"m", 6, nullptr},   {"s", 3, nullptr},     {"°C", 3, nullptr},
                 {"%", -3, nullptr},   {"dB", 3, nullptr},   {"pH", 3, nullptr},  {"hPa", 3, nullptr},   {"m²", 3, nullptr},
                 {"m³/h", 3, nullptr}, {"", 3, nullptr},     {"min", 3, nullptr}, {"TW", 3, nullptr},    {"bar", -3, "mbar"},
                 {"°C", 0, "°C"}};
    for (const auto& c : cases)
        EXPECT_EQ(PrefixedUnit(c.unit, c.power), c.wanted ? std::optional<std::string>(c.wanted) : std::nullopt) << c.unit;
}

// Whatever the range: three labels that can be told apart and are no longer than they need to be, each telling its tick's value.
TEST_F(ValueTicksTest, HoldsForAnyRange) {
    size_t i = 0;
    for (const ValueRange& range : ValueRanges(30'000)) {
        constexpr LONG kLabel = 12;
        const LONG room = kLabel * (5 + static_cast<LONG>(i++ % 60));
        const double span = range.high - range.low;
        const ValueTicks ticks = DivideValues(range.low, range.high, room, kLabel, range.unit);
        SCOPED_TRACE(testing::Message() << range.low << " + " << span << " " << range.unit << " on " << room << ": "
                                        << ticks.head);
        ASSERT_GE(ticks.labels.size(), 3u);
        ASSERT_EQ(ticks.labels.size(), ticks.values.size());
        ASSERT_EQ(std::set<std::string>(ticks.labels.begin(), ticks.labels.end()).size(), ticks.labels.size());
        const size_t sign = std::min(ticks.head.find("+ "), ticks.head.find("- "));
        double common = 0;
        std::string unit = ticks.head;
        if (sign != std::string::npos) {
            unit = ticks.head.substr(0, sign > 0 ? sign - 1 : 0);
            const std::string rest = ticks.head.substr(sign + 2);
            const size_t blank = rest.find(' ');
            common = NumberOf(rest.substr(0, blank)) *
                     FactorOf(blank == std::string::npos ? unit : rest.substr(blank + 1), range.unit);
            if (ticks.head[sign] == '-') common = -common;
        }
        const double factor = FactorOf(unit, range.unit);
        const bool decimals = ticks.labels[0].find('.') != std::string::npos;
        bool needed = !decimals;
        for (size_t k = 0; k < ticks.values.size(); ++k) {
            const std::string& label = ticks.labels[k];
            ASSERT_GE(ticks.values[k], range.low - span * 0.01);
            ASSERT_LE(ticks.values[k], range.high + span * 0.01);
            ASSERT_NEAR(NumberOf(label) * factor + common, ticks.values[k], span * 1e-6 + std::abs(range.low) * 1e-15) << label;
            ASSERT_LE(std::count_if(label.begin(), label.end(), ::isdigit), 6) << label;
            needed |= label.back() != '0';
            if (k > 0) {
                ASSERT_GE((ticks.values[k] - ticks.values[k - 1]) / span * static_cast<double>(room), kLabel);
            }
        }
        ASSERT_TRUE(needed) << ticks.labels[0];
    }
}
