#include "host/sending/sink_sender.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "afx/exception.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "time/time_point.h"

namespace {
using namespace std::chrono_literals;
constexpr auto kLook = 200ms;             // between two looks for new readings
constexpr auto kTellEvery = 1s;           // unless a state has changed
constexpr unsigned kLongestPause = 30;    // s
constexpr size_t kMostSentences = 100;    // that wait to be taken
// Values of a batch: few at first, more as they arrive, fewer after one that did not. On a line, or a machine, that never holds long
// enough for a large one nothing would ever arrive, and be sent again and again.
constexpr size_t kFirstRoom = 1000, kLeastRoom = 50;

// Whether what everybody should learn at once has changed; the counts can wait.
bool IsNews(const CSinkStatus* before, const CSinkStatus& now) {
    if (before == nullptr || before->ended != now.ended || before->loggers.size() != now.loggers.size()) return true;
    return !std::equal(now.loggers.begin(), now.loggers.end(), before->loggers.begin(),
                       [](const CSinkLogger& a, const CSinkLogger& b) { return a.logger == b.logger && a.state == b.state; });
}
}  // namespace

SinkSender::SinkSender(Plan plan, std::unique_ptr<ISink> sink)
    : m_plan(std::move(plan)), m_sink(std::move(sink)), m_loggers(m_plan.loggers), m_newLoggers(true), m_room(kFirstRoom) {
    m_report.since = CVXTTime::Now().GetBinaryTime();
    if (!m_plan.places.empty()) m_places.Load(m_plan.places);
    try {
        m_thread = std::thread([this] { Main(); });
    } catch (const std::system_error&) {
        throw Failure{kFileFailed, Say(Text::SinkThread, {ToUtf8(m_plan.key)})};
    }
}

SinkSender::~SinkSender() {
    {
        const std::lock_guard lock(m_lock);
        m_quit = true;
    }
    m_wake.notify_one();
    m_sink->Abort();
    m_thread.join();
}

void SinkSender::SetLoggers(std::vector<RecordingQueue::Plan> loggers) {
    const std::lock_guard lock(m_lock);
    m_loggers = std::move(loggers);
    m_newLoggers = true;
}

void SinkSender::LookForFiles() {
    const std::lock_guard lock(m_lock);
    m_newFiles = true;
}

void SinkSender::Tell(std::shared_ptr<const CSinkStatus> status) {
    const std::lock_guard lock(m_lock);
    m_status = std::move(status);
}

SinkReport SinkSender::Report() {
    const std::lock_guard lock(m_lock);
    SinkReport report = m_report;
    m_report.sentences.clear();
    return report;
}

bool SinkSender::Finish(DWORD most) {
    const auto end = Clock::now() + std::chrono::milliseconds(most);
    std::unique_lock lock(m_lock);
    m_finish = m_newFiles = true;
    m_wake.notify_one();
    m_wake.wait_until(lock, end, [this] { return m_ended; });
    m_quit = true;
    const bool ended = m_ended;
    lock.unlock();
    m_wake.notify_one();
    if (!ended) m_sink->Abort();
    lock.lock();
    // A sink that is to fail soon may take a moment for it.
    m_wake.wait(lock, [this] { return m_ended; });
    return m_allSent;
}

// Runs what may throw anything; false, and the sink is let go, where it does.
template <class Work>
bool SinkSender::Try(Work work) {
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        Lose(failure.what());
    } catch (CException* failure) {
        char text[1024] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        Lose(ToUtf8(text));
    } catch (...) {
        Lose(Say(Text::SinkUnknownFailure));
    }
    return false;
}

void SinkSender::Enter(bool reached, const std::string& why) {
    const std::lock_guard lock(m_lock);
    const bool first = m_report.sent == 0 && m_report.why.empty() && !m_report.reached;
    if (m_report.sentences.size() < kMostSentences) {
        if (reached && !first) m_report.sentences.push_back(Say(Text::SinkReached, {ToUtf8(m_plan.key)}));
        if (!reached && (m_report.reached || why != m_report.why))
            m_report.sentences.push_back(Say(Text::SinkLost, {ToUtf8(m_plan.key), why}));
    }
    if (reached != m_report.reached) m_report.since = CVXTTime::Now().GetBinaryTime();
    m_report.reached = reached;
    m_report.why = why;
}

void SinkSender::Lose(const std::string& why) {
    m_sink->Disconnect();
    m_connected = false;
    m_told.reset();
    const unsigned pause = std::min(1u << std::min(m_failures++, 5u), kLongestPause);
    m_retryAt = Clock::now() + std::chrono::seconds(pause);
    for (const auto& queue : m_queues) queue->Reject();
    Enter(false, why.empty() ? Say(Text::SinkUnknownFailure) : why);
}

void SinkSender::Connect() {
    if (!Try([this] { m_sink->Connect(); })) return;
    m_connected = true;
    // What it takes is seen with the first batch; one without readings has done all it can.
    if (!m_sink->WantsReadings()) m_failures = 0;
    Enter(true, {});
}

// Loggers by their recordings: what stays the same keeps its place and its file.
void SinkSender::TakeLoggers() {
    std::vector<RecordingQueue::Plan> plans;
    {
        const std::lock_guard lock(m_lock);
        if (!std::exchange(m_newLoggers, false)) return;
        plans = m_loggers;
    }
    if (!m_sink->WantsReadings()) return;
    std::vector<std::unique_ptr<RecordingQueue>> before = std::exchange(m_queues, {});
    for (RecordingQueue::Plan& plan : plans) {
        const auto same = std::find_if(before.begin(), before.end(), [&](const auto& queue) {
            return queue != nullptr && queue->Made().logger == plan.logger && queue->Made().path == plan.path;
        });
        if (same != before.end()) {
            m_queues.push_back(std::move(*same));
            continue;
        }
        const auto place = m_places.places.find(plan.logger);
        // Who has been sent before goes on behind that, whatever the settings say of a beginning.
        if (place != m_places.places.end()) plan.notBefore = std::numeric_limits<__int64>::min();
        m_queues.push_back(
            std::make_unique<RecordingQueue>(plan, place != m_places.places.end() ? place->second : SentPlace{}));
    }
    for (const auto& queue : before) {
        if (queue != nullptr) m_sentBefore += queue->Sent();
    }
    m_next = 0;
}

void SinkSender::KeepPlaces() {
    if (m_plan.places.empty()) return;
    for (const auto& queue : m_queues) {
        if (!queue->Place().file.empty()) m_places.places[queue->Made().logger] = queue->Place();
    }
    m_kept = true;
    const DWORD error = m_places.Store(m_plan.places);
    const std::string sentence =
        error == ERROR_SUCCESS ? std::string() : Say(Text::SinkPlaceNotKept, {ToUtf8(m_plan.places), Reason(error)});
    // On Windows somebody may be reading it at this moment; the next batch keeps it.
    if (sentence != m_placesError && error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) {
        const std::lock_guard lock(m_lock);
        if (!sentence.empty()) m_report.sentences.push_back(sentence);
        m_placesError = sentence;
    }
}

void SinkSender::Count() {
    unsigned __int64 sent = m_sentBefore, behind = 0;
    __int64 upTo = 0;
    std::vector<std::string> sentences;
    for (const auto& queue : m_queues) {
        sent += queue->Sent();
        behind += queue->Behind();
        upTo = std::max(upTo, queue->Place().time);
        for (std::string& sentence : queue->TakeSentences()) sentences.push_back(std::move(sentence));
    }
    const std::lock_guard lock(m_lock);
    m_report.sent = sent;
    m_report.behind = behind;
    m_report.upTo = upTo;
    for (std::string& sentence : sentences) {
        if (m_report.sentences.size() < kMostSentences) m_report.sentences.push_back(std::move(sentence));
    }
}

// One batch: what the loggers have, each in its turn. True: there is more.
bool SinkSender::Deliver() {
    CSinkBatch batch;
    size_t room = m_room;
    bool more = false;
    for (size_t i = 0; i < m_queues.size() && !more; ++i) {
        more = m_queues[m_next]->Fill(batch, room);
        m_next = (m_next + 1) % m_queues.size();
    }
    const bool sends = !batch.parts.empty();
    if (sends) Count();  // a far end that hangs keeps this thread, and what waits is to be seen meanwhile
    if (sends && !Try([&] { m_sink->Deliver(batch); })) {
        m_tooMuch = m_room;
        m_room = std::max(m_room / 4, kLeastRoom);
        return false;
    }
    if (sends) {
        m_failures = 0;
        m_room = std::min(m_room * 2 < m_tooMuch ? m_room * 2 : m_room + m_room / 8, CSinkBatch::kValues);
    }
    for (const auto& queue : m_queues) queue->Accept();
    const bool first = !m_kept && std::any_of(m_queues.begin(), m_queues.end(), [](const auto& queue) { return !queue->Place().file.empty(); });
    if (sends || first) KeepPlaces();
    return more;
}

// True: at once again.
bool SinkSender::Round() {
    TakeLoggers();
    const Clock::time_point now = Clock::now();
    if (!m_connected && now >= m_retryAt) Connect();
    if (!m_connected) return Count(), false;
    std::shared_ptr<const CSinkStatus> status;
    bool newFiles = false;
    {
        const std::lock_guard lock(m_lock);
        status = m_status;
        newFiles = std::exchange(m_newFiles, false);
    }
    for (const auto& queue : m_queues) {
        if (newFiles) queue->LookSoon();
    }
    if (status != nullptr && status != m_told && (now - m_toldAt >= kTellEvery || IsNews(m_told.get(), *status))) {
        m_toldAt = now;
        m_told = status;
        if (!Try([&] { m_sink->Tell(*status); })) return false;
    }
    const bool more = Deliver();
    Count();
    return more && m_connected;
}

void SinkSender::Main() {
    std::unique_lock lock(m_lock);
    while (!m_quit) {
        const bool finishing = m_finish;
        lock.unlock();
        const bool again = Round();
        // What was there when the end was asked for has arrived, or cannot.
        m_allSent = finishing && !again && m_connected;
        lock.lock();
        if (finishing && !again) break;
        if (!again) m_wake.wait_for(lock, kLook, [&] { return m_quit || m_finish != finishing; });
    }
    lock.unlock();
    m_sink->Disconnect();
    lock.lock();
    m_ended = true;
    m_wake.notify_all();
}
