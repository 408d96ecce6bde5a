// What the pointer does in the chart: presses, drags by way of the trackers, the wheel.
#include <algorithm>
#include <cmath>

#include "chart/axis_hold.h"
#include "chart/drag_axis_tracker.h"
#include "chart/rubber_tracker.h"
#include "chart/zoom_all_tracker.h"
#include "chart/zoom_axis_tracker.h"
#include "chart/zoom_sel_tracker.h"
#include "host/gui/chart_window.h"
#include "host/gui/held_keys.h"
#include "host/gui/tag_tracker.h"
#include "platform/dpi.h"

// As long as a tracker runs. The window, or the axes, may be gone afterwards: Lost tells.
class ChartWindow::Drag {
public:
    explicit Drag(ChartWindow& window) : m_window(window), m_handle(window.m_hWnd), m_generation(window.m_scene.Generation()) {
        window.m_dragging = true;
    }
    ~Drag() {
        m_window.m_dragging = false;
        m_window.m_scene.SetLive(false);
        if (!::IsWindow(m_handle)) return;
        m_window.m_owner.OnDragEnd();
    }
    int Track(CTracker& tracker, CPoint point) {
        const int result = tracker.TrackCursor(&m_window, point);
        m_window.m_ignoreMenu = result == 0 && IsDown(VK_RBUTTON);
        return Lost() ? 0 : result;
    }

private:
    bool Lost() const { return !::IsWindow(m_handle) || m_window.m_scene.Generation() != m_generation; }

    ChartWindow& m_window;
    HWND m_handle;
    int m_generation;
};

LRESULT ChartWindow::OnPress(WPARAM, LPARAM lParam) {
    m_ignoreMenu = false;
    ::SetFocus(m_hWnd);
    EndWriting(true);
    UpToDate();
    if (m_dragging) return 0;
    const CPoint point = CPoint(lParam);
    if (!m_scene.HasData()) {
        if (const UINT command = m_empty.CommandAt(point)) m_owner.OnPaneCommand(command);
        return 0;
    }
    const Hit hit = HitTest(m_scene.Parts(), point);
    SetFocusMark(hit.spot == Spot::Tag ? Focus{Focus::Tag, hit.index} : Focus{});
    ::UpdateWindow(m_hWnd);  // what a tracker draws stands on the picture as it is
    switch (hit.spot) {
        case Spot::Plot:
            DragPlot(point);
            break;
        case Spot::Selection:
            DragSelection(point, hit.handle);
            break;
        case Spot::Tag:
            DragTag(point, hit.index);
            break;
        case Spot::AxisZoom:
            DragAxisInterval(point, hit.index);
            break;
        case Spot::AxisRubber:
            DragAxisEnd(point, hit.index);
            break;
        case Spot::AxisDrag:
            DragAxisPlace(point, hit.index);
            break;
        case Spot::Nowhere:
            break;
    }
    return 0;
}

void ChartWindow::DragPlot(CPoint point) {
    const ViewParts parts = m_scene.Parts();
    const bool select = IsDown(VK_SHIFT);
    Drag drag(*this);
    CZoomAllTracker tracker(&parts.plot);
    RECT region = {};
    if (drag.Track(tracker, point) != 2 || !tracker.GetSelection(&region)) return;
    select ? Do(Text::StepSelect, WithSelection(m_document.State(), parts, region))
           : Do(Text::StepZoom, ZoomedTo(m_document.State(), parts, region));
}

void ChartWindow::DragSelection(CPoint point, CZoomSelection::EHitCode handle) {
    const ViewParts parts = m_scene.Parts();
    const RECT selection = parts.selection.GetPosition();
    Drag drag(*this);
    CZoomSelTracker tracker(&parts.plot, &selection, handle);
    RECT region = {};
    if (drag.Track(tracker, point) == 2 && tracker.GetSelection(&region))
        Do(Text::StepSelect, WithSelection(m_document.State(), parts, region));
}

void ChartWindow::DragTag(CPoint point, int tag) {
    const ViewParts parts = m_scene.Parts();
    Drag drag(*this);
    TagTracker tracker(parts.plot, parts.tags[static_cast<size_t>(tag)], OrvikScale(1, parts.dpi));
    if (drag.Track(tracker, point) == 2)
        Do(Text::StepMoveTag, TagMoved(m_document.State(), parts, static_cast<size_t>(tag), tracker.Corner()));
}

void ChartWindow::DragAxisInterval(CPoint point, int axis) {
    const ViewParts parts = m_scene.Parts();
    Drag drag(*this);
    CZoomAxisTracker tracker(&parts.plot, &m_scene.Axis(axis));
    LONG a = 0, b = 0;
    if (drag.Track(tracker, point) != 2 || !tracker.GetSelection(a, b) || std::abs(a - b) < CTracker::iMinSelection) return;
    ViewState next = m_document.State();
    SetRangeOf(next, parts, axis, RangeBetween(MappingOf(parts, axis), a, b));
    Do(Text::StepZoomAxis, next);
}

void ChartWindow::DragAxisEnd(CPoint point, int axis) {
    const ViewParts parts = m_scene.Parts();
    Drag drag(*this);
    m_scene.SetLive(true);
    // Held, since the window may be made so small meanwhile that the axis is no longer shown.
    CUnitAxis& stretched = m_scene.Axis(axis);
    const orvik::AxisHold hold(&stretched);
    CRubberTracker tracker(this, stretched.GetAreaRect(), m_scene.LabelFont(), &stretched);
    if (drag.Track(tracker, point) == 2) {
        ViewState next = m_document.State();
        const ViewRange range{stretched.GetOrigin(), stretched.GetExtent()};
        if (IsShowable(range)) SetRangeOf(next, parts, axis, range);
        Do(Text::StepStretchAxis, next);
    }
    m_scene.SetLive(false);
    Redraw();
}

void ChartWindow::DragAxisPlace(CPoint point, int axis) {
    const ViewParts parts = m_scene.Parts();
    Drag drag(*this);
    auto& shown = m_scene.ShownAxes();
    const CUnitAxis* const dragged = shown[axis];
    CDragAxisTracker tracker(shown, shown[axis]);
    if (drag.Track(tracker, point) != 2 || static_cast<size_t>(shown.GetSize()) != parts.axes.size()) return;
    // The tracker has exchanged the two in the array; the state follows, and the array with it.
    for (size_t i = 0; i < parts.axes.size(); ++i) {
        if (shown[static_cast<INT_PTR>(i)] != dragged || i == static_cast<size_t>(axis)) continue;
        const ViewState next = Swapped(m_document.State(), parts.axes[static_cast<size_t>(axis)].place, parts.axes[i].place);
        return Do(Text::StepSwapAxes, next);
    }
}

// The plot follows an axis that is stretched.
LRESULT ChartWindow::OnRubber(WPARAM, LPARAM) {
    if (!m_dragging) return 0;
    Redraw();
    ::UpdateWindow(m_hWnd);
    return 0;
}

LRESULT ChartWindow::OnDoublePress(WPARAM, LPARAM lParam) {
    EndWriting(true);
    UpToDate();
    if (!m_scene.HasData() || m_dragging) return 0;
    const CPoint point = CPoint(lParam);
    const Hit hit = HitTest(m_scene.Parts(), point);
    switch (hit.spot) {
        case Spot::Plot:
            AddTag(point);
            break;
        case Spot::Selection:
            ZoomToSelection();
            break;
        case Spot::Tag:
            EditTag(hit.index);
            break;
        case Spot::AxisZoom:
        case Spot::AxisRubber:
        case Spot::AxisDrag:
            ResetAxis(hit.index);
            break;
        case Spot::Nowhere:
            break;
    }
    return 0;
}

// A wheel that is pushed sideways, or two fingers: to later or earlier times.
LRESULT ChartWindow::OnWheelAcross(WPARAM wParam, LPARAM) {
    m_wheelAcross += static_cast<short>(HIWORD(wParam));
    const int notches = m_wheelAcross / WHEEL_DELTA;
    m_wheelAcross -= notches * WHEEL_DELTA;
    if (!m_scene.HasData() || m_dragging || m_writing || notches == 0) return 0;
    UpToDate();
    const ViewRange shown = ShownTimes();
    const double by = (shown.extent - shown.origin) * kPanned * notches;
    ViewState next = m_document.State();
    next.time = ViewRange{shown.origin + by, shown.extent + by};
    if (IsShowable(*next.time)) Do(Text::StepPan, next);
    return 0;
}

LRESULT ChartWindow::OnWheel(WPARAM wParam, LPARAM lParam) {
    m_wheel += static_cast<short>(HIWORD(wParam));
    const int notches = m_wheel / WHEEL_DELTA;
    m_wheel -= notches * WHEEL_DELTA;
    if (!m_scene.HasData() || m_dragging || m_writing || notches == 0) return 0;
    CPoint point = CPoint(lParam);
    ::ScreenToClient(m_hWnd, &point);
    UpToDate();
    const ViewParts& parts = m_scene.Parts();
    const Hit hit = HitTest(parts, point);
    const bool onAxis = hit.spot == Spot::AxisZoom || hit.spot == Spot::AxisRubber || hit.spot == Spot::AxisDrag;
    if (!onAxis && !parts.plot.left && hit.spot == Spot::Nowhere) return 0;
    if (hit.spot == Spot::Nowhere) return 0;
    const double part = notches > 0 ? 1 - std::pow(1 - kNarrower, notches) : 1 - std::pow(1 - kWider, -notches);
    const bool time = (wParam & MK_CONTROL) != 0, all = (wParam & MK_SHIFT) != 0;
    ViewState next = m_document.State();
    const auto zoom = [&](int axis) {
        m_scene.Axis(axis).Zoom(point, part);
        if (IsShowable(m_scene.RangeOf(axis))) SetRangeOf(next, parts, axis, m_scene.RangeOf(axis));
    };
    if (onAxis) {
        zoom(hit.index);
    } else {
        if (time || all) zoom(kTimeAxis);
        for (size_t i = 0; (!time || all) && i < parts.axes.size(); ++i) zoom(static_cast<int>(i));
    }
    Do(onAxis ? Text::StepZoomAxis : Text::StepZoom, next);
    Redraw();
    return 0;
}
