#include "host/gui/gesture.h"

#include <algorithm>
#include <cmath>

#include "platform/dpi.h"

namespace {
constexpr int kTagGrip = 12;  // pixels of a tag that stay in the plot, at 96 dots an inch

bool Contains(const RECT& rect, POINT point) {
    return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}
LONG Width(const RECT& rect) { return rect.right - rect.left; }
LONG Height(const RECT& rect) { return rect.bottom - rect.top; }

std::optional<ViewRange> Showable(double origin, double extent) {
    const ViewRange range{origin, extent};
    return IsShowable(range) ? std::optional(range) : std::nullopt;
}

Spot SpotOf(const ViewParts::Axis& axis, POINT point) {
    // The order of CAxis::HitTest.
    if (Contains(axis.zoom, point)) return Spot::AxisZoom;
    if (Contains(axis.rubber, point)) return Spot::AxisRubber;
    return Contains(axis.drag, point) ? Spot::AxisDrag : Spot::Nowhere;
}

std::vector<int> ShownAxes(const ViewParts& parts) {
    std::vector<int> axes(1, kTimeAxis);
    for (size_t i = 0; i < parts.axes.size(); ++i) axes.push_back(static_cast<int>(i));
    return axes;
}

// All that can have the focus, in its order.
std::vector<Focus> Stops(const ViewParts& parts) {
    std::vector<Focus> stops(1);
    for (const int axis : ShownAxes(parts)) stops.push_back({Focus::Axis, axis});
    for (size_t i = 0; i < parts.tags.size(); ++i) stops.push_back({Focus::Tag, static_cast<int>(i)});
    if (parts.selected) stops.push_back({Focus::Selection, 0});
    return stops;
}

template <class Change>
ViewState EachAxis(const ViewState& state, const ViewParts& parts, Change change) {
    ViewState next = state;
    for (const int axis : ShownAxes(parts)) SetRangeOf(next, parts, axis, change(axis, MappingOf(parts, axis)));
    return next;
}

// False where the tag's channel, or the plot, has no place for it.
bool Place(ViewState::Tag& tag, const ViewParts& parts, POINT corner) {
    const auto channel = std::find_if(parts.channels.begin(), parts.channels.end(),
                                      [&](const ViewParts::Channel& one) { return one.key == tag.channel; });
    if (channel == parts.channels.end() || Width(parts.plot) <= 1 || Height(parts.plot) <= 1) return false;
    const LONG grip = OrvikScale(kTagGrip, parts.dpi);
    corner.x = std::max(std::min(corner.x, parts.plot.right - grip), parts.plot.left);
    corner.y = std::max(std::min(corner.y, parts.plot.bottom - grip), parts.plot.top);
    const TagFrame& frame = channel->frame;
    const double seconds = parts.time.mapping.ToValue(corner.x), value = channel->mapping.ToValue(corner.y);
    const double all = (static_cast<double>(frame.last) - static_cast<double>(frame.first)) * 1e-6;
    frame.Place(tag, seconds / all, frame.Top(value));
    return true;
}
}  // namespace

Hit HitTest(const ViewParts& parts, POINT point) {
    if (Contains(parts.plot, point)) {
        for (size_t i = parts.tags.size(); i-- > 0;) {
            if (Contains(parts.tags[i], point)) return {Spot::Tag, static_cast<int>(i)};
        }
        if (parts.selected) {
            if (const auto handle = parts.selection.HitTest(point)) return {Spot::Selection, 0, handle};
        }
        return {Spot::Plot, 0};
    }
    for (const int axis : ShownAxes(parts)) {
        const Spot spot = SpotOf(axis == kTimeAxis ? parts.time : parts.axes[static_cast<size_t>(axis)], point);
        if (spot != Spot::Nowhere) return {spot, axis};
    }
    return {};
}

const orvik::AxisMapping& MappingOf(const ViewParts& parts, int axis) {
    return axis == kTimeAxis ? parts.time.mapping : parts.axes[static_cast<size_t>(axis)].mapping;
}

std::optional<ViewRange> RangeBetween(const orvik::AxisMapping& mapping, LONG a, LONG b) {
    return Showable(mapping.ToValue(a), mapping.ToValue(b));
}

std::optional<ViewRange> RangeAbout(const orvik::AxisMapping& mapping, LONG pixel, double part) {
    const double span = mapping.extent - mapping.origin;
    const double at = (mapping.ToValue(pixel) - mapping.origin) / span;
    return Showable(mapping.origin + at * span * part, mapping.extent - (1 - at) * span * part);
}

std::optional<ViewRange> RangeMoved(const orvik::AxisMapping& mapping, double part) {
    const double step = (mapping.extent - mapping.origin) * part;
    return Showable(mapping.origin + step, mapping.extent + step);
}

std::optional<ViewRange> RangeStretched(const orvik::AxisMapping& mapping, double part, bool originEnd) {
    const double step = (mapping.extent - mapping.origin) * part;
    return originEnd ? Showable(mapping.origin + step, mapping.extent) : Showable(mapping.origin, mapping.extent + step);
}

void SetRangeOf(ViewState& state, const ViewParts& parts, int axis, const std::optional<ViewRange>& range) {
    if (!range) return;
    if (axis == kTimeAxis) {
        state.time = range;
    } else {
        state.axes[parts.axes[static_cast<size_t>(axis)].place].range = range;
    }
}

ViewState ZoomedTo(const ViewState& state, const ViewParts& parts, const RECT& region) {
    const bool allTimes = region.left <= parts.plot.left && region.right >= parts.plot.right;
    const bool allValues = region.top <= parts.plot.top && region.bottom >= parts.plot.bottom;
    return EachAxis(state, parts, [&](int axis, const orvik::AxisMapping& mapping) -> std::optional<ViewRange> {
        if (axis == kTimeAxis ? allTimes : allValues) return std::nullopt;
        return axis == kTimeAxis ? RangeBetween(mapping, region.left, region.right)
                                 : RangeBetween(mapping, region.bottom, region.top);
    });
}

ViewState ZoomedAbout(const ViewState& state, const ViewParts& parts, POINT point, double part) {
    return EachAxis(state, parts, [&](int axis, const orvik::AxisMapping& mapping) {
        return RangeAbout(mapping, axis == kTimeAxis ? point.x : point.y, part);
    });
}

ViewState Panned(const ViewState& state, const ViewParts& parts, double timePart, double valuePart) {
    return EachAxis(state, parts, [&](int axis, const orvik::AxisMapping& mapping) -> std::optional<ViewRange> {
        const double part = axis == kTimeAxis ? timePart : valuePart;
        return part != 0 ? RangeMoved(mapping, part) : std::nullopt;
    });
}

ViewState AllReset(const ViewState& state) {
    ViewState next = state;
    next.time.reset();
    for (ViewState::Axis& axis : next.axes) axis.range.reset();
    return next;
}

ViewState Swapped(const ViewState& state, size_t place, size_t other) {
    ViewState next = state;
    if (place < next.axes.size() && other < next.axes.size()) std::swap(next.axes[place], next.axes[other]);
    return next;
}

ViewState WithSelection(const ViewState& state, const ViewParts& parts, const RECT& selection) {
    ViewState next = state;
    const double width = Width(parts.plot), height = Height(parts.plot);
    if (width <= 0 || height <= 0 || Width(selection) <= 0 || Height(selection) <= 0) return next;
    const auto part = [](LONG from, LONG at, double whole) { return std::clamp((at - from) / whole, 0.0, 1.0); };
    next.selection = {part(parts.plot.left, selection.left, width), part(parts.plot.top, selection.top, height),
                      part(parts.plot.left, selection.right, width), part(parts.plot.top, selection.bottom, height)};
    return next;
}

RECT SelectionOf(const ViewState::Selection& selection, const RECT& plot) {
    const auto pixel = [](LONG from, double part, LONG whole) { return from + static_cast<LONG>(std::lround(part * whole)); };
    return {pixel(plot.left, selection.left, Width(plot)), pixel(plot.top, selection.top, Height(plot)),
            pixel(plot.left, selection.right, Width(plot)), pixel(plot.top, selection.bottom, Height(plot))};
}

ViewState TagMoved(const ViewState& state, const ViewParts& parts, size_t tag, POINT corner) {
    ViewState next = state;
    if (tag < next.tags.size()) Place(next.tags[tag], parts, corner);
    return next;
}

ViewState TagAdded(const ViewState& state, const ViewParts& parts, POINT corner, const std::string& text,
                   const std::string& channel) {
    ViewState next = state;
    next.tags.push_back({text, 0, 0, channel});
    return Place(next.tags.back(), parts, corner) ? next : state;
}

ViewState TagRemoved(const ViewState& state, size_t tag) {
    ViewState next = state;
    if (tag < next.tags.size()) next.tags.erase(next.tags.begin() + static_cast<std::ptrdiff_t>(tag));
    return next;
}

ViewState TagWritten(const ViewState& state, size_t tag, const std::string& text) {
    ViewState next = state;
    if (tag < next.tags.size()) next.tags[tag].text = text;
    return next;
}

Focus NextFocus(const ViewParts& parts, Focus focus, bool backwards) {
    const std::vector<Focus> stops = Stops(parts);
    const auto found = std::find(stops.begin(), stops.end(), focus);
    if (found == stops.end()) return stops.front();
    const auto at = static_cast<size_t>(found - stops.begin());
    return stops[(at + (backwards ? stops.size() - 1 : 1)) % stops.size()];
}

Focus ValidFocus(const ViewParts& parts, Focus focus) {
    const std::vector<Focus> stops = Stops(parts);
    return std::find(stops.begin(), stops.end(), focus) != stops.end() ? focus : Focus{};
}
