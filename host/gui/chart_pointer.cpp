// What the pointer looks like over the chart, what a press would do there, and the menu for what lies there.
#include <cmath>
#include <cstdlib>
#include <utility>

#include "frame/app_stock.h"
#include "host/gui/chart_window.h"
#include "host/gui/held_keys.h"
#include "platform/dpi.h"

HCURSOR ChartWindow::CursorAt(const Hit& hit) const {
    const bool x = hit.index == kTimeAxis, origin = IsDown(VK_SHIFT), both = !origin && IsDown(VK_CONTROL);
    switch (hit.spot) {
        case Spot::AxisZoom:
            return x ? hZoomXCursor : hZoomYCursor;
        case Spot::AxisRubber:
            if (both) return x ? hMoveXCursor : hMoveYCursor;
            if (origin) return x ? hMoveXOrgCursor : hMoveYOrgCursor;
            return x ? hMoveXExtCursor : hMoveYExtCursor;
        case Spot::AxisDrag:
            return hDragCursor;
        case Spot::Tag:
            return hTextMoveCursor;
        case Spot::Plot:
            return hCursorCursor;
        case Spot::Nowhere:
            return nullptr;
        case Spot::Selection:
            break;
    }
    switch (hit.handle) {
        case CZoomSelection::HIT_NORTH:
        case CZoomSelection::HIT_SOUTH:
            return hSizeNSCursor;
        case CZoomSelection::HIT_EAST:
        case CZoomSelection::HIT_WEST:
            return hSizeWECursor;
        case CZoomSelection::HIT_NORTHEAST:
        case CZoomSelection::HIT_SOUTHWEST:
            return hSizeNESWCursor;
        case CZoomSelection::HIT_NORTHWEST:
        case CZoomSelection::HIT_SOUTHEAST:
            return hSizeNWSECursor;
        default:
            return hSizeAllCursor;
    }
}

std::string ChartWindow::HintAt(const Hit& hit) const {
    switch (hit.spot) {
        case Spot::Plot:
            return Say(Text::HintPlot);
        case Spot::Selection:
            return Say(Text::HintSelection);
        case Spot::Tag:
            return Say(Text::HintTag);
        case Spot::AxisZoom:
            return Say(Text::HintAxisZoom);
        case Spot::AxisRubber:
            return Say(Text::HintAxisRubber);
        case Spot::AxisDrag:
            return Say(Text::HintAxisDrag);
        case Spot::Nowhere:
            break;
    }
    return {};
}

LRESULT ChartWindow::OnCursor(WPARAM wParam, LPARAM lParam) {
    POINT point = {};
    ::GetCursorPos(&point);
    ::ScreenToClient(m_hWnd, &point);
    UpToDate();
    if (LOWORD(lParam) != HTCLIENT || (!m_scene.HasData() && m_empty.CommandAt(point) == 0))
        return DefWindowProc(WM_SETCURSOR, wParam, lParam);
    if (!m_scene.HasData()) {
        ::SetCursor(::LoadCursorA(nullptr, IDC_HAND));
        return TRUE;
    }
    HCURSOR cursor = CursorAt(HitTest(m_scene.Parts(), point));
    if (cursor == nullptr) cursor = ::LoadCursorA(nullptr, IDC_ARROW);
    ::SetCursor(cursor);
    return TRUE;
}

std::optional<PointedTime> ChartWindow::TimeUnder(POINT point) const {
    constexpr LONG kNear = 3;  // pixels at 96 dots an inch
    const ViewParts& parts = m_scene.Parts();
    if (!m_scene.HasData() || !::PtInRect(&parts.plot, point)) return std::nullopt;
    const double at = parts.time.mapping.ToValue(point.x),
                 beside = parts.time.mapping.ToValue(point.x + OrvikScale(kNear, parts.dpi));
    if (!std::isfinite(at) || !std::isfinite(beside)) return std::nullopt;
    const __int64 time = m_scene.TimeAxis().TimeOf(at);
    return PointedTime{time, std::abs(m_scene.TimeAxis().TimeOf(beside) - time)};
}

LRESULT ChartWindow::OnPointer(WPARAM, LPARAM lParam) {
    UpToDate();
    m_owner.ShowHint(m_scene.HasData() ? HintAt(HitTest(m_scene.Parts(), CPoint(lParam))) : std::string());
    m_owner.ShowValuesAt(TimeUnder(CPoint(lParam)));
    return 0;
}

void ChartWindow::PointAgain(POINT screen) {
    ::ScreenToClient(m_hWnd, &screen);
    UpToDate();
    const std::optional<PointedTime> pointed = TimeUnder(screen);
    if (pointed != m_pointed) m_owner.ShowValuesAt(pointed);
}

LRESULT ChartWindow::OnLeave(WPARAM, LPARAM) {
    m_owner.ShowHint({});
    m_owner.ShowValuesAt(std::nullopt);
    return 0;
}

LRESULT ChartWindow::OnMenuWish(WPARAM, LPARAM lParam) {
    if (std::exchange(m_ignoreMenu, false) || m_dragging) return 0;
    EndWriting(true);
    UpToDate();
    POINT screen = CPoint(lParam);
    const ViewParts& parts = m_scene.Parts();
    if (screen.x == -1 && screen.y == -1) {
        // By key: at what has the focus.
        screen = CRect(parts.plot).CenterPoint();
        if (m_focus.kind == Focus::Tag) screen = CRect(parts.tags[static_cast<size_t>(m_focus.index)]).CenterPoint();
        ::ClientToScreen(m_hWnd, &screen);
    } else {
        POINT point = screen;
        ::ScreenToClient(m_hWnd, &point);
        const Hit hit = HitTest(parts, point);
        if (hit.spot == Spot::Tag) SetFocusMark({Focus::Tag, hit.index});
        if (hit.spot == Spot::AxisDrag || hit.spot == Spot::AxisRubber || hit.spot == Spot::AxisZoom)
            SetFocusMark({Focus::Axis, hit.index});
        if (hit.spot == Spot::Selection) SetFocusMark({Focus::Selection, 0});
    }
    m_owner.ShowContextMenu(screen);
    return 0;
}
