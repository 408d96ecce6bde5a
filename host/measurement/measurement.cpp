#include "host/measurement/measurement.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>

#include "comm/comm_exception.h"
#include "host/measurement/missing_port.h"
#include "host/session/channel_intervals.h"
#include "host/words/texts.h"

namespace {
constexpr __int64 kShortestPause = kSecond, kLongestPause = 30 * kSecond;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
}  // namespace

Measurement::Measurement(ILogger& logger, size_t channels, IMeasurementSink& sink, IMeasurementClock& clock,
                         const MeasurementPlan& plan)
    : m_logger(logger),
      m_channels(channels),
      m_sink(sink),
      m_clock(clock),
      m_plan(plan),
      m_follows(plan.follow && logger.Follow()),
      m_pause(kShortestPause) {
    m_logger.Watch(this);
    m_due.assign(channels, 1);
    m_selected = m_due;
    if (m_plan.steps.size() != channels) return;
    m_nextDue.assign(channels, 0);
    for (const DWORD step : m_plan.steps) {
        if (std::find(m_distinctSteps.begin(), m_distinctSteps.end(), step) == m_distinctSteps.end())
            m_distinctSteps.push_back(step);
        if (step == 1) {
            m_distinctSteps.clear();
            break;
        }
    }
}

Measurement::~Measurement() { m_logger.Watch(nullptr); }

void Measurement::OnAnswer(DWORD microsecondsAgo) {
    if (!m_answered) m_answered = m_clock.Steady() - microsecondsAgo;
}

void Measurement::OnChannelFailed(int channel, int code, const char* text) {
    if (channel < 0 || static_cast<size_t>(channel) >= m_channels || m_due[static_cast<size_t>(channel)] == 0) return;
    m_troubles[static_cast<size_t>(channel)] = TroubleOf(code, text);
}

void Measurement::OnDamaged(int code, const char* text) { m_damage = TroubleOf(code, text); }

// By code and text, or the code's own words.
Measurement::Trouble Measurement::TroubleOf(int code, const char* text) {
    return Try([&] { OrvikThrowCommException(code, text); });
}

void Measurement::OnLateAnswer(DWORD milliseconds) {
    ++m_lateAnswers;
    m_latest = std::max(m_latest, milliseconds);
}

template <class Work>
Measurement::Trouble Measurement::Try(Work work) {
    Trouble trouble;
    trouble.any = true;
    trouble.cause = GC_PLUGIN;
    try {
        work();
        trouble.any = false;
    } catch (CCommException* failure) {
        trouble.cause = static_cast<WORD>(failure->m_nError);
        trouble.text = failure->m_strError.GetString();
        failure->Delete();
    } catch (CException* failure) {
        char text[512] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        trouble.text = text[0] != 0 ? std::string(text) : Say(Text::PluginThrew);
    } catch (const std::exception& failure) {
        trouble.text = Say(Text::PluginThrewText, {ToUtf8(failure.what())});
    } catch (...) {
        trouble.text = Say(Text::PluginThrew);
    }
    return trouble;
}

unsigned __int64 Measurement::Planned() const {
    if (m_plan.count != 0) return m_plan.count;
    if (m_plan.duration == 0 || m_plan.interval == 0) return 0;
    return static_cast<unsigned __int64>((m_plan.duration + m_plan.interval - 1) / m_plan.interval);
}

__int64 Measurement::NextDue() const {
    if (!m_begun) return 0;
    __int64 due = m_connected ? DueOf(m_slot) : m_retryAt;
    if (m_plan.interval != 0 && Planned() != 0) due = std::min(due, DueOf(Planned()));
    if (m_plan.duration != 0) due = std::min(due, m_started + m_plan.duration);
    return due;
}

__int64 Measurement::Stamp(__int64 steady) {
    const __int64 now = m_clock.Steady();
    std::optional<RecordingClock::Step> step;
    const __int64 time = m_calendar.Stamp(now, m_clock.Calendar(), step);
    if (step) Event(step->amount != 0 ? RE_CLOCK_STEPPED : RE_CLOCK_AGREES, time, {}, step->amount);
    return m_calendar.At(steady);
}

void Measurement::Event(WORD kind, __int64 time, const std::string& text, __int64 amount) {
    m_sink.OnEvent({time, kind, amount, text});
}

void Measurement::Run() {
    if (m_over) return;
    const __int64 now = m_clock.Steady();
    if (m_begun) {
        if (IsTimeOver(now)) return Finish(Ended::AsPlanned);
        if (now < NextDue()) return;
        CatchUp(now);
        if (IsTimeOver(now)) return Finish(Ended::AsPlanned);
    }
    if (!m_connected && !Connect()) return;
    // What the reading's time has come for is made at once; one that failed, with the new connection.
    if (!m_slotFailed && m_clock.Steady() < DueOf(m_slot)) return;
    Read();
    if (!m_over && IsTimeOver(m_clock.Steady())) Finish(Ended::AsPlanned);
}

bool Measurement::IsTimeOver(__int64 now) {
    const unsigned __int64 planned = Planned();
    if (planned != 0 && m_slot >= planned) return true;
    return m_plan.duration != 0 && now - m_started >= m_plan.duration;
}

// Moves on to the reading that is due now; those before it are missed. Near the end there may be none left.
void Measurement::CatchUp(__int64 now) {
    if (m_plan.interval == 0 || now < m_started) return;
    if (m_plan.shifts && !m_lost) {
        m_started += std::max<__int64>(now - DueOf(m_slot), 0);
        return;
    }
    unsigned __int64 slot = static_cast<unsigned __int64>((now - m_started) / m_plan.interval);
    if (Planned() != 0) slot = std::min(slot, Planned());
    if (slot <= m_slot) return;
    MissOpenSlot();
    DWORD passed = 0;
    if (m_distinctSteps.empty()) {
        passed = static_cast<DWORD>(slot - m_slot);
    } else {
        for (unsigned __int64 missed = m_slot; missed < slot; ++missed) passed += IsAnyDueAt(missed) ? 1 : 0;
    }
    if (passed > 0) {
        const __int64 first = m_calendar.At(DueOf(m_slot)), last = m_calendar.At(DueOf(slot - 1));
        m_missing += passed;
        if (!m_gaps->Missed(last, passed)) {
            CRecordedGap gap;
            gap.from = first;
            gap.until = last;
            gap.missed = passed;
            gap.cause = m_damage.any ? m_damage.cause : static_cast<WORD>(GC_STALLED);
            gap.text = m_damage.any ? m_damage.text : Say(Text::GapStalled);
            m_gaps->Single(std::move(gap));
        }
    }
    m_slot = slot;
    PassOver();
}

// By the plan, whatever was missed before.
bool Measurement::IsAnyDueAt(unsigned __int64 slot) const {
    return m_distinctSteps.empty() ||
           std::any_of(m_distinctSteps.begin(), m_distinctSteps.end(), [=](DWORD step) { return slot % step == 0; });
}

// Readings for which no channel is due.
void Measurement::PassOver() {
    if (!m_nextDue.empty()) m_slot = std::max(m_slot, *std::min_element(m_nextDue.begin(), m_nextDue.end()));
}

// What this reading is to have.
void Measurement::ChooseDue() {
    for (size_t i = 0; i < m_nextDue.size(); ++i) m_due[i] = m_nextDue[i] <= m_slot ? 1 : 0;
}

// The reading that was tried in vain is missed for good.
void Measurement::MissOpenSlot() {
    if (!m_slotFailed) return;
    m_slotFailed = false;
    const __int64 time = m_calendar.At(DueOf(m_slot));
    const DWORD missed = IsAnyDueAt(m_slot) ? 1 : 0;
    m_gaps->Missed(time, missed);
    MissRow(time);
    m_missing += missed;
    ++m_slot;
}

// The row that says where a hole begins.
void Measurement::MissRow(__int64 time) {
    if (m_rowMissing) return;
    m_rowMissing = true;
    m_lastTime = std::max(time, m_lastTime + 1);
    m_sink.OnReading(m_lastTime, std::vector<double>(m_channels, kNan), std::vector<BYTE>(m_channels, RF_MISSING));
}

bool Measurement::Connect() {
    const bool first = !m_begun;
    const Trouble trouble = Try([&] { m_logger.Connect(m_plan.port.c_str(), m_plan.timeout); });
    if (trouble.any && IsStopAsked()) {
        Finish(Ended::Stopped);
        return false;
    }
    if (trouble.any && first && !m_plan.patient) {
        m_failure = trouble.text;
        m_code = trouble.cause;
        m_over = true;
        m_end = Ended::NeverConnected;
        static_cast<void>(Try([&] { m_logger.Disconnect(); }));
        return false;
    }
    const __int64 now = m_clock.Steady();
    if (first) Begin(now);
    if (trouble.any) {
        Lost(trouble, false);
        return false;
    }
    m_connected = true;
    if (first) Event(RE_CONNECTED, Stamp(now), m_plan.port);
    return true;
}

void Measurement::Begin(__int64 now) {
    m_begun = true;
    const __int64 time = Stamp(now);
    m_lastTime = time - 1;
    const IMeasurementSink::Begin begin = m_sink.OnBegin(time);
    m_started = m_lastValue = m_clock.Steady();  // making files may have taken a while, and no reading was due before them
    m_gaps = std::make_unique<GapKeeper>(begin.nextGap, [this](const CRecordedGap& gap) { m_sink.OnGap(gap); });
    if (begin.lastTime < time) return;
    // The calendar was set back while nothing was recorded.
    m_lastTime = begin.lastTime + 1;
    m_calendar.Tie(now, m_lastTime + 1, time);
    Event(RE_CLOCK_STEPPED, m_lastTime, {}, time - m_lastTime);
}

void Measurement::Read() {
    const __int64 began = m_clock.Steady();
    if (!m_slotFailed && m_plan.interval != 0) m_late.Add(began - DueOf(m_slot));
    m_answered.reset();
    m_damage = {};
    m_troubles.assign(m_channels, {});
    ChooseDue();
    CDoubleArray got;
    for (size_t i = 0; i < m_channels; ++i) got.Add(kNan);
    Trouble trouble = Try([&] {
        if (m_selected != m_due) {
            CByteArray due;
            for (const BYTE one : m_due) due.Add(one);
            m_logger.Select(due);
            m_selected = m_due;
        }
        m_logger.ReadSample(got);
    });
    if (trouble.any && IsStopAsked()) return Finish(Ended::Stopped);
    const auto size = static_cast<size_t>(got.GetSize());
    if (!trouble.any && size != m_channels) {
        trouble.any = true;
        trouble.cause = GC_PLUGIN;
        trouble.text = Say(Text::WrongCount, {std::to_string(size), std::to_string(m_channels)});
    }
    std::vector<double> values(m_channels, kNan);
    if (size == m_channels) std::copy_n(got.GetData(), m_channels, values.begin());
    std::vector<BYTE> flags(m_channels, RF_GOOD);
    std::vector<GapKeeper::Failure> failures;
    size_t good = 0;
    for (size_t i = 0; i < m_channels; ++i) {
        if (m_due[i] == 0) {
            values[i] = NotDueValue();
            flags[i] = RF_NOT_DUE;
            continue;
        }
        Trouble& own = m_troubles[i];
        if (!own.any && trouble.any && std::isnan(values[i])) own = trouble;
        if (!own.any) {
            flags[i] = std::isnan(values[i]) ? RF_NO_VALUE : RF_GOOD;
            ++good;
            continue;
        }
        values[i] = kNan;
        flags[i] = RF_MISSING;
        // Channels in a gap are asked for together, so that it ends for all of them.
        auto same = std::find_if(failures.begin(), failures.end(), [&](const GapKeeper::Failure& failure) {
            const bool together = m_plan.steps.empty() || m_plan.steps[failure.channels.front()] == m_plan.steps[i];
            return failure.cause == own.cause && failure.text == own.text && together;
        });
        if (same == failures.end()) same = failures.insert(failures.end(), {own.cause, own.text, {}});
        same->channels.push_back(static_cast<WORD>(i));
    }
    if (m_channels > 0 ? good == 0 : trouble.any) {
        if (!trouble.any)
            trouble = *std::find_if(m_troubles.begin(), m_troubles.end(), [](const Trouble& own) { return own.any; });
        if (m_follows && m_answered) return Damaged(trouble);
        const bool silent = trouble.cause == CCommException::ReceiveTimeout || trouble.cause == CCommException::BadProtocol ||
                            trouble.cause == CCommException::IllegalResponse;
        return m_follows && silent ? Silent(trouble) : Lost(trouble, true);
    }
    const __int64 now = m_clock.Steady();
    if (failures.empty() && m_plan.interval != 0 && now - began > m_plan.interval) {
        ++m_slowReadings;
        m_slowest = std::max(m_slowest, static_cast<DWORD>((now - began) / 1000));
    }
    const __int64 time = std::max(Stamp(m_answered.value_or(now)), m_lastTime + 1);
    if (m_lost) Event(RE_CONNECTED, time, m_plan.port);
    m_lost = m_rowMissing = false;
    m_gaps->Failed(time, failures, 1, [this](WORD channel) { return m_due[channel] != 0; });
    m_sink.OnReading(time, values, flags);
    m_lastTime = time;
    m_lastValue = now;
    m_pause = kShortestPause;
    m_slotFailed = false;
    ++m_made;
    if (!failures.empty()) ++m_missing;
    for (size_t i = 0; i < m_nextDue.size(); ++i) {
        if (m_due[i] != 0) m_nextDue[i] = (m_slot / m_plan.steps[i] + 1) * m_plan.steps[i];
    }
    ++m_slot;
    PassOver();
    if (!failures.empty()) {
        m_failure = failures.front().text;
        m_code = failures.front().cause;
    }
    // Some values came before the line was lost: they are kept, and the line is made anew.
    if (trouble.any) Lost(trouble, false);
}

// The logger gives nothing: it is let go, and tried again later. `reading`: a reading was tried, not only a connection.
void Measurement::Lost(Trouble trouble, bool reading) {
    static_cast<void>(Try([&] { m_logger.Disconnect(); }));
    trouble.text = WhyLost(m_plan.port, trouble.cause, trouble.text);
    m_failure = trouble.text;
    m_code = trouble.cause;
    const __int64 now = m_clock.Steady();
    const __int64 time = std::max(Stamp(now), m_lastTime + 1);
    const bool fresh = !std::exchange(m_lost, true);
    if (fresh) Event(RE_LOST, time, trouble.text);
    m_connected = false;
    // A line that broke off is made anew at once, for a network's may have ended for no lasting reason: then the reading is still
    // made. A port that is gone is looked for every second, however long it is away, and what comes back is asked at once; only a
    // logger that is there and silent is left in peace for longer and longer.
    const bool gone =
        !reading || trouble.cause == CCommException::DeviceNotOpen || trouble.cause == CCommException::HardwareError;
    if (gone) m_pause = kShortestPause;
    m_retryAt = fresh && trouble.cause == CCommException::HardwareError ? now : now + m_pause;
    if (!gone) m_pause = std::min(2 * m_pause, kLongestPause);
    if (reading || m_slotFailed || now >= DueOf(m_slot)) {
        if (m_plan.interval == 0 && reading) {
            MissReading(time, trouble);
        } else {
            // Missing since the reading was due, not since it was given up.
            const __int64 due = m_calendar.At(DueOf(m_slot));
            m_gaps->Failed(m_plan.interval == 0 ? time : std::clamp(due, m_lastTime + 1, time),
                           {{trouble.cause, trouble.text, {}}}, 0);
            m_slotFailed = true;
        }
    }
    if (m_plan.giveUp != 0 && now - m_lastValue >= m_plan.giveUp) Finish(Ended::GivenUp);
}

// The logger is there, and what it said is no reading.
void Measurement::Damaged(const Trouble& trouble) {
    m_failure = trouble.text;
    m_code = trouble.cause;
    MissReading(std::max(Stamp(*m_answered), m_lastTime + 1), trouble);
    if (m_plan.giveUp != 0 && m_clock.Steady() - m_lastValue >= m_plan.giveUp) Finish(Ended::GivenUp);
}

// Nothing came from a logger that talks by itself. Its line stays open: what it says next is not to be missed.
void Measurement::Silent(const Trouble& trouble) {
    m_failure = trouble.text;
    m_code = trouble.cause;
    const __int64 time = std::max(Stamp(m_clock.Steady()), m_lastTime + 1);
    if (std::exchange(m_lost, true)) {
        m_gaps->Failed(time, {{trouble.cause, trouble.text, {}}}, 0);
    } else {
        Event(RE_LOST, time, trouble.text);
        MissReading(time, trouble);
    }
    if (m_plan.giveUp != 0 && m_clock.Steady() - m_lastValue >= m_plan.giveUp) Finish(Ended::GivenUp);
}

// One of those that follow one another without an interval.
void Measurement::MissReading(__int64 time, const Trouble& trouble) {
    m_gaps->Failed(time, {{trouble.cause, trouble.text, {}}}, 1);
    MissRow(time);
    m_lastTime = std::max(m_lastTime, time);
    m_slotFailed = false;
    ++m_missing;
    ++m_slot;
}

void Measurement::Dropped(CRecordedGap gap) {
    m_missing += gap.missed;
    m_gaps->Single(std::move(gap));
}

void Measurement::Stop() {
    if (!m_over) Finish(Ended::Stopped);
}

void Measurement::Finish(Ended end) {
    m_over = true;
    m_end = end;
    if (m_begun) {
        const __int64 now = m_clock.Steady();
        if (end != Ended::Stopped || m_lost) CatchUp(now);
        MissOpenSlot();
        m_gaps->EndAll();
    }
    static_cast<void>(Try([&] { m_logger.Disconnect(); }));
    if (m_begun) Event(RE_ENDED, std::max(Stamp(m_clock.Steady()), m_lastTime + 1), {});
}
