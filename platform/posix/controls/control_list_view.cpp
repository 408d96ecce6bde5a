// The messages of the list view.
#include <algorithm>
#include <cstring>

#include "platform/posix/controls/list_view_internal.h"

namespace orvik::detail {
namespace {
constexpr int kWheelAcross = 48;  // pixels at 96 dots an inch, by a notch

POINT PointOf(LPARAM lParam) { return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }
template <class T>
T& At(LPARAM lParam) {
    return *reinterpret_cast<T*>(lParam);
}
}  // namespace

// Lists begin with the desktop's font, not with the system's as other controls do.
void ListView::TakeStandardFont() {
    const HFONT before = m_ownFont ? m_standard : nullptr;
    const UINT dpi = GetDpiForWindow(m_window);
    m_standard = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    m_ownFont = dpi != USER_DEFAULT_SCREEN_DPI;
    if (m_ownFont) {
        NONCLIENTMETRICSA metrics{};
        metrics.cbSize = sizeof metrics;
        SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi);
        m_standard = CreateFontIndirectA(&metrics.lfMessageFont);
    }
    SendMessageA(m_window, WM_SETFONT, reinterpret_cast<WPARAM>(m_standard), FALSE);
    if (before != nullptr) DeleteObject(before);
}

LRESULT ListView::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto index = static_cast<int>(wParam);
    switch (message) {
        case WM_CREATE: {
            const DWORD sortable = Style() & LVS_NOSORTHEADER ? 0 : HDS_BUTTONS;
            const DWORD visible = Style() & LVS_NOCOLUMNHEADER ? 0 : WS_VISIBLE;
            m_header = CreateWindowExA(0, WC_HEADERA, nullptr, WS_CHILD | HDS_HORZ | HDS_FULLDRAG | sortable | visible, 0, 0, 0,
                                       0, m_window, nullptr, nullptr, nullptr);
            TakeStandardFont();
            return 0;
        }
        case WM_NCDESTROY:
            if (std::exchange(m_ownFont, false)) DeleteObject(m_standard);
            break;
        case WM_DPICHANGED_BEFOREPARENT:
            if (m_font == m_standard) TakeStandardFont();
            return 0;
        case WM_SETFONT:
            Control::Handle(message, wParam, lParam);
            SendMessageA(m_header, WM_SETFONT, wParam, lParam);
            Arrange();
            return 0;
        case WM_SIZE:
            Arrange();
            return 0;
        case WM_STYLECHANGED:
            ShowWindow(m_header, Style() & LVS_NOCOLUMNHEADER ? SW_HIDE : SW_SHOWNA);
            Arrange();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTCHARS | DLGC_WANTARROWS;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: {
            NMHDR told{};
            // Keys need a row to start from.
            if (message == WM_SETFOCUS && m_focused < 0 && Count() > 0) FocusRow(0);
            Notify(told, message == WM_SETFOCUS ? NM_SETFOCUS : NM_KILLFOCUS);
            Invalidate();
            return 0;
        }
        case WM_KEYDOWN:
            return Key(wParam);
        case WM_CHAR:
            return Letter(m_typed.Take(wParam));
        case WM_LBUTTONDOWN:
            return Press(wParam, PointOf(lParam), false);
        case WM_LBUTTONDBLCLK:
            return Press(wParam, PointOf(lParam), true);
        case WM_RBUTTONDOWN:
            return RightPress(wParam, PointOf(lParam));
        case WM_RBUTTONUP: {
            LVHITTESTINFO hit{};
            hit.pt = PointOf(lParam);
            const auto row = static_cast<int>(HitTest(hit, false));
            if (Tell(NM_RCLICK, row, hit.iSubItem, 0, 0, 0, hit.pt) != 0) return 0;
            return Control::Handle(message, wParam, lParam);  // the context menu
        }
        case WM_MOUSEMOVE:
            return Drag(PointOf(lParam));
        case WM_LBUTTONUP:
            return Release(PointOf(lParam));
        case WM_MOUSEWHEEL:
            ScrollTo(m_top - 3 * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA, m_shift);
            return 0;
        case WM_MOUSEHWHEEL:
            ScrollTo(m_top, m_shift + Scaled(kWheelAcross) * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA);
            return 0;
        case WM_CAPTURECHANGED:
            m_dragged = 0;
            return 0;
        case WM_VSCROLL:
            ScrollTo(Places().down.After(LOWORD(wParam)), m_shift);
            return 0;
        case WM_NOTIFY: {
            const auto& told = At<const NMHEADERA>(lParam);
            if (told.hdr.hwndFrom != m_header) break;
            const bool known = told.iItem >= 0 && told.iItem < static_cast<int>(m_columns.size());
            if (told.hdr.code == HDN_ITEMCLICKA) Tell(LVN_COLUMNCLICK, -1, told.iItem);
            if (told.hdr.code == HDN_ITEMCHANGEDA && known && told.pitem != nullptr && told.pitem->mask & HDI_WIDTH) {
                m_columns[static_cast<size_t>(told.iItem)].width = told.pitem->cxy;
                Arrange();
            }
            return 0;
        }
        case LVM_GETBKCOLOR:
            return static_cast<LRESULT>(Back());
        case LVM_SETBKCOLOR:
            m_back = static_cast<COLORREF>(lParam);
            Invalidate();
            return TRUE;
        case LVM_GETTEXTCOLOR:
            return static_cast<LRESULT>(Ink());
        case LVM_SETTEXTCOLOR:
            m_ink = static_cast<COLORREF>(lParam);
            Invalidate();
            return TRUE;
        case LVM_GETTEXTBKCOLOR:
            return static_cast<LRESULT>(TextBack());
        case LVM_SETTEXTBKCOLOR:
            m_textBack = static_cast<COLORREF>(lParam);
            Invalidate();
            return TRUE;
        case LVM_GETITEMCOUNT:
            return Count();
        case LVM_GETITEMA:
            return lParam != 0 && GetItem(At<LVITEMA>(lParam));
        case LVM_SETITEMA:
            return lParam != 0 && SetItem(At<LVITEMA>(lParam));
        case LVM_INSERTITEMA:
            return lParam != 0 ? InsertItem(At<LVITEMA>(lParam)) : -1;
        case LVM_DELETEITEM:
            return DeleteItem(index);
        case LVM_DELETEALLITEMS:
            return DeleteAll();
        case LVM_GETNEXTITEM:
            return NextItem(index, static_cast<UINT>(lParam));
        case LVM_FINDITEMA:
            return FindItem(index, At<LVFINDINFOA>(lParam));
        case LVM_GETITEMRECT: {
            if (!Has(index) || lParam == 0) return FALSE;
            auto& rectangle = At<RECT>(lParam);
            const bool label = rectangle.left == LVIR_LABEL;
            rectangle = label && !m_columns.empty() ? CellRect(index, 0) : RowRect(index);
            return TRUE;
        }
        case LVM_GETSUBITEMRECT: {
            if (lParam == 0) return FALSE;
            auto& rectangle = At<RECT>(lParam);
            const int column = rectangle.top;
            if (!Has(index) || column < 0 || column >= static_cast<int>(m_columns.size())) return FALSE;
            rectangle = column == 0 && rectangle.left != LVIR_LABEL ? RowRect(index) : CellRect(index, column);
            return TRUE;
        }
        case LVM_HITTEST:
            return HitTest(At<LVHITTESTINFO>(lParam), false);
        case LVM_SUBITEMHITTEST:
            return HitTest(At<LVHITTESTINFO>(lParam), true);
        case LVM_ENSUREVISIBLE:
            return EnsureVisible(index, lParam != 0);
        case LVM_SCROLL:
            ScrollTo(m_top + static_cast<int>(lParam) / RowHeight(), m_shift + index);
            return TRUE;
        case LVM_REDRAWITEMS:
            Invalidate();
            return TRUE;
        case LVM_UPDATE:
            if (!Has(index)) return FALSE;
            InvalidateRow(index);
            return TRUE;
        case LVM_GETTOPINDEX:
            return m_top;
        case LVM_GETCOUNTPERPAGE:
            return PerPage();
        case LVM_GETCOLUMNA:
            return lParam != 0 && GetColumn(index, At<LVCOLUMNA>(lParam));
        case LVM_SETCOLUMNA:
            return lParam != 0 && SetColumn(index, At<LVCOLUMNA>(lParam));
        case LVM_INSERTCOLUMNA:
            return lParam != 0 ? InsertColumn(index, At<LVCOLUMNA>(lParam)) : -1;
        case LVM_DELETECOLUMN:
            return DeleteColumn(index);
        case LVM_GETCOLUMNWIDTH:
            return index >= 0 && index < static_cast<int>(m_columns.size()) ? m_columns[static_cast<size_t>(index)].width : 0;
        case LVM_SETCOLUMNWIDTH:
            return SetColumnWidth(index, static_cast<short>(LOWORD(lParam)));
        case LVM_GETHEADER:
            return reinterpret_cast<LRESULT>(m_header);
        case LVM_SETITEMSTATE:
            return lParam != 0 && SetState(index, At<LVITEMA>(lParam).state, At<LVITEMA>(lParam).stateMask);
        case LVM_GETITEMSTATE:
            return Has(index) ? static_cast<LRESULT>(m_rows[static_cast<size_t>(index)].state & static_cast<UINT>(lParam)) : 0;
        case LVM_GETITEMTEXTA: {
            auto& item = At<LVITEMA>(lParam);
            if (!Has(index) || item.iSubItem < 0) return 0;
            Fill(item.pszText, item.cchTextMax, TextOf(index, item.iSubItem));
            return item.pszText != nullptr && item.cchTextMax > 0 ? static_cast<LRESULT>(std::strlen(item.pszText)) : 0;
        }
        case LVM_SETITEMTEXTA:
            return lParam != 0 && SetText(index, At<LVITEMA>(lParam));
        case LVM_SETITEMCOUNT:
            m_rows.reserve(static_cast<size_t>(std::max(0, std::min(index, 10'000'000))));
            return TRUE;
        case LVM_SORTITEMS:
            return Sort(reinterpret_cast<PFNLVCOMPARE>(lParam), static_cast<LPARAM>(wParam));
        case LVM_GETSELECTEDCOUNT:
            return m_selected;
        case LVM_SETEXTENDEDLISTVIEWSTYLE: {
            const DWORD mask = wParam != 0 ? static_cast<DWORD>(wParam) : 0xFFFFFFFFu, before = m_extended;
            m_extended = (m_extended & ~mask) | (static_cast<DWORD>(lParam) & mask);
            Invalidate();
            return static_cast<LRESULT>(before);
        }
        case LVM_GETEXTENDEDLISTVIEWSTYLE:
            return static_cast<LRESULT>(m_extended);
        case LVM_GETSELECTIONMARK:
            return m_mark;
        case LVM_SETSELECTIONMARK:
            return std::exchange(m_mark, static_cast<int>(lParam));
        default:
            break;
    }
    return Control::Handle(message, wParam, lParam);
}

LRESULT CALLBACK ListViewProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ListView>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
