#include "host/session/pointed_value.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "host/session/channel_intervals.h"
#include "host/session/gap_list.h"
#include "host/session/value_text.h"

namespace {
constexpr size_t kFarthest = 20'000;  // readings that are looked at on each side for a channel that is read now and then

// The readings of a session by their numbers, wherever they are.
struct Readings {
    const Session& session;
    size_t channel;

    size_t CountUntil(__int64 time) const {
        if (session.Recorded() != nullptr) return session.Recorded()->CountUntil(time);
        INT_PTR low = 0, high = session.Times().GetSize();
        while (low < high) {
            const INT_PTR middle = low + (high - low) / 2;
            session.Times().GetAt(middle) <= time ? low = middle + 1 : high = middle;
        }
        return static_cast<size_t>(low);
    }
    DatedValue At(size_t number) const {
        if (session.Recorded() != nullptr) return session.Recorded()->ReadingAt(number, channel);
        const auto at = static_cast<INT_PTR>(number);
        return {session.Times().GetAt(at), session.Channels()[channel].values.GetAt(at)};
    }
};

std::optional<DatedValue> NearestOf(const Session& session, size_t channel, const PointedTime& pointed) {
    const Readings readings{session, channel};
    const size_t count = session.Count(), after = readings.CountUntil(pointed.time);
    std::optional<DatedValue> left, right;
    for (size_t i = after; i > 0 && after - i < kFarthest && !left; --i) {
        const DatedValue one = readings.At(i - 1);
        if (!IsNotDue(one.value)) left = one;
    }
    for (size_t i = after; i < count && i - after < kFarthest && !right; ++i) {
        const DatedValue one = readings.At(i);
        if (!IsNotDue(one.value)) right = one;
    }
    const bool hasLeft = left && std::isfinite(left->value), hasRight = right && std::isfinite(right->value);
    const __int64 toLeft = hasLeft ? pointed.time - left->time : std::numeric_limits<__int64>::max(),
                  toRight = hasRight ? right->time - pointed.time : std::numeric_limits<__int64>::max();
    if (!hasLeft && !hasRight) return std::nullopt;
    if (!(hasLeft && hasRight) && std::min(toLeft, toRight) > pointed.within) return std::nullopt;
    return toLeft <= toRight ? left : right;
}

// The gap of all channels that the line's hole at a time comes from: no reading lies between them.
const CRecordedGap* GapAt(const Session& session, const RecordedNotes& notes, __int64 time) {
    const Readings readings{session, 0};
    const size_t after = readings.CountUntil(time);
    const __int64 first = after > 0 ? readings.At(after - 1).time : std::numeric_limits<__int64>::min(),
                  last = after < session.Count() ? readings.At(after).time : std::numeric_limits<__int64>::max();
    for (const CRecordedGap& gap : notes.Gaps()) {
        if (HasMissing(gap) && gap.channels.empty() && gap.until >= first && gap.from <= last) return &gap;
    }
    return nullptr;
}
}  // namespace

double ValueAt(const Session& session, size_t channel, const PointedTime& pointed) {
    const std::optional<DatedValue> nearest = NearestOf(session, channel, pointed);
    return nearest ? nearest->value : std::numeric_limits<double>::quiet_NaN();
}

std::string PointedText(const Session& session, const RecordedNotes& notes, const PointedTime& pointed) {
    std::optional<__int64> time;
    const auto distance = [&](__int64 at) { return std::abs(at - pointed.time); };
    for (size_t channel = 0; channel < session.Channels().size(); ++channel) {
        const std::optional<DatedValue> nearest = NearestOf(session, channel, pointed);
        if (nearest && (!time || distance(nearest->time) < distance(*time))) time = nearest->time;
    }
    if (time) return TimeTextOf(*time);
    const CRecordedGap* const gap = GapAt(session, notes, pointed.time);
    return TimeTextOf(pointed.time) + (gap == nullptr ? "" : ": " + CauseOf(*gap));
}
