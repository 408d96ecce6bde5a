// How late readings began: counts in steps of a quarter of an octave, of which the old ones fade, so that it tells of the last
// few thousand readings and takes no memory. Microseconds. Values; one thread.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/win32.h"

class Lateness {
public:
    void Add(__int64 late) {
        const double octaves = std::log2(static_cast<double>(std::max<__int64>(late, 1)));
        m_counts[std::min(static_cast<size_t>(octaves * kPerOctave), m_counts.size() - 1)] += 1;
        m_latest = std::max(m_latest, late);
        if (++m_total < kFade) return;
        m_total = 0;
        for (unsigned& count : m_counts) m_total += count /= 2;
    }
    // What so large a part of the readings (0 to 1) did not pass; 0 before the first.
    double Below(double part) const {
        double left = part * m_total;
        for (size_t i = 0; i < m_counts.size() && m_total > 0; ++i) {
            left -= m_counts[i];
            if (left <= 0) return std::min(std::exp2(static_cast<double>(i + 1) / kPerOctave), static_cast<double>(m_latest));
        }
        return 0;
    }
    __int64 Latest() const { return m_latest; }  // of all

private:
    static constexpr unsigned kFade = 20'000;
    static constexpr double kPerOctave = 4;
    std::array<unsigned, 160> m_counts{};  // up to 2^40 us
    unsigned m_total = 0;
    __int64 m_latest = 0;
};
