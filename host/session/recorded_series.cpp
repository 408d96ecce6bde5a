#include "host/session/recorded_series.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "host/session/channel_intervals.h"
#include "host/session/damage_gaps.h"
#include "host/session/gap_list.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
constexpr size_t kStore = 16 * 1024 * 1024;  // bytes of decoded spans
constexpr size_t kMostColumns = 100'000;     // gathered at a time
constexpr size_t kNone = std::numeric_limits<size_t>::max();

void Check(const std::string& path, DWORD error) {
    if (error == ERROR_SUCCESS) return;
    const bool later = error == ERROR_REVISION_MISMATCH;
    throw Failure{kFileFailed,
                  later ? Say(Text::RecordingLater, {ToUtf8(path)}) : Say(Text::FileNotOpened, {ToUtf8(path), Reason(error)})};
}

// A column on its way: where its extremes stand, and whether its last value still has to be looked for in a span.
struct Gathering {
    SeriesColumn column;
    unsigned __int64 lowAt = 0, highAt = 0;
    size_t lastIn = kNone;

    void Extremes(double low, unsigned __int64 atLow, double high, unsigned __int64 atHigh) {
        if (!column.finite || low < column.low) column.low = low, lowAt = atLow;
        if (!column.finite || high > column.high) column.high = high, highAt = atHigh;
    }
    void Reading(double value, unsigned __int64 at) {
        if (IsNotDue(value)) return;
        column.readings = true;
        if (!std::isfinite(value)) return;
        Extremes(value, at, value, at);
        if (!column.finite) column.first = value;
        column.finite = true;
        column.last = value;
        lastIn = kNone;
    }
};
}  // namespace

bool MarksGap(const BYTE* flags, size_t channels) {
    return channels > 0 && std::all_of(flags, flags + channels, [](BYTE flag) { return flag == RF_MISSING; });
}

RecordedSeries::RecordedSeries(const std::string& path) : m_path(path) {
    Check(path, m_tail.Open(path));
    Check(path, TakeTail());
    // Another one, which has not met later facts before earlier ones.
    Check(path, m_reader.Open(path));
    ReadNotes();
    m_facts = m_reader.Facts();
    CompleteFacts();
    m_ownIntervals = HaveOwnIntervals(m_facts, ChannelCount());
}

DWORD RecordedSeries::TakeTail() {
    const DWORD error = m_index.Update(m_tail);
    m_end = m_tail.Position();
    m_torn = m_tail.TornBytes();
    m_unread = std::max(m_unread, m_index.DamagedBytes());
    m_noted.resize(m_index.Spans().size());
    return error;
}

bool RecordedSeries::Update() {
    const unsigned __int64 before = m_end;
    const size_t known = m_index.Spans().size();
    if (TakeTail() != ERROR_SUCCESS) m_failed = true;
    if (m_end == before) return false;
    // The last span may have grown; what was decoded and gathered of it is not all of it any more.
    std::erase_if(m_decoded, [&](const auto& one) {
        if (one->span + 1 < known) return false;
        m_decodedSize -= one->Size();
        return true;
    });
    m_columns.clear();
    m_plan = {};
    ReadNotes();
    return true;
}

bool RecordedSeries::EndsInGap() const {
    if (m_index.Spans().empty()) return false;
    const __int64 last = m_index.Spans().back().lastTime;
    return std::any_of(m_notes.Gaps().begin(), m_notes.Gaps().end(), [&](const CRecordedGap& gap) {
        return gap.channels.empty() && HasMissing(gap) && gap.until >= last;
    });
}

double RecordedSeries::CellOf(const CRecordingReader& reader, size_t channel) {
    return reader.Flags()[channel] == RF_NOT_DUE ? NotDueValue() : reader.Values()[channel];
}

std::string RecordedSeries::Trouble() const {
    if (m_failed) return Say(Text::RecordingNotAllRead, {ToUtf8(m_path)});
    if (m_unread > 0) return Say(Text::RecordingDamaged, {ToUtf8(m_path), std::to_string(m_unread)});
    return {};
}

// Gaps, events and facts that were not read before, from the spans that hold some.
void RecordedSeries::ReadNotes() {
    for (const CRecordingSpan& span : m_index.Spans()) {
        if (span.others == 0 || span.end <= m_notesEnd) continue;
        m_reader.Seek(std::max(span.begin, m_notesEnd));
        while (m_reader.Position() < span.end) {
            const ERecordItem item = m_reader.Next();
            if (item == RI_GAP) m_notes.Add(m_reader.Gap());
            if (item == RI_EVENT) m_notes.Add(m_reader.Event());
            if (item == RI_FAILED) m_failed = true;
            if (item == RI_FAILED || item == RI_END) break;
        }
    }
    m_notesEnd = m_end;
}

// Where the names were lost, readings are worth something without them.
void RecordedSeries::CompleteFacts() {
    if (!m_facts.Find("Session")) m_facts.SetValue("Session.sLogger", "");
    if (ChannelKeys(m_facts).size() == ChannelCount()) return;
    m_facts.Remove("Channels");
    m_facts.SetPath("Channels");
    for (size_t i = 1; i <= ChannelCount(); ++i) {
        const std::string number = std::to_string(i), at = "Channels." + NumberedKey(i, ChannelCount());
        m_facts.SetValue((at + ".sName").c_str(), ("#" + number).c_str());
        m_facts.SetValue((at + ".sUnit").c_str(), "");
    }
}

void RecordedSeries::ReadAll(CInt64Array& times, std::vector<CDoubleArray>& values) {
    values = std::vector<CDoubleArray>(ChannelCount());
    m_made = m_unread = 0;
    DamageGaps damage(ChannelCount(), m_index.LastGap() + 1);
    CRecordingReader reader;
    Check(m_path, reader.Open(m_path));
    const auto row = [&](__int64 time, auto value) {
        times.Add(time);
        for (size_t i = 0; i < values.size(); ++i) values[i].Add(value(i));
    };
    while (reader.Position() < m_end) {
        const ERecordItem item = reader.Next();
        if (item == RI_FAILED) Check(m_path, reader.Error());
        if (item == RI_END) break;
        if (item == RI_DAMAGE) {
            m_unread += reader.Damage().size;
            damage.Damaged(reader.Damage().size);
        }
        if (item != RI_READING) continue;
        if (const auto gap = damage.Before(reader.Time())) {
            m_notes.Add(*gap);
            // The row that parts what stands before and after.
            if (times.GetSize() > 0 && gap->from < reader.Time())
                row(gap->from, [](size_t) { return std::numeric_limits<double>::quiet_NaN(); });
        }
        row(reader.Time(), [&](size_t i) { return CellOf(reader, i); });
        m_made += MarksGap(reader.Flags(), ChannelCount()) ? 0 : 1;
    }
    if (const auto gap = damage.AtEnd()) m_notes.Add(*gap);
}

std::shared_ptr<const RecordedSeries::Decoded> RecordedSeries::Decode(size_t number) {
    const auto found = std::find_if(m_decoded.begin(), m_decoded.end(), [&](const auto& one) { return one->span == number; });
    if (found != m_decoded.end()) {
        m_decoded.splice(m_decoded.begin(), m_decoded, found);
        return m_decoded.front();
    }
    const CRecordingSpan& span = m_index.Spans()[number];
    const auto made = std::make_shared<Decoded>();
    Decoded& decoded = *made;
    decoded.span = number;
    // No more than the span's bytes can hold, whatever it says of itself.
    const size_t most = static_cast<size_t>((span.end - span.begin) / (8 + 9 * ChannelCount())),
                 expected = std::min<size_t>(span.readings, most);
    decoded.times.reserve(expected);
    decoded.values.reserve(expected * ChannelCount());
    m_reader.Seek(span.begin);
    while (m_reader.Position() < span.end) {
        const ERecordItem item = m_reader.Next();
        if (item == RI_FAILED || item == RI_END) {
            if (item == RI_FAILED) m_failed = true;
            break;
        }
        if (item == RI_DAMAGE && !m_noted[number] && m_index.DamagedBytes() == 0) m_unread += m_reader.Damage().size;
        if (item != RI_READING) continue;
        decoded.times.push_back(m_reader.Time());
        for (size_t i = 0; i < ChannelCount(); ++i) decoded.values.push_back(CellOf(m_reader, i));
    }
    m_noted[number] = true;
    m_decodedSize += decoded.Size();
    m_decoded.push_front(made);
    while (m_decodedSize > kStore) {
        m_decodedSize -= m_decoded.back()->Size();
        m_decoded.pop_back();
    }
    return made;
}

double RecordedSeries::LastValue(size_t channel) {
    constexpr size_t kFarthest = 64;  // spans that are looked at for a channel that is read now and then
    const size_t count = m_index.Spans().size();
    for (size_t span = count; span-- > 0 && count - span <= kFarthest;) {
        const auto decoded = Decode(span);
        for (size_t at = decoded->times.size(); at-- > 0;) {
            const double value = decoded->values[at * ChannelCount() + channel];
            if (!IsNotDue(value)) return value;
        }
    }
    return std::numeric_limits<double>::quiet_NaN();
}

// How many readings come before a time, or before and at it.
size_t RecordedSeries::CountBefore(double time, bool orAt) {
    const auto before = [=](__int64 t) { return orAt ? static_cast<double>(t) <= time : static_cast<double>(t) < time; };
    const auto& spans = m_index.Spans();
    const auto span =
        std::partition_point(spans.begin(), spans.end(), [&](const CRecordingSpan& s) { return before(s.lastTime); });
    if (span == spans.end()) return static_cast<size_t>(Count());
    if (!before(span->firstTime)) return static_cast<size_t>(span->first);
    const auto decoded = Decode(static_cast<size_t>(span - spans.begin()));
    const auto in = std::partition_point(decoded->times.begin(), decoded->times.end(), before);
    return static_cast<size_t>(span->first) + static_cast<size_t>(in - decoded->times.begin());
}

DatedValue RecordedSeries::ReadingAt(size_t number, size_t channel) {
    const auto& spans = m_index.Spans();
    const auto after =
        std::partition_point(spans.begin(), spans.end(), [&](const CRecordingSpan& s) { return s.first <= number; });
    if (after == spans.begin()) return {0, std::numeric_limits<double>::quiet_NaN()};
    const CRecordingSpan& span = *(after - 1);
    const auto decoded = Decode(static_cast<size_t>(after - 1 - spans.begin()));
    const size_t in = number - static_cast<size_t>(span.first);
    if (in >= decoded->times.size()) return {span.lastTime, std::numeric_limits<double>::quiet_NaN()};
    return {decoded->times[in], decoded->values[in * ChannelCount() + channel]};
}

std::vector<ReducedSeries> RecordedSeries::Reduce(const std::vector<size_t>& channels, const std::vector<PlotMapping>& mappings) {
    std::vector<ReducedSeries> lines(channels.size());
    ColumnPlan plan;
    for (const PlotMapping& mapping : mappings) plan = plan.columns > 0 ? plan : ColumnPlan(mapping);
    if (plan.columns == 0 || Count() == 0) return lines;
    if (plan.DrawsEach(CountBefore(plan.latest, true) - CountBefore(plan.earliest, false)))
        return ReduceFew(plan, channels, mappings);
    // So many channels at a time that their columns are no burden.
    const size_t most = std::max<size_t>(kMostColumns / plan.columns, 1);
    for (size_t begin = 0; begin < channels.size(); begin += most) {
        const size_t end = std::min(begin + most, channels.size());
        const Columns& columns = ColumnsOf(
            plan, {channels.begin() + static_cast<std::ptrdiff_t>(begin), channels.begin() + static_cast<std::ptrdiff_t>(end)});
        for (size_t i = begin; i < end; ++i) {
            if (ColumnPlan(mappings[i]).columns > 0) lines[i] = DrawColumns(columns[i - begin], plan, mappings[i]);
        }
    }
    return lines;
}

// The spans in view, and one more at each side, as arrays.
std::vector<ReducedSeries> RecordedSeries::ReduceFew(const ColumnPlan& plan, const std::vector<size_t>& channels,
                                                     const std::vector<PlotMapping>& mappings) {
    const auto& spans = m_index.Spans();
    std::vector<__int64> times;
    std::vector<std::vector<double>> values(channels.size());
    const auto bound = [&](double time) {
        const auto at = std::partition_point(
            spans.begin(), spans.end(), [&](const CRecordingSpan& span) { return static_cast<double>(span.lastTime) < time; });
        return static_cast<size_t>(at - spans.begin());
    };
    size_t first = bound(plan.earliest), last = std::min(bound(plan.latest) + 1, spans.size());
    // A reading beyond each edge, if there is one; spans may hold none.
    while (first > 0 && spans[--first].readings == 0) {
    }
    while (last < spans.size() && spans[last++].readings == 0) {
    }
    for (size_t span = first; span < last; ++span) {
        if (spans[span].readings == 0) continue;
        const auto decoded = Decode(span);
        times.insert(times.end(), decoded->times.begin(), decoded->times.end());
        for (size_t i = 0; i < channels.size(); ++i) {
            for (size_t k = channels[i]; k < decoded->values.size(); k += ChannelCount()) values[i].push_back(decoded->values[k]);
        }
    }
    std::vector<ReducedSeries> lines;
    for (size_t i = 0; i < channels.size(); ++i)
        lines.push_back(ReduceSeries({times.data(), values[i].data(), times.size()}, mappings[i]));
    return lines;
}

// Spans that lie within a column give their extremes; those that a column's border cuts, or in which a column's first or last
// value stands, are read.
const RecordedSeries::Columns& RecordedSeries::ColumnsOf(const ColumnPlan& plan, const std::vector<size_t>& channels) {
    if (m_plan == plan && m_channels == channels) return m_columns;
    const auto& spans = m_index.Spans();
    const size_t count = channels.size();
    // Readings in view, and one more at each side, by their numbers.
    unsigned __int64 first = CountBefore(plan.earliest, false), last = CountBefore(plan.latest, true);
    if (first > 0) --first;
    if (last < Count()) ++last;

    m_plan = plan;
    m_channels = channels;
    m_columns.assign(count, std::vector<SeriesColumn>(plan.columns));
    std::vector<Gathering> gathering(count);
    size_t column = 0;
    const auto finish = [&] {
        for (size_t i = 0; i < count; ++i) {
            Gathering& one = gathering[i];
            if (one.lastIn != kNone) one.column.last = LastIn(one.lastIn, channels[i], one.column.first);
            one.column.lowFirst = one.lowAt < one.highAt;
            m_columns[i][column] = one.column;
            one = {};
        }
        ++column;
    };
    const auto ends = [&](__int64 time) { return column + 1 < plan.columns && static_cast<double>(time) >= plan.Border(column); };
    // Its extremes alone say enough of a channel whose first value in the column is known, or which has none here.
    const auto known = [&](const CRecordingSpan& span, size_t i) {
        const CRecordingSpan::Extremes& part = span.channels[channels[i]];
        // Without a value it may have been asked for in vain, or not have been due.
        if (part.lowAt >= span.readings && m_ownIntervals[channels[i]]) return false;
        return part.lowAt >= span.readings || (gathering[i].column.finite && std::isfinite(part.low) && std::isfinite(part.high));
    };

    auto span =
        std::partition_point(spans.begin(), spans.end(), [&](const CRecordingSpan& s) { return s.first + s.readings <= first; });
    for (; span != spans.end() && span->first < last; ++span) {
        if (span->readings == 0) continue;
        const auto number = static_cast<size_t>(span - spans.begin());
        while (ends(span->firstTime)) finish();
        bool whole = !ends(span->lastTime) && span->first >= first && span->first + span->readings <= last;
        for (size_t i = 0; i < count && whole; ++i) whole = known(*span, i);
        if (whole) {
            for (size_t i = 0; i < count; ++i) {
                Gathering& one = gathering[i];
                const CRecordingSpan::Extremes& part = span->channels[channels[i]];
                one.column.readings = true;
                if (part.lowAt >= span->readings) continue;
                one.Extremes(part.low, span->first + part.lowAt, part.high, span->first + part.highAt);
                one.lastIn = number;
            }
            continue;
        }
        const auto decoded = Decode(number);
        for (size_t at = 0; at < decoded->times.size(); ++at) {
            const unsigned __int64 reading = span->first + at;
            if (reading < first || reading >= last) continue;
            while (ends(decoded->times[at])) finish();
            const double* const values = decoded->values.data() + at * ChannelCount();
            for (size_t i = 0; i < count; ++i) gathering[i].Reading(values[channels[i]], reading);
        }
    }
    finish();
    return m_columns;
}

// The last finite value of a channel in a span; `otherwise` where it cannot be read.
double RecordedSeries::LastIn(size_t span, size_t channel, double otherwise) {
    const auto decoded = Decode(span);
    for (size_t at = decoded->times.size(); at-- > 0;) {
        const double value = decoded->values[at * ChannelCount() + channel];
        if (std::isfinite(value)) return value;
    }
    return otherwise;
}
