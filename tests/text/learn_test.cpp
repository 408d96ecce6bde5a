#include "plugins/text/text_learn.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "platform/house_text_internal.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_splitter.h"
#include "tests/text/described.h"

namespace {
constexpr int kSure = 70;

// The description as "sFields=keys; Channels.1.sKey=T", and the values of the last line by it as "23.5 41".
struct Learnt {
    explicit Learnt(const std::string& heard, DWORD pause = 0) {
        CPropertyDB db;
        sure = text::Learn(heard, pause, db, shown);
        CStringArray keys;
        db.EnumAll(keys);
        for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
            CString word;
            unsigned int number = 0;
            const std::string value = db.GetValue(keys[i], word)     ? word.GetString()
                                      : db.GetValue(keys[i], number) ? std::to_string(number)
                                                                     : "?";
            description += (i == 0 ? "" : "; ") + std::string(keys[i].GetString()) + "=" + value;
        }
        if (sure == 0) return;
        const text::Description read = text::ReadDescription(db);
        std::string_view rest = heard;
        text::Splitter splitter({}, 4096);
        for (bool whole = false; !rest.empty();) {
            text::Splitter::Line line;
            rest.remove_prefix(splitter.Take(rest, line, whole));
            std::string_view bare = line.text;
            if (!whole || !bare.starts_with(read.start) || TakeChecksum(read.checksum, bare) != text::ChecksumResult::Right)
                continue;
            values.clear();
            for (const text::Outcome& outcome : text::ReadFields(read, {std::string(bare)})) {
                char number[32];
                std::snprintf(number, sizeof number, "%.10g", outcome.value);
                values += (values.empty() ? "" : " ") + std::string(!outcome.IsValue() ? "!" : outcome.noValue ? "-" : number);
            }
        }
    }
    int sure = 0;
    CString shown;
    std::string description, values;
};
}  // namespace

TEST(TextLearn, DescribesWhatItHeard) {
    const struct {
        std::string heard;
        const char* description;  // a part of it
        const char* values;
    } cases[] = {
        {"5,41.2\r\n23.5,41.2\r\n23.6,41.1\r\n23.7,41.0\r\n23",
         "Channels.1.nField=1; Channels.1.sName=#1; Channels.2.nField=2; Channels.2.sName=#2; nFields=2; sFields=separator; "
         "sSeparator=comma",
         "23.7 41"},
        {"time;temp;hum\n12;23,5;41,2\n13;23,6;41,1\n", "Channels.2.sName=temp", "13 23.6 41.1"},
        {"\r23.5\t41\r23.6\t42\r23.7\t43\r", "sSeparator=tab", "23.7 43"},
        {"\n-1.5 C  41 %\n-1.6 C  42 %\n-1.7 C  43 %\n", "Channels.1.sSuffix=C; Channels.1.sUnit=C; Channels.2.nField=3",
         "-1.7 43"},
        {"x\n23.5 C, 41 %\n23.6 C, 42 %\n",
         "Channels.1.nField=1; Channels.1.sName=#1; Channels.1.sSuffix=C; Channels.1.sUnit=C; Channels.2.nField=2", "23.6 42"},
        {"C RH=41%\nT=23.5C RH=41%\nT=23.6C RH=42%\n",
         "Channels.1.sKey=T; Channels.1.sName=T; Channels.1.sSuffix=C; Channels.1.sUnit=C; Channels.2.sKey=RH", "23.6 42"},
        {"x\nT=23,5 H=41,2\nT=23,6 H=41,3\n", "sDecimal=,", "23.6 41.3"},
        {"y\nTemp: 23.5 \xC2\xB0"
         "C, Hum: 41 %\nTemp: 23.6 \xC2\xB0"
         "C, Hum: 42 %\n",
         "Channels.1.sUnit=\xB0"
         "C",
         "23.6 42"},
        {"x\n{\"t\":23.5,\"ok\":true,\"p\":{\"x\":[1,2]}}\n{\"t\":23.6,\"ok\":true,\"p\":{\"x\":[1,3]}}\n",
         "Channels.3.sKey=p.x[1]", "23.6 1 3"},
        {"A*28\r\n$WIMWV,214.8,R,0.1,K,A*28\r\n$WIMWV,214.8,R,0.1,K,A*28\r\n",
         "nFields=6; sChecksum=xor; sFields=separator; sSeparator=comma", "214.8 0.1"},
        {"x\n$A,1,2\n$B,7\n$A,3,4\n$B,8\n$A,5,6\n", "nFields=3; sFields=separator; sSeparator=comma; sStart=$A", "5 6"},
        {"x\nU=1.5mV\nU=0.9V\nU=0.8V\n",
         "Channels.1.sSuffix=mV; Channels.1.sUnit=mV; Channels.2.sKey=U; Channels.2.sName=U V; Channels.2.sSuffix=V", "- 0.8"},
        {"x\nDC 950.0 mV\nDC 1.050 V\nDC 1.060 V\n", "Channels.2.nField=2; Channels.2.sName=#2 V; Channels.2.sSuffix=V",
         "- 1.06"},
        {"x\nT=1;H=2\nT=2;H=3\nH=4\nT=3;H=5\n", "sFields=keys", "3 5"},
        {"boot 1\nready\n5\n6\n7\n", "nFields=1; sFields=separator", "7"},
        {"1\n2\n3\n4\n", "nFields=1", "4"},
        {"12:30:00 23.5\n12:30:01 23.6\n12:30:02 23.7\n", "Channels.1.nField=2", "23.7"},
        {"1,2,3,4,5,6,7,8,9,10\n1,2,3,4,5,6,7,8,9,10\n1,2,3,4,5,6,7,8,9,10\n", "Channels.01.nField=1", "1 2 3 4 5 6 7 8 9 10"}};
    for (const auto& one : cases) {
        const Learnt learnt(one.heard);
        EXPECT_GE(learnt.sure, kSure) << one.heard;
        EXPECT_NE(learnt.description.find(orvik::detail::HouseFrom1252(one.description)), std::string::npos)
            << learnt.description;
        EXPECT_EQ(learnt.values, one.values) << one.heard << learnt.description;
    }
}

TEST(TextLearn, KnowsNamesOfAnyScript) {
    if (OrvikTextCodePage() != CP_UTF8) return;  // names are ASCII there
    const Learnt learnt(
        "μία=1\nθερμοκρασία=23.5°C υγρασία=41%\nθερμοκρασία=23.6°C υγρασία=42%\nθερμοκρασία=23.7°C υγρασία=43%\n");
    EXPECT_GE(learnt.sure, kSure);
    EXPECT_NE(learnt.description.find("Channels.1.sKey=θερμοκρασία"), std::string::npos) << learnt.description;
    EXPECT_EQ(learnt.values, "23.7 43");
}

TEST(TextLearn, IsNotSureOfAnythingElse) {
    std::string noise;
    for (int i = 0; i < 300; ++i) noise += static_cast<char>(i * 7919 >> 3);
    for (const std::string& heard :
         {std::string(), std::string("23.5"), std::string("23.5\n"), std::string("x\n23.5\n"), noise,
          std::string("login:\npassword:\nlogin:\n"), std::string(10000, '1'), std::string("a\nb\nc\nd\n"),
          std::string("\xD4\xBD\xB2\xB3\n\xD4\xBD\xB2\xB3\n\xD4\xBD\xB2\n")})
        EXPECT_LT(Learnt(heard).sure, kSure) << heard;
}

TEST(TextLearn, TellsWhatItTook) {
    const Learnt learnt("x\n$A,1.5 C\n$B,7\n$A,2.5 C\n$A,3.5 C\n", 990);
    EXPECT_EQ(
        std::string(learnt.shown),
        "3 lines such as \"$A,3.5 C\"\n  1  #2  1.5 C\npassed over as other kinds of lines: 1, most of them such as \"$B,7\"\n");
    EXPECT_NE(learnt.description.find("nEvery=1000"), std::string::npos);
}

TEST(TextLearn, WarnsOfWhatItCannotTellApart) {
    const std::pair<const char*, const char*> cases[] = {
        {"x\n{\"u\":950,\"unit\":\"mV\"}\n{\"u\":1.05,\"unit\":\"V\"}\n", "unit changes (\"mV\", \"V\")"},
        {"x\n1,25.1\n2,57.8\n1,25.2\n2,57.9\n", "#1 looks like the number of a source (\"1\", \"2\")"},
        {"7 ohm\n950 ohm\n1.05 kohm\n951 ohm\n", "#1 comes with several units (\"ohm\", \"kohm\")"},
        {"7 V\n5 V\n0\n6 V\n", "#1 comes without a unit as well"},
        {"x\nT=1;H=2\nT=2;H=3\nH=4\nT=3;H=5\n", "1 other lines have only some"},
        {"x\n1,2\nready\n3,4\nok 1\nready\n5,6\n7,8\n", "lines: 3, most of them such as \"ready\""},
    };
    for (const auto& [heard, said] : cases)
        EXPECT_NE(std::string(Learnt(heard).shown).find(said), std::string::npos) << heard << Learnt(heard).shown;
    for (const char* const plain : {"x\n1,25\n2,26\n3,27\n", "x\n{\"at\":\"12:30:01\",\"t\":1}\n{\"at\":\"12:30:02\",\"t\":2}\n"})
        EXPECT_EQ(std::string(Learnt(plain).shown).find("careful"), std::string::npos) << plain;
}
