// What a chart shows of a session: its times, the channels in view and their units, the tags and the remembered ranges. It knows
// nothing of pixels. User-interface thread. The session is the caller's and must outlive the model.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "chart/unit_context.h"
#include "host/chart/chart_tag.h"
#include "host/session/series_range.h"
#include "host/session/series_reduction.h"
#include "host/session/session.h"

class ChartModel {
public:
    struct Series {
        std::string name;  // with its unit: "Air temperature [°C]"
        size_t unit;       // index of its unit
        size_t number;     // among all channels of the session
        COLORREF colour;
        const double* values;  // null where they stay in a recording
        // How many channels before it have its colour; it has a dash pattern of its own then.
        size_t pattern = 0;
    };
    // All units of the session, those without a series in view too.
    struct Unit {
        std::string text;
        std::vector<size_t> series;
        double origin = 0, extent = 100;  // of its axis
    };

    // `channels` by their names or keys, all when there are none; a Failure for one that there is not.
    ChartModel(const Session& session, const std::vector<std::string>& channels);

    size_t Count() const { return m_session.Count(); }
    const std::string& Title() const { return m_session.Logger(); }
    const std::vector<Series>& AllSeries() const { return m_series; }
    const std::vector<Unit>& Units() const { return m_units; }
    // Of readings in memory.
    SeriesData Data(const Series& series) const { return {m_times, series.values, Count(), &m_blocks[series.number]}; }
    // The lines of all series, wherever the readings are: a mapping for each, which differ in their values only.
    std::vector<ReducedSeries> Reduce(const std::vector<PlotMapping>& mappings) const;

    // Why readings are missing.
    const RecordedNotes& Notes() const { return m_session.Recorded() != nullptr ? m_session.Recorded()->Notes() : m_notes; }

    // The times of the first and the last reading, and what is in view of them: all at first. 0 to 1 s without readings. What is
    // told to be missing behind the last reading counts: it may be what happens just now.
    __int64 First() const { return m_first; }
    __int64 Last() const { return m_last; }
    __int64 From() const { return m_from; }
    __int64 To() const { return m_to; }
    // Of all readings, when there is but one and nothing is missing behind it.
    std::optional<__int64> OnlyTime() const { return m_onlyTime; }
    // Whether there is a finite value in any series.
    bool HasValues() const;
    // A Failure if nothing lies between.
    void SetView(__int64 from, __int64 to);

    // What the session's database holds besides the readings, and back (docs/formats.md). Ranges that it holds go before those
    // that are made for the data. Storing tells whether anything in the database has changed.
    void Load(IPropertyDB& db);
    bool Store(IPropertyDB& db);

    // In the order of drawing. A new one stands at a value on the axis of the first channel shown; a Failure when that is not
    // within the times of all readings and the axis's range.
    const std::vector<ChartTag>& Tags() const { return m_tags; }
    void SetTags(std::vector<ChartTag> tags) { m_tags = std::move(tags); }
    void AddTag(__int64 time, double value, const std::string& text);
    void ClearTags() { m_tags.clear(); }
    // Of a channel's tags; the first channel's for a key that there is not.
    TagFrame FrameOf(const std::string& channel) const;
    // The unit of a channel, by its key, among all units; nothing without channels.
    std::optional<size_t> UnitOf(const std::string& channel) const;
    const std::string& KeyOf(const Series& series) const { return m_session.Channels()[series.number].key; }

    // What the channel with this number is called and drawn with, if it is shown.
    void SetLook(size_t channel, const std::string& name, COLORREF colour);
    // A channel's colour where nothing else is said: its own, whatever else is shown.
    static COLORREF ColourOf(size_t channel);
    // The colour that a session's database tells for a channel.
    static COLORREF ColourIn(IPropertyDB& db, const std::string& key, size_t channel);

private:
    void ReachToGaps();
    void ScaleUnits();
    void ChoosePatterns();
    void LoadTags(IPropertyDB& db);
    void StoreTags(IPropertyDB& db) const;

    const Session& m_session;
    RecordedNotes m_notes;  // of readings that are in memory
    std::vector<Series> m_series;
    std::vector<Unit> m_units;
    // Copies in the order of time, for a session that is not in it.
    std::vector<__int64> m_sortedTimes;
    std::vector<std::vector<double>> m_sortedValues;
    std::vector<SeriesBlocks> m_blocks;  // of all channels, in the order of time; none of a recording
    const __int64* m_times = nullptr;
    __int64 m_first = 0, m_last = 1'000'000, m_lastReading = m_last, m_from = 0, m_to = 1'000'000;
    std::optional<__int64> m_onlyTime;
    std::vector<COLORREF> m_colours;  // of all channels
    std::vector<bool> m_hasValues;    // the same
    CUnitContextList m_contexts;
    std::vector<ChartTag> m_tags;
};
