#include "host/gui/value_list.h"

#include <algorithm>
#include <cmath>

#include "chart/col_size_tracker.h"
#include "frame/app_stock.h"
#include "host/gui/held_keys.h"
#include "host/gui/pane_font.h"
#include "host/session/value_text.h"
#include "platform/dpi.h"

namespace {
// Pixels at 96 dots an inch.
constexpr LONG kStandardWidths[ValueList::kColumns] = {140, 80, 60};
constexpr LONG kColumnGrip = 4, kWidestColumn = 4096, kColumnStep = 8;
constexpr Text kHeads[ValueList::kColumns] = {Text::HeadChannel, Text::HeadValue, Text::HeadUnit};

constexpr char kNoValue[] = "\u2013";

// The value behind a row: so far no more than its colour.
class ChannelValue : public IVModelValue, public CRefCount {
public:
    explicit ChannelValue(COLORREF colour) : m_colour(colour) {}
    COLORREF GetColor() override { return m_colour; }
    DWORD AddRef() override { return CRefCount::AddRef(); }
    DWORD Release() override { return CRefCount::Release(); }
    void SetColor(COLORREF colour) { m_colour = colour; }

private:
    COLORREF m_colour;
};
}  // namespace

BEGIN_MESSAGE_MAP(ValueList, CValueListCtrl)
ON_MESSAGE(WM_KEYDOWN, OnKey)
ON_MESSAGE(WM_SYSKEYDOWN, OnSystemKey)
ON_MESSAGE(WM_CHAR, OnLetter)
ON_MESSAGE(WM_SYSCHAR, OnSystemLetter)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_MOUSEWHEEL, OnWheel)
ON_MESSAGE(WM_MOUSEHWHEEL, OnWheelAcross)
ON_MESSAGE(WM_CONTEXTMENU, OnMenuWish)
ON_NOTIFY_REFLECT(NM_DBLCLK, OnTwice)
ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(ValueList::Header, CWnd)
ON_MESSAGE(WM_LBUTTONDOWN, OnPress)
ON_MESSAGE(WM_LBUTTONDBLCLK, OnPress)
ON_MESSAGE(WM_MOUSEMOVE, OnPointer)
ON_MESSAGE(WM_SETCURSOR, OnCursor)
END_MESSAGE_MAP()

// The rows go before what they point to.
ValueList::~ValueList() {
    if (m_header.m_hWnd != nullptr) m_header.UnsubclassWindow();
    if (m_hWnd != nullptr) DestroyWindow();
}

BOOL ValueList::CreatePane(HWND parent) {
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER;
    if (!Create(style, CRect(0, 0, 0, 0), CWnd::FromHandle(parent), 1)) return FALSE;
    SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    for (size_t i = 0; i < kColumns; ++i)
        InsertColumn(static_cast<int>(i), Say(kHeads[i]).c_str(), i == 1 ? LVCFMT_RIGHT : LVCFMT_LEFT,
                     static_cast<int>(Scaled(kStandardWidths[i])));
    DpiChanged();
    return m_header.SubclassWindow(reinterpret_cast<HWND>(SendMessage(LVM_GETHEADER)));
}

LONG ValueList::Scaled(LONG pixels) const { return OrvikScale(pixels, OrvikDpiOf(m_hWnd)); }

void ValueList::DpiChanged() {
    const LOGFONTA description = DesktopFont(m_hWnd);
    CFont font;
    font.CreateFontIndirect(&description);
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font.m_hObject), TRUE);
    m_font.DeleteObject();
    m_font.Attach(font.Detach());
    Update();
}

std::vector<LONG> ValueList::WidthsOf(const ViewState& state) {
    std::vector<LONG> widths(std::begin(kStandardWidths), std::end(kStandardWidths));
    for (size_t i = 0; i < kColumns && i < state.columns.size(); ++i)
        widths[i] = std::clamp(state.columns[i], kLeastColumn, kWidestColumn);
    return widths;
}

RECT ValueList::ColumnRect(size_t column) const {
    RECT rect = {};
    ::SendMessageA(m_header.m_hWnd, HDM_GETITEMRECT, column, reinterpret_cast<LPARAM>(&rect));
    ::MapWindowPoints(m_header.m_hWnd, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

size_t ValueList::ChannelCount() const { return m_document.HasSession() ? m_document.GetSession()->Channels().size() : 0; }

std::optional<size_t> ValueList::Channel() const {
    if (ChannelCount() == 0) return std::nullopt;
    const int row = GetNextItem(-1, LVNI_FOCUSED);
    return row < 0 ? 0 : std::min(static_cast<size_t>(row), ChannelCount() - 1);
}

const std::string& ValueList::CellText(size_t channel, size_t column) const {
    const Session& session = *m_document.GetSession();
    const ViewState& state = m_document.State();
    const Session::Channel& shown = session.Channels()[channel];
    m_text.clear();
    if (column == 0) {
        m_text = channel < state.channels.size() ? state.channels[channel].name : shown.name;
    } else if (column == 2) {
        m_text = shown.unit;
    } else if (session.Count() > 0) {
        const auto same = [&](const ViewState::Axis& axis) { return axis.unit == shown.unit; };
        const auto axis = std::find_if(state.axes.begin(), state.axes.end(), same);
        const std::string& picture = axis != state.axes.end() ? axis->picture : std::string();
        const double value = ValueOf(channel);
        m_text = std::isnan(value) ? kNoValue : ShortTextOf(value, picture);
    }
    return m_text;
}

bool ValueList::IsHidden(size_t channel) const {
    const std::vector<std::string>& hidden = m_document.State().hidden;
    return std::find(hidden.begin(), hidden.end(), m_document.GetSession()->Channels()[channel].key) != hidden.end();
}

const std::string& ValueList::ShownText(size_t channel, size_t column) const {
    CellText(channel, column);
    if (column == 0 && IsHidden(channel)) m_text = Say(Text::ListHidden, {m_text});
    return m_text;
}

std::vector<std::string> ValueList::RowTexts(size_t channel) const {
    std::vector<std::string> texts;
    for (size_t column = 0; column < kColumns; ++column) texts.push_back(CellText(channel, column));
    return texts;
}

double ValueList::ValueOf(size_t channel) const {
    const Session& session = *m_document.GetSession();
    return m_pointed ? ValueAt(session, channel, *m_pointed) : session.LastValue(channel);
}

void ValueList::ShowValuesAt(std::optional<PointedTime> pointed) {
    if (pointed == m_pointed) return;
    m_pointed = pointed;
    Update();
}

COLORREF ValueList::ColourOf(size_t channel) const {
    const ChartColours paper = ChartColours::OfWindow();
    const ViewState& state = m_document.State();
    const Session& session = *m_document.GetSession();
    if (session.Count() > 0 && !m_pointed && !std::isfinite(session.LastValue(channel))) return paper.Name(kNoNumber);
    if (IsHidden(channel)) return paper.Name(kHidden);
    return paper.Name(channel < state.channels.size() ? state.channels[channel].colour : ChartModel::ColourOf(channel));
}

// Colours say what words say here.
LRESULT ValueList::OnDescribe(WPARAM wParam, LPARAM lParam) {
    DefWindowProc(kOrvikDescribe, wParam, lParam);
    OrvikAccessible& said = OrvikDescribed(lParam);
    said.name = Say(Text::ListSaid);
    for (OrvikAccessible& row : said.parts) {
        if (row.at < 0 || static_cast<size_t>(row.at) >= ChannelCount()) continue;
        const auto channel = static_cast<size_t>(row.at);
        if (CellText(channel, 1) == kNoValue) row.description = Say(Text::ListSaidNoValue);
    }
    return TRUE;
}

void ValueList::Update() {
    if (m_hWnd == nullptr) return;
    const std::vector<LONG> widths = WidthsOf(m_document.State());
    for (size_t i = 0; i < kColumns; ++i) {
        const int width = Scaled(widths[i]);
        if (GetColumnWidth(static_cast<int>(i)) != width) SetColumnWidth(static_cast<int>(i), width);
    }
    const size_t count = ChannelCount();
    while (m_states.size() > count) {
        DeleteItem(static_cast<int>(m_states.size()) - 1);
        m_states.pop_back();
    }
    for (size_t channel = 0; channel < count; ++channel) {
        const int row = static_cast<int>(channel);
        const COLORREF colour = ColourOf(channel);
        if (channel == m_states.size()) {
            m_states.push_back(std::make_unique<CValueState>(new ChannelValue(colour)));
            InsertItem(row, "");
            SetItemData(row, reinterpret_cast<DWORD_PTR>(m_states.back().get()));
        }
        CValueState& state = *m_states[channel];
        if (state.GetColor() != colour) {
            static_cast<ChannelValue*>(state.GetVModelValue())->SetColor(colour);
            state.SetColor(state.GetVModelValue()->GetColor());
            RedrawItems(row, row);
        }
        for (size_t column = 0; column < kColumns; ++column) {
            const std::string& text = ShownText(channel, column);
            if (GetItemText(row, static_cast<int>(column)) != text.c_str())
                SetItemText(row, static_cast<int>(column), text.c_str());
        }
    }
}

void ValueList::Settle() {
    ClearSelection();
    if (GetItemCount() > 0) EnsureVisible(0, FALSE);
    const RECT first = ColumnRect(0);
    if (first.left < 0) SendMessage(LVM_SCROLL, static_cast<WPARAM>(first.left), 0);
}

// --- The columns ---

size_t ValueList::EdgeAt(CPoint point) const {
    const LONG grip = Scaled(kColumnGrip);
    for (size_t column = kColumns; column-- > 0;) {
        const LONG edge = ColumnRect(column).right;
        if (point.x >= edge - grip && point.x < edge + grip) return column;
    }
    return kColumns;
}

void ValueList::DragEdge(size_t column, LONG y) {
    m_column = column;
    ::UpdateWindow(m_hWnd);
    CRect constrain;
    ::GetClientRect(m_hWnd, &constrain);
    const CRect head = ColumnRect(column);
    constrain.left = head.left + Scaled(kLeastColumn);
    CColSizeTracker tracker(constrain, head);
    const HWND window = m_hWnd;
    m_dragging = true;
    // From the edge itself, wherever the pointer took hold of it.
    const int result = tracker.TrackCursor(this, CPoint(head.right, y));
    m_dragging = false;
    if (!::IsWindow(window)) return;
    if (result == 2) SetWidth(column, OrvikUnscale(tracker.GetWidth(), OrvikDpiOf(m_hWnd)));
    m_owner.OnDragEnd();
}

LRESULT ValueList::Header::OnPress(WPARAM, LPARAM lParam) {
    CPoint point(lParam);
    ::MapWindowPoints(m_hWnd, m_list.m_hWnd, &point, 1);
    ::SetFocus(m_list.m_hWnd);
    const size_t column = m_list.EdgeAt(point);
    if (m_list.m_document.HasSession() && !m_list.m_dragging && column < kColumns) m_list.DragEdge(column, point.y);
    return 0;
}

LRESULT ValueList::Header::OnPointer(WPARAM, LPARAM lParam) {
    m_list.m_owner.ShowValuesAt(std::nullopt);
    CPoint point(lParam);
    ::MapWindowPoints(m_hWnd, m_list.m_hWnd, &point, 1);
    m_list.m_owner.ShowHint(m_list.EdgeAt(point) < kColumns ? Say(Text::HintColumn) : std::string());
    return 0;
}

LRESULT ValueList::Header::OnCursor(WPARAM, LPARAM) {
    POINT point = {};
    ::GetCursorPos(&point);
    ::ScreenToClient(m_list.m_hWnd, &point);
    const bool edge = m_list.m_document.HasSession() && m_list.EdgeAt(point) < kColumns && hCurSizeColumn != nullptr;
    ::SetCursor(edge ? hCurSizeColumn : ::LoadCursorA(nullptr, IDC_ARROW));
    return TRUE;
}

void ValueList::SetWidth(size_t column, LONG width) {
    ViewState next = m_document.State();
    next.columns = WidthsOf(next);
    next.columns[column] = std::clamp(width, kLeastColumn, kWidestColumn);
    m_owner.Do(Text::StepColumn, next);
}

// --- The rows ---

ViewState ValueList::Toggled(const ViewState& state, const Session& session, size_t channel) {
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

void ValueList::Toggle(size_t channel) {
    m_owner.Do(Text::StepChannel, Toggled(m_document.State(), *m_document.GetSession(), channel));
}

void ValueList::OnTwice(NMHDR* told, LRESULT* result) {
    *result = 0;
    if (reinterpret_cast<const NMITEMACTIVATE*>(told)->iItem >= 0) m_owner.OnPaneCommand(kCommandProperties);
}

LRESULT ValueList::OnPointer(WPARAM, LPARAM lParam) {
    m_owner.ShowValuesAt(std::nullopt);
    LVHITTESTINFO info = {};
    info.pt = CPoint(lParam);
    m_owner.ShowHint(HitTest(&info) >= 0 ? Say(Text::HintRow) : std::string());
    ShowTip(lParam);
    return Default();
}

LONG ValueList::WidthOf(const std::string& text) const {
    const HDC screen = ::GetDC(m_hWnd);
    const HGDIOBJ before = ::SelectObject(screen, m_font.m_hObject);
    SIZE size = {};
    ::GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &size);
    ::SelectObject(screen, before);
    ::ReleaseDC(m_hWnd, screen);
    return size.cx;
}

// The whole text of a cell that is cut short.
void ValueList::ShowTip(LPARAM pointer) {
    LVHITTESTINFO info = {};
    info.pt = CPoint(pointer);
    RECT cell = {};
    std::string text;
    const auto row = static_cast<int>(SendMessage(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&info)));
    if (row >= 0 && static_cast<size_t>(row) < ChannelCount() && info.iSubItem >= 0 &&
        info.iSubItem < static_cast<int>(kColumns)) {
        constexpr LONG kCellMargins = 12;  // of both sides
        GetItemRect(row, &cell, LVIR_BOUNDS);
        const RECT column = ColumnRect(static_cast<size_t>(info.iSubItem));
        cell.left = column.left;
        cell.right = column.right;
        RECT client = {};
        ::GetClientRect(m_hWnd, &client);
        const std::string& whole = ShownText(static_cast<size_t>(row), static_cast<size_t>(info.iSubItem));
        const LONG width = WidthOf(whole);
        if (width + Scaled(kCellMargins) > column.right - column.left || (width > 0 && column.right > client.right)) text = whole;
    }
    m_owner.ShowTip(m_hWnd, cell, text, pointer);
}

// The wheel turns what is under the pointer: over the chart, that.
LRESULT ValueList::OnWheel(WPARAM wParam, LPARAM lParam) { return TurnWheel(WM_MOUSEWHEEL, wParam, lParam); }
LRESULT ValueList::OnWheelAcross(WPARAM wParam, LPARAM lParam) { return TurnWheel(WM_MOUSEHWHEEL, wParam, lParam); }

LRESULT ValueList::TurnWheel(UINT message, WPARAM wParam, LPARAM lParam) {
    RECT window = {};
    ::GetWindowRect(m_hWnd, &window);
    if (::PtInRect(&window, CPoint(lParam))) return Default();
    return ::SendMessageA(::GetParent(m_hWnd), message, wParam, lParam);
}

LRESULT ValueList::OnMenuWish(WPARAM, LPARAM lParam) {
    POINT screen = CPoint(lParam);
    if (screen.x == -1 && screen.y == -1) {
        CRect row;
        if (const auto channel = Channel()) GetItemRect(static_cast<int>(*channel), row, LVIR_BOUNDS);
        screen = row.CenterPoint();
        ::ClientToScreen(m_hWnd, &screen);
    }
    m_owner.ShowContextMenu(screen);
    return 0;
}

// --- Keys ---

void ValueList::ShowColumnHint() { m_owner.ShowHint(Say(Text::HintColumnKeys, {Say(kHeads[m_column])})); }

LRESULT ValueList::OnKey(WPARAM wParam, LPARAM) {
    const auto key = static_cast<WORD>(wParam);
    const auto channel = Channel();
    switch (channel ? key : 0) {
        case VK_UP:
        case VK_DOWN:
        case VK_PRIOR:
        case VK_NEXT:
        case VK_HOME:
        case VK_END:
            return Default();
        case VK_SPACE:
            Toggle(*channel);
            return 0;
        case VK_RETURN:
            if (IsDown(VK_CONTROL)) break;
            m_owner.OnPaneCommand(kCommandProperties);
            return 0;
        case VK_LEFT:
        case VK_RIGHT:
            if (IsDown(VK_SHIFT)) {
                SetWidth(m_column, WidthsOf(m_document.State())[m_column] + (key == VK_LEFT ? -kColumnStep : kColumnStep));
            } else {
                m_column = key == VK_RIGHT ? std::min(m_column + 1, kColumns - 1) : m_column - (m_column > 0 ? 1 : 0);
            }
            ShowColumnHint();
            return 0;
        case VK_APPS:
            return OnMenuWish(0, MAKELPARAM(-1, -1));
        default:
            break;
    }
    m_owner.OnPaneKey(key);
    return 0;
}

LRESULT ValueList::OnSystemKey(WPARAM wParam, LPARAM) {
    if (wParam != VK_RETURN) return Default();
    m_owner.OnPaneCommand(kCommandProperties);
    return 0;
}

// Alt+Enter is handled; the system would sound a bell for its letter.
LRESULT ValueList::OnSystemLetter(WPARAM wParam, LPARAM) { return wParam == VK_RETURN ? 0 : Default(); }
