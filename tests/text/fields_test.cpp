#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "platform/house_text_internal.h"
#include "plugins/text/text_checksum.h"
#include "plugins/text/text_escapes.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_json.h"
#include "plugins/text/text_number.h"
#include "tests/text/described.h"

using namespace text;

namespace {
// Values as "23.5 - !": a value, none, or a failure.
std::string Values(const std::vector<Outcome>& outcomes) {
    std::string values;
    for (const Outcome& outcome : outcomes) {
        char number[32];
        std::snprintf(number, sizeof number, "%.10g", outcome.value);
        values += (values.empty() ? "" : " ") + std::string(!outcome.IsValue() ? "!" : outcome.noValue ? "-" : number);
        EXPECT_EQ(outcome.IsValue(), outcome.text.empty());
    }
    return values;
}

const std::string kTwo = "Channels.1.nField=1; Channels.2.nField=2; ";
const std::string kKeys = "sFields=keys; Channels.1.sKey=T; Channels.2.sKey=RH; ";
const std::string kJson = "sFields=json; Channels.1.sKey=air.t; Channels.2.sKey=p[1]; ";
const std::string kColumns =
    "sFields=columns; Channels.1.nColumn=3; Channels.1.nWidth=5; Channels.2.nColumn=8; Channels.2.nWidth=6; ";
const std::string kRegex =
    "sFields=regex; sPattern=^t(?<a>[^ ]+)(?: h(?<b>.*))?$; Channels.1.sCapture=a; Channels.2.sCapture=b; ";
}  // namespace

TEST(TextFields, ValuesOfLines) {
    const std::string kPrefixed = kTwo + "Channels.1.sPrefix=T; Channels.1.sSuffix=C", kNone = kTwo + "sNoValue=---|ERR|9.9E37";
    const struct {
        std::string description;
        std::vector<std::pair<std::string, const char*>> lines;  // and their values; the lines of one answer parted by "\n"
    } cases[] = {{kTwo,
                  {{"23.5,41.2", "23.5 41.2"},
                   {" 23.5 ;\t-41 ", "23.5 -41"},
                   {"23.5\t41.2", "23.5 41.2"},
                   {"  +.5   41. 7", "0.5 41"},
                   {"1e3,-2.5E-1,x", "1000 -0.25"},
                   {"23.5", "23.5 !"},
                   {"23.5,", "23.5 !"},
                   {"abc,41", "! 41"},
                   {"1.2.3,12:30", "! !"},
                   {"0x1F,1e999", "! !"},
                   {"--5,+-5", "! !"},
                   {"inf,NaN", "! -"},
                   {"23.5 C,1013 hPa", "23.5 1013"},
                   {"23.5\260C,3.2 m3/h", "23.5 3.2"},
                   {"23.5\302\260C,400 W/m2", "23.5 400"},
                   {"23.5 C 7,41%!", "! 41"},
                   {"1 234,5", "! 5"},
                   {std::string("1\0,2", 4), "! 2"},
                   {"\xFF\xFE,\x01", "! !"}}},
                 {kTwo + "sDecimal=,", {{"23,5;41,2", "23.5 41.2"}, {"23,5 41,2", "23.5 41.2"}, {"1.234,5;41", "! 41"}}},
                 {kTwo + "sSeparator=semicolon", {{"1,5;2", "! 2"}}},
                 {kTwo + "sSeparator=::", {{"1::2::3", "1 2"}}},
                 {kTwo + "sSeparator=\\x20", {{"1 2", "1 2"}}},
                 {kTwo + "sSeparator=blanks", {{" 1   2", "1 2"}}},
                 {kTwo + "nFields=2", {{"23,41", "23 41"}, {"23,4124,42", "! !"}}},  // the end between two lines was lost
                 {kTwo + "Channels.1.sSuffix=\\xB0; Channels.1.sPrefix=\\xB5",
                  {{"\xB5"
                    "23.5\xB0,1",
                    "23.5 1"},
                   {"\xC2\xB5"
                    "23.5 \xC2\xB0,1",
                    "23.5 1"}}},
                 {kPrefixed, {{"T23.5C,1", "23.5 1"}, {"T23.5F,1", "! 1"}, {"23.5C,1", "! 1"}}},
                 {kTwo + "Channels.1.sSuffix=mV", {{"950.0 mV 3", "950 !"}}},  // between blanks the unit is a field
                 {"Channels.1.nField=1; Channels.2.nField=1; Channels.1.sSuffix=mV; Channels.2.sSuffix=V",
                  {{"1.05 V", "- 1.05"}, {"1.05 A", "! !"}}},
                 {kTwo + "Channels.1.rScale=0.1; Channels.1.rOffset=-40", {{"500,-0", "10 -0"}}},
                 {kNone, {{"---,err", "- -"}, {"+9.90000000E+37,", "- !"}}},
                 {kTwo + "sNoValue=|-", {{",-", "- -"}}},
                 {kColumns,
                  {{"ab 23.5  1013", "23.5 1013"},
                   {"ab-23.5-101.2", "-23.5 -101.2"},
                   {"ab 23.5", "23.5 !"},
                   {"ab", "! !"},
                   {"\xB0\xB5 23.5  1013", "23.5 1013"},
                   {"\xC2\xB0\xC2\xB5 23.5  1013", "23.5 1013"}}},
                 {kKeys,
                  {{"T=23.5C, RH=41 %", "23.5 41"},
                   {"RH: 41 T: 23.5", "23.5 41"},
                   {"T=23.5 C RH = 41 %", "23.5 41"},
                   {"ST=7 T=23.5|RH=41|", "23.5 41"},
                   {"T=23.5", "23.5 !"},
                   {"T=1 T=2 RH=", "! !"},
                   {"T=23,5 RH=41,x", "! 41"}}},
                 {kKeys + "sSeparator=comma", {{"T = 23.5 , RH:41", "23.5 41"}, {"Air T=1,T=2,RH=3", "2 3"}}},
                 {kKeys + "sDecimal=,", {{"T=23,5 RH=41,2", "23.5 41.2"}}},
                 {kKeys + "nLines=2; sFirst=T", {{"T=23.5\nRH=41", "23.5 41"}}},
                 {kKeys + "nLines=2; sFirst=T; Channels.2.nLine=1", {{"T=23.5\nRH=41", "23.5 !"}}},
                 {kJson,
                  {{"{\"air\":{\"t\":23.5},\"p\":[1,2.5e1]}", "23.5 25"},
                   {" { \"air\" : { \"t\" : \"23.5 C\" } , \"p\" : [ 0 , true ] } ", "23.5 1"},
                   {"{\"air\":{\"t\":null},\"p\":[0,\"x\"]}", "- !"},
                   {"{\"air\":{\"t\":1,\"t\":2},\"p\":[0]}", "! !"},
                   {"{\"air\":{\"t\":23.5},\"p\":[1,2.5e1]", "! !"},
                   {"{\"air\":{\"t\":023.5},\"p\":[1,2]}", "! !"}}},
                 {kRegex, {{"t23.5 h41", "23.5 41"}, {"t23.5", "23.5 !"}, {"T23.5 h41", "! !"}}},
                 {"nLines=2; sAsk=?; Channels.1.nField=1; Channels.2.nField=1; Channels.2.nLine=2", {{"1,2\n3,4", "1 3"}}}};
    for (const auto& one : cases) {
        for (const auto& [text, values] : one.lines) {
            const size_t end = text.find('\n');
            std::vector<std::string> lines{text.substr(0, end)};
            if (end != std::string::npos) lines.push_back(text.substr(end + 1));
            EXPECT_EQ(Values(ReadFields(Described(one.description), lines)), values) << one.description << text;
        }
    }
}

TEST(TextFields, AFailureShowsTheLine) {
    const auto said = [](const std::string& description, const std::string& line) {
        return ReadFields(Described(description), {line}).back().text;
    };
    EXPECT_EQ(said(kTwo, "1,x\r\x01"), "\"x\\r\\x01\" is no number in the line: \"1,x\\r\\x01\"");
    EXPECT_EQ(said(kTwo, "1"), "there is no #2 in the line: \"1\"");
    EXPECT_EQ(said(kTwo + "nFields=2", "1"), "the line has 1 fields instead of 2: \"1\"");
    EXPECT_EQ(said(kKeys, "T=1"), "there is no RH in the line: \"T=1\"");
    EXPECT_EQ(said(kKeys, "RH=1 RH=1"), "RH is there twice in the line: \"RH=1 RH=1\"");
    EXPECT_EQ(said(kJson, "{"), "the line is no JSON: \"{\"");
    EXPECT_EQ(said(kRegex, "x"), "the line does not fit the pattern: \"x\"");
    EXPECT_EQ(said(kTwo, std::string(100, 'x')), "there is no #2 in the line: \"" + std::string(60, 'x') + "...\"");
}

TEST(TextFields, EveryMistakeOfADescriptionNamesItsKey) {
    const auto expectNamed = [](const std::string& key, const std::string& description) {
        const std::string refusal = RefusalOf([&] { Described(description); });
        EXPECT_TRUE(refusal.starts_with(key + ": ")) << description << " -> " << refusal;
    };
    for (const std::string mistake :
         {"sAsk=\\q", "sEnd=\\x1", "nLines=0", "nMostLength=20000", "sFields=xml", "sSeparator=\\", "sDecimal=;", "sChecksum=md5",
          "nEvery=0", "Channels.1.nField=0", "Channels.1.rScale=0", "Channels.1.nLine=2", "Channels.1.sPrefix=\\"})
        expectNamed(mistake.substr(0, mistake.find('=')), kTwo + mistake);
    const std::pair<const char*, std::string> missing[] = {
        {"sFirst", kTwo + "nLines=2"},
        {"Channels", "sName=x"},
        {"Channels.1.nField", "Channels.1.sName=x"},
        {"Channels.1.nWidth", "sFields=columns; Channels.1.nColumn=1"},
        {"Channels.1.sKey", "sFields=json; Channels.1.sName=x"},
        {"sPattern", "sFields=regex; sPattern=(; Channels.1.sCapture=x"},
        {"Channels.1.sCapture", "sFields=regex; sPattern=x; Channels.1.sCapture=x"},
        {"Channels.1.sGroup", "sFields=regex; sPattern=(?<t>.); Channels.1.sGroup=t"},  // that of an interval
        {"sPattern", kTwo + "sPattern=x"},
        {"Channels.1.sKey", "sFields=json; Channels.1.sKey=air["},
        {"Channels.2.nField", kTwo + "nFields=1"},
        {"sDecimal", kTwo + "sDecimal=,; sSeparator=comma"},
        {"nSkip", kTwo + "sAsk=?; nSkip=1"}};
    for (const auto& [key, description] : missing) expectNamed(key, description);
}

TEST(TextChecksum, TakesTheRightOneOnly) {
    using enum Checksum;
    struct Case {
        Checksum kind;
        const char *line, *rest = "";
    };
    const Case right[] = {{Xor, "$WIMWV,214.8,R,0.1,K,A*28", "$WIMWV,214.8,R,0.1,K,A"},
                          {Xor, "!AB*03", "!AB"},
                          {Sum, "123*96", "123"},
                          {Sum, "12396", "123"},
                          {Crc16, "123456789*4B37", "123456789"},
                          {Crc16, "1234567894b37", "123456789"},
                          {None, "23.5*00", "23.5*00"}};  // 4B37 is the check value of this CRC
    for (const auto& [kind, text, rest] : right) {
        std::string_view line = text;
        EXPECT_EQ(TakeChecksum(kind, line), ChecksumResult::Right) << text;
        EXPECT_EQ(line, rest);
        std::string made = rest;
        AddChecksum(kind, made);
        line = made;
        EXPECT_EQ(TakeChecksum(kind, line), ChecksumResult::Right) << made;
    }
    for (const Case& one : {Case{Xor, "$WIMWV,214.9,R,0.1,K,A*28"},
                            {Sum, "124*96"},
                            {Crc16, "123456789*4B36"},
                            {Xor, "$AB03"},
                            {Xor, "$AB*0"},
                            {Xor, ""},
                            {Crc16, "4B"}}) {
        std::string_view line = one.line;
        const bool there = line.size() > 6 || one.kind == Sum;
        EXPECT_EQ(TakeChecksum(one.kind, line), there ? ChecksumResult::Wrong : ChecksumResult::Missing) << one.line;
        EXPECT_EQ(line, one.line);
    }
}

TEST(TextJson, IsStrict) {
    std::vector<JsonLeaf> leaves;
    for (const char* json :
         {"",  "{",   "{}x", "{a:1}",   "{\"a\":1,}", "[1,]", "[1 2]",     "01",    "1.",     ".5",         "1e", "+1",
          "-", "tru", "nul", "\"\\q\"", "\"\\u12\"",  "\"a",  "{\"a\" 1}", "{1:1}", "\"\t\"", "{\"a\":1}}", "NaN"})
        EXPECT_FALSE(ReadJson(json, leaves)) << json;
    EXPECT_FALSE(ReadJson(std::string(5000, '['), leaves));
    ASSERT_TRUE(ReadJson("{\"a\":[{\"b\":-0.5e+3},\"x\\u00B0\\n\\\"\",[],{}],\"\":false}", leaves));
    ASSERT_EQ(leaves.size(), 3u);
    EXPECT_EQ(leaves[0].path, "a[0].b");
    EXPECT_EQ(leaves[0].text, "-0.5e+3");
    EXPECT_EQ(leaves[1].path, "a[1]");
    EXPECT_EQ(leaves[1].text, orvik::detail::HouseFrom1252("x\xB0\n\""));
    EXPECT_EQ(leaves[2].kind, JsonLeaf::False);
    // Deep paths of long names do not add up.
    std::string names;
    for (int i = 0; i < 30; ++i) names += "{\"" + std::string(100, 'n') + "\":";
    EXPECT_TRUE(ReadJson(names + "1" + std::string(30, '}'), leaves));
    EXPECT_TRUE(leaves.empty());
}

TEST(TextEscapes, ComeBack) {
    const std::string degree = orvik::detail::HouseFrom1252("\xB0"),
                      bytes = std::string("\r\n\t\\;\0\x1B\x80 ", 9) + degree + "z";
    EXPECT_EQ(Escape(bytes, ";"), "\\r\\n\\t\\\\\\x3B\\x00\\x1B\\x80 " + degree + "z");
    EXPECT_EQ(Unescape(Escape(bytes, ";")), bytes);
}
