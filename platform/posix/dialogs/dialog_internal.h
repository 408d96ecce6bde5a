// Dialog templates as they are read, and what a dialog keeps beside its window.
#pragma once

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

struct DialogTemplate {
    DWORD style = 0, exStyle = 0;
    int x = 0, y = 0, width = 0, height = 0;
    TemplateName windowClass, title;
    int points = 0, weight = 0;  // the font, with DS_SETFONT
    bool italic = false;
    std::string face;
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

    SIZE units{8, 16};  // dialog base units in pixels
    HFONT ownFont = nullptr;
    bool modal = false, ended = false;
    INT_PTR result = 0;
    HWND owner = nullptr;  // what a modal dialog disabled

protected:
    void Paint(HDC, const RECT&) override {}

private:
    void SaveFocus();
    void RestoreFocus();
    int m_default = 0;
    HWND m_focus = nullptr;
};
// Null for a window that is none.
std::shared_ptr<Dialog> DialogOf(HWND window);

// Base units of a font: the average width of the letters, and the height.
SIZE UnitsOf(HDC dc);
bool IsButton(HWND window, LRESULT codes);  // whether its WM_GETDLGCODE answer has one of the bits

}  // namespace orvik::detail
