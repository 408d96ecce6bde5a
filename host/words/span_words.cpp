#include "host/words/span_words.h"

#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>

#include "host/words/plain_digits.h"

namespace {
using Count = unsigned __int64;

struct Unit {
    Count size;
    std::initializer_list<const char*> words;
};

// Microseconds.
const Unit kSpans[] = {
    {1, {"us", "µs", "μs", "microsecond", "microseconds", "mikrosekund", "mikrosekunder"}},
    {1'000, {"ms", "msec", "millisecond", "milliseconds", "millisekund", "millisekunder"}},
    {1'000'000, {"s", "sec", "secs", "second", "seconds", "sek", "sekund", "sekunder"}},
    {60'000'000, {"min", "mins", "minute", "minutes", "minut", "minuter"}},
    {3'600'000'000, {"h", "hr", "hrs", "hour", "hours", "t", "tim", "timme", "timmar"}},
    {86'400'000'000, {"d", "day", "days", "dag", "dagar", "dygn"}},
    {604'800'000'000, {"w", "wk", "week", "weeks", "v", "vecka", "veckor"}},
};
const Unit kSizes[] = {
    {1, {"b", "byte", "bytes"}}, {1'000, {"kb"}},       {1'000'000, {"mb"}},   {1'000'000'000, {"gb"}},
    {1'000'000'000'000, {"tb"}}, {1ull << 10, {"kib"}}, {1ull << 20, {"mib"}}, {1ull << 30, {"gib"}},
    {1ull << 40, {"tib"}},
};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Digits of any script become plain ones, and so do blanks that keep numbers and units on a line.
std::string Plain(std::string_view text) {
    std::string plain = WithPlainDigits(text);
    for (const std::string_view kept : {"\u00A0", "\u202F"}) {
        for (size_t at = 0; (at = plain.find(kept, at)) != plain.npos; ++at) plain.replace(at, kept.size(), " ");
    }
    return plain;
}

template <class Belongs>
std::string_view Take(std::string_view& text, Belongs belongs) {
    size_t length = 0;
    while (length < text.size() && belongs(text[length])) ++length;
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

// A number and the unit's word behind it, not looked up yet.
struct Part {
    Count whole = 0;
    double fraction = 0;  // 0 to 1
    bool decimals = false;
    std::string unit;  // lower case
};

std::optional<Part> TakePart(std::string_view& text) {
    Part part;
    const std::string_view digits = Take(text, IsDigit);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), part.whole);
    if (error != std::errc()) return std::nullopt;
    if (!text.empty() && (text[0] == '.' || text[0] == ',')) {
        text.remove_prefix(1);
        const std::string_view decimals = Take(text, IsDigit);
        if (decimals.empty()) return std::nullopt;
        const std::string real = "0." + std::string(decimals);
        if (std::from_chars(real.data(), real.data() + real.size(), part.fraction).ec != std::errc()) part.fraction = 0;  // tiny
        part.decimals = true;
    }
    Take(text, IsBlank);
    part.unit = Take(text, [](char c) { return !IsDigit(c) && !IsBlank(c); });
    for (char& c : part.unit) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    Take(text, IsBlank);
    return part;
}

// 0 for a word that is no unit.
template <size_t Size>
Count SizeOf(const Unit (&units)[Size], const std::string& word) {
    for (const Unit& unit : units) {
        for (const char* const known : unit.words) {
            if (word == known) return unit.size;
        }
    }
    return 0;
}

std::optional<Count> Sum(Count before, const Part& part, Count unit, Count most) {
    // A fraction of a whole unit has fewer digits than a double, so its rounding is that of the text.
    const Count rest = static_cast<Count>(std::llround(part.fraction * static_cast<double>(unit)));
    if (before > most || part.whole > (most - before) / unit) return std::nullopt;
    const Count sum = before + part.whole * unit;
    return rest > most - sum ? std::nullopt : std::optional(sum + rest);
}
}  // namespace

std::optional<__int64> SpanFromWords(std::string_view words) {
    const std::string plain = Plain(words);
    std::string_view text = plain;
    constexpr Count kMost = std::numeric_limits<__int64>::max(), kMillisecond = 1'000;
    Take(text, IsBlank);
    Count sum = 0, last = kMost;
    bool first = true;
    do {
        const std::optional<Part> part = TakePart(text);
        if (!part) return std::nullopt;
        const bool bare = first && text.empty() && part->unit.empty() && !part->decimals;
        const Count unit = bare ? kMillisecond : SizeOf(kSpans, part->unit);
        if (unit == 0 || unit >= last) return std::nullopt;
        const std::optional<Count> more = Sum(sum, *part, unit, kMost);
        if (!more) return std::nullopt;
        sum = *more;
        last = unit;
        first = false;
    } while (!text.empty());
    return static_cast<__int64>(sum);
}

std::string WordsFromSpan(__int64 microseconds) {
    constexpr struct {
        __int64 size;
        const char* word;
    } kUnits[] = {{86'400'000'000, " d"}, {3'600'000'000, " h"}, {60'000'000, " min"}, {1'000'000, " s"}, {1'000, " ms"}};
    if (microseconds == 0) return "0 s";
    for (const auto& unit : kUnits) {
        if (microseconds % unit.size == 0) return std::to_string(microseconds / unit.size) + unit.word;
    }
    return std::to_string(microseconds) + " us";
}

std::optional<unsigned __int64> BytesFromWords(std::string_view words) {
    const std::string plain = Plain(words);
    std::string_view text = plain;
    Take(text, IsBlank);
    const std::optional<Part> part = TakePart(text);
    if (!part || !text.empty()) return std::nullopt;
    const Count unit = part->unit.empty() ? 1 : SizeOf(kSizes, part->unit);
    if (unit == 0 || (unit == 1 && part->decimals)) return std::nullopt;
    return Sum(0, *part, unit, std::numeric_limits<Count>::max());
}
