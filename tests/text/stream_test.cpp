#include "plugins/text/text_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "platform/house_text_internal.h"
#include "plugins/text/text_logger.h"
#include "tests/text/described.h"
#include "tests/text/scripted_line.h"

namespace {
// A logger that is followed, on a scripted line.
class Followed : private IReadingWatch {
public:
    explicit Followed(const std::string& description)
        : line(new ScriptedLine), logger(Described(description), std::unique_ptr<ITransport>(line)) {
        logger.Watch(this);
        line->Come(0.01, "7\n8\n");
        line->Come(0.1, "x\n");
        EXPECT_TRUE(logger.Follow());
    }
    // Opened at 0.05, with what came before thrown away; the line under way then is "x".
    void Begin() {
        logger.Connect("COM1", 1000);
        line->Idle(0.05);
    }
    // "23.5@1.2": a value and when it came; "!3@1.2" a damaged line; "!8" nothing came.
    std::string Read() {
        char time[32] = "", value[32];
        m_answered = -1;
        CDoubleArray values;
        try {
            logger.ReadSample(values);
            std::snprintf(value, sizeof value, "%.10g", values[0]);
        } catch (CCommException* failure) {
            std::snprintf(value, sizeof value, "!%d", static_cast<int>(failure->m_nError));
            reason = failure->m_strError.GetString();
            failure->Delete();
        }
        if (m_answered >= 0) std::snprintf(time, sizeof time, "@%.10g", std::round(m_answered * 1000) / 1000);
        return std::string(value) + time;
    }

    ScriptedLine* const line;
    text::Logger logger;
    std::string reason;

private:
    void OnAnswer(DWORD microsecondsAgo) override { m_answered = line->Seconds() - microsecondsAgo / 1e6; }
    void OnChannelFailed(int, int, const char*) override {}
    void OnLateAnswer(DWORD) override {}
    double m_answered = -1;
};

const std::string kOne = "Channels.1.nField=1";
const std::string kWind = "sStart=$A,; sChecksum=xor; sSeparator=comma; Channels.1.nField=2";

std::string Lines(int from, int to) {
    std::string lines;
    for (int i = from; i <= to; ++i) lines += std::to_string(i) + "\n";
    return lines;
}
}  // namespace

TEST(TextStream, EachLineIsAReading) {
    using Comes = std::vector<std::pair<double, std::string>>;
    const struct {
        const char* name;
        std::string description;
        Comes comes;  // behind "x", a line's end, at 0.1
        double busy;  // how long each reading is handled
        const char* readings;
    } cases[] = {
        {"lines that come together", kOne, {{0.2, "1\n2\n3\n"}, {0.9, "4\n5\n"}}, 0, "1@0.2 2@0.2 3@0.2 4@0.9 5@0.9"},
        {"and while others are handled", kOne, {{0.2, "1\n"}, {0.3, "2\n3"}, {0.5, "3\n"}}, 0.25, "1@0.2 2@0.45 33@0.7"},
        {"what was there before the line was opened is none", kOne, {{0.4, "9\n"}}, 0, "9@0.4"},
        {"a wrong checksum, and another sentence",
         kWind,
         {{0.2, "$A,1*5C\n$A,2*00\n$B,2*00\n$A,3*5E\n$A,4\n"}},
         0,
         "1@0.2 !3@0.2 3@0.2 !3@0.2"},
        {"too few fields, no number, a heading",
         "nFields=2; Channels.1.nField=1; Channels.2.nField=2",
         {{0.2, "t,h\n1,2\n3\nt,h\nready\n-,-\nERR,ERR\n5,6\n"}},
         0,
         "1@0.2 !4@0.2 !4@0.2 !4@0.2 5@0.2"},
        {"of lines with a name that name tells",
         "sFields=keys; Channels.1.sKey=T1",
         {{0.2, "T1=1\nT1#2\nH=7\nT1=-3\n"}},
         0,
         "1@0.2 !4@0.2 -3@0.2"},
        {"half a line", kOne, {{0.2, "1\n"}, {0.5, "2"}, {1.5, "3\n4\n"}}, 0, "1@0.2 !3@0.5 4@1.5"},
        {"half a line, and a whole one, whose first sign comes in either form",
         "sFields=keys; sStart=" + orvik::detail::HouseFrom1252("\xB0") + "; Channels.1.sKey=T",
         {{0.2, "\xB0 T=1\n"}, {0.5, "\xB0 T"}, {1.5, "=2\n\xC2\xB0 T=3\n"}},
         0,
         "1@0.2 !3@0.5 3@1.5"},
        {"a line that is too long", kOne + "; nMostLength=3", {{0.2, "1\n1234\n5\n"}}, 0, "1@0.2 !3@0.2 5@0.2"},
        {"several lines, of which one is missing",
         "nLines=2; sFirst=A; sFields=keys; Channels.1.sKey=A; Channels.2.sKey=B",
         {{0.2, "A=1\nB=1\nA=2\nA=3\nB=3\nB=4\nA=5\nB=5\n"}},
         0,
         "1@0.2 !3@0.2 3@0.2 5@0.2"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        Followed followed(one.description);
        for (const auto& [time, bytes] : one.comes) followed.line->Come(time, bytes);
        followed.Begin();
        std::string readings;
        for (std::string said; said != "!8" && readings.size() < 200; followed.line->Idle(followed.line->Seconds() + one.busy)) {
            said = followed.Read();
            if (said != "!8") readings += (readings.empty() ? "" : " ") + said;
        }
        EXPECT_EQ(readings, one.readings) << followed.reason;
    }
}

// Nothing that waited is used when so much waited that there may be a hole in it; more than can wait is left out. Each is told.
TEST(TextStream, WhatCannotBeKeptIsMissing) {
    Followed held(kOne);
    held.line->Come(0.2, "1\n");
    held.line->Come(1, Lines(1000, 1999));
    held.line->Come(7, "2\n3\n");
    held.Begin();
    EXPECT_EQ(held.Read(), "1@0.2");
    held.line->Idle(6);
    for (size_t i = 0; i < ScriptedLine::kQueue / 5; ++i) ASSERT_EQ(held.Read(), "!3@6") << i;
    EXPECT_TRUE(held.reason.starts_with("the program was held up")) << held.reason;
    EXPECT_EQ(held.Read(), "3@7");

    Followed fast(kOne);
    fast.line->Come(0.2, "1\n");
    const int most = 40'000;
    for (int i = 1; i <= most; i += 100) fast.line->Come(0.3 + i / 1e5, Lines(i, i + 99));
    fast.Begin();
    EXPECT_EQ(fast.Read(), "1@0.2");
    int kept = 0, lost = 0, last = 0;
    for (std::string said; (said = fast.Read()) != "!8"; (said[0] == '!' ? lost : kept) += 1) {
        fast.line->Idle(fast.line->Seconds() + 0.001);
        if (said[0] == '!') continue;
        ASSERT_GT(std::stoi(said), last) << said;
        last = std::stoi(said);
    }
    EXPECT_EQ(kept + lost, most);
    EXPECT_GT(std::min(kept, lost), most / 5);
}
