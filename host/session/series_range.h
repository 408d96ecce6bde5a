// The lowest and highest values of stretches of a series. Pure functions on values; any thread.
#pragma once

#include <cstddef>
#include <vector>

// The lowest and highest finite value of readings first to last - 1; false when there is none.
bool FiniteRange(const double* values, size_t first, size_t last, double& low, double& high);

// The same for many stretches of one long series: the range of each block of readings is kept, and only what lies beside whole
// blocks is read. The caller keeps the values, as they were, and gives them again with each question.
class SeriesBlocks {
public:
    static constexpr size_t kReadings = 128;  // of a block

    SeriesBlocks() = default;
    SeriesBlocks(const double* values, size_t count);

    bool Range(const double* values, size_t first, size_t last, double& low, double& high) const;
    // Where a finite value that stands at `first` or after it stands first.
    size_t Find(const double* values, size_t first, double value) const;

private:
    struct Block {
        double low, high;  // low > high where nothing is finite
    };
    std::vector<Block> m_blocks;  // whole ones
};
