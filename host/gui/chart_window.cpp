#include "host/gui/chart_window.h"

#include <algorithm>
#include <utility>

#include "host/gui/pane_font.h"
#include "platform/dpi.h"

BEGIN_MESSAGE_MAP(ChartWindow, CWnd)
ON_MESSAGE(WM_PAINT, OnPaintMessage)
ON_MESSAGE(WM_ERASEBKGND, OnErase)
ON_MESSAGE(WM_SIZE, OnSized)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_LBUTTONDBLCLK, OnDoublePress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_MOUSELEAVE, OnLeave)
ON_MESSAGE(WM_MOUSEWHEEL, OnWheel)
ON_MESSAGE(WM_MOUSEHWHEEL, OnWheelAcross)
ON_MESSAGE(WM_CONTEXTMENU, OnMenuWish)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_SYSKEYDOWN, OnSystemKey)
ON_MESSAGE(WM_CHAR, OnLetter)
ON_MESSAGE(WM_SYSCHAR, OnSystemLetter)
ON_MESSAGE(WM_USER + 4, OnRubber)
ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe)
ON_REGISTERED_MESSAGE(kOrvikAct, OnAct)
END_MESSAGE_MAP()

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
    m_summary.clear();
    Redraw();
}

void ChartWindow::StateChanged() {
    m_scene.SetState(m_document.State());
    m_summary.clear();
    Redraw();
}

void ChartWindow::BeforeReadings() {
    m_atEnd = m_scene.ShowsEnd();
    m_scene.SetData(nullptr, nullptr);
}

void ChartWindow::AfterReadings() {
    m_scene.SetData(m_document.GetSession(), &m_document.Database());
    if (std::exchange(m_atEnd, false)) {
        const ViewRange shown = *m_document.State().time;
        const double by = m_scene.LastTime() - std::max(shown.origin, shown.extent);
        if (by > 0) m_document.History().Slide(ViewRange{shown.origin + by, shown.extent + by});
        m_scene.SetState(m_document.State());
    }
    m_summary.clear();
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
    const UINT dpi = OrvikDpiOf(m_hWnd);
    if (m_scene.HasData()) {
        m_scene.Draw(m_picture.dc, client, m_focus, dpi, ChartColours::OfWindow());
        if (m_focus != ValidFocus(m_scene.Parts(), m_focus)) {
            m_focus = {};
            m_scene.Draw(m_picture.dc, client, m_focus, dpi, ChartColours::OfWindow());
        }
        if (m_writing) DrawWriting(m_picture.dc);
    } else {
        m_empty.Draw(m_picture.dc, client, dpi);
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
    m_scene.Draw(dc, bounds, {}, USER_DEFAULT_SCREEN_DPI);
    Redraw();  // the parts are those of the other size now
}

std::optional<size_t> ChartWindow::AxisPlace() const {
    if (m_scene.Parts().axes.empty()) return std::nullopt;
    const bool focused = m_focus.kind == Focus::Axis && m_focus.index != kTimeAxis;
    return m_scene.PlaceOf(focused ? m_focus.index : 0);
}

ViewRange ChartWindow::ShownRange(size_t place) const {
    for (size_t i = 0; i < m_scene.Parts().axes.size(); ++i) {
        if (m_scene.PlaceOf(static_cast<int>(i)) == place) return m_scene.RangeOf(static_cast<int>(i));
    }
    return {};
}
