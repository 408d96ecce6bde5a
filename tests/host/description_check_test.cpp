// The keys of logger descriptions.
#include "host/logger/description_check.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/session/channel_intervals.h"
#include "tests/host/sentence_of.h"
#include "tests/support/described.h"

namespace {
constexpr const char* kKeys[] = {"nSlave", "Line.nBaud", "Channels.*.nRegister", "Channels.*.rScale", nullptr};

// The keys after the check, or the sentence of the refusal.
std::string Checked(const std::vector<const char*>& keys, const char* const* family = kKeys) {
    CPropertyDB db;
    for (const char* const key : keys) EXPECT_TRUE(db.SetValue(key, key));
    if (const std::string sentence = SentenceOf([&] { CheckKeys(db, family); }); !sentence.empty()) return sentence;
    CStringArray found;
    db.EnumAll(found);
    std::string text;
    for (INT_PTR i = 0; i < found.GetSize(); ++i) {
        CString value;
        db.GetValue(found[i], value);
        text += std::string(text.empty() ? "" : " ") + found[i].GetString() + "=" + value.GetString();
    }
    return text;
}
}  // namespace

TEST(DescriptionCheck, KeysAreBroughtToTheirSpelling) {
    EXPECT_EQ(
        Checked({"NSLAVE", "line.nbaud", "channels.Ab.nregister", "CHANNELS.aB.SNAME", "sfamily"}),
        "Channels.Ab.nRegister=channels.Ab.nregister Channels.aB.sName=CHANNELS.aB.SNAME Line.nBaud=line.nbaud nSlave=NSLAVE "
        "sFamily=sfamily");
    // A family that tells no keys keeps its own as they are, but channels are found.
    EXPECT_EQ(Checked({"channels.a.extra", "channels.a.sunit", "Other.key"}, nullptr),
              "Channels.a.extra=channels.a.extra Channels.a.sUnit=channels.a.sunit Other.key=Other.key");
}

TEST(DescriptionCheck, WhatNobodyKnowsIsRefusedWithTheNearest) {
    const struct {
        std::vector<const char*> keys;
        const char *key, *meant;
    } table[] = {{{"Channels.a.rScal"}, "Channels.a.rScal is", "mean rScale?"},
                 {{"nregister"}, "nregister is", "mean Channels.<key>.nRegister?"},
                 {{"Chanels.a.nRegister"}, "Chanels.a.nRegister is", "mean Channels.a.nRegister?"},
                 {{"lines.baud"}, "lines.baud is", "mean Line.nBaud?"},
                 {{"sFamliy"}, "sFamliy is", "mean sFamily?"},
                 {{"Channels.a.rScale.x"}, "Channels.a.rScale.x is", "did you mean"},
                 {{"nSlave", "NSlave"}, "nSlave twice", "case"},
                 {{"Channels.1.rScale", "channels.1.rscale"}, "Channels.1.rScale twice", "case"}};
    for (const auto& row : table) {
        const std::string sentence = Checked(row.keys);
        EXPECT_NE(sentence.find(row.key), std::string::npos) << sentence;
        EXPECT_NE(sentence.find(row.meant), std::string::npos) << sentence;
    }
    CPropertyDB db;
    CStringArray two;
    two.Add("m");
    two.Add("s");
    db.SetValue("Channels.a.sUnit", two);
    EXPECT_THROW(CheckKeys(db, kKeys), Failure);
}

TEST(DescriptionCheck, IntervalsOfChannelsAreMultiples) {
    const struct {
        const char* settings;
        __int64 interval;
        const char* said;  // a sentence, or the steps
    } table[] = {{"Channels.b.rInterval=10", 1'000'000, "1 10"},
                 {"Channels.b.rInterval=0.5", 100'000, "1 5"},
                 {"Channels.b.sGroup=slow; Groups.slow.rInterval=60", 1'000'000, "1 60"},
                 {"Channels.b.rInterval=5; Channels.b.sGroup=slow; Groups.slow.rInterval=60", 1'000'000, "1 5"},
                 {"Channels.b.rInterval=1", 1'000'000, ""},
                 {"Channels.b.rInterval=1.5", 1'000'000, "channel b, 1.5 s, is no whole multiple of the reading interval, 1 s"},
                 {"Channels.b.rInterval=0.5", 1'000'000, "0.5 s, is no"},
                 {"Channels.b.rInterval=1", 0, "1 s, is no"},
                 {"Channels.b.rInterval=often", 1'000'000, "Channels.b.rInterval is no number"},
                 {"Channels.b.rInterval=-1", 1'000'000, "Channels.b.rInterval is no number"},
                 {"Channels.b.rInterval=nan", 1'000'000, "Channels.b.rInterval is no number"},
                 {"Channels.b.sGroup=fast; Groups.slow.rInterval=60", 1'000'000, "Channels.b.sGroup names a group \"fast\""},
                 {"Channels.b.sGroup=slow; Groups.slow.rInterval=0", 1'000'000, "Groups.slow.rInterval is no number"}};
    for (const auto& row : table) {
        CPropertyDB db;
        Describe(db, std::string("Channels.a.sName=A; Channels.b.sName=B; ") + row.settings);
        std::string steps;
        const std::string sentence = SentenceOf([&] {
            for (const DWORD step : ChannelSteps(db, row.interval)) steps += (steps.empty() ? "" : " ") + std::to_string(step);
        });
        EXPECT_TRUE(sentence.empty() ? steps == row.said : sentence.find(row.said) != std::string::npos)
            << row.settings << ": " << steps << sentence;
    }
    EXPECT_TRUE(IsNotDue(NotDueValue()) && std::isnan(NotDueValue()) && !IsNotDue(std::nan("")));
}
