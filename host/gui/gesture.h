// What the pointer and the keys mean on a chart: from a place to what stands there, and from a finished gesture to the state that
// it asks for. Nothing here draws, captures or knows a window. Coordinates are pixels of the chart's window. Any thread.
#pragma once

#include <vector>

#include "chart/axis_mapping.h"
#include "chart/zoom_selection.h"
#include "host/gui/view_state.h"

// The value of an index that stands for the time axis.
inline constexpr int kTimeAxis = -1;

struct ViewParts {
    struct Axis {
        RECT zoom = {}, rubber = {}, drag = {};  // as the trackers have them
        orvik::AxisMapping mapping;
        size_t place = 0;  // in ViewState::axes
    };
    RECT plot = {};
    std::vector<Axis> axes;  // those shown
    Axis time;
    // What a channel's tags are placed by, whether it is shown or not.
    struct Channel {
        std::string key;
        orvik::AxisMapping mapping;
        TagFrame frame;
    };
    std::vector<Channel> channels;
    std::vector<RECT> tags;  // as many as the state has, in the order of drawing
    CZoomSelection selection;
    bool selected = false;
    UINT dpi = 96;  // dots an inch of the window
};

enum class Spot { Nowhere, Plot, Selection, Tag, AxisZoom, AxisRubber, AxisDrag };

struct Hit {
    Spot spot = Spot::Nowhere;
    int index = 0;  // of a tag, or of an axis among the parts; kTimeAxis
    CZoomSelection::EHitCode handle = CZoomSelection::HIT_OUTSIDE;
    bool operator==(const Hit&) const = default;
};

// Tags lie above the selection, the selection above the plot; axes around them.
Hit HitTest(const ViewParts& parts, POINT point);

// --- Ranges. Each gives nothing for what cannot be shown. ---
// Between two pixels, from a to b.
std::optional<ViewRange> RangeBetween(const orvik::AxisMapping& mapping, LONG a, LONG b);
// Narrower by this part of its span, or wider when it is negative, about the value at a pixel, which stays in its place.
std::optional<ViewRange> RangeAbout(const orvik::AxisMapping& mapping, LONG pixel, double part);
// Moved by this part of its span; and with one end moved alone.
std::optional<ViewRange> RangeMoved(const orvik::AxisMapping& mapping, double part);
std::optional<ViewRange> RangeStretched(const orvik::AxisMapping& mapping, double part, bool originEnd);

// --- States. What a gesture cannot do leaves the state as it is. ---
void SetRangeOf(ViewState& state, const ViewParts& parts, int axis, const std::optional<ViewRange>& range);
const orvik::AxisMapping& MappingOf(const ViewParts& parts, int axis);
// The region fills the plot: time, and every axis shown. Directions in which it is as wide as the plot stay as they are.
ViewState ZoomedTo(const ViewState& state, const ViewParts& parts, const RECT& region);
// All axes and the time at once, about a point or by parts of their spans.
ViewState ZoomedAbout(const ViewState& state, const ViewParts& parts, POINT point, double part);
ViewState Panned(const ViewState& state, const ViewParts& parts, double timePart, double valuePart);
ViewState AllReset(const ViewState& state);
// A place among all axes of the state, and another.
ViewState Swapped(const ViewState& state, size_t place, size_t other);
ViewState WithSelection(const ViewState& state, const ViewParts& parts, const RECT& selection);
RECT SelectionOf(const ViewState::Selection& selection, const RECT& plot);
// The tag's upper left corner at a pixel, kept so far inside the plot that it can be seen and grabbed.
ViewState TagMoved(const ViewState& state, const ViewParts& parts, size_t tag, POINT corner);
// A new one stands on the axis of a channel, named by its key.
ViewState TagAdded(const ViewState& state, const ViewParts& parts, POINT corner, const std::string& text,
                   const std::string& channel);
ViewState TagRemoved(const ViewState& state, size_t tag);
ViewState TagWritten(const ViewState& state, size_t tag, const std::string& text);

// --- What the keyboard stands on: the plot, then the time axis, the axes shown, the tags and the selection, and around again.
// ---
struct Focus {
    enum Kind { Plot, Axis, Tag, Selection } kind = Plot;
    int index = 0;  // of an axis among the parts (kTimeAxis), of a tag
    bool operator==(const Focus&) const = default;
};
Focus NextFocus(const ViewParts& parts, Focus focus, bool backwards);
// The focus itself if it stands on something that is there, else the plot.
Focus ValidFocus(const ViewParts& parts, Focus focus);
