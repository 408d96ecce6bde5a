#include "host/chart/gap_bands.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {
constexpr PlotMapping kPlot = {1000, 2000, 100, 200};  // ten times a pixel

CRecordedGap Gap(__int64 from, __int64 until, DWORD missed = 1, std::vector<WORD> channels = {}) {
    CRecordedGap gap;
    static DWORD number = 0;
    gap.number = ++number;
    gap.from = from, gap.until = until;
    gap.missed = missed, gap.attempts = 1;
    gap.channels = std::move(channels);
    return gap;
}
}  // namespace

TEST(GapBands, AreAsWideAsTheirTimesAndCanBeSeen) {
    constexpr __int64 kMost = std::numeric_limits<__int64>::max(), kLeast = std::numeric_limits<__int64>::min();
    const struct {
        std::vector<CRecordedGap> gaps;
        const char* bands;  // a "*" where one gap alone is told
    } cases[] = {
        {{}, ""},
        {{Gap(1100, 1300)}, "110-130*"},
        {{Gap(1500, 1500)}, "149-151*"},                           // a single reading
        {{Gap(1000, 1000), Gap(2000, 2000)}, "100-101* 199-200*"}, // within the plot
        {{Gap(0, 1100), Gap(1900, kMost)}, "100-110* 190-200*"},
        {{Gap(kLeast, kMost)}, "100-200*"},
        {{Gap(0, 900), Gap(2100, 2200)}, ""},                      // out of view
        {{Gap(1600, 1700), Gap(1100, 1200), Gap(1205, 1300)}, "110-120* 121-130* 160-170*"},
        {{Gap(1100, 1200), Gap(1200, 1300)}, "110-130"},           // they touch
        {{Gap(1100, 1500), Gap(1200, 1300)}, "110-150"},
        {{Gap(1100, 1200, 1, {0}), Gap(1300, 1400, 0), Gap(1700, 1600)}, ""},  // one channel's, none missed, backwards
    };
    for (const auto& c : cases) {
        RecordedNotes notes;
        for (const CRecordedGap& gap : c.gaps) notes.Add(gap);
        std::string told;
        for (const GapBand& band : GapBands(notes, kPlot, 2))
            told += (told.empty() ? "" : " ") + std::to_string(band.left) + "-" + std::to_string(band.right) +
                    (band.only != nullptr ? "*" : "");
        EXPECT_EQ(told, c.bands);
    }
}
