// Recordings as queues, and their sender, against a sink in memory that fails as real ones do.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <random>

#include "host/sending/recording_chain.h"
#include "host/sending/recording_queue.h"
#include "host/sending/sink_sender.h"
#include "record/recorder.h"
#include "tests/support/test_folder.h"

namespace {
constexpr __int64 kFirst = 1'700'000'000'000'000, kStep = 1000;

CPropertyDB Facts(const char* name = "Pump") {
    CPropertyDB facts;
    facts.SetValue("Session.sLogger", name);
    facts.SetValue("Channels.1.sName", "Flow");
    facts.SetValue("Channels.1.sUnit", "l/s");
    facts.SetValue("Channels.2.sName", "Temperature");
    return facts;
}

// A recording that grows: reading n has the time kFirst + n * kStep and the values n and -n.
class Recorded {
public:
    explicit Recorded(const std::string& path) {
        CPropertyDB facts = Facts();
        EXPECT_EQ(m_recorder.Create(path, facts), ERROR_SUCCESS);
    }
    void Add(int from, int to) {
        for (int n = from; n < to; ++n) {
            const double values[] = {static_cast<double>(n), static_cast<double>(-n)};
            EXPECT_EQ(m_recorder.AddReading(kFirst + n * kStep, values), ERROR_SUCCESS);
        }
    }
    void AddGap(DWORD number) { EXPECT_EQ(m_recorder.AddGap({number, kFirst, kFirst + 1, 1, 1, 8, {}, "no answer"}), ERROR_SUCCESS); }
    void GoesOnIn(const char* file) { EXPECT_EQ(m_recorder.AddEvent({kFirst, RE_CONTINUED, 0, file}), ERROR_SUCCESS); }
    CRecorder& Recorder() { return m_recorder; }

private:
    CRecorder m_recorder;
};

// The numbers of the readings in a batch, in their order.
std::vector<int> NumbersIn(const CSinkBatch& batch) {
    std::vector<int> numbers;
    for (const CSinkPart& part : batch.parts) {
        for (size_t row = 0; row < part.times.size(); ++row) {
            EXPECT_EQ(part.times[row], kFirst + static_cast<__int64>(part.Row(row)[0]) * kStep);
            EXPECT_EQ(part.Row(row)[1], -part.Row(row)[0]);
            numbers.push_back(static_cast<int>(part.Row(row)[0]));
        }
    }
    return numbers;
}

std::vector<int> Numbers(int from, int to) {
    std::vector<int> numbers;
    for (int n = from; n < to; ++n) numbers.push_back(n);
    return numbers;
}

// All that there is, in batches of so many values.
std::vector<int> Drain(RecordingQueue& queue, size_t room = 50) {
    std::vector<int> numbers;
    for (bool more = true; more;) {
        CSinkBatch batch;
        size_t left = room;
        more = queue.Fill(batch, left);
        const std::vector<int> some = NumbersIn(batch);
        numbers.insert(numbers.end(), some.begin(), some.end());
        queue.Accept();
    }
    return numbers;
}

RecordingQueue::Plan PlanOf(const TestFolder& folder, bool rotates = false) {
    return {"Plant", "inlet", folder.Path("inlet.rec"), rotates};
}
}  // namespace

TEST(RecordingQueue, GivesEverythingOnceInOrderAndGoesOnWhereItWas) {
    const TestFolder folder;
    Recorded recorded(folder.Path("inlet.rec"));
    recorded.Add(0, 500);
    recorded.AddGap(7);
    RecordingQueue queue(PlanOf(folder), {});
    EXPECT_EQ(Drain(queue), Numbers(0, 500));
    recorded.Add(500, 520);
    // What was not taken comes again.
    CSinkBatch batch;
    size_t room = 20;
    queue.Fill(batch, room);
    EXPECT_EQ(NumbersIn(batch).size(), 10u);
    EXPECT_EQ(batch.parts[0].source->station, "Plant");
    EXPECT_EQ(batch.parts[0].source->began, kFirst);
    EXPECT_EQ(batch.parts[0].source->channels[1].name, "Temperature");
    queue.Reject();
    EXPECT_EQ(Drain(queue), Numbers(500, 520));
    EXPECT_EQ(queue.Behind(), 0u);
    EXPECT_EQ(queue.Sent(), 520u);
    // Another program goes on where this one was.
    recorded.Add(520, 530);
    RecordingQueue next(PlanOf(folder), queue.Place());
    EXPECT_EQ(Drain(next), Numbers(520, 530));
}

TEST(RecordingQueue, FollowsRotationAndFindsTheNextFileByItself) {
    const TestFolder folder;
    const auto file = [&](const char* stamp) { return folder.Path(std::string("inlet-") + stamp + ".rec"); };
    SentPlace place;
    {
        Recorded first(file("20231114T221320Z")), second(file("20231114T221321Z")), stranger(folder.Path("inlet-old.rec"));
        stranger.Add(0, 3);
        first.Add(0, 10);
        second.Add(10, 20);
        first.GoesOnIn("inlet-20231114T221321Z.rec");
        RecordingQueue queue(PlanOf(folder, true), {});
        EXPECT_EQ(Drain(queue), Numbers(0, 20));
        place = queue.Place();
        EXPECT_EQ(place.file, "inlet-20231114T221321Z.rec");
        second.Add(20, 25);
    }
    // The program was killed: no file says that it goes on in the next one.
    Recorded third(file("20231114T221321Z-2"));
    third.Add(25, 30);
    RecordingQueue after(PlanOf(folder, true), place);
    EXPECT_EQ(Drain(after), Numbers(20, 30));
    RecordingQueue again(PlanOf(folder, true), after.Place());
    Drain(again);
    // What was sent before may be cleared away.
    std::filesystem::remove(file("20231114T221320Z"));
    std::filesystem::remove(file("20231114T221321Z"));
    RecordingQueue later(PlanOf(folder, true), place);
    EXPECT_EQ(Drain(later), Numbers(25, 30));
}

// The end of a file may be lost with the power, and other readings take its place.
TEST(RecordingQueue, AFileThatLostItsEndIsPassedAgain) {
    const TestFolder folder;
    const std::string path = folder.Path("inlet.rec");
    SentPlace place;
    {
        Recorded recorded(path);
        recorded.Add(0, 100);
        RecordingQueue queue(PlanOf(folder), {});
        Drain(queue);
        place = queue.Place();
    }
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1000);
    CRecorder recorder;
    ASSERT_EQ(recorder.Resume(path), ERROR_SUCCESS);
    for (int n = 200; n < 300; ++n) {
        const double values[] = {static_cast<double>(n), static_cast<double>(-n)};
        ASSERT_EQ(recorder.AddReading(kFirst + n * kStep, values), ERROR_SUCCESS);
    }
    RecordingQueue queue(PlanOf(folder), place);
    EXPECT_EQ(Drain(queue), Numbers(200, 300));
}

TEST(RecordingQueue, DamageIsAGapThatIsTheSameEachTime) {
    const TestFolder folder;
    const std::string path = folder.Path("inlet.rec");
    { Recorded(path).Add(0, 100); }
    std::string bytes = folder.Read("inlet.rec");
    for (size_t i = bytes.size() / 2; i < bytes.size() / 2 + 200; ++i) bytes[i] = 'x';
    folder.Write("inlet.rec", bytes);
    std::vector<DWORD> numbers;
    for (int time = 0; time < 2; ++time) {
        RecordingQueue queue(PlanOf(folder), {});
        CSinkBatch batch;
        size_t room = CSinkBatch::kValues;
        queue.Fill(batch, room);
        ASSERT_EQ(batch.parts.size(), 1u);
        ASSERT_EQ(batch.parts[0].gaps.size(), 1u);
        const CRecordedGap& gap = batch.parts[0].gaps[0];
        EXPECT_EQ(gap.cause, GC_DAMAGED);
        EXPECT_GE(gap.missed, 100 - NumbersIn(batch).size());
        EXPECT_FALSE(queue.TakeSentences().empty());
        numbers.push_back(gap.number);
    }
    EXPECT_EQ(numbers[0], numbers[1]);
    EXPECT_GE(numbers[0], 0x80000000u);
}

TEST(RecordingQueue, FromNowOnLeavesOutWhatWasThere) {
    const TestFolder folder;
    Recorded recorded(folder.Path("inlet.rec"));
    recorded.Add(0, 50);
    RecordingQueue::Plan plan = PlanOf(folder);
    plan.notBefore = kFirst + 50 * kStep;
    RecordingQueue queue(plan, {});
    EXPECT_EQ(Drain(queue), Numbers(0, 0));
    recorded.Add(50, 60);
    EXPECT_EQ(Drain(queue), Numbers(50, 60));
}

TEST(RecordingQueue, CommentsComeAsAWhole) {
    const TestFolder folder;
    Recorded recorded(folder.Path("inlet.rec"));
    recorded.Add(0, 2);
    RecordingQueue queue(PlanOf(folder), {});
    Drain(queue);
    CPropertyDB facts;
    CInt64Array times;
    CDoubleArray values;
    times.Add(kFirst + 1);
    values.Add(2.5);
    facts.SetValue("Chart.tTagTimes", times);
    facts.SetValue("Chart.rTagValues", values);
    facts.SetValue("Chart.Tags.Comment #0.sText", "4 kΩ");
    ASSERT_EQ(recorded.Recorder().AddFacts(facts), ERROR_SUCCESS);
    CSinkBatch batch;
    size_t room = CSinkBatch::kValues;
    queue.Fill(batch, room);
    ASSERT_EQ(batch.parts.size(), 1u);
    ASSERT_EQ(batch.parts[0].comments.size(), 1u);
    EXPECT_EQ(batch.parts[0].comments[0].text, "4 kΩ");
    EXPECT_EQ(batch.parts[0].comments[0].channel, "1");
}

namespace {
// What a far end holds; it outlives the sinks that reach it.
struct FarEnd {
    std::mutex lock;
    std::map<std::string, std::vector<int>> got;  // by logger, as it came
    size_t batches = 0, told = 0;
    std::atomic<int> failPercent = 0;
    std::atomic<bool> hangs = false;
    std::atomic<size_t> most = CSinkBatch::kValues;  // values before the line breaks
};

class MemorySink : public ISink {
public:
    explicit MemorySink(FarEnd& end) : m_end(end) {}
    void Connect() override { MayFail("no route"); }
    void Deliver(const CSinkBatch& batch) override {
        while (m_end.hangs && !m_aborted) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (m_aborted) throw CSinkFailure("aborted");
        MayFail("refused");
        size_t values = 0;
        for (const CSinkPart& part : batch.parts) values += part.values.size();
        if (values > m_end.most) throw CSinkFailure("the line broke");
        {
            const std::lock_guard lock(m_end.lock);
            ++m_end.batches;
            for (const CSinkPart& part : batch.parts) {
                std::vector<int>& numbers = m_end.got[part.source->logger];
                for (size_t row = 0; row < part.times.size(); ++row) numbers.push_back(static_cast<int>(part.Row(row)[0]));
            }
        }
        MayFail("it came, and nobody knows");
    }
    void Tell(const CSinkStatus&) override {
        const std::lock_guard lock(m_end.lock);
        ++m_end.told;
    }
    void Disconnect() override {}
    void Abort() override { m_aborted = true; }

private:
    void MayFail(const char* why) {
        if (static_cast<int>(m_random() % 100) < m_end.failPercent) throw CSinkFailure(why);
    }
    FarEnd& m_end;
    std::atomic<bool> m_aborted = false;
    std::mt19937 m_random{std::random_device()()};
};

SinkSender::Plan SenderPlan(const TestFolder& folder, int loggers) {
    SinkSender::Plan plan{"broker", "Memory", folder.Path("places"), {}};
    for (int i = 0; i < loggers; ++i)
        plan.loggers.push_back({"Plant", std::to_string(i), folder.Path(std::to_string(i) + ".rec"), false});
    return plan;
}
}  // namespace

// Whatever fails and whenever it is ended: each reading arrives, the first time in its order, and what comes twice is what nobody
// knew to have come.
TEST(SinkSender, NothingIsLostOverFailuresAndEnds) {
    constexpr int kLoggers = 5, kLives = 30, kEach = 40;
    const TestFolder folder;
    FarEnd end;
    std::vector<std::unique_ptr<Recorded>> recorded;
    for (int i = 0; i < kLoggers; ++i) recorded.push_back(std::make_unique<Recorded>(folder.Path(std::to_string(i) + ".rec")));
    int made = 0;
    for (int life = 0; life < kLives; ++life) {
        end.failPercent = life % 3 == 0 ? 60 : 0;
        SinkSender sender(SenderPlan(folder, kLoggers), std::make_unique<MemorySink>(end));
        for (int part = 0; part < 4; ++part) {
            for (const auto& one : recorded) one->Add(made, made + kEach);
            made += kEach;
            std::this_thread::sleep_for(std::chrono::milliseconds(life % 7));
        }
    }
    end.failPercent = 0;
    {
        SinkSender last(SenderPlan(folder, kLoggers), std::make_unique<MemorySink>(end));
        EXPECT_TRUE(last.Finish(20'000));
        EXPECT_EQ(last.Report().behind, 0u);
    }
    for (int i = 0; i < kLoggers; ++i) {
        std::vector<int> first;
        int most = -1;
        for (const int number : end.got[std::to_string(i)]) {
            if (number <= most) continue;
            first.push_back(number);
            most = number;
        }
        EXPECT_EQ(first, Numbers(0, made)) << i;
    }
}

// A line that never holds long enough for a large batch: nothing would ever arrive.
TEST(SinkSender, BatchesBecomeSmallEnoughToArrive) {
    const TestFolder folder;
    FarEnd end;
    end.most = 300;
    Recorded recorded(folder.Path("0.rec"));
    recorded.Add(0, 2000);
    SinkSender sender(SenderPlan(folder, 1), std::make_unique<MemorySink>(end));
    const auto arrived = [&] {
        const std::lock_guard lock(end.lock);
        return end.got["0"].size();
    };
    for (int i = 0; i < 2000 && arrived() < 2000; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(end.got["0"], Numbers(0, 2000));
}

TEST(SinkSender, WhatWaitsIsCountedWhileNobodyIsReached) {
    const TestFolder folder;
    FarEnd end;
    end.failPercent = 100;
    Recorded recorded(folder.Path("0.rec"));
    recorded.Add(0, 1000);
    SinkSender sender(SenderPlan(folder, 1), std::make_unique<MemorySink>(end));
    for (int i = 0; i < 1000 && sender.Report().behind == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_GT(sender.Report().behind, 10'000u);
}

TEST(SinkSender, AFarEndThatHangsIsLeftAndTheRestGoesTheNextTime) {
    const TestFolder folder;
    FarEnd end;
    Recorded recorded(folder.Path("0.rec"));
    recorded.Add(0, 10);
    end.hangs = true;
    {
        SinkSender sender(SenderPlan(folder, 1), std::make_unique<MemorySink>(end));
        sender.Tell(std::make_shared<const CSinkStatus>());
        for (int i = 0; i < 1000 && sender.Report().behind == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_GT(sender.Report().behind, 0u);
        EXPECT_FALSE(sender.Finish(100));
        EXPECT_EQ(sender.Report().why, "aborted");
    }
    end.hangs = false;
    SinkSender sender(SenderPlan(folder, 1), std::make_unique<MemorySink>(end));
    EXPECT_TRUE(sender.Finish(20'000));
    EXPECT_EQ(end.got["0"], Numbers(0, 10));
}
