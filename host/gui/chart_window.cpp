#include "host/gui/chart_window.h"

#include <algorithm>
#include <cmath>

#include "chart/axis_hold.h"
#include "chart/drag_axis_tracker.h"
#include "chart/rubber_tracker.h"
#include "chart/zoom_all_tracker.h"
#include "chart/zoom_axis_tracker.h"
#include "chart/zoom_sel_tracker.h"
#include "frame/app_stock.h"
#include "host/gui/pane_font.h"
#include "host/gui/tag_tracker.h"

namespace {
// A notch of the wheel, or a key, narrows a range to 0.8 of its span, or widens it back.
constexpr double kNarrower = 0.2, kWider = -0.25;
constexpr double kPan = 0.1;
constexpr LONG kTagStep = 8, kSelectionStep = 8;

bool IsDown(int key) { return ::GetKeyState(key) < 0; }
CPoint PointOf(LPARAM lParam) { return CPoint(lParam); }
}  // namespace

BEGIN_MESSAGE_MAP(ChartWindow, CWnd)
ON_MESSAGE(WM_PAINT, OnPaintMessage)
ON_MESSAGE(WM_ERASEBKGND, OnErase)
ON_MESSAGE(WM_SIZE, OnSized)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_LBUTTONDBLCLK, OnDoublePress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_MOUSELEAVE, OnLeave)
ON_MESSAGE(WM_MOUSEWHEEL, OnWheel)
ON_MESSAGE(WM_CONTEXTMENU, OnMenuWish)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_CHAR, OnLetter)
ON_MESSAGE(WM_USER + 4, OnRubber)
END_MESSAGE_MAP()

// --- The picture ---

void ChartWindow::Picture::Drop() {
    if (before != nullptr) dc.SelectObject(before);
    before = nullptr;
    bitmap.DeleteObject();
    if (dc.m_hDC != nullptr) dc.DeleteDC();
    size = {};
}

void ChartWindow::Picture::Resize(CDC& like, SIZE wanted) {
    if (wanted.cx == size.cx && wanted.cy == size.cy) return;
    Drop();
    if (wanted.cx <= 0 || wanted.cy <= 0) return;
    if (!dc.CreateCompatibleDC(&like) || !bitmap.CreateCompatibleBitmap(&like, wanted.cx, wanted.cy)) return Drop();
    before = dc.SelectObject(&bitmap);
    size = wanted;
}

ChartWindow::~ChartWindow() { m_picture.Drop(); }

BOOL ChartWindow::CreatePane(HWND parent) {
    const LPCSTR windowClass = AfxRegisterWndClass(CS_DBLCLKS, nullptr, nullptr, nullptr);
    return CreateEx(0, windowClass, "chart", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr);
}

void ChartWindow::DataChanged() {
    EndWriting(false);
    m_scene.SetData(nullptr, nullptr);
    m_scene.SetState(m_document.State());
    m_scene.SetData(m_document.GetSession(), &m_document.Database());
    m_focus = {};
    Redraw();
}

void ChartWindow::StateChanged() {
    m_scene.SetState(m_document.State());
    Redraw();
}

void ChartWindow::AfterReadings() {
    m_scene.SetData(m_document.GetSession(), &m_document.Database());
    Redraw();
}

void ChartWindow::SetFocusMark(Focus focus) {
    UpToDate();
    focus = ValidFocus(m_scene.Parts(), focus);
    if (focus == m_focus) return;
    m_focus = focus;
    Redraw();
}

void ChartWindow::Redraw() {
    m_drawn = false;
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

// Draws into the picture what has changed since; parts are valid afterwards, also while the window cannot be seen.
void ChartWindow::UpToDate() {
    if (m_drawn || m_hWnd == nullptr) return;
    CRect client;
    ::GetClientRect(m_hWnd, &client);
    CClientDC window(this);
    m_picture.Resize(window, client.Size());
    if (m_picture.before == nullptr) return;
    if (m_scene.HasData()) {
        m_scene.Draw(m_picture.dc, client, m_focus);
        if (m_focus != ValidFocus(m_scene.Parts(), m_focus)) {
            m_focus = {};
            m_scene.Draw(m_picture.dc, client, m_focus);
        }
        if (m_writing) DrawWriting(m_picture.dc);
    } else {
        m_picture.dc.FillSolidRect(client, RGB(255, 255, 255));
        CFont font;
        const LOGFONTA description = PaneFont(ChartFontHeight(client.Width(), client.Height()));
        font.CreateFontIndirect(&description);
        CFont* const before = m_picture.dc.SelectObject(&font);
        m_picture.dc.SetTextColor(RGB(90, 90, 90));
        const std::string text = HouseText(Text::NothingOpen);
        RECT place = client;
        m_picture.dc.DrawText(text.c_str(), static_cast<int>(text.size()), &place, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
        m_picture.dc.SelectObject(before);
    }
    m_drawn = true;
}

LRESULT ChartWindow::OnPaintMessage(WPARAM, LPARAM) {
    UpToDate();
    CPaintDC dc(this);
    const CRect part(dc.m_ps.rcPaint);
    if (m_picture.before != nullptr)
        dc.BitBlt(part.left, part.top, part.Width(), part.Height(), &m_picture.dc, part.left, part.top, SRCCOPY);
    return 0;
}

LRESULT ChartWindow::OnSized(WPARAM, LPARAM) {
    Redraw();
    return 0;
}

void ChartWindow::DrawOn(CDC& dc, const RECT& bounds) {
    m_scene.Draw(dc, bounds, {});
    Redraw();  // the parts are those of the other size now
}

// --- Drags ---

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
    if (!m_scene.HasData() || m_dragging) return 0;
    const CPoint point = PointOf(lParam);
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
    TagTracker tracker(parts.plot, parts.tags[static_cast<size_t>(tag)]);
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
    const CPoint point = PointOf(lParam);
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

LRESULT ChartWindow::OnWheel(WPARAM wParam, LPARAM lParam) {
    m_wheel += static_cast<short>(HIWORD(wParam));
    const int notches = m_wheel / WHEEL_DELTA;
    m_wheel -= notches * WHEEL_DELTA;
    if (!m_scene.HasData() || m_dragging || m_writing || notches == 0) return 0;
    CPoint point = PointOf(lParam);
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

// --- The pointer's looks ---

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
            return HouseText(Text::HintPlot);
        case Spot::Selection:
            return HouseText(Text::HintSelection);
        case Spot::Tag:
            return HouseText(Text::HintTag);
        case Spot::AxisZoom:
            return HouseText(Text::HintAxisZoom);
        case Spot::AxisRubber:
            return HouseText(Text::HintAxisRubber);
        case Spot::AxisDrag:
            return HouseText(Text::HintAxisDrag);
        case Spot::Nowhere:
            break;
    }
    return {};
}

LRESULT ChartWindow::OnCursor(WPARAM wParam, LPARAM lParam) {
    if (LOWORD(lParam) != HTCLIENT || !m_scene.HasData()) return DefWindowProc(WM_SETCURSOR, wParam, lParam);
    POINT point = {};
    ::GetCursorPos(&point);
    ::ScreenToClient(m_hWnd, &point);
    UpToDate();
    HCURSOR cursor = CursorAt(HitTest(m_scene.Parts(), point));
    if (cursor == nullptr) cursor = ::LoadCursorA(nullptr, IDC_ARROW);
    ::SetCursor(cursor);
    return TRUE;
}

LRESULT ChartWindow::OnPointer(WPARAM, LPARAM lParam) {
    UpToDate();
    m_owner.ShowHint(m_scene.HasData() ? HintAt(HitTest(m_scene.Parts(), PointOf(lParam))) : std::string());
    return 0;
}

LRESULT ChartWindow::OnLeave(WPARAM, LPARAM) {
    m_owner.ShowHint({});
    return 0;
}

LRESULT ChartWindow::OnMenuWish(WPARAM, LPARAM lParam) {
    if (std::exchange(m_ignoreMenu, false) || m_dragging) return 0;
    EndWriting(true);
    UpToDate();
    POINT screen = PointOf(lParam);
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

// --- Keys and commands ---

LRESULT ChartWindow::OnKey(WPARAM wParam, LPARAM) {
    const auto key = static_cast<WORD>(wParam);
    const bool shift = IsDown(VK_SHIFT), control = IsDown(VK_CONTROL);
    if (m_writing && OnWritingKey(key)) return 0;
    UpToDate();
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
        const LONG step = shift ? 1 : kTagStep;
        Do(Text::StepMoveTag,
           TagMoved(state, parts, static_cast<size_t>(m_focus.index), {tag.left + dx * step, tag.top + dy * step}));
    } else {
        CRect rect = parts.selection.GetPosition();
        const CPoint by(dx * kSelectionStep, dy * kSelectionStep);
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

// --- Writing in a tag ---

void ChartWindow::AddTag(CPoint corner) {
    m_writing = true;
    m_writtenTag = -1;
    m_writtenAt = corner;
    m_edit = LineEdit();
    Redraw();
}

void ChartWindow::EditTag(int tag) {
    m_writing = true;
    m_writtenTag = tag;
    const RECT& rect = m_scene.Parts().tags[static_cast<size_t>(tag)];
    m_writtenAt = CPoint(rect.left, rect.top);
    m_edit = LineEdit(m_document.State().tags[static_cast<size_t>(tag)].text);
    Redraw();
}

void ChartWindow::EndWriting(bool keep) {
    if (!m_writing) return;
    m_writing = false;
    Redraw();
    if (!keep) return;
    UpToDate();
    const ViewState& state = m_document.State();
    const std::string& text = m_edit.text;
    const bool empty = text.find_first_not_of(' ') == std::string::npos;
    if (m_writtenTag < 0) {
        if (!empty) Do(Text::StepAddTag, TagAdded(state, m_scene.Parts(), m_writtenAt, text));
    } else if (empty) {
        Do(Text::StepRemoveTag, TagRemoved(state, static_cast<size_t>(m_writtenTag)));
    } else {
        Do(Text::StepEditTag, TagWritten(state, static_cast<size_t>(m_writtenTag), text));
    }
}

bool ChartWindow::OnWritingKey(WORD key) {
    if (key == VK_RETURN || key == VK_ESCAPE) {
        EndWriting(key == VK_RETURN);
        return true;
    }
    if (m_edit.Key(key)) {
        Redraw();
        return true;
    }
    // Keys of letters come as letters; others end the writing and mean what they mean.
    if (key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU || !IsDown(VK_CONTROL)) return key != VK_TAB && key != VK_F6;
    EndWriting(true);
    return false;
}

LRESULT ChartWindow::OnLetter(WPARAM wParam, LPARAM) {
    if (!m_writing) return 0;
    m_edit.Write(static_cast<char>(wParam));
    Redraw();
    return 0;
}

void ChartWindow::DrawWriting(CDC& dc) const {
    CFont font;
    const LOGFONTA description = m_scene.LabelFont();
    font.CreateFontIndirect(&description);
    CFont* const before = dc.SelectObject(&font);
    const CSize size = dc.GetTextExtent(m_edit.text.c_str(), static_cast<int>(m_edit.text.size()));
    const CSize height = dc.GetTextExtent("Ag", 2), start = dc.GetTextExtent(m_edit.text.c_str(), static_cast<int>(m_edit.caret));
    constexpr int kGap = 3, kLeast = 80;
    const RECT& plot = m_scene.Parts().plot;
    CRect box(m_writtenAt, CSize(std::max<int>(size.cx + 2 * kGap + 1, kLeast), height.cy + 2 * kGap));
    box.OffsetRect(std::min<int>(0, plot.right - box.right), std::min<int>(0, plot.bottom - box.bottom));
    dc.FillSolidRect(box, RGB(255, 255, 255));
    dc.Draw3dRect(box, RGB(0, 0, 0), RGB(0, 0, 0));
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SetBkMode(TRANSPARENT);
    dc.TextOut(box.left + kGap, box.top + kGap, m_edit.text.c_str(), static_cast<int>(m_edit.text.size()));
    dc.FillSolidRect(box.left + kGap + start.cx, box.top + kGap, 1, height.cy, RGB(0, 0, 0));
    dc.SelectObject(before);
}
