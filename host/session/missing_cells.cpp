#include "host/session/missing_cells.h"

#include <algorithm>
#include <cmath>

#include "host/session/channel_intervals.h"

MissingCells::MissingCells(const std::vector<CRecordedGap>& gaps) : m_gaps(gaps) {
    std::sort(m_gaps.begin(), m_gaps.end(), [](const CRecordedGap& a, const CRecordedGap& b) { return a.from < b.from; });
}

const BYTE* MissingCells::FlagsOf(__int64 time, const double* values, size_t count) {
    m_flags.assign(count, RF_GOOD);
    for (size_t i = 0; i < count; ++i) {
        if (std::isnan(values[i])) m_flags[i] = IsNotDue(values[i]) ? RF_NOT_DUE : RF_NO_VALUE;
    }
    // Gaps may lie within others, so those that have begun are looked at until they are over.
    for (; m_next < m_gaps.size() && m_gaps[m_next].from <= time; ++m_next) m_open.push_back(m_next);
    std::erase_if(m_open, [&](size_t gap) { return m_gaps[gap].until < time; });
    for (const size_t gap : m_open) {
        for (size_t i = 0; i < count; ++i) {
            const std::vector<WORD>& channels = m_gaps[gap].channels;
            const bool meant = channels.empty() || std::find(channels.begin(), channels.end(), i) != channels.end();
            if (m_flags[i] == RF_NO_VALUE && meant) m_flags[i] = RF_MISSING;
        }
    }
    return m_flags.data();
}
