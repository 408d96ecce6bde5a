// Spans and sizes as people type them.
#include "host/words/span_words.h"

#include <gtest/gtest.h>

#include "tests/support/split.h"

namespace {
constexpr __int64 kSecond = 1'000'000, kHour = 3600 * kSecond, kDay = 24 * kHour;
}

TEST(SpanWords, AreReadTheSameEverywhere) {
    const std::pair<__int64, const char*> table[] = {{0, "0|0.0000004 s"},
                                                     {1, "0.0000006 s"},
                                                     {40, "40us"},
                                                     {3, "3 µs"},
                                                     {250'000, " 250 ms "},
                                                     {kSecond, "1.0000000000000000000000000000001 s"},
                                                     {1'500'000, "1.5 s|1,5 s|1500"},
                                                     {20 * kSecond, "20 sek|٢٠ s|２０ｓ"},
                                                     {360 * kSecond, "0.1 h"},
                                                     {600 * kSecond, "10 min"},
                                                     {kHour, "1 hour|1 timme"},
                                                     {2 * kHour, "2 HOURS|2 timmar"},
                                                     {kHour * 3 / 2, "1 h 30 min"},
                                                     {kHour * 3 / 2 + 5 * kSecond, "1h30min5s"},
                                                     {kDay, "1 dag"},
                                                     {2 * kDay, "2 days"},
                                                     {3 * kDay, "3 d"},
                                                     {7 * kDay, "1 week"},
                                                     {14 * kDay, "2 veckor"},
                                                     {9223372036854775807, "9223372036854775807 us"}};
    for (const auto& [microseconds, texts] : table)
        for (const std::string& text : Split(texts)) EXPECT_EQ(SpanFromWords(text), std::optional<__int64>(microseconds)) << text;
}

TEST(SpanWords, WhatIsNoSpanIsRefused) {
    for (const std::string& text :
         Split("| |s|-1 s|+1 s|1.5|1,5|1.|.5 s|1 500 s|1.000,5 s|1,000.5 s|1 m|5 parsec|1 s x|1 s 1 s|1 s 1 h|1 h 30|30 1 h|"
               "1e3 s|0x10 s|inf s|1 s;|9223372036854775808 us|9223372036854776|15250285 weeks|99999999999999999999 s|1:30:00"))
        EXPECT_FALSE(SpanFromWords(text)) << text;
}

TEST(SpanWords, AreWrittenAsTheyAreRead) {
    for (const char* text : {"0 s", "7 d", "36 h", "90 min", "1 s", "250 ms", "1500 us"})
        EXPECT_EQ(WordsFromSpan(*SpanFromWords(text)), text);
}

TEST(SpanWords, Sizes) {
    const std::pair<const char*, unsigned __int64> table[] = {{"0", 0},
                                                              {"4096", 4096},
                                                              {"12 B", 12},
                                                              {"500 kB", 500'000},
                                                              {"100 MiB", 104'857'600},
                                                              {"2 GB", 2'000'000'000},
                                                              {"1,5 GiB", 1'610'612'736},
                                                              {"0.1 gb", 100'000'000},
                                                              {"1TiB", 1ull << 40},
                                                              {"18446744073709551615", 18446744073709551615ull}};
    for (const auto& [text, bytes] : table) EXPECT_EQ(BytesFromWords(text), std::optional<unsigned __int64>(bytes)) << text;
    for (const char* text :
         {"", "MiB", "-1", "1.5", "1.5 B", "1 M", "1 k", "2 GB 1 MB", "2 GBs", "1 PB", "18446744073709551616", "16777216 TiB"})
        EXPECT_FALSE(BytesFromWords(text)) << text;
}
