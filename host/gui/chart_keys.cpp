// What keys and commands do in the chart: with what has the focus, or with the plot.
#include <algorithm>

#include "chart/tracker.h"
#include "host/gui/chart_window.h"
#include "host/gui/held_keys.h"
#include "platform/dpi.h"

namespace {
constexpr double kPan = 0.1;
constexpr LONG kTagStep = 8, kSelectionStep = 8;  // pixels at 96 dots an inch
}  // namespace

LRESULT ChartWindow::OnKey(WPARAM wParam, LPARAM) {
    const auto key = static_cast<WORD>(wParam);
    const bool shift = IsDown(VK_SHIFT), control = IsDown(VK_CONTROL);
    if (m_writing && OnWritingKey(key)) return 0;
    UpToDate();
    if (!m_scene.HasData() && OnEmptyKey(key)) return 0;
    switch (m_scene.HasData() ? key : 0) {
        case VK_TAB:
            SetFocusMark(NextFocus(m_scene.Parts(), m_focus, shift));
            return 0;
        case VK_ESCAPE:
            SetFocusMark({});
            return 0;
        case VK_LEFT:
            MoveFocus(-1, 0, shift, control);
            return 0;
        case VK_RIGHT:
            MoveFocus(1, 0, shift, control);
            return 0;
        case VK_UP:
            MoveFocus(0, -1, shift, control);
            return 0;
        case VK_DOWN:
            MoveFocus(0, 1, shift, control);
            return 0;
        case VK_ADD:
        case VK_OEM_PLUS:
            ZoomFocus(kNarrower);
            return 0;
        case VK_SUBTRACT:
        case VK_OEM_MINUS:
            ZoomFocus(kWider);
            return 0;
        case VK_HOME:
            m_focus.kind == Focus::Axis ? ResetAxis(m_focus.index) : void(Command(kCommandResetAll));
            return 0;
        case VK_PRIOR:
        case VK_NEXT:
            if (m_focus.kind == Focus::Axis && m_focus.index != kTimeAxis) {
                const int other = m_focus.index + (key == VK_NEXT ? 1 : -1);
                if (other < 0 || static_cast<size_t>(other) >= m_scene.Parts().axes.size()) return 0;
                Do(Text::StepSwapAxes, Swapped(m_document.State(), m_scene.PlaceOf(m_focus.index), m_scene.PlaceOf(other)));
                SetFocusMark({Focus::Axis, other});
            }
            return 0;
        case VK_DELETE:
            if (m_focus.kind == Focus::Selection) Command(kCommandRemoveSelection);
            if (m_focus.kind == Focus::Tag) Command(kCommandRemoveTag);
            return 0;
        case VK_RETURN:
            if (control) break;
            if (m_focus.kind == Focus::Selection) ZoomToSelection();
            if (m_focus.kind == Focus::Tag) EditTag(m_focus.index);
            return 0;
        case VK_APPS:
            OnMenuWish(0, MAKELPARAM(-1, -1));
            return 0;
        default:
            break;
    }
    m_owner.OnPaneKey(key);
    return 0;
}

// Where no session is open, keys lead through what can be done about that.
bool ChartWindow::OnEmptyKey(WORD key) {
    const UINT command = key == VK_RETURN ? m_empty.Focused() : 0;
    if (command != 0) {
        m_owner.OnPaneCommand(command);
        return true;
    }
    if (key != VK_TAB && key != VK_ESCAPE) return false;
    key == VK_TAB ? m_empty.Step(IsDown(VK_SHIFT)) : m_empty.Leave();
    Redraw();
    return true;
}

LRESULT ChartWindow::OnSystemKey(WPARAM wParam, LPARAM) {
    if (wParam != VK_RETURN) return Default();
    m_owner.OnPaneCommand(kCommandProperties);
    return 0;
}

// Alt+Enter is handled; the system would sound a bell for its letter.
LRESULT ChartWindow::OnSystemLetter(WPARAM wParam, LPARAM) { return wParam == VK_RETURN ? 0 : Default(); }

void ChartWindow::MoveFocus(int dx, int dy, bool shift, bool control) {
    const ViewParts& parts = m_scene.Parts();
    const ViewState& state = m_document.State();
    if (m_focus.kind == Focus::Plot) {
        Do(Text::StepPan, Panned(state, parts, dx * kPan, -dy * kPan));
    } else if (m_focus.kind == Focus::Axis) {
        const double part = (m_focus.index == kTimeAxis ? dx : -dy) * kPan;
        const orvik::AxisMapping& mapping = MappingOf(parts, m_focus.index);
        ViewState next = state;
        if (part == 0) return;
        const bool one = shift || control;
        SetRangeOf(next, parts, m_focus.index, one ? RangeStretched(mapping, part, shift) : RangeMoved(mapping, part));
        Do(one ? Text::StepStretchAxis : Text::StepPan, next);
    } else if (m_focus.kind == Focus::Tag) {
        const RECT& tag = parts.tags[static_cast<size_t>(m_focus.index)];
        const LONG step = shift ? 1 : OrvikScale(kTagStep, parts.dpi);
        Do(Text::StepMoveTag,
           TagMoved(state, parts, static_cast<size_t>(m_focus.index), {tag.left + dx * step, tag.top + dy * step}));
    } else {
        CRect rect = parts.selection.GetPosition();
        const int step = OrvikScale(kSelectionStep, parts.dpi);
        const CPoint by(dx * step, dy * step);
        if (shift) {
            rect.right += by.x, rect.bottom += by.y;
        } else {
            rect += by;
        }
        const RECT& plot = parts.plot;
        const bool inside =
            rect.left >= plot.left && rect.top >= plot.top && rect.right <= plot.right && rect.bottom <= plot.bottom;
        if (inside && rect.Width() >= CTracker::iMinSelection && rect.Height() >= CTracker::iMinSelection)
            Do(Text::StepSelect, WithSelection(state, parts, rect));
    }
}

void ChartWindow::ZoomFocus(double part) {
    const ViewParts& parts = m_scene.Parts();
    if (m_focus.kind == Focus::Axis) {
        const orvik::AxisMapping& mapping = MappingOf(parts, m_focus.index);
        ViewState next = m_document.State();
        SetRangeOf(next, parts, m_focus.index, RangeAbout(mapping, (mapping.start + mapping.end) / 2, part));
        return Do(Text::StepZoomAxis, next);
    }
    Do(Text::StepZoom, ZoomedAbout(m_document.State(), parts, CRect(parts.plot).CenterPoint(), part));
}

void ChartWindow::ResetAxis(int axis) {
    ViewState next = m_document.State();
    if (axis == kTimeAxis) {
        next.time.reset();
    } else {
        next.axes[m_scene.PlaceOf(axis)].range.reset();
    }
    Do(Text::StepResetAxis, next);
}

void ChartWindow::ZoomToSelection() {
    UpToDate();
    const ViewParts& parts = m_scene.Parts();
    if (!parts.selected) return;
    ViewState next = ZoomedTo(m_document.State(), parts, parts.selection.GetPosition());
    next.selection.reset();
    Do(Text::StepZoom, next);
    SetFocusMark({});
}

bool ChartWindow::CanCommand(UINT command) const {
    if (!m_scene.HasData()) return false;
    const ViewState& state = m_document.State();
    switch (command) {
        case kCommandEditTag:
        case kCommandRemoveTag:
            return m_focus.kind == Focus::Tag;
        case kCommandResetAxis:
            return m_focus.kind == Focus::Axis;
        case kCommandZoomSelection:
        case kCommandRemoveSelection:
            return state.selection.has_value();
        case kCommandResetAll:
            return AllReset(state) != state;
        case kCommandLatest:
            return state.time.has_value() && !m_scene.ShowsEnd();
        default:
            return true;
    }
}

bool ChartWindow::Command(UINT command) {
    UpToDate();
    if (!CanCommand(command)) return false;
    const ViewParts& parts = m_scene.Parts();
    const ViewState& state = m_document.State();
    switch (command) {
        case kCommandAddTag:
            AddTag(CRect(parts.plot).CenterPoint());
            return true;
        case kCommandEditTag:
            EditTag(m_focus.index);
            return true;
        case kCommandRemoveTag:
            Do(Text::StepRemoveTag, TagRemoved(state, static_cast<size_t>(m_focus.index)));
            SetFocusMark({});
            return true;
        case kCommandResetAxis:
            ResetAxis(m_focus.index);
            return true;
        case kCommandResetAll:
            Do(Text::StepResetAll, AllReset(state));
            return true;
        case kCommandLatest: {
            ViewState next = state;
            const double by = m_scene.LastTime() - std::max(state.time->origin, state.time->extent);
            next.time = ViewRange{state.time->origin + by, state.time->extent + by};
            Do(Text::StepLatest, next);
            return true;
        }
        case kCommandZoomIn:
            ZoomFocus(kNarrower);
            return true;
        case kCommandZoomOut:
            ZoomFocus(kWider);
            return true;
        case kCommandSelect: {
            CRect middle(parts.plot);
            middle.DeflateRect(middle.Width() / 4, middle.Height() / 4);
            if (!parts.selected) Do(Text::StepSelect, WithSelection(state, parts, middle));
            SetFocusMark({Focus::Selection, 0});
            return true;
        }
        case kCommandZoomSelection:
            ZoomToSelection();
            return true;
        case kCommandRemoveSelection: {
            ViewState next = state;
            next.selection.reset();
            Do(Text::StepRemoveSelection, next);
            return true;
        }
        default:
            return false;
    }
}
