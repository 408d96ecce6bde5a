// The readings of a session one after the other, from memory or from a recording that may still grow. One thread.
#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/session/damage_gaps.h"
#include "host/session/session.h"

class ReadingSource {
public:
    virtual ~ReadingSource() = default;
    // The next reading; false where there is none, or none yet.
    virtual bool Next() = 0;
    __int64 Time() const { return m_time; }
    const double* Values() const { return m_values; }  // of all channels
    // No reading was made here: the row marks where a stretch without readings begins.
    bool MarksGap() const { return m_marksGap; }
    // What is missing between the reading before and this one, or behind the last one, because the file is damaged there.
    const std::optional<CRecordedGap>& Damage() const { return m_damage; }

protected:
    std::optional<CRecordedGap> m_damage;
    __int64 m_time = 0;
    const double* m_values = nullptr;
    bool m_marksGap = false;
};

// Both ends count.
struct TimeRange {
    __int64 from = std::numeric_limits<__int64>::min(), to = std::numeric_limits<__int64>::max();
};

class MemoryReadings : public ReadingSource {
public:
    MemoryReadings(const Session& session, TimeRange range) : m_session(session), m_range(range) {}
    bool Next() override;

private:
    const Session& m_session;
    const TimeRange m_range;
    INT_PTR m_next = 0;
    std::vector<double> m_row;
};

// Asked again after it had no more, it gives what has come since.
class RecordedReadings : public ReadingSource {
public:
    // Beginning where the index tells.
    RecordedReadings(const RecordedSeries& series, TimeRange range);
    bool Next() override;

    // Nothing more is to be expected; what follows, if anything, is in the file of that name.
    bool HasEnded() const { return m_ended || !m_continued.empty(); }
    const std::string& ContinuedIn() const { return m_continued; }
    unsigned __int64 DamagedBytes() const { return m_damagedBytes; }  // bytes, on the way so far

private:
    const std::string m_path;
    const TimeRange m_range;
    CRecordingReader m_reader;
    bool m_ended = false;
    std::string m_continued;
    unsigned __int64 m_damagedBytes = 0;
    DamageGaps m_damages;
};

std::unique_ptr<ReadingSource> ReadingsOf(const Session& session, TimeRange range = {});
