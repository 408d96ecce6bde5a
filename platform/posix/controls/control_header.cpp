// The header control: titles over columns, which can be clicked and whose dividers can be dragged.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/contrast.h"
#include "platform/posix/controls/control_internal.h"
#include "platform/posix/text/letters_internal.h"

namespace orvik::detail {
namespace {
class Header final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        const auto* item = reinterpret_cast<const HDITEMA*>(lParam);
        switch (message) {
            case HDM_GETITEMCOUNT:
                return static_cast<LRESULT>(m_items.size());
            case HDM_INSERTITEMA: {
                if (item == nullptr || item->mask == 0 || static_cast<int>(wParam) < 0) return -1;
                const size_t at = std::min<size_t>(wParam, m_items.size());
                Take(*m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(at), Item{}), *item);
                Invalidate();
                return static_cast<LRESULT>(at);
            }
            case HDM_DELETEITEM:
                if (wParam >= m_items.size()) return FALSE;
                m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(wParam));
                Invalidate();
                return TRUE;
            case HDM_GETITEMA:
                return wParam < m_items.size() && item != nullptr && Give(m_items[wParam], *reinterpret_cast<HDITEMA*>(lParam));
            case HDM_SETITEMA: {
                if (wParam >= m_items.size() || item == nullptr) return FALSE;
                HDITEMA told = *item;
                if (Send(HDN_ITEMCHANGINGA, static_cast<int>(wParam), &told) != 0) return FALSE;
                if (wParam >= m_items.size()) return FALSE;
                Take(m_items[wParam], told);
                Send(HDN_ITEMCHANGEDA, static_cast<int>(wParam), &told);
                Invalidate();
                return TRUE;
            }
            case HDM_GETITEMRECT: {
                auto* rectangle = reinterpret_cast<RECT*>(lParam);
                if (wParam >= m_items.size() || rectangle == nullptr) return FALSE;
                *rectangle = RectOf(wParam);
                return TRUE;
            }
            case HDM_HITTEST:
                return HitTest(*reinterpret_cast<HDHITTESTINFO*>(lParam));
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                return Press({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            case WM_MOUSEMOVE:
                if (m_dragged >= 0) Resize(GET_X_LPARAM(lParam));
                return 0;
            case WM_LBUTTONUP:
                return Release({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            case WM_CAPTURECHANGED:
                m_dragged = m_pressed = -1;
                return 0;
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::Header;
        for (size_t i = 0; i < m_items.size(); ++i) {
            const int at = static_cast<int>(i), of = static_cast<int>(m_items.size());
            AddRow(out, OrvikRole::ColumnHeader, at, of, m_items[i].text, RectOf(i)).states = 0;
        }
    }
    void Paint(HDC dc, const RECT& client) override {
        FillColour(dc, client, GetSysColor(COLOR_BTNFACE));
        SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
        for (size_t i = 0; i < m_items.size(); ++i) {
            RECT cell = RectOf(i);
            if (cell.right <= client.left || cell.left >= client.right) continue;
            if (m_pressed == static_cast<int>(i))
                FillColour(dc, cell, Mixed(GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNTEXT), 18));
            FillColour(dc, {cell.right - 1, cell.top + Scaled(4), cell.right, cell.bottom - Scaled(4)},
                       GetSysColor(COLOR_BTNSHADOW));
            cell.left += Scaled(6);
            cell.right -= Scaled(6);
            UINT format = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
            if ((m_items[i].format & HDF_JUSTIFYMASK) == HDF_RIGHT) format |= DT_RIGHT;
            if ((m_items[i].format & HDF_JUSTIFYMASK) == HDF_CENTER) format |= DT_CENTER;
            const std::string& text = m_items[i].text;
            if (cell.left < cell.right) DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &cell, format);
        }
        FillColour(dc, {client.left, client.bottom - 1, client.right, client.bottom}, GetSysColor(COLOR_BTNSHADOW));
    }

private:
    struct Item {
        int width = 0, format = 0;
        std::string text;
        LPARAM parameter = 0;
    };

    static void Take(Item& item, const HDITEMA& from) {
        if (from.mask & HDI_WIDTH) item.width = std::max(0, from.cxy);
        if (from.mask & HDI_TEXT) item.text = from.pszText != nullptr ? from.pszText : "";
        if (from.mask & HDI_FORMAT) item.format = from.fmt | HDF_STRING;
        if (from.mask & HDI_LPARAM) item.parameter = from.lParam;
    }
    static LRESULT Give(const Item& item, HDITEMA& to) {
        if (to.mask & HDI_WIDTH) to.cxy = item.width;
        if (to.mask & HDI_FORMAT) to.fmt = item.format;
        if (to.mask & HDI_LPARAM) to.lParam = item.parameter;
        if (to.mask & HDI_TEXT && to.cchTextMax > 0) CopyLetters(item.text, to.pszText, static_cast<size_t>(to.cchTextMax));
        return TRUE;
    }

    RECT RectOf(size_t index) const {
        const RECT client = Client();
        LONG left = 0;
        for (size_t i = 0; i < index; ++i) left += m_items[i].width;
        return {left, client.top, left + m_items[index].width, client.bottom};
    }

    LRESULT Send(UINT code, int index, HDITEMA* item) const {
        NMHEADERA told{};
        told.iItem = index;
        told.pitem = item;
        return Notify(told.hdr, code);
    }

    // The column whose right edge is within reach; -1 when none is.
    int DividerAt(POINT at) const {
        for (size_t i = m_items.size(); i-- > 0;)
            if (std::abs(at.x - RectOf(i).right) <= Scaled(4)) return static_cast<int>(i);
        return -1;
    }
    int ItemAt(POINT at) const {
        for (size_t i = 0; i < m_items.size(); ++i) {
            const RECT cell = RectOf(i);
            if (PtInRect(&cell, at)) return static_cast<int>(i);
        }
        return -1;
    }
    LRESULT HitTest(HDHITTESTINFO& info) const {
        const int divider = DividerAt(info.pt);
        info.iItem = divider >= 0 ? divider : ItemAt(info.pt);
        info.flags = divider >= 0 ? HHT_ONDIVIDER : info.iItem >= 0 ? HHT_ONHEADER : HHT_NOWHERE;
        return info.iItem;
    }

    LRESULT Press(POINT at) {
        m_dragged = DividerAt(at);
        m_pressed = m_dragged < 0 && Style() & HDS_BUTTONS ? ItemAt(at) : -1;
        if (m_dragged >= 0) {
            m_grip = at.x - m_items[static_cast<size_t>(m_dragged)].width;
            Send(HDN_BEGINTRACKA, m_dragged, nullptr);
        }
        if (m_dragged >= 0 || m_pressed >= 0) SetCapture(m_window);
        Invalidate();
        return 0;
    }
    void Resize(LONG x) {
        HDITEMA item{};
        item.mask = HDI_WIDTH;
        item.cxy = std::max<int>(0, x - m_grip);
        Handle(HDM_SETITEMA, static_cast<WPARAM>(m_dragged), reinterpret_cast<LPARAM>(&item));
    }
    LRESULT Release(POINT at) {
        const int dragged = std::exchange(m_dragged, -1), pressed = std::exchange(m_pressed, -1);
        if (GetCapture() == m_window) ReleaseCapture();
        Invalidate();
        if (dragged >= 0) Send(HDN_ENDTRACKA, dragged, nullptr);
        if (pressed >= 0 && ItemAt(at) == pressed) Send(HDN_ITEMCLICKA, pressed, nullptr);
        return 0;
    }

    std::vector<Item> m_items;
    int m_dragged = -1, m_pressed = -1;
    LONG m_grip = 0;  // where the dragged column would have no width
};
}  // namespace

LRESULT CALLBACK HeaderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<Header>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
