// Readings that come while the window is in use: its own download's, and those that somebody else records. The same on both
// homes.
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "comm/comm_exception.h"
#include "host/gui/listed_ports.h"
#include "host/session/pointed_value.h"
#include "host/session/session_file.h"
#include "record/recorder.h"
#include "tests/host/gui/hands.h"
#include "tests/host/sentence_of.h"
#include "tests/support/test_folder.h"
#include "time/locale_cache.h"

namespace {
constexpr __int64 kBegin = 1'780'000'000'000'000;

// A logger that answers when it is told to, or breaks.
class FedLogger : public ILogger {
public:
    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char*, DWORD) override {}
    void ReadSample(CDoubleArray& values) override {
        std::unique_lock lock(s_lock);
        s_news.wait(lock, [] { return s_left > 0 || s_breaks || s_aborted; });
        if (s_aborted) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        if (std::exchange(s_breaks, false)) OrvikThrowCommException(CCommException::HardwareError, nullptr);
        --s_left;
        values.RemoveAll();
        values.Add(++s_read);
        values.Add(-s_read);
    }
    void Disconnect() override {}
    void Abort() override {
        Tell([] { s_aborted = true; });
    }

    static void Feed(int count) {
        Tell([=] { s_left += count; });
    }
    static void Break() {
        Tell([] { s_breaks = true; });
    }
    static void Reset() {
        s_read = s_left = 0;
        s_breaks = s_aborted = false;
    }

private:
    template <class Change>
    static void Tell(Change change) {
        {
            const std::lock_guard lock(s_lock);
            change();
        }
        s_news.notify_all();
    }
    static inline std::mutex s_lock;
    static inline std::condition_variable s_news;
    static inline int s_read = 0, s_left = 0;
    static inline bool s_breaks = false, s_aborted = false;
    COrvikConnection* m_connection = nullptr;
    CSerialOrvik m_port;
};

class Live : public testing::Test, protected TestFolder {
protected:
    Live() {
        NlsToolsRegister();
        FedLogger::Reset();
        TellingHost::told.clear();
    }
    CPropertyDB Description() {
        CPropertyDB description;
        description.SetValue("sName", "Fed");
        for (const char* key : {"1", "2"}) {
            description.SetValue((std::string("Channels.") + key + ".sName").c_str(), key);
            description.SetValue((std::string("Channels.") + key + ".sUnit").c_str(), "V");
        }
        return description;
    }
    void Connect() {
        CPropertyDB description = Description();
        DownloadPlan plan;
        plan.port = "COM9";
        plan.count = kForEver;
        plan.interval = 0;
        ASSERT_TRUE(hands.window->Connect(std::make_unique<FedLogger>(), description, plan));
        EXPECT_TRUE(::IsWindowEnabled(hands.window->m_hWnd));
    }
    size_t Count() { return hands.window->Document().GetSession()->Count(); }
    template <class Condition>
    void Until(Condition condition) {
        while (!condition()) {
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            hands.Pump();
        }
    }
    void Feed(int count) {
        const size_t wanted = Count() + static_cast<size_t>(count);
        FedLogger::Feed(count);
        Until([&] { return Count() >= wanted; });
    }
    RecordedSeries& Recorded() { return *hands.window->Document().GetSession()->Recorded(); }
    // In seconds since the first reading.
    double Last() {
        const auto& spans = Recorded().Index().Spans();
        return static_cast<double>(spans.back().lastTime - spans.front().firstTime) / 1e6;
    }
    double End() {
        hands.window->Chart().Prepare();
        return hands.window->Chart().ShownTimes().extent;
    }
    void Look(double from, double to) {
        ViewState next = hands.State();
        next.time = ViewRange{from, to};
        hands.History().Do(Text::StepZoom, next);
        hands.window->Chart().StateChanged();
    }

    Hands hands;
};

TEST_F(Live, ADownloadGoesOnBesideTheWork) {
    Connect();
    const StatusLine& line = hands.window->Line();
    Until([&] { return line.live == Say(Text::LiveFirst, {"COM9"}); });
    EXPECT_EQ(line.mark, StatusLine::Mark::Waiting) << "nobody has answered yet";
    Feed(20);
    Until([&] { return line.mark == StatusLine::Mark::Coming; });
    EXPECT_NEAR(End(), Last(), 1e-6) << "all is in view";
    // At the end, the view moves along; elsewhere it stays, and comes back when it is told to.
    Look(Last() / 2, Last());
    const double before = Last();
    Feed(20);
    EXPECT_GT(Last(), before);
    EXPECT_NEAR(End(), Last(), 1e-6);
    EXPECT_FALSE(hands.window->CanCommand(kCommandLatest));
    Look(0, Last() / 4);
    const double stays = End();
    Feed(5);
    EXPECT_EQ(End(), stays);
    hands.Key(VK_END);
    EXPECT_NEAR(End(), Last(), 1e-6);
    Feed(1);
    EXPECT_NEAR(End(), Last(), 1e-6);
    hands.Key('0', false, true);

    // A line that breaks and comes back is a gap; a comment is in the file before anybody saves it.
    FedLogger::Break();
    Until([&] { return line.mark == StatusLine::Mark::Lost && hands.window->List().GetItemText(0, 1) == "\u2013"; });
    EXPECT_NE(line.Said().find(Say(Text::LiveSilent)), std::string::npos) << line.Said();
    Feed(3);
    Until([&] { return line.mark == StatusLine::Mark::Coming; });
    ASSERT_EQ(Recorded().Notes().Gaps().size(), 1u);
    hands.Key(VK_INSERT);
    hands.Type("here");
    hands.Key(VK_RETURN);
    ASSERT_EQ(hands.State().tags.size(), 1u);
    const ViewState::Tag tag = hands.State().tags.front();
    const auto stored = [&] {
        SessionFile other = OpenSession(Recorded().Path());
        ChartModel model(*other.session, {});
        model.Load(*other.db);
        return model.Tags();
    };
    Feed(1);
    Until([&] { return !stored().empty(); });
    Feed(10);
    ASSERT_EQ(stored().size(), 1u);
    EXPECT_EQ(stored().front(), tag) << "though the readings are more by now";

    // It is saved on the way, and again when all is there.
    const std::string file = Path("kept.odb");
    ASSERT_TRUE(hands.window->SaveTo(file));
    EXPECT_FALSE(hands.window->Document().IsModified());
    Feed(1);
    EXPECT_TRUE(hands.window->Document().IsModified());
    EXPECT_EQ(SentenceOf([&] { hands.window->SaveTo(Path("x.csv")); }, kWrongUse), Say(Text::NoSessionName, {Path("x.csv")}));
    ASSERT_TRUE(hands.window->Command(kCommandStop));
    Until([&] { return !hands.window->IsDownloading(); });
    const std::string recording = Recorded().Path();
    const size_t count = Count();
    ASSERT_TRUE(hands.window->SaveTo(file));
    EXPECT_EQ(GetFileAttributesA(recording.c_str()), INVALID_FILE_ATTRIBUTES) << "its readings are the user's now";
    EXPECT_FALSE(hands.window->Document().IsModified());
    EXPECT_EQ(Count(), count);
    EXPECT_EQ(hands.State().tags.front(), tag);
    ASSERT_TRUE(hands.window->Open(file));
    EXPECT_EQ(Count(), count);
    EXPECT_EQ(line.told, Say(Text::OpenedWithGaps, {"1"}));
    EXPECT_TRUE(hands.window->Document().Database().Find("Gaps"));
    EXPECT_TRUE(TellingHost::told.empty());
}

TEST_F(Live, AnotherFileAndTheWindowsEndEndADownload) {
    const std::string other = Path("other.odb");
    Hands::WriteSession(other);
    Connect();
    Feed(3);
    std::string recording = Recorded().Path();
    const auto isThere = [&] { return GetFileAttributesA(recording.c_str()) != INVALID_FILE_ATTRIBUTES; };
    ASSERT_TRUE(isThere() && hands.window->Open(other));
    EXPECT_FALSE(hands.window->IsDownloading());
    EXPECT_EQ(hands.window->Document().Path(), other);
    EXPECT_FALSE(isThere()) << "nobody would ask for it";
    FedLogger::Reset();
    Connect();
    Feed(3);
    recording = Recorded().Path();
    hands.window->Command(kCommandExit);
    Until([&] { return hands.window->m_hWnd == nullptr; });
    EXPECT_FALSE(hands.window->IsDownloading());
    hands.window.reset();
    EXPECT_FALSE(isThere());
}

// What another program records comes into view, with its values at the pointer, until it says that it has ended.
TEST_F(Live, ARecordingThatGrowsIsFollowed) {
    const std::string path = Path("r.rec");
    CRecorder recorder;
    CPropertyDB facts, description = Description();
    DescribeSession(description, "COM9", facts);
    ASSERT_EQ(recorder.Create(path, facts), 0u);
    const auto add = [&](int first, int count) {
        for (int n = first; n < first + count; ++n) {
            const double values[] = {1.0 * n, -1.0 * n};
            ASSERT_EQ(recorder.AddReading(kBegin + n * kSecond, values), 0u);
        }
    };
    add(0, 10);
    ASSERT_TRUE(hands.window->Open(path));
    EXPECT_EQ(Count(), 10u);
    // More than a span of the index, so that one that was open ends and others follow.
    for (const int count : {1, 30, 3000}) {
        add(static_cast<int>(Count()), count);
        const size_t wanted = Count() + static_cast<size_t>(count);
        Until([&] { return Count() >= wanted; });
        EXPECT_EQ(End(), 1.0 * static_cast<double>(wanted - 1));
        const auto latest = static_cast<__int64>(wanted) - 2;
        for (const __int64 second : {0 * latest, latest / 2, latest}) {
            const double expected = static_cast<double>(second);
            const Session& session = *hands.window->Document().GetSession();
            EXPECT_EQ(ValueAt(session, 0, {kBegin + second * kSecond + 1000, kSecond}), expected);
            EXPECT_EQ(ValueAt(session, 1, {kBegin + second * kSecond - 1000, kSecond}), -expected);
        }
        EXPECT_EQ(hands.window->List().GetItemText(0, 1), std::to_string(wanted - 1).c_str());
    }
    EXPECT_FALSE(hands.window->Document().IsModified()) << "it is in the file";
    EXPECT_TRUE(hands.window->Document().Grows());
    // While nothing comes, the chart goes on and the line says so.
    const StatusLine& line = hands.window->Line();
    CRecordedGap gap;
    gap.number = gap.missed = gap.attempts = 1;
    gap.from = recorder.LastTime() + kSecond, gap.until = gap.from + 20 * kSecond;
    ASSERT_EQ(recorder.AddGap(gap), 0u);
    Until([&] { return line.mark == StatusLine::Mark::Lost; });
    EXPECT_EQ(line.live, Say(Text::LiveFollows, {std::to_string(Count())}) + Say(Text::LiveSilent));
    EXPECT_EQ(End(), Last() + 21);
    add(static_cast<int>(Count()) + 21, 1);
    Until([&] { return line.mark == StatusLine::Mark::Coming; });
    ASSERT_EQ(recorder.AddEvent({kBegin, RE_ENDED, 0, {}}), 0u);
    Until([&] { return !hands.window->Document().Grows(); });
}

TEST_F(Live, APortIsDownloadedFromOnce) {
    Connect();
    Feed(1);
    CPropertyDB description = Description();
    EXPECT_EQ(SentenceOf([&] { hands.window->Connect(std::make_unique<FedLogger>(), description, {}); }, kWrongUse),
              Say(Text::DownloadRuns));
    EXPECT_TRUE(hands.window->IsDownloading());
    EXPECT_TRUE(SamePort("COM3", "\\\\.\\com3"));
    EXPECT_FALSE(SamePort("COM3", "COM30"));
    EXPECT_FALSE(SamePort("/dev/ttyUSB0", "/dev/ttyusb0"));
}
}  // namespace
