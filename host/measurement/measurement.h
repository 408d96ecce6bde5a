// A measurement: readings of one logger at even times, whatever the line, the logger or its plug-in do meanwhile. What fails is a
// gap with its cause; a logger that gives nothing is let go and connected again, after pauses that grow from 1 to 30 s; the
// measurement ends when its readings or its time are over, when it is stopped, or when it is told to give up.
//
// Readings are due at the start, one interval later, two intervals later ... by a steady clock. One that is late by less than an
// interval is made at once; those that were passed over are left out, and are a gap. While a logger gives nothing, the reading
// that is due is tried again with each connection until the next one is due. A reading's time is the moment at which its first
// answer arrived, as far as the plug-in tells (IReadingWatch::OnAnswer), else the moment at which it was complete.
//
// A logger that talks by itself can be followed: each thing that it says is a reading, and one that is damaged is a missing one,
// after which the logger goes on and is not let go.
//
// Channels may be read with every second, third ... reading only; where a due one was missed with all others, the next reading
// that is made asks for it. A reading for which no channel is due is none.
//
// One thread, on which Run is called whenever NextDue has come. It waits for nothing but the logger's answers.
#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/logger_family.h"
#include "host/measurement/gap_keeper.h"
#include "host/measurement/lateness.h"
#include "host/measurement/recording_clock.h"

// Where the readings go. What it throws comes out of Run and leaves the measurement as it is.
class IMeasurementSink {
public:
    struct Begin {
        DWORD nextGap = 1;                                       // the number that the next gap gets
        __int64 lastTime = std::numeric_limits<__int64>::min();  // of what is there already; later times follow
    };
    // The first connection stands: now is the time to make files. `time` is now.
    virtual Begin OnBegin(__int64 time) = 0;
    // Before and after: a row of which everything is missing begins each stretch without readings.
    virtual void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) = 0;
    virtual void OnGap(const CRecordedGap& gap) = 0;
    virtual void OnEvent(const CRecordedEvent& event) = 0;

protected:
    ~IMeasurementSink() = default;
};

struct MeasurementPlan {
    std::string port;
    DWORD timeout = 1000;          // ms for every single answer
    __int64 interval = 1'000'000;  // us; 0: one reading after the other
    bool shifts = false;           // a reading that is late puts off the later ones, so that none is left out
    unsigned __int64 count = 0;    // readings, made or missed; 0: no end by their number
    __int64 duration = 0;          // us from the first reading on; 0: no end by time
    __int64 giveUp = 0;            // us without any value after which it ends; 0: never
    bool follow = false;           // all that a logger says by itself is kept (ILogger::Follow); for an interval of 0
    bool patient = false;          // a port that cannot be opened at first is waited for as well
    // With which readings each channel is read (see ChannelSteps); empty: all with every one.
    std::vector<DWORD> steps;
    std::function<bool()> stopAsked;  // why an exchange may have been aborted; may be empty
};

class Measurement : private IReadingWatch {
public:
    // `channels`: how many values a reading has. Logger, sink and clock are the caller's and outlive it.
    Measurement(ILogger& logger, size_t channels, IMeasurementSink& sink, IMeasurementClock& clock, const MeasurementPlan& plan);
    ~Measurement();
    Measurement(const Measurement&) = delete;
    Measurement& operator=(const Measurement&) = delete;

    // Does what is due.
    void Run();
    // When Run has something to do, on the steady clock; in the past: now.
    __int64 NextDue() const;
    // Readings that were made and could not be kept: a gap without a number.
    void Dropped(CRecordedGap gap);
    // Ends it now: what is under way is dropped, what is open is closed. Also the logger is let go.
    void Stop();
    bool IsOver() const { return m_over; }

    // Why it ended, if not as planned or as wished.
    enum class Ended { AsPlanned, Stopped, NeverConnected, GivenUp };
    Ended End() const { return m_end; }
    // The last failure in words, empty before the first, and its cause.
    const std::string& LastFailure() const { return m_failure; }
    LONG LastCode() const { return m_code; }

    bool HasBegun() const { return m_begun; }
    bool IsLost() const { return m_lost; }
    unsigned __int64 Made() const { return m_made; }        // readings with a value at least
    unsigned __int64 Missing() const { return m_missing; }  // readings of which all or something is missing
    unsigned __int64 Planned() const;                       // 0: it has no end by itself
    unsigned __int64 Slot() const { return m_slot; }        // readings whose time has come
    const GapKeeper* Gaps() const { return m_gaps.get(); }

    // How late answers come: how many did, and the longest, in ms.
    DWORD LateAnswers() const { return m_lateAnswers; }
    DWORD Latest() const { return m_latest; }
    // Readings that were whole and yet took longer than the interval, and the longest, in ms.
    DWORD SlowReadings() const { return m_slowReadings; }
    DWORD Slowest() const { return m_slowest; }
    // How long after their times readings began; those that were tried again count for nothing.
    const Lateness& Late() const { return m_late; }

private:
    void OnAnswer(DWORD microsecondsAgo) override;
    void OnChannelFailed(int channel, int code, const char* text) override;
    void OnLateAnswer(DWORD milliseconds) override;
    void OnDamaged(int code, const char* text) override;

    struct Trouble {
        WORD cause = 0;
        std::string text;
        bool any = false;
    };
    // Runs what may throw anything; tells what it threw.
    template <class Work>
    Trouble Try(Work work);
    Trouble TroubleOf(int code, const char* text);

    bool Connect();
    void Begin(__int64 now);
    void Read();
    void ChooseDue();
    bool IsAnyDueAt(unsigned __int64 slot) const;
    void PassOver();
    void Lost(Trouble trouble, bool reading);
    void CatchUp(__int64 now);
    void Silent(const Trouble& trouble);
    void Damaged(const Trouble& trouble);
    void MissReading(__int64 time, const Trouble& trouble);
    void MissOpenSlot();
    void MissRow(__int64 time);
    bool IsStopAsked() const { return m_plan.stopAsked && m_plan.stopAsked(); }
    bool IsTimeOver(__int64 now);
    void Finish(Ended end);
    __int64 Stamp(__int64 steady);
    void Event(WORD kind, __int64 time, const std::string& text, __int64 amount = 0);
    __int64 DueOf(unsigned __int64 slot) const { return m_started + static_cast<__int64>(slot) * m_plan.interval; }

    ILogger& m_logger;
    const size_t m_channels;
    IMeasurementSink& m_sink;
    IMeasurementClock& m_clock;
    const MeasurementPlan m_plan;
    const bool m_follows;  // each thing that the logger says is a reading

    RecordingClock m_calendar;
    std::unique_ptr<GapKeeper> m_gaps;
    bool m_begun = false, m_connected = false, m_over = false;
    Ended m_end = Ended::AsPlanned;
    __int64 m_started = 0;        // steady, of the first reading
    unsigned __int64 m_slot = 0;  // the reading that is to be made next
    bool m_slotFailed = false;    // it was tried in vain
    bool m_lost = false;          // nothing has come since the last failure
    bool m_rowMissing = false;    // a row says so
    __int64 m_lastTime = 0;       // of a row that was handed on
    __int64 m_lastValue = 0;      // steady; when a value last came
    __int64 m_retryAt = 0, m_pause = 0;
    unsigned __int64 m_made = 0, m_missing = 0;
    std::string m_failure;
    LONG m_code = 0;
    std::vector<unsigned __int64> m_nextDue;  // the reading from which on a channel is to be read again
    std::vector<DWORD> m_distinctSteps;       // empty: some channel is read every time
    std::vector<BYTE> m_due, m_selected;      // by channel: to be read now; what the logger was told last

    // Of the reading that is being made.
    std::optional<__int64> m_answered;  // steady
    std::vector<Trouble> m_troubles;    // by channel
    Trouble m_damage;                   // what came and could not be used
    DWORD m_lateAnswers = 0, m_latest = 0, m_slowReadings = 0, m_slowest = 0;
    Lateness m_late;
};
