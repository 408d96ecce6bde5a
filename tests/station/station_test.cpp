// The threads of a station with loggers that are in memory, and what they tell; and the file in which the recorder tells it on.
#include <gtest/gtest.h>

#include <cmath>
#include <condition_variable>

#include "comm/comm_exception.h"
#include "comm/line_connection.h"
#include "host/station/port_thread.h"
#include "host/station/station_status.h"
#include "record/recording_reader.h"
#include "tests/support/test_folder.h"
#include "tests/support/time_limit.h"

namespace {

// Two channels; what it does wrong is its name's affair. Notes which thread calls what.
class MemoryLogger : public ILogger {
public:
    enum Kind { Well, Away, Silent, Blocked, Throws };
    explicit MemoryLogger(Kind kind) : m_kind(kind), m_connection(new CLineConnection) { m_connection->AddRef(); }
    ~MemoryLogger() override {
        EXPECT_EQ(GetCurrentThreadId(), m_maker);
        m_connection->Release();
    }
    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char*, DWORD) override {
        Called();
        m_connection->Enter(COrvikConnection::Connecting, "here");
        if (m_kind == Away) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        m_connection->Enter(COrvikConnection::Connected);
    }
    void ReadSample(CDoubleArray& values) override {
        Called();
        m_connection->Enter(COrvikConnection::Working);
        if (m_kind == Silent) OrvikThrowCommException(CCommException::ReceiveTimeout, nullptr);
        if (m_kind == Throws) throw std::string("odd");
        if (m_kind == Blocked) {
            std::unique_lock lock(m_lock);
            m_changed.wait(lock, [&] { return m_aborted; });
            OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        }
        values.SetAt(0, ++m_readings);
        if (m_selected) values.SetAt(1, 7);
        m_connection->Enter(COrvikConnection::Connected);
    }
    void Select(const CByteArray& due) override { m_selected = due.GetAt(1) != 0; }
    void Disconnect() override { Called(); }
    void Watch(IReadingWatch*) override {}
    void Abort() override {
        const std::lock_guard lock(m_lock);
        m_aborted = true;
        m_changed.notify_all();
    }

private:
    void Called() {
        if (m_user == 0) m_user = GetCurrentThreadId();
        EXPECT_EQ(GetCurrentThreadId(), m_user);
        EXPECT_NE(GetCurrentThreadId(), m_maker);
    }
    const Kind m_kind;
    const DWORD m_maker = GetCurrentThreadId();
    DWORD m_user = 0;
    CLineConnection* const m_connection;
    CSerialOrvik m_port;
    double m_readings = 0;
    bool m_selected = true, m_aborted = false;
    std::mutex m_lock;
    std::condition_variable m_changed;
};

// The system's, and ahead of it when it is told so.
class Clock : public SystemClock {
public:
    __int64 Steady() override { return SystemClock::Steady() + ahead; }
    std::atomic<__int64> ahead = 0;
};

class StationTest : public testing::Test, protected TestFolder {
protected:
    Clock clock;
    std::map<std::string, std::unique_ptr<PortThread>> ports;
    struct One {
        std::unique_ptr<LoggerRun> run;
        std::shared_ptr<ReportBox> box = std::make_shared<ReportBox>();
        LoggerReport report;
        std::vector<std::string> sentences;
    };
    std::map<std::string, One> loggers;
    std::atomic<unsigned> news = 0;

    void TearDown() override {
        ports.clear();
        loggers.clear();
    }
    std::string File(const std::string& key) const { return Path(key + ".rec"); }
    void Add(const std::string& key, const std::string& port, MemoryLogger::Kind kind, DWORD count,
             const std::string& file = {}) {
        auto plan = std::make_shared<StationLogger>();
        plan->key = key;
        plan->description.SetValue("sName", key.c_str());
        plan->description.SetValue("Channels.a.sName", "fast");
        plan->description.SetValue("Channels.b.sName", "slow");
        plan->description.SetValue("Channels.b.rInterval", "0.02");
        plan->plan.port = port;
        plan->plan.interval = 5;
        plan->plan.count = count;
        plan->record.path = file.empty() ? File(key) : file;
        plan->record.append = true;
        plan->record.interval = 5'000;
        One& one = loggers[key];
        const auto tell = [this] { return ++news != 0; };
        one.run = std::make_unique<LoggerRun>(plan, std::make_unique<MemoryLogger>(kind), one.box, tell, clock);
        std::unique_ptr<PortThread>& thread = ports[port];
        if (thread == nullptr) thread = std::make_unique<PortThread>(port, clock);
        thread->Add(*one.run);
    }
    // Handles messages and news until that is so.
    template <class Reached>
    void Until(Reached reached) {
        while (!reached()) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            for (auto& [key, one] : loggers) {
                if (one.run == nullptr) continue;
                std::vector<std::string> sentences;
                one.box->Take(one.report, sentences);
                one.sentences.insert(one.sentences.end(), sentences.begin(), sentences.end());
                if (one.report.state == LoggerState::Over) one.run.reset();
            }
        }
    }
    void UntilAllAreOver() {
        Until([&] {
            return std::all_of(loggers.begin(), loggers.end(), [](const auto& one) { return one.second.run == nullptr; });
        });
    }
    void End(const std::string& key) {
        LoggerRun& run = *loggers[key].run;
        run.Abort();
        ports[run.Plan().plan.port]->Wake();
    }
    // Rows with values in the first channel, and in the second.
    std::pair<size_t, size_t> Rows(const std::string& key) const {
        CRecordingReader reader;
        EXPECT_EQ(reader.Open(File(key)), 0u);
        std::pair<size_t, size_t> rows;
        for (ERecordItem item; (item = reader.Next()) != RI_END && item != RI_FAILED;) {
            if (item != RI_READING) continue;
            rows.first += reader.Flags()[0] == RF_GOOD ? 1 : 0;
            rows.second += reader.Flags()[1] == RF_GOOD ? 1 : 0;
        }
        return rows;
    }
};
}  // namespace

TEST_F(StationTest, LoggersOfSeveralPortsAreReadSideBySide) {
    constexpr DWORD kCount = 40;
    for (const char* const key : {"a1", "a2", "b1", "c1", "c2", "c3"}) Add(key, {key[0]}, MemoryLogger::Well, kCount);
    UntilAllAreOver();
    EXPECT_GT(news, 0u);
    for (const auto& [key, one] : loggers) {
        SCOPED_TRACE(key);
        EXPECT_EQ(one.report.made + one.report.missing, kCount) << "whatever this machine had no time for is counted";
        const auto [fast, slow] = Rows(key);
        EXPECT_EQ(fast, one.report.made);
        EXPECT_GE(slow, 1u);
        EXPECT_LE(slow, fast);
        EXPECT_GT(one.report.last[0].time, 0);
        EXPECT_EQ(one.report.last[1].value, 7);
        EXPECT_TRUE(one.report.why.empty());
    }
}

// Each in its own way gives nothing, beside one that is well; all of them end when they are asked to.
TEST_F(StationTest, DeadOnesEndWhenTheyAreAskedTo) {
    Add("well", "w", MemoryLogger::Well, kForEver);
    Add("away", "x", MemoryLogger::Away, kForEver);
    Add("silent", "y", MemoryLogger::Silent, kForEver);
    Add("beside", "y", MemoryLogger::Well, kForEver);
    Add("throws", "z", MemoryLogger::Throws, kForEver);
    Add("blocked", "b", MemoryLogger::Blocked, kForEver);
    Add("nowhere", "n", MemoryLogger::Well, kForEver, Path("none/x.rec"));
    const auto state = [&](const char* key) { return loggers[key].report.state; };
    Until([&] {
        return loggers["well"].report.made > 20 && loggers["beside"].report.made > 20 && state("away") == LoggerState::Silent &&
               state("silent") == LoggerState::Silent && state("throws") == LoggerState::Silent &&
               state("nowhere") == LoggerState::NoFile;
    });
    EXPECT_EQ(state("blocked"), LoggerState::Starting);
    EXPECT_NE(loggers["nowhere"].report.why.find("x.rec"), std::string::npos);
    for (auto& [key, one] : loggers) End(key);
    UntilAllAreOver();
    EXPECT_EQ(loggers["away"].sentences.size(), 1u) << "told once, not with every attempt";
    EXPECT_GT(loggers["silent"].report.missing, 0u);
}

// One goes on while others on its port come and go.
TEST_F(StationTest, LoggersComeAndGoOnARunningPort) {
    Add("stays", "p", MemoryLogger::Well, kForEver);
    for (int round = 0; round < 3; ++round) {
        const std::string key = "r" + std::to_string(round);
        Add(key, "p", MemoryLogger::Well, kForEver);
        Until([&] { return loggers[key].report.made > 3; });
        End(key);
        Until([&] { return loggers[key].run == nullptr; });
    }
    const auto made = loggers["stays"].report.made;
    Until([&] { return loggers["stays"].report.made > made; });
    End("stays");
    UntilAllAreOver();
}

// A plug-in that does not come back is known by the time that its reading takes; others are not suspected for long.
TEST_F(StationTest, AThreadThatHangsIsFound) {
    constexpr __int64 kHour = 3'600'000'000;
    Add("well", "w", MemoryLogger::Well, kForEver);
    Add("blocked", "b", MemoryLogger::Blocked, kForEver);
    Until([&] { return loggers["well"].report.made > 3; });
    EXPECT_FALSE(ports["w"]->Hangs() || ports["b"]->Hangs());
    clock.ahead = kHour;
    Until([&] { return !ports["w"]->Hangs(); });
    EXPECT_TRUE(ports["b"]->Hangs());
    for (auto& [key, one] : loggers) End(key);
    UntilAllAreOver();
}

TEST_F(StationTest, TheStatusComesBackFromItsFile) {
    StationStatus status;
    status.name = "Sjön \"norr\"";
    status.started = 1'795'000'000'000'000, status.written = status.started + 5'000'000;
    StationStatus::Logger logger;
    logger.key = "m1", logger.port = "COM3";
    logger.channels = {{"1", "Air", "\260C"}, {"2", "None", ""}};
    logger.report.state = LoggerState::Partly;
    logger.report.why = "Fl\303\266de fails";
    logger.report.made = 10'000'000'000, logger.report.missing = 3;
    logger.report.last = {{21.5, status.written}, {std::nan(""), status.written}};
    logger.report.causes = {{"Receive timeout", {1}, 2}, {"Device not open", {}, 1}};
    logger.report.file = "a\\b.rec";
    status.loggers = {logger};
    const std::string path = Path("s.status");
    EXPECT_FALSE(StationStatus().Load(path));
    ASSERT_EQ(status.Store(path), 0u);
    ASSERT_EQ(status.Store(path), 0u) << "in the place of the one before";
    StationStatus loaded;
    ASSERT_TRUE(loaded.Load(path));
    EXPECT_EQ(loaded.Json(true), status.Json(true));
    EXPECT_EQ(loaded.Words(false), status.Words(false));
    const std::string json = loaded.Json(true);
    for (const char* const part :
         {R"("station":"Sjön \"norr\"")", R"("state":"partly")", R"("value":21.5)", R"("value":null)", R"("made":10000000000)",
          R"("why":"Flöde fails")", R"("file":"a\\b.rec")", R"({"cause":"Receive timeout","missing":2,"channels":["None"]})"})
        EXPECT_NE(json.find(part), std::string::npos) << part << "\n" << json;
    EXPECT_TRUE(loaded.Runs(status.written + 1'000'000));
    EXPECT_FALSE(loaded.Runs(status.written + StationStatus::kStale));
}
