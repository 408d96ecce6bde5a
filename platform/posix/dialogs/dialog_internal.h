// Dialog templates as they are read, and what a dialog keeps beside its window.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/posix/controls/control_internal.h"

namespace orvik::detail {

// A class, title or menu in a template: a text, or a number in a resource.
struct TemplateName {
    std::string text;
    WORD number = 0;  // not 0: instead of the text
};

struct TemplateItem {
    DWORD style = 0, exStyle = 0, id = 0;
    int x = 0, y = 0, width = 0, height = 0;  // dialog units
    TemplateName windowClass, title;
    const void* data = nullptr;  // for the control's WM_CREATE; null without
};

struct DialogFont {
    int points = 0, weight = 0;
    bool italic = false;
    std::string face;
};

struct DialogTemplate {
    DWORD style = 0, exStyle = 0;
    int x = 0, y = 0, width = 0, height = 0;
    TemplateName windowClass, title;
    DialogFont font;  // with DS_SETFONT
    std::vector<TemplateItem> items;
};

// Reads a template of either kind. The bytes carry no length: they are trusted, as the system does.
DialogTemplate ReadTemplate(const void* bytes);

class Dialog final : public Control {
public:
    using Control::Control;

    // What DefDlgProcA does where the dialog's procedure does nothing.
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override;

    // The default button changes its looks with the focus, while its id stays.
    void SetFocusTo(HWND control);
    void SetDefault(int id);
    int DefaultId() const { return m_default; }
    void SetFocusLater(HWND control) { m_focus = control; }

    // The controls as the template has them, in the font of the window's dots an inch; false when one cannot be made.
    bool CreateItems(const DialogTemplate& from, HINSTANCE instance);
    // Font, controls and base units at the window's dots an inch (dialog_scaling.cpp).
    void Rescale();

    SIZE units{8, 16};  // dialog base units in pixels
    HFONT ownFont = nullptr;
    std::optional<DialogFont> font;  // what `ownFont` is made from
    SIZE size{}, made{};             // of the client area in dialog units, and what that came to
    bool modal = false, ended = false;
    INT_PTR result = 0;
    HWND owner = nullptr;  // what a modal dialog disabled

protected:
    void Paint(HDC, const RECT&) override {}

private:
    // Where the template put a control: in dialog units, and what that came to. Whoever moved it since has taken it over.
    struct Placed {
        HWND window;
        RECT units, pixels;
    };
    bool SuggestSize(UINT dpi, SIZE& size) const;
    void SaveFocus();
    void RestoreFocus();
    std::vector<Placed> m_placed;
    int m_default = 0;
    HWND m_focus = nullptr;
};
// Null for a window that is none.
std::shared_ptr<Dialog> DialogOf(HWND window);

HFONT MakeFont(const DialogFont& font, UINT dpi);
// Base units of a font (the system's for null): the average width of the letters, and the height.
SIZE UnitsOf(HFONT font);
// Dialog units in pixels.
RECT InPixels(const RECT& units, SIZE base);
RECT PlaceIn(HWND parent, HWND child);  // in the parent's client area

bool IsButton(HWND window, LRESULT codes);  // whether its WM_GETDLGCODE answer has one of the bits

}  // namespace orvik::detail
