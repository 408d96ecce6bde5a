// What the standard controls have in common: an object per window that answers the window's messages, and the ways in which
// controls talk to their parents and paint. A control is used on its window's thread; it lives as long as the window, and as long
// as a message of it is under way.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>

#include "platform/accessible.h"
#include "platform/posix/controls/common_controls.h"
#include "platform/posix/dialogs/dialog.h"
#include "platform/posix/dialogs/message_box.h"
#include "platform/posix/drawing/draw.h"
#include "platform/posix/drawing/gdi.h"
#include "platform/posix/drawing/text_draw.h"
#include "platform/posix/input/input.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_paint.h"
#include "platform/posix/window/window_place.h"

namespace orvik::detail {

class Control {
public:
    explicit Control(HWND window) : m_window(window) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    // What all controls answer alike: font, redraw switch, painting, enabling, text. Overrides end here.
    virtual LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    // Follows whether the pointer is over it. Before Handle, for every message.
    void Track(UINT message) {
        const bool hot = message == WM_MOUSEMOVE || (m_hot && message != WM_MOUSELEAVE);
        if (std::exchange(m_hot, hot) != hot && ShowsHot()) Invalidate();
    }

protected:
    virtual bool ShowsHot() const { return false; }  // looks otherwise while the pointer is over it
    // The whole client area; the font is selected and text is transparent. The state of `dc` is put back afterwards.
    virtual void Paint(HDC dc, const RECT& client) = 0;
    // What the control is and says, and what it does for who does not see it (platform/accessible.h).
    virtual void Describe(OrvikAccessible&) const {}
    virtual bool Act(const OrvikAccessibleAct&) { return false; }
    // Of rows of equal kind: one of them, told below the control.
    static OrvikAccessible& AddRow(OrvikAccessible& list, OrvikRole role, int at, int of, const std::string& name,
                                   const RECT& place);

    DWORD Style() const { return static_cast<DWORD>(GetWindowLongPtrA(m_window, GWL_STYLE)); }
    DWORD ExStyle() const { return static_cast<DWORD>(GetWindowLongPtrA(m_window, GWL_EXSTYLE)); }
    void ChangeStyle(DWORD remove, DWORD add);
    RECT Client() const;
    HWND Parent() const { return GetParent(m_window); }
    bool Enabled() const { return IsWindowEnabled(m_window) != FALSE; }
    bool Focused() const { return GetFocus() == m_window; }
    UINT Dpi() const { return GetDpiForWindow(m_window); }
    bool Hot() const { return m_hot; }  // the pointer is over it
    bool Bordered() const { return (Style() & WS_BORDER) != 0 || (ExStyle() & WS_EX_CLIENTEDGE) != 0; }
    int FrameWidth() const { return (ExStyle() & WS_EX_CLIENTEDGE) != 0 ? 2 : Bordered() ? 1 : 0; }
    void PaintFrame(HDC dc, RECT client) const;
    std::string Text() const;  // of the window, as WM_GETTEXT gives it

    void Tell(int code) const;                       // WM_COMMAND to the parent
    LRESULT Notify(NMHDR& header, UINT code) const;  // WM_NOTIFY to the parent; fills the header
    void Invalidate() const;
    void Invalidate(const RECT& part) const;

    // Pixels at 96 dots an inch in those of the window; and how wide its scroll bars are.
    int Scaled(int pixels) const { return MulDiv(pixels, static_cast<int>(Dpi()), USER_DEFAULT_SCREEN_DPI); }
    int BarWidth() const { return GetSystemMetricsForDpi(SM_CXVSCROLL, Dpi()); }

    HFONT Font() const { return m_font; }
    int LineHeight() const;
    SIZE Measure(const std::string& text) const;
    // The brush that the parent gives for the control's background, its text colour set in `dc`.
    HBRUSH ParentBrush(HDC dc, UINT message) const;

    const HWND m_window;
    HFONT m_font = nullptr;  // null: the system font
    bool m_redraw = true;

private:
    bool m_hot = false;
};

// A DC for measuring with the control's font. Ends with the object.
class MeasuringDc {
public:
    MeasuringDc(HWND window, HFONT font);
    ~MeasuringDc();
    MeasuringDc(const MeasuringDc&) = delete;
    MeasuringDc& operator=(const MeasuringDc&) = delete;
    operator HDC() const { return m_dc; }
    int Width(const char* text, size_t length) const;

private:
    HWND m_window;
    HDC m_dc;
    HGDIOBJ m_before = nullptr;
};

// The object of a window of a system class; null before WM_NCCREATE and for other windows.
std::shared_ptr<Control> ControlOf(HWND window);
void SetControl(HWND window, std::shared_ptr<Control> control);

template <class T>
LRESULT CALLBACK ControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    std::shared_ptr<Control> control = ControlOf(window);
    if (!control) {
        if (message != WM_NCCREATE) return DefWindowProcA(window, message, wParam, lParam);
        control = std::make_shared<T>(window);
        SetControl(window, control);
    }
    control->Track(message);
    return control->Handle(message, wParam, lParam);
}

// Painting that several controls share. Colours are indexes of system colours.
void FillColour(HDC dc, const RECT& rectangle, COLORREF colour);
void FrameColour(HDC dc, const RECT& rectangle, COLORREF colour);
RECT Shrunk(const RECT& rectangle, int by);

// What the thread's tool tips say of a whole window; empty for nothing.
std::string ToolTipOf(HWND window);

LRESULT CALLBACK StaticProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ButtonProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK EditProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ListBoxProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ComboBoxProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ScrollBarProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ProgressProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK HeaderProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ListViewProcedure(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ToolTipProcedure(HWND, UINT, WPARAM, LPARAM);

}  // namespace orvik::detail
