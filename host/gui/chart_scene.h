// The chart of a session in a given state: what stands where, and its picture, which follows from session, state and size alone.
// It owns the axes that trackers work on, and knows no window. User-interface thread. Session and database are the caller's, and
// may change only right before SetData.
#pragma once

#include <memory>

#include "afx/ptr_array.h"
#include "host/chart/chart_view.h"
#include "host/gui/gesture.h"

class ChartScene {
public:
    ChartScene() = default;
    ~ChartScene();
    ChartScene(const ChartScene&) = delete;
    ChartScene& operator=(const ChartScene&) = delete;

    // The state that a session's view begins with: its axes in the channels' order, its tags, and what it keeps of a view.
    static ViewState StateOf(const Session& session, IPropertyDB& db);
    // What StateOf takes, put back into the database.
    static void Store(const ViewState& state, const Session& session, IPropertyDB& db);

    // Null for no session.
    void SetData(const Session* session, IPropertyDB* db);
    void SetState(const ViewState& state);
    bool HasData() const { return m_view != nullptr; }
    // Another number whenever the axes are others than before.
    int Generation() const { return m_generation; }

    // While axes are live, their ranges are what the tracker made of them and not the state's.
    void SetLive(bool live) { m_live = live; }
    // Where everything lies is known afterwards, for the same size and state.
    void Draw(CDC& dc, const RECT& bounds, Focus focus, UINT dpi, const ChartColours& colours = {});
    const ViewParts& Parts() const { return m_parts; }
    // Labels are drawn with it.
    LOGFONTA LabelFont() const;

    // The axes shown, as the drag tracker has them: an exchange in the array is the wish to change places.
    CTypedPtrArray<CPtrArray, CUnitAxis*>& ShownAxes() { return m_shown; }
    CUnitAxis& Axis(int index) const;  // among the parts; kTimeAxis
    CTimeAxis& TimeAxis() const { return m_view->TimeAxis(); }
    ViewRange RangeOf(int index) const { return {Axis(index).GetOrigin(), Axis(index).GetExtent()}; }
    // The key of the channel whose line is the nearest to a point of the plot.
    std::string ChannelAt(POINT point) const;
    // Seconds since the first reading, as the time axis counts.
    double LastTime() const { return TimeAxis().SecondsOf(m_model->Last()); }
    // The last reading lies in view, and the times in view do not follow the data by themselves.
    bool ShowsEnd() const;
    size_t PlaceOf(int index) const { return m_parts.axes[static_cast<size_t>(index)].place; }

private:
    void Rebuild();
    void Drop();
    void ApplyRanges();
    void FindParts();
    void DrawFocus(CDC& dc, Focus focus) const;

    const Session* m_session = nullptr;
    IPropertyDB* m_db = nullptr;
    ViewState m_state;
    std::unique_ptr<ChartModel> m_model;
    std::unique_ptr<ChartView> m_view;
    struct Place {
        size_t unit, state;  // of the view; and where that stands in the state
    };
    std::vector<Place> m_shownAt, m_hiddenAt;
    CTypedPtrArray<CPtrArray, CUnitAxis*> m_shown;
    ViewParts m_parts;
    RECT m_bounds = {};
    UINT m_dpi = 96;
    bool m_live = false;
    int m_generation = 0;
};
