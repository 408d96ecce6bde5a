#include "host/gui/value_pane.h"

#include <algorithm>

#include "afx/dc.h"
#include "chart/col_size_tracker.h"
#include "frame/app_stock.h"
#include "host/gui/pane_font.h"
#include "host/value_text.h"

namespace {
constexpr LONG kStandardWidths[ValuePane::kColumns] = {140, 80, 60};
constexpr LONG kRow = 20, kHeader = 22, kMark = 16, kGap = 5, kGrip = 4, kWidest = 4096, kKeyStep = 8;
constexpr Text kHeads[ValuePane::kColumns] = {Text::HeadChannel, Text::HeadValue, Text::HeadUnit};

CRect RowRect(size_t row, LONG width) {
    const LONG top = kHeader + static_cast<LONG>(row) * kRow;
    return {0, top, width, top + kRow};
}
bool IsDown(int key) { return ::GetKeyState(key) < 0; }
}  // namespace

BEGIN_MESSAGE_MAP(ValuePane, CWnd)
ON_MESSAGE(WM_PAINT, OnPaintMessage)
ON_MESSAGE(WM_ERASEBKGND, OnErase)
ON_MESSAGE(WM_SIZE, OnSized)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_LBUTTONDBLCLK, OnPress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_SETFOCUS, OnFocusChange)
ON_MESSAGE(WM_KILLFOCUS, OnFocusChange)
END_MESSAGE_MAP()

BOOL ValuePane::CreatePane(HWND parent) {
    const LPCSTR windowClass = AfxRegisterWndClass(CS_DBLCLKS, nullptr, nullptr, nullptr);
    return CreateEx(0, windowClass, "values", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr);
}

void ValuePane::Redraw() {
    if (m_hWnd != nullptr) ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

std::vector<LONG> ValuePane::WidthsOf(const ViewState& state) {
    std::vector<LONG> widths(std::begin(kStandardWidths), std::end(kStandardWidths));
    for (size_t i = 0; i < kColumns && i < state.columns.size(); ++i)
        widths[i] = std::clamp(state.columns[i], kLeastColumn, kWidest);
    return widths;
}

RECT ValuePane::ColumnRect(size_t column) const {
    const std::vector<LONG> widths = WidthsOf(m_document.State());
    RECT rect = {0, 0, 0, kHeader};
    for (size_t i = 0; i <= column && i < kColumns; ++i) rect = {rect.right, 0, rect.right + widths[i], kHeader};
    return rect;
}

size_t ValuePane::ChannelCount() const { return m_document.HasSession() ? m_document.GetSession()->Channels().size() : 0; }

std::string ValuePane::CellText(size_t channel, size_t column) const {
    const Session& session = *m_document.GetSession();
    const Session::Channel& shown = session.Channels()[channel];
    if (column == 0) return shown.name;
    if (column == 2) return shown.unit;
    std::string text;
    if (session.Count() > 0) FromUtf8(ShortTextOf(shown.values.GetAt(shown.values.GetUpperBound())), text);
    return text;
}

LRESULT ValuePane::OnPaintMessage(WPARAM, LPARAM) {
    CPaintDC dc(this);
    CRect client;
    ::GetClientRect(m_hWnd, &client);
    if (client.IsRectEmpty()) return 0;
    CDC memory;
    CBitmap bitmap;
    if (!memory.CreateCompatibleDC(&dc) || !bitmap.CreateCompatibleBitmap(&dc, client.Width(), client.Height())) return 0;
    CBitmap* const before = memory.SelectObject(&bitmap);
    Draw(memory, client);
    dc.BitBlt(0, 0, client.Width(), client.Height(), &memory, 0, 0, SRCCOPY);
    memory.SelectObject(before);
    return 0;
}

void ValuePane::Draw(CDC& dc, const RECT& client) const {
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE), shadow = ::GetSysColor(COLOR_BTNSHADOW);
    const ViewState& state = m_document.State();
    const bool focused = ::GetFocus() == m_hWnd;
    const LOGFONTA description = PaneFont(13);
    CFont font;
    font.CreateFontIndirect(&description);
    const int saved = dc.SaveDC();
    dc.FillSolidRect(&client, RGB(255, 255, 255));
    dc.SelectObject(&font);
    dc.SetTextColor(RGB(0, 0, 0));
    dc.FillSolidRect(0, 0, client.right, kHeader, face);
    dc.FillSolidRect(0, kHeader - 1, client.right, 1, shadow);
    dc.SetBkMode(TRANSPARENT);
    const auto write = [&](const std::string& text, CRect place, UINT align) {
        place.DeflateRect(kGap, 0);
        dc.DrawText(text.c_str(), static_cast<int>(text.size()), place,
                    DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | align);
    };
    for (size_t column = 0; column < kColumns; ++column) {
        const CRect head = ColumnRect(column);
        const UINT align = column == 1 ? DT_RIGHT : DT_LEFT;
        write(HouseText(kHeads[column]), head, align);
        dc.FillSolidRect(head.right - 1, 3, 1, kHeader - 7, shadow);
        if (focused && column == m_column) dc.DrawFocusRect(CRect(head.left + 2, 2, head.right - 3, kHeader - 3));
        for (size_t row = 0; row < ChannelCount(); ++row) {
            CRect cell = RowRect(row, client.right);
            cell.left = head.left, cell.right = head.right;
            if (column == 0) {
                const auto& hidden = state.hidden;
                const Session::Channel& channel = m_document.GetSession()->Channels()[row];
                const bool shown = std::find(hidden.begin(), hidden.end(), channel.key) == hidden.end();
                const CRect mark(cell.left + kGap, cell.top + 4, cell.left + kGap + 12, cell.top + 16);
                dc.FillSolidRect(mark, shown ? ChartView::ColourOf(row) : RGB(255, 255, 255));
                dc.Draw3dRect(mark, shadow, shadow);
                dc.SetBkMode(TRANSPARENT);
                cell.left += kMark;
            }
            write(CellText(row, column), cell, align);
        }
    }
    if (focused && m_row < ChannelCount()) {
        dc.SetTextColor(RGB(0, 0, 0));
        dc.SetBkColor(RGB(255, 255, 255));
        dc.DrawFocusRect(RowRect(m_row, client.right));
    }
    dc.RestoreDC(saved);
}

LRESULT ValuePane::OnSized(WPARAM, LPARAM) {
    Redraw();
    return 0;
}

size_t ValuePane::EdgeAt(CPoint point) const {
    if (point.y < 0 || point.y >= kHeader) return kColumns;
    for (size_t column = kColumns; column-- > 0;) {
        const LONG edge = ColumnRect(column).right;
        if (point.x >= edge - kGrip && point.x < edge + kGrip) return column;
    }
    return kColumns;
}

LRESULT ValuePane::OnPress(WPARAM, LPARAM lParam) {
    ::SetFocus(m_hWnd);
    if (!m_document.HasSession() || m_dragging) return 0;
    const CPoint point(lParam);
    const size_t column = EdgeAt(point);
    if (column < kColumns) {
        m_column = column;
        ::UpdateWindow(m_hWnd);
        CRect constrain;
        ::GetClientRect(m_hWnd, &constrain);
        const CRect head = ColumnRect(column);
        constrain.left = head.left + kLeastColumn;
        CColSizeTracker tracker(constrain, head);
        const HWND window = m_hWnd;
        m_dragging = true;
        // From the edge itself, wherever the pointer took hold of it.
        const int result = tracker.TrackCursor(this, CPoint(head.right, point.y));
        m_dragging = false;
        if (!::IsWindow(window)) return 0;
        if (result == 2) SetWidth(column, tracker.GetWidth());
        m_owner.OnDragEnd();
        return 0;
    }
    const LONG row = (point.y - kHeader) / kRow;
    if (point.y < kHeader || static_cast<size_t>(row) >= ChannelCount()) return 0;
    m_row = static_cast<size_t>(row);
    if (point.x < kMark + kGap) Toggle(m_row);
    Redraw();
    return 0;
}

void ValuePane::SetWidth(size_t column, LONG width) {
    ViewState next = m_document.State();
    next.columns = WidthsOf(next);
    next.columns[column] = std::clamp(width, kLeastColumn, kWidest);
    m_owner.Do(Text::StepColumn, next);
}

ViewState ValuePane::Toggled(const ViewState& state, const Session& session, size_t channel) {
    ViewState next = state;
    const std::string& key = session.Channels()[channel].key;
    const auto found = std::find(next.hidden.begin(), next.hidden.end(), key);
    if (found != next.hidden.end()) {
        next.hidden.erase(found);
    } else if (next.hidden.size() + 1 < session.Channels().size()) {
        next.hidden.push_back(key);
    }
    return next;
}

void ValuePane::Toggle(size_t channel) {
    m_owner.Do(Text::StepChannel, Toggled(m_document.State(), *m_document.GetSession(), channel));
}

LRESULT ValuePane::OnPointer(WPARAM, LPARAM lParam) {
    const CPoint point(lParam);
    const bool marks =
        point.y >= kHeader && point.x < kMark + kGap && static_cast<size_t>((point.y - kHeader) / kRow) < ChannelCount();
    m_owner.ShowHint(EdgeAt(point) < kColumns ? HouseText(Text::HintColumn) : marks ? HouseText(Text::HintMark) : std::string());
    return 0;
}

LRESULT ValuePane::OnCursor(WPARAM wParam, LPARAM lParam) {
    if (LOWORD(lParam) != HTCLIENT) return DefWindowProc(WM_SETCURSOR, wParam, lParam);
    POINT point = {};
    ::GetCursorPos(&point);
    ::ScreenToClient(m_hWnd, &point);
    const bool edge = m_document.HasSession() && EdgeAt(point) < kColumns && hCurSizeColumn != nullptr;
    ::SetCursor(edge ? hCurSizeColumn : ::LoadCursorA(nullptr, IDC_ARROW));
    return TRUE;
}

LRESULT ValuePane::OnKey(WPARAM wParam, LPARAM) {
    const auto key = static_cast<WORD>(wParam);
    const bool shift = IsDown(VK_SHIFT);
    const size_t rows = ChannelCount();
    if (rows == 0) {
        m_owner.OnPaneKey(key);
        return 0;
    }
    switch (key) {
        case VK_UP:
            m_row -= m_row > 0 ? 1 : 0;
            break;
        case VK_DOWN:
            m_row = std::min(m_row + 1, rows - 1);
            break;
        case VK_SPACE:
            if (m_row < rows) Toggle(m_row);
            break;
        case VK_LEFT:
        case VK_RIGHT:
            if (shift) {
                SetWidth(m_column, WidthsOf(m_document.State())[m_column] + (key == VK_LEFT ? -kKeyStep : kKeyStep));
            } else {
                m_column = key == VK_RIGHT ? std::min(m_column + 1, kColumns - 1) : m_column - (m_column > 0 ? 1 : 0);
            }
            break;
        default:
            m_owner.OnPaneKey(key);
            return 0;
    }
    Redraw();
    return 0;
}

LRESULT ValuePane::OnFocusChange(WPARAM, LPARAM) {
    Redraw();
    return 0;
}
