// Spans and sizes as people type them.
#include "host/command_line/span_words.h"

#include <gtest/gtest.h>

namespace {
constexpr __int64 kSecond = 1'000'000, kHour = 3600 * kSecond, kDay = 24 * kHour;
}

TEST(SpanWords, AreReadTheSameEverywhere) {
    const struct {
        const char* text;
        __int64 microseconds;
    } table[] = {
        {"1.5 s", 1'500'000},
        {"1,5 s", 1'500'000},
        {"1500", 1'500'000},
        {"0", 0},
        {" 250 ms ", 250'000},
        {"40us", 40},
        {"3 \xB5s", 3},
        {"10 min", 600 * kSecond},
        {"1 hour", kHour},
        {"2 HOURS", 2 * kHour},
        {"0.1 h", 360 * kSecond},
        {"1 timme", kHour},
        {"2 timmar", 2 * kHour},
        {"2 days", 2 * kDay},
        {"1 dag", kDay},
        {"3 d", 3 * kDay},
        {"1 week", 7 * kDay},
        {"2 veckor", 14 * kDay},
        {"20 sek", 20 * kSecond},
        {"1 h 30 min", kHour * 3 / 2},
        {"1h30min5s", kHour * 3 / 2 + 5 * kSecond},
        {"0.0000004 s", 0},
        {"0.0000006 s", 1},
        {"9223372036854775807 us", 9223372036854775807},
        {"1.0000000000000000000000000000001 s", kSecond},
    };
    for (const auto& row : table) {
        const auto span = SpanFromWords(row.text);
        ASSERT_TRUE(span) << row.text;
        EXPECT_EQ(*span, row.microseconds) << row.text;
    }
}

TEST(SpanWords, WhatIsNoSpanIsRefused) {
    for (const char* text : {"",
                             " ",
                             "s",
                             "-1 s",
                             "+1 s",
                             "1.5",
                             "1,5",
                             "1.",
                             ".5 s",
                             "1 500 s",
                             "1.000,5 s",
                             "1,000.5 s",
                             "1 m",
                             "5 parsec",
                             "1 s x",
                             "1 s 1 s",
                             "1 s 1 h",
                             "1 h 30",
                             "30 1 h",
                             "1e3 s",
                             "0x10 s",
                             "inf s",
                             "1 s;",
                             "9223372036854775808 us",
                             "9223372036854776",
                             "15250285 weeks",
                             "99999999999999999999 s",
                             "1:30:00"})
        EXPECT_FALSE(SpanFromWords(text)) << text;
}

TEST(SpanWords, AreWrittenAsTheyAreRead) {
    for (const char* text : {"0 s", "7 d", "36 h", "90 min", "1 s", "250 ms", "1500 us"})
        EXPECT_EQ(WordsFromSpan(*SpanFromWords(text)), text);
}

TEST(SpanWords, Sizes) {
    const struct {
        const char* text;
        unsigned __int64 bytes;
    } table[] = {
        {"0", 0},
        {"4096", 4096},
        {"12 B", 12},
        {"500 kB", 500'000},
        {"100 MiB", 104'857'600},
        {"2 GB", 2'000'000'000},
        {"1,5 GiB", 1'610'612'736},
        {"0.1 gb", 100'000'000},
        {"1TiB", 1ull << 40},
        {"18446744073709551615", 18446744073709551615ull},
    };
    for (const auto& row : table) {
        const auto bytes = BytesFromWords(row.text);
        ASSERT_TRUE(bytes) << row.text;
        EXPECT_EQ(*bytes, row.bytes) << row.text;
    }
    for (const char* text :
         {"", "MiB", "-1", "1.5", "1.5 B", "1 M", "1 k", "2 GB 1 MB", "2 GBs", "1 PB", "18446744073709551616", "16777216 TiB"})
        EXPECT_FALSE(BytesFromWords(text)) << text;
}
