#include "plugins/text/text_pattern.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/house_text.h"

namespace {
// Groups as "name=text name=-"; "no" where the pattern does not fit.
std::string Groups(const std::string& pattern, const std::string& text) {
    const text::Pattern compiled(pattern);
    std::vector<std::string_view> groups;
    if (!compiled.Find(text, groups)) return "no";
    std::string result;
    for (size_t i = 0; i < groups.size(); ++i)
        result += (i == 0 ? "" : " ") + compiled.Names()[i] + "=" + (groups[i].data() == nullptr ? "-" : std::string(groups[i]));
    return result;
}

std::string Refusal(const std::string& pattern) {
    try {
        const text::Pattern compiled(pattern);
        return {};
    } catch (const std::invalid_argument& why) {
        return why.what();
    }
}
}  // namespace

// Expected results are worked out by the rules of Perl's expressions.
TEST(TextPattern, TakesWhatPerlWouldTake) {
    const struct {
        const char *pattern, *text, *groups;
    } cases[] = {{"(?<t>-?\\d+\\.\\d+)", "T=-23.50 C", "t=-23.50"},
                 {"^(?P<a>[^,]*),(?P<b>.*)$", "1,2,3", "a=1 b=2,3"},
                 {"(?<a>a|ab)(?<b>c|bcd)(?<c>d*)", "abcd", "a=a b=bcd c="},
                 {"(?<x>a*)(?<y>a*)", "aaa", "x=aaa y="},
                 {"(?<x>a*?)(?<y>a*)", "aaa", "x= y=aaa"},
                 {"(?<x>a+?)(?<y>a?\?)(?<z>a*)$", "aaa", "x=a y= z=aa"},
                 {"(?<x>(?:ab){2,3})", "abababab", "x=ababab"},
                 {"(?<x>(?:ab){2,3}?)", "abababab", "x=abab"},
                 {"(?<x>a{3})(?<y>a{2,})", "aaaaaa", "x=aaa y=aaa"},
                 {"^(?<x>a{3})$", "aa", "no"},
                 {"(?:(?<a>a)|(?<b>b))+", "ab", "a=a b=b"},
                 {"(?:(?<a>a)|(?<b>b))", "b", "a=- b=b"},
                 {"(?<x>(?:a*)*)b", "aab", "x=aa"},
                 {"(?<x>(?:a|b|)*)c", "abc", "x=ab"},
                 {"x(?<n>\\w+)y", "axbyxcdy", "n=byxcd"},
                 {"\\bT(?<t>\\d+)", "ST12 T34", "t=34"},
                 {"(?<t>\\d+)\\B", "123", "t=12"},
                 {"[]x](?<t>[^]]+)]", "x7]", "t=7"},
                 {"(?<t>[-+.0-9]+)", "v +1.5-", "t=+1.5-"},
                 {"(?<t>[\\d.]+)\\xB0", "21.5\xB0", "t=21.5"},
                 {"^$", "", ""},
                 {"a|b|(?<c>)", "", "c="},
                 {"(?<t>.)$", "a\xFF", "t=\xFF"},
                 {"end", "the en", "no"}};
    for (const auto& one : cases) EXPECT_EQ(Groups(one.pattern, one.text), one.groups) << one.pattern << " in " << one.text;
}

TEST(TextPattern, TakesCharactersOfAnyScript) {
    if (OrvikTextCodePage() != CP_UTF8) return;  // characters are bytes there
    const struct {
        const char *pattern, *text, *groups;
    } cases[] = {{"^(?<t>.{3})C$", "21°C", "t=21°"},
                 {"[°º](?<t>.)", "21ºΩ", "t=Ω"},
                 {"[^°]+(?<t>[^\\d])", "温度°1", "t=°"},
                 {"(?<t>Ω+)(?<u>[α-ω]?)", "ΩΩω", "t=ΩΩ u=ω"},
                 {"(?<t>[\\d.]+)\\xB0(?<u>\\x80)", "21.5°€", "t=21.5 u=€"},
                 {"[αb-c](?<t>\\W)", "c\U0001F321", "t=\U0001F321"},
                 {"[°]$", "\u00F0", "no"}};
    for (const auto& one : cases) EXPECT_EQ(Groups(one.pattern, one.text), one.groups) << one.pattern << " in " << one.text;
    EXPECT_EQ(text::Pattern("[α-ω]\\W").Example(nullptr), "α ");
}

TEST(TextPattern, RefusesWhatItIsNot) {
    for (const char* pattern :
         {"(",   ")",     "a)",      "(?<a>", "(?<>a)", "(?<a b>c)", "(?<a>b)(?<a>c)", "(?=a)",  "(?<=a)",  "(?<!a)", "(?i)a",
          "[a",  "[b-a]", "[\\d-z]", "*",     "a**",    "a{",        "a{x}",           "a{2,1}", "a{1001}", "{2}",    "\\",
          "\\1", "\\q",   "\\xG0",   "(?<a",  "(?<a>b"})
        EXPECT_NE(Refusal(pattern), "") << pattern;
    EXPECT_EQ(Refusal("a{500}"), "");
    EXPECT_NE(Refusal("(?:a{500}){500}"), "");
    std::string deep = "a", groups;
    for (int i = 0; i < 100; ++i) deep = '(' + deep + ')';
    EXPECT_NE(Refusal(deep), "");
    for (int i = 0; i < 33; ++i) groups += "(?<g" + std::to_string(i) + ">a)";
    EXPECT_NE(Refusal(groups), "");
    // Nothing, very often.
    std::string nothing = "(?:)";
    for (int i = 0; i < 10; ++i) nothing = "(?:" + nothing + "{1000})";
    EXPECT_NE(Refusal(nothing), "");
}

// Patterns that take a searching engine ages; here each is done in moments, or the test's time runs out.
TEST(TextPattern, RunsForeverNowhere) {
    const std::string many(16'384, 'a');
    EXPECT_EQ(Groups("^(?:a+)+$", many + "b"), "no");
    EXPECT_EQ(Groups("^(?:a|a)*$", many + "b"), "no");
    EXPECT_EQ(Groups("^(?:a?){300}a{300}(?<x>b?)$", std::string(300, 'a')), "x=");
    EXPECT_EQ(Groups("(?:.*,){11}(?<p>P)", many), "no");
    EXPECT_EQ(Groups("(?<x>(?:(?:a*)*)*)$", many), "x=" + many);
}

TEST(TextPattern, MakesExamplesOfItself) {
    const auto example = [](const char* pattern) {
        return text::Pattern(pattern).Example([](size_t group) { return "<" + std::to_string(group) + ">"; });
    };
    EXPECT_EQ(example("^T=(?<t>[-0-9.]+)\\s*C(?:, H=(?<h>\\d+)%)?$"), "T=<0>C, H=<1>%");
    EXPECT_EQ(example("error|[xyz]{2}(?<v>.*)|none"), "xx<0>");
}
