#include "host/chart/unit_prefix.h"

#include <string_view>

namespace {
struct Prefix {
    std::string_view text;
    int power;
};
// The micro sign is what is written; the Greek letter looks the same, and "u" stands for it where a keyboard lacks both.
constexpr Prefix kPrefixes[] = {{"p", -12}, {"n", -9}, {"µ", -6}, {"μ", -6}, {"u", -6}, {"m", -3},
                                {"", 0},    {"k", 3},  {"M", 6},  {"G", 9},  {"T", 12}};

struct Base {
    std::string_view text;
    int least = -12, most = 12;
};
constexpr Base kBases[] = {{"A"},         {"Ah"},       {"V"},        {"VA"},         {"VAh"},        {"var"},
                           {"varh"},      {"W"},        {"Wh"},       {"J"},          {"eV"},         {"Pa"},
                           {"N"},         {"Nm"},       {"Hz"},       {"S"},          {"ohm"},        {"Ω"},
                           {"Ω"},         {"Ohm"},      {"Bq"},       {"Sv"},         {"Gy"},         {"T"},
                           {"B", 0},      {"bit", 0},   {"lm", 0, 6}, {"cal", 0, 6},  {"m", -9, 3},   {"g", -12, 3},
                           {"s", -12, 0}, {"l", -6, 0}, {"L", -6, 0}, {"bar", -6, 3}, {"mol", -12, 3}};
}  // namespace

std::optional<std::string> PrefixedUnit(const std::string& unit, int power) {
    if (power == 0) return unit;
    const size_t slash = unit.find('/');
    const std::string_view numerator = std::string_view(unit).substr(0, slash);
    for (const Base& base : kBases) {
        if (!numerator.ends_with(base.text)) continue;
        const std::string_view front = numerator.substr(0, numerator.size() - base.text.size());
        for (const Prefix& has : kPrefixes) {
            if (has.text != front) continue;
            const int wanted = has.power + power;
            if (wanted < base.least || wanted > base.most) return std::nullopt;
            for (const Prefix& takes : kPrefixes) {
                if (takes.power != wanted) continue;
                return std::string(takes.text).append(base.text).append(slash == std::string::npos ? "" : unit.substr(slash));
            }
        }
    }
    return std::nullopt;
}
