// Which readings, or channels of them, are missing at the moment, and why: turns failures into gaps, one for each stretch of the
// same failure. A gap is told when it begins, now and then while it goes on, and when it has ended, under the same number.
// One thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "record/recording_types.h"

class GapKeeper {
public:
    using Tell = std::function<void(const CRecordedGap&)>;
    // Gaps are numbered from `firstNumber` on.
    GapKeeper(DWORD firstNumber, Tell tell) : m_next(firstNumber), m_tell(std::move(tell)) {}

    // Channels (none: all) that failed for a reason.
    struct Failure {
        WORD cause = 0;
        std::string text;
        std::vector<WORD> channels;
    };
    // What failed at `time` of one attempt to read; nothing at all ends every gap. `missed` readings are counted to each. A gap
    // whose channels were not asked for, as far as `asked` tells, stays as it is.
    using Asked = std::function<bool(WORD channel)>;
    void Failed(__int64 time, const std::vector<Failure>& failures, DWORD missed, const Asked& asked = nullptr);
    // More readings missed in the gap of all channels that is open; false without one.
    bool Missed(__int64 time, DWORD count);
    // A gap of its own, over at once.
    void Single(CRecordedGap gap);
    void EndAll() { Failed(0, {}, 0); }

    // Since the beginning: readings of which something is missing count once for each kind of cause in the same channels (none:
    // all), told by the first of the kind.
    struct Count {
        std::string text;
        std::vector<WORD> channels;
        DWORD missed = 0;
    };
    const std::vector<Count>& Counts() const { return m_counts; }
    // A cause without what stands in quotes, a damaged line for instance: what differs there alone is of one kind.
    static std::string KindOf(const std::string& text);
    DWORD GapCount() const { return m_gaps; }

private:
    struct Open {
        CRecordedGap gap;
        DWORD told = 0;  // of its missed readings
        __int64 toldAt = 0;
        bool changed = false;  // since it was told
    };
    void TellNow(Open& open);
    void Grow(Open& open, __int64 time, DWORD missed);
    void CountMissed(const CRecordedGap& gap, DWORD missed);

    DWORD m_next;
    Tell m_tell;
    std::vector<Open> m_open;
    std::vector<Count> m_counts;
    DWORD m_gaps = 0;
};
