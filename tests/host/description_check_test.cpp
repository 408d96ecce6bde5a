// The keys of logger descriptions.
#include "host/description_check.h"

#include <gtest/gtest.h>

#include "host/console.h"

namespace {
constexpr const char* kKeys[] = {"nSlave", "Line.nBaud", "Channels.*.nRegister", "Channels.*.rScale", nullptr};

// The keys after the check, or the sentence of the refusal.
std::string Checked(const std::vector<const char*>& keys, const char* const* family = kKeys) {
    CPropertyDB db;
    for (const char* const key : keys) EXPECT_TRUE(db.SetValue(key, key));
    try {
        CheckKeys(db, family);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.exitCode, kWrongUse);
        return failure.sentence;
    }
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
    } table[] = {
        {{"Channels.a.rScal"}, "Channels.a.rScal is", "mean rScale?"},
        {{"nregister"}, "nregister is", "mean Channels.<key>.nRegister?"},
        {{"Chanels.a.nRegister"}, "Chanels.a.nRegister is", "mean Channels.a.nRegister?"},
        {{"lines.baud"}, "lines.baud is", "mean Line.nBaud?"},
        {{"sFamliy"}, "sFamliy is", "mean sFamily?"},
        {{"Channels.a.rScale.x"}, "Channels.a.rScale.x is", "did you mean"},
        {{"nSlave", "NSlave"}, "nSlave twice", "case"},
        {{"Channels.1.rScale", "channels.1.rscale"}, "Channels.1.rScale twice", "case"},
    };
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
