#include "host/measurement/gap_keeper.h"

#include <algorithm>

namespace {
// A gap that goes on is told again when it has twice as many readings, or after so long: the file grows by little, and little is
// untold if the program is killed.
constexpr __int64 kTellAgain = 60'000'000;  // us

bool IsSame(const CRecordedGap& gap, const GapKeeper::Failure& failure) {
    return gap.cause == failure.cause && gap.text == failure.text && gap.channels == failure.channels;
}
}  // namespace

void GapKeeper::TellNow(Open& open) {
    open.told = open.gap.missed;
    open.toldAt = open.gap.until;
    open.changed = false;
    m_tell(open.gap);
}

std::string GapKeeper::KindOf(const std::string& text) {
    std::string kind;
    for (size_t at = 0; at < text.size();) {
        const size_t begin = std::min(text.find('"', at), text.size());
        kind.append(text, at, begin - at);
        const size_t end = text.find('"', begin + 1);
        if (end == text.npos) return begin < text.size() ? kind + text.substr(begin) : kind;
        kind += '"';
        at = end + 1;
    }
    return kind;
}

void GapKeeper::CountMissed(const CRecordedGap& gap, DWORD missed) {
    if (missed == 0) return;
    const std::string kind = KindOf(gap.text);
    const auto found = std::find_if(m_counts.begin(), m_counts.end(), [&](const Count& count) {
        return count.channels == gap.channels && (count.text == gap.text || KindOf(count.text) == kind);
    });
    if (found != m_counts.end()) {
        found->missed += missed;
    } else {
        m_counts.push_back({gap.text, gap.channels, missed});
    }
}

void GapKeeper::Grow(Open& open, __int64 time, DWORD missed) {
    CRecordedGap& gap = open.gap;
    const bool first = gap.missed == 0 && missed > 0;
    gap.until = std::max(gap.until, time);
    gap.missed += missed;
    open.changed = true;
    CountMissed(gap, missed);
    if (first || gap.missed >= 2 * std::max<DWORD>(open.told, 1) || gap.until - open.toldAt >= kTellAgain) TellNow(open);
}

void GapKeeper::Failed(__int64 time, const std::vector<Failure>& failures, DWORD missed, const Asked& asked) {
    const auto goesOn = [&](const Open& open) {
        const std::vector<WORD>& channels = open.gap.channels;
        if (asked && !channels.empty() && std::none_of(channels.begin(), channels.end(), asked)) return true;
        return std::any_of(failures.begin(), failures.end(), [&](const Failure& failure) { return IsSame(open.gap, failure); });
    };
    for (Open& open : m_open) {
        if (!goesOn(open) && open.changed) TellNow(open);
    }
    std::erase_if(m_open, [&](const Open& open) { return !goesOn(open); });
    for (const Failure& failure : failures) {
        auto open = std::find_if(m_open.begin(), m_open.end(), [&](const Open& one) { return IsSame(one.gap, failure); });
        if (open == m_open.end()) {
            CRecordedGap gap;
            gap.number = m_next++;
            gap.from = gap.until = time;
            gap.missed = missed;
            gap.attempts = 1;
            gap.cause = failure.cause;
            gap.channels = failure.channels;
            gap.text = failure.text;
            m_open.push_back({std::move(gap)});
            ++m_gaps;
            CountMissed(m_open.back().gap, missed);
            TellNow(m_open.back());
        } else {
            ++open->gap.attempts;
            Grow(*open, time, missed);
        }
    }
}

bool GapKeeper::Missed(__int64 time, DWORD count) {
    for (Open& open : m_open) {
        if (!open.gap.channels.empty()) continue;
        Grow(open, time, count);
        return true;
    }
    return false;
}

void GapKeeper::Single(CRecordedGap gap) {
    gap.number = m_next++;
    ++m_gaps;
    CountMissed(gap, gap.missed);
    m_tell(gap);
}
