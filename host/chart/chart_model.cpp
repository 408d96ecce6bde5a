#include "host/chart/chart_model.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <numeric>

#include "chart/floating_tag.h"
#include "chart/unit_axis.h"
#include "host/session/gap_list.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/same_text.h"
#include "host/words/texts.h"

namespace {
constexpr char kFolder[] = "Chart", kTagFolder[] = "Tags", kTagChannels[] = "sTagChannels";
constexpr char kTagTimes[] = "tTagTimes", kTagValues[] = "rTagValues";
// Chosen to be told apart with any kind of colour vision, on white paper.
constexpr COLORREF kColours[] = {RGB(0, 114, 178), RGB(213, 94, 0),   RGB(0, 140, 105), RGB(190, 90, 155),
                                 RGB(200, 132, 0), RGB(52, 152, 208), RGB(85, 85, 85),  RGB(120, 110, 20)};
// The frame that stored tags are read and written in, so far from 0 that rounding goes one way.
constexpr LONG kAway = TagFrame::kFarthest * TagFrame::kGrid;
constexpr RECT kStored = {kAway, kAway, kAway + TagFrame::kGrid, kAway + TagFrame::kGrid};

// The range of an axis for data between these values. Data that hardly differ get a range in which their line lies in the middle.
void ScaleFor(double low, double high, double& origin, double& extent) {
    constexpr double kFlat = 1e-6, kPart = 0.05;
    const double size = std::max(std::abs(low), std::abs(high));
    CUnitAxis axis(FALSE);
    if (high - low <= size * kFlat) {
        const double room = size == 0 ? 1 : std::max(size * kPart, std::min(size, 1.0));
        low -= room, high += room;
    }
    axis.AutoScale(low, high);
    origin = axis.GetOrigin(), extent = axis.GetExtent();
}

// All that the chart has in the database, to tell whether it has changed.
std::vector<std::string> Snapshot(IPropertyDB& db) {
    std::vector<std::string> values;
    CStringArray keys;
    db.EnumAll(keys);
    const std::string prefix = std::string(kFolder) + ".";
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        if (key.compare(0, prefix.size(), prefix) != 0) continue;
        const CObject* const value = db.GetValueObject(key.c_str(), TRUE);
        values.push_back(key + "=" + KindOf(value) + ":" + TextOf(value));
    }
    return values;
}
}  // namespace

ChartModel::ChartModel(const Session& session, const std::vector<std::string>& channels) : m_session(session) {
    const auto& all = session.Channels();
    std::string names;
    for (const auto& channel : all) names += (names.empty() ? "" : ", ") + ToUtf8(channel.name);
    for (const std::string& wanted : channels) {
        const auto fits = [&](const Session::Channel& channel) {
            return LookTheSame(wanted, channel.name) || LookTheSame(wanted, channel.key);
        };
        if (std::none_of(all.begin(), all.end(), fits)) throw Failure{kWrongUse, Say(Text::NoChannel, {ToUtf8(wanted), names})};
    }

    // The times are to increase; a file may come from anywhere.
    const size_t count = session.Count();
    m_times = session.Times().GetData();
    const bool recorded = session.Recorded() != nullptr;
    std::vector<size_t> order;
    if (!recorded && !std::is_sorted(m_times, m_times + count)) {
        order.resize(count);
        std::iota(order.begin(), order.end(), size_t{0});
        std::stable_sort(order.begin(), order.end(), [this](size_t a, size_t b) { return m_times[a] < m_times[b]; });
        for (const size_t i : order) m_sortedTimes.push_back(m_times[i]);
        m_times = m_sortedTimes.data();
        m_sortedValues.resize(all.size());
    }
    if (count > 0 && recorded) {
        const std::vector<CRecordingSpan>& spans = session.Recorded()->Index().Spans();
        const auto holds = [](const CRecordingSpan& span) { return span.readings > 0; };
        m_first = std::find_if(spans.begin(), spans.end(), holds)->firstTime;
        m_last = std::max(m_first, spans.back().lastTime);
    } else if (count > 0) {
        m_first = m_times[0], m_last = m_times[count - 1];
    }
    constexpr __int64 kHalfSecond = 500'000, kFarthest = 9'000'000'000'000'000'000LL;
    m_from = m_first, m_to = m_last;
    if (m_from == m_to) {
        m_onlyTime = m_first;
        m_from = std::max(m_from, -kFarthest) - kHalfSecond, m_to = std::min(m_to, kFarthest) + kHalfSecond;
        m_first = m_from, m_last = m_to;
    }
    m_lastReading = m_last;
    ReachToGaps();

    for (size_t i = 0; i < all.size(); ++i) {
        const Session::Channel& channel = all[i];
        m_colours.push_back(ColourOf(i));
        auto unit = std::find_if(m_units.begin(), m_units.end(), [&](const Unit& one) { return one.text == channel.unit; });
        if (unit == m_units.end()) unit = m_units.insert(m_units.end(), Unit{channel.unit, {}});
        const double* values = channel.values.GetData();
        if (!order.empty()) {
            for (const size_t k : order) m_sortedValues[i].push_back(values[k]);
            values = m_sortedValues[i].data();
        }
        m_blocks.emplace_back(values, recorded ? 0 : count);
        const auto named = [&](const std::string& wanted) {
            return LookTheSame(wanted, channel.name) || LookTheSame(wanted, channel.key);
        };
        if (!channels.empty() && std::none_of(channels.begin(), channels.end(), named)) continue;
        unit->series.push_back(m_series.size());
        m_series.push_back({channel.unit.empty() ? channel.name : channel.name + " [" + channel.unit + "]",
                            static_cast<size_t>(unit - m_units.begin()), i, ColourOf(i), values});
    }
    ScaleUnits();
    ChoosePatterns();
}

void ChartModel::ReachToGaps() {
    if (Count() == 0) return;
    __int64 last = m_last;
    for (const CRecordedGap& gap : Notes().Gaps()) {
        if (gap.channels.empty() && HasMissing(gap)) last = std::max(last, gap.until);
    }
    if (last == m_last) return;
    m_onlyTime.reset();
    if (m_to == m_last) m_to = last;
    m_last = last;
}

bool ChartModel::HasValues() const {
    return std::any_of(m_series.begin(), m_series.end(), [this](const Series& series) { return m_hasValues[series.number]; });
}

// Counted over all channels, so that a channel keeps its pattern whatever else is shown.
void ChartModel::ChoosePatterns() {
    std::map<COLORREF, size_t> used;
    std::vector<size_t> patterns;
    for (const COLORREF colour : m_colours) patterns.push_back(used[colour]++);
    for (Series& series : m_series) series.colour = m_colours[series.number], series.pattern = patterns[series.number];
}

std::vector<ReducedSeries> ChartModel::Reduce(const std::vector<PlotMapping>& mappings) const {
    std::vector<ReducedSeries> lines;
    if (RecordedSeries* const recorded = m_session.Recorded()) {
        std::vector<size_t> channels;
        for (const Series& series : m_series) channels.push_back(series.number);
        return recorded->Reduce(channels, mappings);
    }
    for (size_t i = 0; i < m_series.size(); ++i) lines.push_back(ReduceSeries(Data(m_series[i]), mappings[i]));
    return lines;
}

void ChartModel::SetView(__int64 from, __int64 to) {
    if (from >= to) throw Failure{kWrongUse, Say(Text::ViewBackwards)};
    if (to < m_first || from > m_last || Count() == 0) throw Failure{kWrongUse, Say(Text::ViewEmpty)};
    m_from = from, m_to = to;
}

// One range for a unit whatever is shown of it, so that charts of parts of a session can be compared.
void ChartModel::ScaleUnits() {
    m_hasValues.resize(m_session.Channels().size());
    for (const Session::Channel& channel : m_session.Channels()) {
        if (m_contexts.GetContext(channel.unit.c_str()) != nullptr) continue;
        double low = HUGE_VAL, high = -HUGE_VAL;
        for (size_t i = 0; i < m_session.Channels().size(); ++i) {
            double from, to;
            if (m_session.Channels()[i].unit != channel.unit || !m_session.Range(i, from, to)) continue;
            low = std::min(low, from), high = std::max(high, to);
            m_hasValues[i] = true;
        }
        CUnitContext context(channel.unit.c_str());
        if (low <= high) {
            ScaleFor(low, high, context.m_origin, context.m_extent);
            CUnitAxis axis(FALSE);
            axis.SetRange(context.m_origin, context.m_extent);
            context.m_format = axis.GetFormat();
        }
        m_contexts.AddContext(channel.unit.c_str());
        m_contexts.SetContext(&context);
    }
    for (Unit& unit : m_units) {
        const CUnitContext* const context = m_contexts.GetContext(unit.text.c_str());
        unit.origin = context->m_origin, unit.extent = context->m_extent;
    }
}

void ChartModel::Load(IPropertyDB& db) {
    if (m_session.Recorded() == nullptr) {
        m_notes.Load(db, ChannelKeys(db));
        ReachToGaps();
    }
    db.BeginUsing(kFolder);
    CUnitContextList stored;
    stored.OnDBGet(&db);
    // Only ranges that can be drawn go before those of the data.
    for (POSITION at = stored.GetHeadPosition(); at != nullptr;) {
        const CUnitContext* const context = stored.GetNext(at);
        const bool usable =
            std::isfinite(context->m_origin) && std::isfinite(context->m_extent) && context->m_origin != context->m_extent;
        if (usable) m_contexts.SetContext(context);
    }
    db.EndUsing();
    for (size_t i = 0; i < m_colours.size(); ++i) m_colours[i] = ColourIn(db, m_session.Channels()[i].key, i);
    ChoosePatterns();
    ScaleUnits();
    db.BeginUsing(kFolder);
    LoadTags(db);
    db.EndUsing();
}

std::optional<size_t> ChartModel::UnitOf(const std::string& channel) const {
    const auto& all = m_session.Channels();
    if (all.empty()) return std::nullopt;
    const auto found = std::find_if(all.begin(), all.end(), [&](const Session::Channel& one) { return one.key == channel; });
    const std::string& text = (found != all.end() ? *found : all.front()).unit;
    const auto unit = std::find_if(m_units.begin(), m_units.end(), [&](const Unit& one) { return one.text == text; });
    return static_cast<size_t>(unit - m_units.begin());
}

TagFrame ChartModel::FrameOf(const std::string& channel) const {
    const auto unit = UnitOf(channel);
    if (!unit) return {m_first, m_lastReading};
    return {m_first, m_lastReading, m_units[*unit].origin, m_units[*unit].extent};
}

// A tag whose channel is not told, or is gone, is the first channel's.
void ChartModel::LoadTags(IPropertyDB& db) {
    CStringArray channels;
    if (db.Find(kTagChannels)) db.GetValue(kTagChannels, channels);
    CFloatingTagManager stored;
    db.BeginUsing(kTagFolder);
    stored.OnDBGet(&db);
    db.EndUsing();
    m_tags.clear();
    const auto& all = m_session.Channels();
    for (INT_PTR i = 0; i < stored.GetTagCount(); ++i) {
        const CFloatingTag& tag = *stored.GetTag(i);
        const std::string key = i < channels.GetSize() ? channels.GetAt(i).GetString() : "";
        const bool known = std::any_of(all.begin(), all.end(), [&](const Session::Channel& one) { return one.key == key; });
        m_tags.push_back({tag.GetText().GetString(), 0, 0, known || all.empty() ? key : all.front().key});
        RECT rect = {};
        tag.GetRect(kStored, rect);
        const auto part = [](LONG at) { return static_cast<double>(at - kAway) / TagFrame::kGrid; };
        FrameOf(m_tags.back().channel).Place(m_tags.back(), part(rect.left), part(rect.top));
    }
    // The frame of a recording that has grown since is another one.
    CInt64Array times;
    CDoubleArray values;
    if (!db.GetValue(kTagTimes, times) || !db.GetValue(kTagValues, values)) return;
    if (times.GetSize() != stored.GetTagCount() || values.GetSize() != times.GetSize()) return;
    for (size_t i = 0; i < m_tags.size(); ++i) {
        const auto at = static_cast<INT_PTR>(i);
        if (std::isfinite(values.GetAt(at))) m_tags[i].time = times.GetAt(at), m_tags[i].value = values.GetAt(at);
    }
}

void ChartModel::StoreTags(IPropertyDB& db) const {
    CStringArray channels;
    CFloatingTagManager stored;
    CInt64Array times;
    CDoubleArray values;
    bool others = false;
    const auto& all = m_session.Channels();
    for (const ChartTag& tag : m_tags) {
        const TagFrame frame = FrameOf(tag.channel);
        const auto at = [](double part) {
            constexpr double kFarthest = TagFrame::kFarthest;
            return kAway + static_cast<LONG>(std::lround(std::clamp(part, -kFarthest, kFarthest) * TagFrame::kGrid));
        };
        const POINT corner = {at(frame.Left(tag.time)), at(frame.Top(tag.value))};
        stored.CreateTag(kStored, {corner.x, corner.y, corner.x, corner.y})->SetText(tag.text.c_str());
        channels.Add(tag.channel.c_str());
        times.Add(tag.time);
        values.Add(tag.value);
        others |= !all.empty() && tag.channel != all.front().key;
    }
    // Left out where it tells nothing new; what is there is not taken away, since recordings only grow.
    if (others || db.Find(kTagChannels)) db.SetValue(kTagChannels, channels);
    if (m_session.Recorded() != nullptr) {
        db.SetValue(kTagTimes, times);
        db.SetValue(kTagValues, values);
    } else {
        db.Remove(kTagTimes);
        db.Remove(kTagValues);
    }
    db.BeginUsing(kTagFolder);
    stored.OnDBSet(&db);
    db.EndUsing();
}

COLORREF ChartModel::ColourOf(size_t channel) { return kColours[channel % std::size(kColours)]; }

COLORREF ChartModel::ColourIn(IPropertyDB& db, const std::string& key, size_t channel) {
    constexpr unsigned int kLast = 0xFFFFFF;
    unsigned int stored = 0;
    return db.GetValue(("Channels." + key + ".nColour").c_str(), stored) && stored <= kLast ? stored : ColourOf(channel);
}

void ChartModel::SetLook(size_t channel, const std::string& name, COLORREF colour) {
    if (channel < m_colours.size()) m_colours[channel] = colour;
    for (Series& series : m_series) {
        if (series.number != channel) continue;
        const std::string& unit = m_units[series.unit].text;
        series.name = unit.empty() ? name : name + " [" + unit + "]";
    }
    ChoosePatterns();
}

bool ChartModel::Store(IPropertyDB& db) {
    const auto before = Snapshot(db);
    db.BeginUsing(kFolder);
    m_contexts.OnDBSet(&db);
    StoreTags(db);
    db.EndUsing();
    return Snapshot(db) != before;
}

void ChartModel::AddTag(__int64 time, double value, const std::string& text) {
    if (m_series.empty()) throw Failure{kWrongUse, Say(Text::NothingToTag)};
    ChartTag tag{text, time, value, KeyOf(m_series.front())};
    const TagFrame frame = FrameOf(tag.channel);
    const double left = frame.Left(time), top = frame.Top(value);
    if (!(left >= 0 && left <= 1 && top >= 0 && top <= 1)) throw Failure{kWrongUse, Say(Text::TagOutside, {ToUtf8(text)})};
    frame.Snap(tag);
    m_tags.push_back(std::move(tag));
}
