// Draws a chart of a model: title, legend, one axis a unit, time axis, raster, bands where readings are missing, traces, tags. The axes live as long as the view;
// their ranges are what is seen, so that whoever changes them changes the view. User-interface thread; the model is the caller's.
//
// The same chart looks alike wherever it is drawn: its font is "DejaVu Sans" where that is installed (the packages of this system
// bring it), else what the system has in its place, and never the user's dialog font. Colours are told apart by colour-blind
// people too; a channel keeps its own, whatever else is shown.
#pragma once

#include <memory>
#include <vector>

#include "afx/dc.h"
#include "host/chart/chart_colours.h"
#include "host/chart/chart_layout.h"
#include "host/chart/chart_model.h"
#include "host/chart/gap_bands.h"
#include "host/chart/time_axis.h"
#include "host/chart/value_axis.h"
#include "platform/dpi.h"

class ChartView {
public:
    explicit ChartView(ChartModel& model);
    ~ChartView();
    ChartView(const ChartView&) = delete;
    ChartView& operator=(const ChartView&) = delete;

    // The units in the order of their places, the first and the next to the plot's sides, and outwards: each once. At first those
    // with a series in view, as the model has them.
    void SetPlaces(const std::vector<size_t>& units) { m_places = units; }

    // The DC's objects and modes come back as they were. Without a title where `bounds` is small, and so on: see ChartLayout.
    // A window says its dots an inch; a picture in a file has 96, wherever it is made.
    void Draw(CDC& dc, const RECT& bounds, UINT dpi = 96, const ChartColours& colours = {});

    CTimeAxis& TimeAxis() { return *m_time; }
    CUnitAxis& UnitAxis(size_t unit) { return *m_axes[unit]; }
    const ChartLayout& Layout() const { return m_layout; }  // as last drawn; its axes by their places
    // Legend, axes and times are there as last drawn, or the chart says what of them is not.
    bool TellsWhatIsMissing() const;
    // How the plot maps a unit's values, whether its axis is shown or not.
    orvik::AxisMapping MappingOf(size_t unit) const;
    // Where the tags were last drawn, within the plot as far as they fit; empty, at the nearest place of the plot, for those
    // whose time or value is not in view. One of them, or none (-1), has the focus.
    const std::vector<RECT>& TagRects() const { return m_tagRects; }
    void SetFocusedTag(int tag) { m_focusedTag = tag; }
    // The series whose line, as last drawn, is the nearest to a point of the plot; null without series.
    const ChartModel::Series* NearestSeries(POINT point) const;

private:
    void MeasureAndPlace(CDC& dc, const RECT& bounds);
    void DrawHeads(CDC& dc, CFont& ordinary, CFont& bold);
    void DrawAxes(CDC& dc);
    void FillGaps(CDC& dc, const std::vector<GapBand>& gaps) const;
    void NameGaps(CDC& dc, const std::vector<GapBand>& gaps) const;
    void DrawTraces(CDC& dc);
    void DrawTags(CDC& dc);
    void DrawWhatIsMissing(CDC& dc) const;
    PlotMapping PlotOf(size_t unit) const;
    LONG Scaled(int pixels) const { return OrvikScale(pixels, m_dpi); }
    float Scaled(float pixels) const { return pixels * static_cast<float>(m_dpi) / 96; }
    std::string TimeRange() const;

    ChartModel& m_model;
    CValueAxis& AxisAt(size_t place) const { return *m_axes[m_places[place]]; }
    std::vector<CValueAxis*> m_axes;  // of all units
    std::vector<size_t> m_places;
    CTimeAxis* m_time;
    ChartLayout m_layout;
    std::vector<ReducedSeries> m_lines;
    std::vector<RECT> m_tagRects;
    int m_focusedTag = -1;
    LONG m_line = 0;
    UINT m_dpi = 96;
    ChartColours m_colours;
};
