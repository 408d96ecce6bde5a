#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "plugins/text/text_logger.h"
#include "tests/support/borrowed_line.h"
#include "tests/text/described.h"
#include "tests/text/scripted_line.h"

namespace {
// A logger on a scripted line, and what it tells of one reading after the other.
class Told : private IReadingWatch {
public:
    explicit Told(const std::string& description)
        : line(new ScriptedLine), logger(Described(description), std::unique_ptr<ITransport>(line)) {
        logger.Watch(this);
    }
    void Connect(DWORD timeout = 1000) { logger.Connect("COM1", timeout); }

    // "23.5 41 @1.25", the second being when the answer came; "!8" and the text when nothing came.
    std::string Read() {
        answered = 0;
        late = failures = 0;
        reason.clear();
        CDoubleArray values;
        if (const CommFailure failure = FailureOf([&] { logger.ReadSample(values); }); failure.code != 0) {
            reason = failure.text;
            return "!" + std::to_string(failure.code);
        }
        std::string said;
        for (INT_PTR i = 0; i < values.GetSize(); ++i) said += Number(values[i]) + " ";
        got.assign(values.GetData(), values.GetData() + values.GetSize());
        return said + "@" + Number(std::round(answered * 10) / 10);
    }

    ScriptedLine* const line;
    text::Logger logger;
    std::vector<double> got;
    std::string reason;
    double answered = 0;
    DWORD late = 0;
    int failures = 0;

private:
    static std::string Number(double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value);
        return text;
    }
    void OnAnswer(DWORD) override {
        EXPECT_EQ(answered, 0);
        answered = line->Seconds();
    }
    void OnChannelFailed(int, int code, const char* text) override {
        ++failures;
        reason = text == nullptr ? std::to_string(code) : text;
    }
    void OnLateAnswer(DWORD milliseconds) override { late = milliseconds; }
};

const std::string kOne = "Channels.1.nField=1";
const std::string kAsked = "sAsk=MEAS?\\n; " + kOne;
}  // namespace

TEST(TextReader, WhatTalksByItself) {
    // What comes when, when readings begin, and what they give.
    const struct {
        const char* name;
        std::string description;
        std::vector<std::pair<double, std::string>> comes;
        std::vector<std::pair<double, std::string>> readings;
    } cases[] = {
        {"each line once, stamped when it came",
         kOne,
         {{0.3, "1\r\n"}, {1.3, "2\r\n"}, {2.3, "3\r\n"}, {3.3, "4\r\n"}},
         {{0, "2 @1.3"}, {2, "3 @2.3"}, {3, "4 @3.3"}}},
        {"the half line of the beginning", kOne, {{0.1, "3.5\r\n"}, {0.2, "23.5\r\n"}}, {{0, "23.5 @0.2"}}},
        {"in pieces", kOne, {{0.1, "x\r"}, {0.2, "\n2"}, {0.3, "3"}, {0.4, ".5"}, {0.5, "\r\n"}}, {{0, "23.5 @0.5"}}},
        {"an old line is no answer", kOne, {{0.1, "x\r\n1\r\n"}, {60, "2\r\n"}}, {{0, "1 @0.1"}, {100, "!8"}}},
        {"lines between readings are passed over",
         kOne,
         {{0.1, "x\r\n1\r\n"}, {0.2, "2\r\n3\r\n"}, {1.5, "4\r\n"}},
         {{0, "1 @0.1"}, {1, "4 @1.5"}}},
        {"the line under way may end a reading",
         kOne,
         {{0.1, "x\r\n1\r\n"}, {0.6, "2"}, {0.9, "3\r\n4\r\n"}},
         {{0, "1 @0.1"}, {0.7, "23 @0.9"}}},
        {"but not after a pause",
         kOne,
         {{0.1, "x\r\n1\r\n"}, {0.6, "2"}, {1.5, "3\r\n"}, {2.5, "4\r\n"}},
         {{0, "1 @0.1"}, {0.7, "4 @2.5"}}},
        {"nor one that nobody looked at for long",
         kOne,
         {{0.1, "x\r\n1\r\n"}, {0.9, "2"}, {2.1, "3\r\n4\r\n"}},
         {{0, "1 @0.1"}, {2, "4 @2.1"}}},
        {"nor one behind a queue that ran over",
         kOne,
         {{0.1, "x\r\n1\r\n"},
          {0.5, std::string(4000, '7') + "\r\n"},
          {0.6, std::string(90, '8') + "\r\n1" + std::string(9, '2')},
          {1.1, "3\r\n4\r\n"}},
         {{0, "1 @0.1"}, {1, "4 @1.1"}}},
        {"one end or the other", kOne, {{0.1, "\n5\r6\n"}}, {{0, "5 @0.1"}}},
        {"an end of its own", kOne + "; sEnd=>", {{0.1, "1\r\n>\r\n2>"}}, {{0, "!4"}}},
        {"an end of several", kOne + "; sEnd=\\r\\n", {{0.1, "1\r\n2\r3\r\n4\r\n"}}, {{0, "4 @0.1"}}},
        {"headings", kOne + "; nSkip=2", {{0.1, "x\r\n1\r\n2\r\n3\r\n"}}, {{0, "3 @0.1"}}},
        {"lines that begin so", kOne + "; sStart=+", {{0.1, "x\r\n1\r\n+2\r\n"}}, {{0, "2 @0.1"}}},
        {"a damaged line is passed over", kOne + "; sChecksum=xor", {{0.1, "x\r\n1*30\r\n"}, {0.5, "2*32\r\n"}}, {{0, "2 @0.5"}}},
        {"a line without any value too", kOne, {{0.1, "x\r\nready\r\n5\r\n"}}, {{0, "5 @0.1"}}},
        {"several lines from the first on",
         "nLines=2; sFirst=A; sFields=keys; Channels.1.sKey=A; Channels.2.sKey=B",
         {{0.1, "x\r\nB=1\r\nA=2\r\nA=3\r\n"}, {0.7, "B=4\r\n"}},
         {{0, "3 4 @0.7"}}},
        {"no value is an answer", kOne, {{0.1, "x\r\nnan\r\n"}}, {{0, "nan @0.1"}}},
        {"a slow one is waited for", kOne + "; nEvery=10000", {{9, "1\r\n"}, {19, "2\r\n"}}, {{0, "1 @9"}, {9, "2 @19"}}}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        Told told(one.description);
        for (const auto& [time, bytes] : one.comes) told.line->Come(time, bytes);
        told.Connect();
        for (const auto& [time, expected] : one.readings) {
            told.line->Idle(time);
            EXPECT_EQ(told.Read(), expected) << told.reason;
        }
    }
}

// A logger that prints numbers and seven times the number, at any pace, into a queue that runs over: nothing is made up of two
// lines, no line counts twice, and none that was whole before its reading began.
TEST(TextReader, ALineIsItsOwn) {
    std::mt19937 random(7);
    const auto draw = [&](double below) { return std::uniform_real_distribution<double>(0, below)(random); };
    for (int run = 0; run < 300; ++run) {
        Told told("nEvery=3000; Channels.1.nField=1; Channels.2.nField=2");
        const double period = 0.01 + draw(2), interval = run % 3 == 0 ? draw(300) : draw(3);
        std::vector<double> ended = {0};
        double time = draw(1);
        for (int n = 1; time < 6 * interval + 20 && n < 60'000; ++n, time += period * (0.5 + draw(1))) {
            const std::string whole = std::to_string(n) + "," + std::to_string(7 * n) + "\r\n";
            const size_t cut = std::uniform_int_distribution<size_t>(0, whole.size())(random);
            told.line->Come(time, whole.substr(0, cut));
            told.line->Come(time + draw(period / 4), whole.substr(cut));
            ended.push_back(time);
        }
        told.line->Idle(draw(2));
        told.Connect();
        double last = 0;
        int good = 0;
        for (int i = 0; i < 5; ++i) {
            const double began = told.line->Seconds();
            const std::string said = told.Read();
            if (said[0] != '!') {
                ++good;
                ASSERT_EQ(told.got[1], 7 * told.got[0]) << said;
                ASSERT_GT(told.got[0], last);
                ASSERT_GE(told.answered, began);
                // Its last byte came in this reading, up to a quarter of a period after its first.
                ASSERT_GE(ended[static_cast<size_t>(told.got[0])] + period / 4, began) << said << " period " << period;
                last = told.got[0];
            }
            told.line->Idle(began + interval);
        }
        ASSERT_GE(good, 4) << "period " << period << " interval " << interval << ": " << told.reason;
    }
}

TEST(TextReader, WhatIsAsked) {
    // What the far end does with each question, seconds after it; readings one second after the other.
    using Answers = std::vector<std::vector<std::pair<double, std::string>>>;
    const struct {
        const char* name;
        std::string description;
        Answers answers;
        std::vector<std::string> readings;
        size_t questions;
    } cases[] = {
        {"an answer each", kAsked, {{{0.2, "1\r\n"}}, {{0.2, "2\r\n"}}}, {"1 @0.2", "2 @1.4"}, 2},
        {"an echo", kAsked, {{{0.1, "MEAS?\r\n"}, {0.2, "1\r\n"}}}, {"1 @0.2"}, 1},
        {"late, and still its own", kAsked, {{{2.5, "1\r\n"}}}, {"1 @2.5"}, 1},
        // Reading 1 gives up at 3; its answer at 3.5 is there when reading 2 begins at 4.
        {"far too late, and found", kAsked, {{{3.5, "1\r\n"}}, {{0.2, "2\r\n"}}}, {"!8", "2 @4.2"}, 2},
        // Reading 2 waits for it.
        {"far too late, and waited for", kAsked, {{{4.5, "1\r\n"}}, {{0.7, "2\r\n"}}, {{0.3, "3\r\n"}}}, {"!8", "2 @5.2"}, 2},
        {"a bad answer is asked for again", kAsked, {{{0.2, "?\r\n"}}, {{0.2, "2\r\n"}}}, {"2 @0.4"}, 2},
        {"three times", kAsked, {{{0.2, "?\r\n"}}, {{0.2, "?\r\n"}}, {{0.2, "?\r\n"}}, {{0.2, "4\r\n"}}}, {"!4"}, 3},
        // The line that nobody asked for displaces no answer: what follows is thrown away.
        {"a stray line",
         kAsked,
         {{{0.1, "ready\r\n"}, {0.5, "1\r\n"}}, {{0.8, "2\r\n"}}, {{0.2, "3\r\n"}}},
         {"1 @0.5", "3 @2.1"},
         3},
        {"half an answer", kAsked, {{{0.2, "1"}}}, {"!3"}, 1},
        {"several lines",
         kAsked + "; nLines=2; Channels.2.nField=1; Channels.2.nLine=2",
         {{{0.2, "1\r\n"}, {1.9, "2\r\n"}}},
         {"1 2 @1.9"},
         1},
        // Its second line comes when nobody waits any more; it begins no other answer.
        {"half an answer of two lines",
         kAsked + "; nLines=2; Channels.2.nField=1; Channels.2.nLine=2",
         {{{0.2, "1\r\n"}, {4.5, "2\r\n"}}, {{0.1, "3\r\n"}, {0.2, "4\r\n"}}, {{0.1, "5\r\n"}, {0.2, "6\r\n"}}},
         {"!8", "5 6 @8.4"},
         3},
        {"what is there is no answer", kAsked, {{{0.2, "1\r\n"}, {0.3, "9\r\n"}}, {{0.2, "2\r\n"}}}, {"1 @0.2", "2 @1.4"}, 2}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        Told told(one.description);
        size_t questions = 0;
        told.line->onSend = [&](std::string_view asked) {
            EXPECT_EQ(asked, "MEAS?\n");
            if (questions++ >= one.answers.size()) return;
            for (const auto& [after, bytes] : one.answers[questions - 1]) told.line->Come(told.line->Seconds() + after, bytes);
        };
        told.Connect();
        for (const std::string& expected : one.readings) {
            EXPECT_EQ(told.Read(), expected) << told.reason;
            told.line->Idle(told.line->Seconds() + 1);
        }
        EXPECT_EQ(questions, one.questions);
    }
}

// A logger whose answer says when it was asked, with every delay up to six time-outs, silences, echoes and stray lines: what
// counts was asked for in its own reading.
TEST(TextReader, AnAnswerIsOfItsReading) {
    std::mt19937 random(3);
    const auto draw = [&](double below) { return std::uniform_real_distribution<double>(0, below)(random); };
    int good = 0;
    for (int run = 0; run < 1000; ++run) {
        Told told(kAsked);
        const double delay = draw(run % 2 == 0 ? 1 : 4.5), pause = draw(2);
        double free = 0;
        told.line->onSend = [&](std::string_view asked) {
            const double now = told.line->Seconds();
            if (draw(1) < 0.1) return;
            if (draw(1) < 0.1) told.line->Come(now + draw(0.1), asked);
            if (draw(1) < 0.1) told.line->Come(now + draw(0.5), "boot 1.2.3 ok\r\n");
            free = std::max(free, now) + delay * (0.9 + draw(0.2));
            told.line->Come(free, std::to_string(now) + "\r\n");
        };
        told.Connect();
        for (int i = 0; i < 20; ++i) {
            const double began = told.line->Seconds();
            if (told.Read()[0] == '!') {
                // As a measurement does.
                told.logger.Disconnect();
                told.line->Idle(told.line->Seconds() + 1);
                told.Connect();
            } else {
                ++good;
                ASSERT_GE(told.got[0], began - 1e-5) << "run " << run << " delay " << delay << " reading " << i;
            }
            told.line->Idle(told.line->Seconds() + pause);
        }
    }
    EXPECT_GT(good, 8000);
}

// Two loggers of one kind on one line, each late now and then; and one that is dead.
TEST(TextReader, LoggersThatShareALineKeepTheirOwn) {
    std::mt19937 random(5);
    const auto chance = [&](double most) { return std::uniform_real_distribution<double>(0, most)(random); };
    for (const bool dead : {false, true}) {
        ScriptedLine line;
        line.onSend = [&](std::string_view asked) {
            if (dead && asked[0] == '1') return;
            // What is said is the time, a day later for each device.
            const double said = line.Seconds() + 86'400 * (asked[0] - '0');
            if (chance(1) > 0.05)
                line.Come(line.Seconds() + (chance(1) < 0.1 ? chance(5.5) : 0.1), std::to_string(said) + "\r\n");
        };
        std::unique_ptr<text::Logger> loggers[2];
        for (int i = 0; i < 2; ++i) {
            const std::string ask = "sAsk=" + std::to_string(i + 1) + "?\\n; ";
            loggers[i] = std::make_unique<text::Logger>(Described(ask + kOne), std::make_unique<BorrowedLine>(line));
            loggers[i]->Connect("COM1", 1000);
        }
        int good = 0;
        double took = 0;
        for (int round = 0; round < 4000; ++round) {
            const double began = line.Seconds() + 86'400 * (round % 2 + 1);
            CDoubleArray values;
            try {
                loggers[round % 2]->ReadSample(values);
                ASSERT_GE(values[0], began - 1e-5) << round;
                ASSERT_LT(values[0], began + 1000) << round;
                ++good;
            } catch (CCommException* failure) {
                failure->Delete();
            }
            if (round % 2 == 1) took += line.Seconds() + 86'400 * 2 - began;
            line.Idle(line.Seconds() + chance(1));
        }
        EXPECT_GT(good, dead ? 1750 : 3500);
        EXPECT_LT(took / 2000, dead ? 1 : 1.5);
    }
}

TEST(TextReader, WhatNeverEndsIsCutAndTold) {
    Told told(kOne + "; nMostLength=100");
    for (int i = 0; i < 20'000; ++i) told.line->Come(i / 2000.0, "abc\x01");
    told.Connect();
    EXPECT_EQ(told.Read(), "!3");
    EXPECT_TRUE(told.reason.starts_with("a line is longer than 100 characters: \"abc\\x01abc")) << told.reason;
    EXPECT_LT(told.line->Seconds(), 6);

    Told lines(kOne + "; nMostLength=100");
    lines.line->Come(0.1, "x\r\n" + std::string(200, 'y') + "\r\n");
    lines.line->Come(0.2, std::string(300, 'z'));
    lines.Connect();
    EXPECT_EQ(lines.Read(), "!3");
    EXPECT_EQ(lines.reason, "a line is longer than 100 characters: \"" + std::string(60, 'y') + "...\"");
    EXPECT_EQ(lines.failures, 1);

    // A flood of lines that are none ends with the time, whatever there is still to come.
    Told flood(kOne);
    for (int i = 0; i < 4000; ++i) flood.line->Come(i / 1000.0, "no\r\nno\r\n");
    flood.Connect();
    EXPECT_EQ(flood.Read(), "!4");
    EXPECT_LT(flood.line->Seconds(), 3);
}

TEST(TextReader, FailuresThatLastAreToldOnce) {
    Told told("Channels.1.nField=1; Channels.2.nField=2");
    told.line->Come(0.05, "x\r\n");
    for (int i = 0; i < 20; ++i) told.line->Come(i + 0.1, (i < 9 ? "1,x" : i == 9 ? "1,2" : "1,y") + std::to_string(i) + "\r\n");
    told.Connect();
    for (int i = 0; i < 20; ++i) {
        told.line->Idle(i);
        told.Read();
        EXPECT_EQ(told.failures, i == 9 ? 0 : 1) << i;
        EXPECT_NE(told.reason.find(i < 9 ? "1,x0\"" : i == 9 ? "" : "1,y10\""), std::string::npos) << told.reason;
    }
}

TEST(TextReader, LateAnswersAreTold) {
    Told told(kAsked);
    double delay = 1.5;
    told.line->onSend = [&](std::string_view) { told.line->Come(told.line->Seconds() + delay, "1\r\n"); };
    told.Connect();
    told.Read();
    EXPECT_NEAR(told.late, 1494, 2);  // the question itself takes 6 ms
    delay = 0.5;
    told.Read();
    EXPECT_EQ(told.late, 0u);
}

TEST(TextReader, ChannelsThatAreNotDueDoNotMatter) {
    Told told("Channels.1.nField=1; Channels.2.nField=2");
    for (int i = 1; i < 4; ++i) told.line->Come(i, "x,5\r\n");
    CByteArray due;
    due.Add(0);
    due.Add(1);
    told.Connect();
    told.logger.Select(due);
    EXPECT_EQ(told.Read(), "nan 5 @1");
    EXPECT_EQ(told.failures, 0);
    due.SetAt(0, 1);
    due.SetAt(1, 0);
    told.logger.Select(due);
    EXPECT_EQ(told.Read(), "!4");
    EXPECT_EQ(told.failures, 1);
}

TEST(TextReader, AnAbortEndsIt) {
    Told told(kOne);
    told.line->abortAt = 0.5;
    told.Connect();
    EXPECT_EQ(told.Read(), "!9");
    EXPECT_EQ(told.failures, 0);
}
