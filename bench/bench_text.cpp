// Regional text: numbers with Swedish separators (decimal comma, groups parted by a no-break space), and dates with times of day.
// Numbers: 5 significant digits of 1e-4 to 1e5 ("digits5"), or 2 grouped decimals up to ten million ("decimals2"); the peers
// write and read the same texts, except that the C library and std::to_chars give small and large numbers an exponent by their
// own rule.
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unicode/numberformatter.h>
#include <unicode/numfmt.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

namespace {

constexpr char kGroup = '\xA0';
enum Style { kDigits5, kDecimals2 };

void UseSwedishSettings() {
    static const bool done = [] {
        for (const auto& [item, text] :
             {std::pair(LOCALE_SDECIMAL, ","), std::pair(LOCALE_STHOUSAND, "\xA0"), std::pair(LOCALE_SGROUPING, "3;0"),
              std::pair(LOCALE_SSHORTDATE, "yyyy-MM-dd"), std::pair(LOCALE_STIMEFORMAT, "HH:mm:ss")})
            SetLocaleInfoA(LOCALE_USER_DEFAULT, item, text);
        NlsToolsRegister();
        return true;
    }();
    benchmark::DoNotOptimize(done);
}

// Writes and reads as a program would with the bare library: by its own digits and a copy with the separators changed.
size_t ToSwedish(const char* begin, const char* end, bool group, char* out) {
    char* o = out;
    if (*begin == '-') *o++ = *begin++;
    const char* const point = std::find(begin, end, '.');
    for (; begin < point; ++begin) {
        *o++ = *begin;
        if (group && point - begin > 1 && (point - begin) % 3 == 1) *o++ = kGroup;
    }
    if (begin < end) {
        *o++ = ',';
        o = std::copy(begin + 1, end, o);
    }
    return static_cast<size_t>(o - out);
}
char* FromSwedish(const std::string& text, char* out) {
    for (const char c : text)
        if (c != kGroup) *out++ = c == ',' ? '.' : c;
    *out = 0;
    return out;
}

struct Library {
    using Text = std::string;
    explicit Library(Style) {}
    static Text Native(const std::string& text) { return text; }
    void Write(double value, Style style, Text& out) {
        char bare[64], text[80];
        const int length = std::snprintf(bare, sizeof bare, style == kDigits5 ? "%.5g" : "%.2f", value);
        out.assign(text, ToSwedish(bare, bare + length, style == kDecimals2, text));
    }
    double Read(const Text& text) {
        char bare[80];
        FromSwedish(text, bare);
        return std::strtod(bare, nullptr);
    }
};

struct CharConv {
    using Text = std::string;
    explicit CharConv(Style) {}
    static Text Native(const std::string& text) { return text; }
    void Write(double value, Style style, Text& out) {
        char bare[64], text[80];
        const char* const end = style == kDigits5
                                    ? std::to_chars(bare, bare + sizeof bare, value, std::chars_format::general, 5).ptr
                                    : std::to_chars(bare, bare + sizeof bare, value, std::chars_format::fixed, 2).ptr;
        out.assign(text, ToSwedish(bare, end, style == kDecimals2, text));
    }
    double Read(const Text& text) {
        char bare[80];
        double value = 0;
        std::from_chars(bare, FromSwedish(text, bare), value);
        return value;
    }
};

struct Fmt : CharConv {
    using CharConv::CharConv;
    void Write(double value, Style style, Text& out) {
        char bare[64], text[80];
        const char* const end = style == kDigits5 ? fmt::format_to(bare, "{:.5g}", value) : fmt::format_to(bare, "{:.2f}", value);
        out.assign(text, ToSwedish(bare, end, style == kDecimals2, text));
    }
};

struct Icu {
    using Text = icu::UnicodeString;
    UErrorCode error = U_ZERO_ERROR;
    icu::number::LocalizedNumberFormatter formatter;
    std::unique_ptr<icu::NumberFormat> parser{icu::NumberFormat::createInstance("sv_SE", error)};
    explicit Icu(Style style) {
        using icu::number::Precision;
        const auto base = icu::number::NumberFormatter::withLocale("sv_SE");
        formatter = style == kDigits5 ? base.precision(Precision::maxSignificantDigits(5)).grouping(UNUM_GROUPING_OFF)
                                      : base.precision(Precision::fixedFraction(2));
    }
    static Text Native(const std::string& text) {
        Text wide;
        for (const char c : text) wide.append(static_cast<char16_t>(static_cast<unsigned char>(c)));
        return wide;
    }
    void Write(double value, Style, Text& out) { out = formatter.formatDouble(value, error).toString(error); }
    double Read(const Text& text) {
        icu::Formattable result;
        parser->parse(text, result, error);
        return result.getDouble(error);
    }
};

struct Ours {
    using Text = CString;
    explicit Ours(Style) { UseSwedishSettings(); }
    static Text Native(const std::string& text) { return CString(std::string_view(text)); }
    void Write(double value, Style style, Text& out) { _NlsSetReal(out, value, style == kDigits5 ? nullptr : "#.##"); }
    double Read(const Text& text) {
        double value = 0;
        _NlsGetReal(text, value);
        return value;
    }
};

struct Numbers {
    std::vector<double> values;
    std::vector<std::string> texts;
};
const Numbers& TheNumbers(Style style) {
    static const auto make = [](Style s) {
        Numbers numbers;
        bench::Random random(11);
        Library library(s);
        for (int i = 0; i < 4'096; ++i) {
            const double sign = random.Below(4) ? 1 : -1, cents = sign * static_cast<double>(random.Below(1'000'000'000)) / 100;
            const double digits = sign * std::pow(10.0, random.Unit() * 8.9 - 4);
            numbers.values.push_back(s == kDigits5 ? digits : cents);
            library.Write(numbers.values.back(), s, numbers.texts.emplace_back());
        }
        return numbers;
    };
    static const Numbers digits5 = make(kDigits5), decimals2 = make(kDecimals2);
    return style == kDigits5 ? digits5 : decimals2;
}

template <class Peer>
void Check(Peer& peer, Style style) {
    const Numbers& numbers = TheNumbers(style);
    typename Peer::Text text;
    for (const double value : numbers.values) {
        peer.Write(value, style, text);
        const double tolerance = style == kDecimals2 ? 0.00501 : std::fabs(value) * 0.500001e-4;
        BENCH_REQUIRE(std::fabs(peer.Read(text) - value) <= tolerance);
    }
}

template <class Peer>
void Write(benchmark::State& state, Style style) {
    const Numbers& numbers = TheNumbers(style);
    Peer peer(style);
    Check(peer, style);
    typename Peer::Text text;
    for (auto _ : state)
        for (const double value : numbers.values) {
            peer.Write(value, style, text);
            benchmark::DoNotOptimize(text);
        }
    bench::PerItem(state, static_cast<double>(numbers.values.size()));
}

template <class Peer>
void Read(benchmark::State& state, Style style) {
    const Numbers& numbers = TheNumbers(style);
    Peer peer(style);
    Check(peer, style);
    std::vector<typename Peer::Text> texts;
    for (const std::string& text : numbers.texts) texts.push_back(Peer::Native(text));
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(peer.Read(text));
    bench::PerItem(state, static_cast<double>(texts.size()));
}

template <class Peer>
void Register(const std::string& name) {
    for (const auto& [style, label] : {std::pair(kDigits5, "digits5/"), std::pair(kDecimals2, "decimals2/")}) {
        benchmark::RegisterBenchmark(("numbers/write/" + (label + name)).c_str(), &Write<Peer>, style);
        benchmark::RegisterBenchmark(("numbers/read/" + (label + name)).c_str(), &Read<Peer>, style);
    }
}

// A minute apart, with a part of a second.
std::vector<CVXTTime> Times() {
    std::vector<CVXTTime> times(4'096);
    for (size_t i = 0; i < times.size(); ++i)
        times[i].SetBinaryTime(1'720'000'000'123'000 + static_cast<__int64>(i) * 61'000'000);
    return times;
}

void LibraryClock(const CVXTTime& time, char (&text)[64]) {
    const time_t seconds = static_cast<time_t>(time.GetAnsiTime());
    tm fields{};
    localtime_r(&seconds, &fields);
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &fields);
}

// Two texts, as ours are.
void FmtClock(const CVXTTime& time, std::string& date, std::string& clock) {
    const time_t seconds = static_cast<time_t>(time.GetAnsiTime());
    tm fields{};
    localtime_r(&seconds, &fields);
    date.clear(), clock.clear();
    fmt::format_to(std::back_inserter(date), "{:%Y-%m-%d}", fields);
    fmt::format_to(std::back_inserter(clock), "{:%H:%M:%S}", fields);
}

void WriteDateAndTimeFmt(benchmark::State& state) {
    const auto times = Times();
    std::string date, clock;
    for (const CVXTTime& time : times) {
        char expected[64];
        LibraryClock(time, expected);
        FmtClock(time, date, clock);
        BENCH_REQUIRE(date + " " + clock == expected);
    }
    for (auto _ : state)
        for (const CVXTTime& time : times) {
            FmtClock(time, date, clock);
            benchmark::DoNotOptimize(date);
            benchmark::DoNotOptimize(clock);
        }
    bench::PerItem(state, static_cast<double>(times.size()));
}

void WriteDateAndTime(benchmark::State& state) {
    UseSwedishSettings();
    const auto times = Times();
    CString date, clock;
    for (const CVXTTime& time : times) {
        char expected[64];
        LibraryClock(time, expected);
        _NlsSetShortDate(date, time);
        _NlsSetTime(clock, time, 0);
        BENCH_REQUIRE(date + " " + clock == expected);
    }
    for (auto _ : state)
        for (const CVXTTime& time : times) {
            _NlsSetShortDate(date, time);
            _NlsSetTime(clock, time, 0);
            benchmark::DoNotOptimize(date);
            benchmark::DoNotOptimize(clock);
        }
    bench::PerItem(state, static_cast<double>(times.size()));
}

void WriteDateAndTimeLibrary(benchmark::State& state) {
    const auto times = Times();
    for (auto _ : state)
        for (const CVXTTime& time : times) {
            char text[64];
            LibraryClock(time, text);
            benchmark::DoNotOptimize(text);
        }
    bench::PerItem(state, static_cast<double>(times.size()));
}

BENCHMARK(WriteDateAndTime)->Name("dates/write/ours");
BENCHMARK(WriteDateAndTimeFmt)->Name("dates/write/fmt");
BENCHMARK(WriteDateAndTimeLibrary)->Name("dates/write/strftime");

}  // namespace

int main(int argc, char** argv) {
    Register<Ours>("ours");
    Register<CharConv>("charconv");
    Register<Fmt>("fmt");
    Register<Library>("snprintf_strtod");
    Register<Icu>("icu");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
