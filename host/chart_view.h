// Draws a chart of a model: title, legend, one axis a unit, time axis, raster, traces, tags. The axes live as long as the view;
// their ranges are what is seen, so that whoever changes them changes the view. User-interface thread; the model is the caller's.
//
// The same chart looks alike wherever it is drawn: its font is "DejaVu Sans" where that is installed (the packages of this system
// bring it), else what the system has in its place, and never the user's dialog font. Colours are told apart by colour-blind
// people too; a channel keeps its own, whatever else is shown.
#pragma once

#include <memory>
#include <vector>

#include "afx/dc.h"
#include "host/chart_layout.h"
#include "host/chart_model.h"
#include "host/time_axis.h"

class ChartView {
public:
    explicit ChartView(ChartModel& model);
    ~ChartView();
    ChartView(const ChartView&) = delete;
    ChartView& operator=(const ChartView&) = delete;

    // The units in the order of their places, the first and the next to the plot's sides, and outwards: each once. As the model
    // has them at first.
    void SetPlaces(const std::vector<size_t>& units) { m_places = units; }

    // The DC's objects and modes come back as they were. Without a title where `bounds` is small, and so on: see ChartLayout.
    void Draw(CDC& dc, const RECT& bounds);

    CTimeAxis& TimeAxis() { return *m_time; }
    CUnitAxis& UnitAxis(size_t unit) { return *m_axes[unit]; }
    const ChartLayout& Layout() const { return m_layout; }  // as last drawn; its axes by their places
    // The frame of the tags, in which their places are told, and where one is drawn: within the plot as far as it fits.
    RECT TagFrame() const;
    RECT TagRect(const CFloatingTag& tag) const;

private:
    void MeasureAndPlace(CDC& dc, const RECT& bounds);
    void DrawHeads(CDC& dc, CFont& ordinary, CFont& bold);
    void DrawAxes(CDC& dc);
    void DrawTraces(CDC& dc);
    void DrawTags(CDC& dc);
    PlotMapping MappingOf(const CUnitAxis& axis) const;
    std::string TimeRange() const;

    ChartModel& m_model;
    CUnitAxis& AxisAt(size_t place) const { return *m_axes[m_places[place]]; }
    std::vector<CUnitAxis*> m_axes;
    std::vector<size_t> m_places;
    CTimeAxis* m_time;
    ChartLayout m_layout;
    LONG m_line = 0;
};
