// What a NaN in a reading means, where only the readings and their gaps are kept: that it is missing, where a gap says so; that
// it was not to be read, by its bits; else that the logger had no value.
#pragma once

#include <vector>

#include "record/recording_types.h"

class MissingCells {
public:
    explicit MissingCells(const std::vector<CRecordedGap>& gaps);
    // ERecordFlag for each value, until the next call. Times must not decrease from call to call.
    const BYTE* FlagsOf(__int64 time, const double* values, size_t count);

private:
    std::vector<CRecordedGap> m_gaps;  // by their beginnings
    std::vector<size_t> m_open;
    size_t m_next = 0;
    std::vector<BYTE> m_flags;
};
