// Turns the damaged places of a recording into gaps, while its readings go by. Values; one thread.
#pragma once

#include <optional>

#include "record/recording_types.h"

class DamageGaps {
public:
    // Gaps get numbers from `firstNumber` on.
    DamageGaps(size_t channels, DWORD firstNumber) : m_readingSize(24 + 9 * channels), m_next(firstNumber) {}

    void Damaged(unsigned __int64 bytes) { m_bytes += bytes; }
    // The gap between the reading before and the one at `time`, if bytes were damaged there. How many readings are missing is as
    // many as the bytes could hold.
    std::optional<CRecordedGap> Before(__int64 time);
    // The same behind the last reading.
    std::optional<CRecordedGap> AtEnd() { return m_last ? Before(*m_last + 2) : std::nullopt; }

private:
    const unsigned __int64 m_readingSize;  // with its block's header
    unsigned __int64 m_bytes = 0;
    std::optional<__int64> m_last;
    DWORD m_next;
};
