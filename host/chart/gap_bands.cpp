#include "host/chart/gap_bands.h"

#include <algorithm>
#include <cmath>

#include "host/session/gap_list.h"

std::vector<GapBand> GapBands(const RecordedNotes& notes, const PlotMapping& mapping, LONG least) {
    std::vector<GapBand> bands;
    for (const CRecordedGap& gap : notes.Gaps()) {
        if (!gap.channels.empty() || !HasMissing(gap) || gap.until < gap.from) continue;
        double left = mapping.X(static_cast<double>(gap.from)), right = mapping.X(static_cast<double>(gap.until));
        if (left > right) std::swap(left, right);
        if (!(right >= mapping.left && left <= mapping.right)) continue;
        const double wider = std::max(least - (right - left), 0.0) / 2;
        const auto pixel = [&](double x) {
            return static_cast<LONG>(std::lround(std::clamp<double>(x, mapping.left, mapping.right)));
        };
        bands.push_back({pixel(left - wider), pixel(right + wider), &gap});
    }
    std::sort(bands.begin(), bands.end(), [](const GapBand& a, const GapBand& b) { return a.left < b.left; });
    size_t count = 0;
    for (const GapBand& band : bands) {
        if (count > 0 && band.left <= bands[count - 1].right) {
            bands[count - 1].right = std::max(bands[count - 1].right, band.right);
            bands[count - 1].only = nullptr;
        } else {
            bands[count++] = band;
        }
    }
    bands.resize(count);
    return bands;
}
