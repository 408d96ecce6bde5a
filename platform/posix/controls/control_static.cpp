// The static control: texts, icons, frames and lines.
#include "platform/posix/controls/control_internal.h"
#include "platform/posix/resources/images_internal.h"

namespace orvik::detail {
namespace {
class Static final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        const bool notifies = (Style() & SS_NOTIFY) != 0;
        switch (message) {
            case WM_NCCREATE:
                // An icon's title is the icon's name in the program's resources, not a text to show.
                if (Kind() == SS_ICON) {
                    auto* create = reinterpret_cast<CREATESTRUCTA*>(lParam);
                    const auto* title = reinterpret_cast<const unsigned char*>(create->lpszName);
                    if (title != nullptr && title[0] == 0xFF)
                        SetImage(LoadIconA(create->hInstance, MAKEINTRESOURCEA(title[1] | title[2] << 8)));
                    return TRUE;
                }
                return Control::Handle(message, wParam, lParam);
            case WM_NCHITTEST:
                return notifies ? HTCLIENT : HTTRANSPARENT;
            case WM_GETDLGCODE:
                return DLGC_STATIC;
            case WM_LBUTTONDOWN:
                if (notifies) Tell(STN_CLICKED);
                return 0;
            case WM_LBUTTONDBLCLK:
                if (notifies) Tell(STN_DBLCLK);
                return 0;
            case WM_ENABLE:
                Control::Handle(message, wParam, lParam);
                if (notifies) Tell(wParam != 0 ? STN_ENABLE : STN_DISABLE);
                return 0;
            case STM_SETICON:
                return Kind() == SS_ICON ? reinterpret_cast<LRESULT>(SetImage(reinterpret_cast<HICON>(wParam))) : 0;
            case STM_SETIMAGE:
                if (Kind() != SS_ICON || (wParam != IMAGE_ICON && wParam != IMAGE_CURSOR)) return 0;
                return reinterpret_cast<LRESULT>(SetImage(reinterpret_cast<HICON>(lParam)));
            case STM_GETICON:
                return reinterpret_cast<LRESULT>(m_icon);
            case STM_GETIMAGE:
                return wParam == IMAGE_ICON || wParam == IMAGE_CURSOR ? reinterpret_cast<LRESULT>(m_icon) : 0;
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        const HBRUSH background = ParentBrush(dc, WM_CTLCOLORSTATIC);
        const DWORD style = Style();
        RECT area = client;
        FillRect(dc, &area, background);
        const auto colour = [&](int index, bool fill) {
            fill ? FillColour(dc, client, GetSysColor(index)) : FrameColour(dc, client, GetSysColor(index));
        };
        switch (Kind()) {
            case SS_BLACKRECT:
            case SS_BLACKFRAME:
                return colour(COLOR_3DDKSHADOW, Kind() == SS_BLACKRECT);
            case SS_GRAYRECT:
            case SS_GRAYFRAME:
                return colour(COLOR_BTNSHADOW, Kind() == SS_GRAYRECT);
            case SS_WHITERECT:
            case SS_WHITEFRAME:
                return colour(COLOR_3DHIGHLIGHT, Kind() == SS_WHITERECT);
            case SS_ETCHEDHORZ:
                area.bottom = area.top + 1;
                return FillColour(dc, area, GetSysColor(COLOR_BTNSHADOW));
            case SS_ETCHEDVERT:
                area.right = area.left + 1;
                return FillColour(dc, area, GetSysColor(COLOR_BTNSHADOW));
            case SS_ETCHEDFRAME:
                return colour(COLOR_BTNSHADOW, false);
            case SS_OWNERDRAW:
            case SS_BITMAP:
            case SS_ENHMETAFILE:
                return;
            case SS_ICON:
                if (m_icon == nullptr) return;
                if (style & SS_CENTERIMAGE) {
                    const SIZE size = ImageSize();
                    area.left += (area.right - area.left - size.cx) / 2;
                    area.top += (area.bottom - area.top - size.cy) / 2;
                }
                DrawIconEx(dc, area.left, area.top, m_icon, 0, 0, 0, nullptr, DI_NORMAL);
                return;
            default:
                break;
        }
        if (Bordered()) {
            FrameColour(dc, client, GetSysColor(COLOR_BTNSHADOW));
            area = Shrunk(area, 1);
        }
        UINT format = DT_EXPANDTABS;
        if (Kind() == SS_CENTER) format |= DT_CENTER;
        if (Kind() == SS_RIGHT) format |= DT_RIGHT;
        if (Kind() == SS_LEFT || Kind() == SS_CENTER || Kind() == SS_RIGHT) format |= DT_WORDBREAK;
        if (style & SS_NOPREFIX) format |= DT_NOPREFIX;
        if (style & SS_CENTERIMAGE || Kind() == SS_SIMPLE) format = (format & ~DT_WORDBREAK) | DT_SINGLELINE;
        if (style & SS_CENTERIMAGE) format |= DT_VCENTER;
        if (style & SS_ELLIPSISMASK) format = (format & ~DT_WORDBREAK) | DT_SINGLELINE | DT_END_ELLIPSIS;
        if (!Enabled()) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
        const std::string text = Text();
        DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &area, format);
    }

    void Describe(OrvikAccessible& out) const override {
        if (Kind() == SS_ICON) out.role = OrvikRole::Image;
        if (Kind() >= SS_BLACKRECT && Kind() <= SS_WHITEFRAME) out.role = OrvikRole::Separator;
        if (Kind() >= SS_ETCHEDHORZ && Kind() <= SS_ETCHEDFRAME) out.role = OrvikRole::Separator;
        if (Kind() <= SS_RIGHT || Kind() == SS_SIMPLE || Kind() == SS_LEFTNOWORDWRAP) out.role = OrvikRole::Label;
        // A sign for a name that is none.
        if ((Style() & SS_NOPREFIX) != 0 && out.role == OrvikRole::Label) {
            std::string doubled;
            for (const char each : out.name) doubled.append(each == '&' ? 2 : 1, each);
            out.name = doubled;
        }
    }

private:
    DWORD Kind() const { return Style() & SS_TYPEMASK; }

    SIZE ImageSize() const {
        const IconImage* image = ImageOf(m_icon);
        return image == nullptr ? SIZE{} : SIZE{image->width, image->height};
    }
    // The control takes the image's size, unless it centres it.
    HICON SetImage(HICON icon) {
        const HICON before = std::exchange(m_icon, icon);
        const SIZE size = ImageSize();
        if (size.cx > 0 && (Style() & (SS_CENTERIMAGE | SS_REALSIZEIMAGE)) == 0)
            SetWindowPos(m_window, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        Invalidate();
        return before;
    }

    HICON m_icon = nullptr;
};
}  // namespace

LRESULT CALLBACK StaticProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<Static>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
