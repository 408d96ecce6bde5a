// The common base of the controls, and the table of their classes.
#include "platform/posix/controls/control_internal.h"

#include <algorithm>
#include <vector>

#include "platform/posix/controls/combo_list_internal.h"
#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/window/window_class_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {

std::shared_ptr<Control> ControlOf(HWND window) {
    const std::lock_guard kernel(KernelLock());
    const Window* found = FindWindowOf(window);
    return found == nullptr ? nullptr : std::static_pointer_cast<Control>(found->control);
}

void SetControl(HWND window, std::shared_ptr<Control> control) {
    const std::lock_guard kernel(KernelLock());
    if (Window* found = FindWindowOf(window)) found->control = std::move(control);
}

LRESULT Control::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETFONT:
            m_font = reinterpret_cast<HFONT>(wParam);
            if (LOWORD(lParam) != 0) Invalidate();
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(m_font);
        case WM_SETREDRAW:
            m_redraw = wParam != 0;
            if (m_redraw) Invalidate();
            return 0;
        case WM_ERASEBKGND:
            return TRUE;  // painting covers the whole client area
        case WM_PAINT:
        case WM_PRINTCLIENT: {
            PAINTSTRUCT paint;
            const HDC given = reinterpret_cast<HDC>(wParam);
            const HDC dc = given != nullptr ? given : BeginPaint(m_window, &paint);
            if (dc != nullptr && (m_redraw || given != nullptr)) {
                const int state = SaveDC(dc);
                SelectObject(dc, m_font != nullptr ? m_font : GetStockObject(SYSTEM_FONT));
                SetBkMode(dc, TRANSPARENT);
                Paint(dc, Client());
                RestoreDC(dc, state);
            }
            if (given == nullptr) EndPaint(m_window, &paint);
            return 0;
        }
        case WM_ENABLE:
            Invalidate();
            return 0;
        case WM_SETTEXT: {
            const LRESULT result = DefWindowProcA(m_window, message, wParam, lParam);
            Invalidate();
            return result;
        }
        default:
            break;
    }
    if (message == OrvikDescribeMessage()) {
        OrvikAccessible& said = OrvikDescribed(lParam);
        Describe(said);
        if (said.description.empty()) said.description = ToolTipOf(m_window);
        return TRUE;
    }
    if (message == OrvikActMessage()) return Act(OrvikAsked(lParam));
    return DefWindowProcA(m_window, message, wParam, lParam);
}

OrvikAccessible& Control::AddRow(OrvikAccessible& list, OrvikRole role, int at, int of, const std::string& name,
                                 const RECT& place) {
    OrvikAccessible& row = list.parts.emplace_back();
    row.role = role;
    row.name = name;
    row.place = place;
    row.part = static_cast<unsigned>(at) + 1;
    row.at = at;
    row.of = of;
    row.Set(OrvikAccessible::kSelectable);
    return row;
}

void Control::ChangeStyle(DWORD remove, DWORD add) {
    SetWindowLongPtrA(m_window, GWL_STYLE, static_cast<LONG_PTR>((Style() & ~remove) | add));
}

RECT Control::Client() const {
    RECT client{};
    GetClientRect(m_window, &client);
    return client;
}

std::string Control::Text() const {
    std::string text(static_cast<size_t>(std::max(0, GetWindowTextLengthA(m_window))) + 1, '\0');
    const int length = GetWindowTextA(m_window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(std::max(0, length)));
    return text;
}

void Control::Tell(int code) const {
    const HWND parent = Parent();
    if (parent == nullptr) return;
    SendMessageA(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(m_window), code), reinterpret_cast<LPARAM>(m_window));
}

LRESULT Control::Notify(NMHDR& header, UINT code) const {
    const HWND parent = Parent();
    if (parent == nullptr) return 0;
    header.hwndFrom = m_window;
    header.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(m_window));
    header.code = code;
    return SendMessageA(parent, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

void Control::Invalidate() const {
    if (m_redraw) InvalidateRect(m_window, nullptr, TRUE);
}
void Control::Invalidate(const RECT& part) const {
    if (m_redraw) InvalidateRect(m_window, &part, TRUE);
}

int Control::LineHeight() const {
    const MeasuringDc dc(m_window, m_font);
    TEXTMETRICA metrics{};
    return GetTextMetricsA(dc, &metrics) ? std::max<int>(1, metrics.tmHeight) : 16;
}

SIZE Control::Measure(const std::string& text) const {
    const MeasuringDc dc(m_window, m_font);
    SIZE size{};
    GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &size);
    return size;
}

HBRUSH Control::ParentBrush(HDC dc, UINT message) const {
    const bool paper = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    SetTextColor(dc, GetSysColor(paper ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
    SetBkColor(dc, GetSysColor(paper ? COLOR_WINDOW : COLOR_BTNFACE));
    const HWND parent = Parent();
    LRESULT brush = 0;
    if (parent != nullptr)
        brush = SendMessageA(parent, message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(m_window));
    return brush != 0 ? reinterpret_cast<HBRUSH>(brush) : GetSysColorBrush(paper ? COLOR_WINDOW : COLOR_BTNFACE);
}

MeasuringDc::MeasuringDc(HWND window, HFONT font) : m_window(window), m_dc(GetDC(window)) {
    m_before = SelectObject(m_dc, font != nullptr ? font : GetStockObject(SYSTEM_FONT));
}
MeasuringDc::~MeasuringDc() {
    if (m_before != nullptr) SelectObject(m_dc, m_before);
    ReleaseDC(m_window, m_dc);
}
int MeasuringDc::Width(const char* text, size_t length) const {
    SIZE size{};
    GetTextExtentPoint32A(m_dc, text, static_cast<int>(length), &size);
    return size.cx;
}

void FillColour(HDC dc, const RECT& rectangle, COLORREF colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &rectangle, brush);
    DeleteObject(brush);
}
void FrameColour(HDC dc, const RECT& rectangle, COLORREF colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FrameRect(dc, &rectangle, brush);
    DeleteObject(brush);
}
void Control::PaintFrame(HDC dc, RECT client) const {
    if (!Bordered()) return;
    FlatState state;
    state.enabled = Enabled();
    state.focused = state.enabled && Focused();
    PaintFieldFrame(dc, client, state, Dpi());
}
RECT Shrunk(const RECT& r, int by) { return {r.left + by, r.top + by, r.right - by, r.bottom - by}; }

std::span<const SystemClass> SystemClasses() {
    static constexpr SystemClass kClasses[] = {
        {"Static", CS_PARENTDC | CS_DBLCLKS, 0, StaticProcedure, 0},
        {"Button", CS_PARENTDC | CS_DBLCLKS | CS_VREDRAW | CS_HREDRAW, 0, ButtonProcedure, 0},
        {"Edit", CS_PARENTDC | CS_DBLCLKS, 8, EditProcedure, 0},
        {"ListBox", CS_PARENTDC | CS_DBLCLKS, 8, ListBoxProcedure, 0},
        {"ComboBox", CS_PARENTDC | CS_DBLCLKS | CS_VREDRAW | CS_HREDRAW, 8, ComboBoxProcedure, 0},
        {"ComboLBox", CS_DBLCLKS | CS_SAVEBITS, 0, ComboListProcedure, 0},
        {"ScrollBar", CS_PARENTDC | CS_DBLCLKS | CS_VREDRAW | CS_HREDRAW, 0, ScrollBarProcedure, 0},
        {"#32768", CS_DBLCLKS | CS_SAVEBITS, 0, MenuProcedure, 0x8000},
        {"#32770", CS_DBLCLKS | CS_SAVEBITS, DLGWINDOWEXTRA, DefDlgProcA, 0x8002},
        {PROGRESS_CLASSA, CS_VREDRAW | CS_HREDRAW, 8, ProgressProcedure, 0},
        {WC_HEADERA, CS_DBLCLKS, 8, HeaderProcedure, 0},
        {WC_LISTVIEWA, CS_DBLCLKS, 8, ListViewProcedure, 0},
        {TOOLTIPS_CLASSA, CS_SAVEBITS, 0, ToolTipProcedure, 0},
    };
    return kClasses;
}

}  // namespace orvik::detail

BOOL InitCommonControlsEx(const INITCOMMONCONTROLSEX* classes) {
    return classes != nullptr && classes->dwSize == sizeof(INITCOMMONCONTROLSEX);
}
