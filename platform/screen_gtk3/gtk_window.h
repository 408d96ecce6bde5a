// A top-level window of the library on the desktop.
// For the module's thread.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <vector>

#include "platform/screen_gtk3/gtk_accessible.h"
#include "platform/screen_gtk3/gtk_input.h"

class GtkScreen;

class ScreenWindow {
public:
    ScreenWindow(GtkScreen& screen, HWND handle, const orvik::detail::ShownWindow& shown);
    ~ScreenWindow();
    ScreenWindow(const ScreenWindow&) = delete;
    ScreenWindow& operator=(const ScreenWindow&) = delete;

    void Follow(const orvik::detail::ShownWindow& shown);  // brings it in line
    void Draw(const RECT& area);                           // pixels of the picture
    AccessibleWindow& Accessible() { return *m_accessible; }
    HWND Handle() const { return m_handle; }
    GtkWidget* Widget() const { return m_window; }
    GtkWidget* Area() const { return m_area; }
    bool IsPopup() const { return m_popup; }
    ScreenWindow* OwnedBy() const;  // null without an owner on the screen
    GtkScreen& Owner() const { return m_screen; }
    int Scale() const;  // pixels of the picture to a unit of the desktop's

private:
    int Logical(LONG pixels) const;
    UINT Dots() const;
    void TellDots(UINT dots);
    void SetSize(SIZE size);
    void SetCursor(const orvik::detail::CursorLook& look);
    void SetLeast(SIZE least);
    void SetIcons(const std::vector<orvik::detail::CursorLook>& icons);
    void Place(const orvik::detail::PopupPlace& place);
    static gboolean OnUnmap(GtkWidget* window, GdkEvent* event, gpointer self);
    void Connect();
    static void OnLetters(GObject* settings, GParamSpec* what, gpointer self);
    static gboolean OnDraw(GtkWidget* area, cairo_t* context, gpointer self);
    static void OnAllocate(GtkWidget* area, GdkRectangle* place, gpointer self);
    static void OnScale(GObject* window, GParamSpec* what, gpointer self);
    static gboolean OnState(GtkWidget* window, GdkEventWindowState* event, gpointer self);
    static gboolean OnDelete(GtkWidget* window, GdkEvent* event, gpointer self);
    static void OnPlaced(GdkWindow* window, GdkRectangle* flipped, GdkRectangle* placed, gboolean flippedX, gboolean flippedY,
                         gpointer self);

    GtkScreen& m_screen;
    const HWND m_handle;
    const bool m_popup, m_lookedAt;  // the latter a popup without pointer and keys
    HWND m_owner = nullptr;
    orvik::detail::PopupPlace m_place;
    GtkWidget *m_window = nullptr, *m_area = nullptr;
    std::unique_ptr<GtkInput> m_input;
    std::unique_ptr<AccessibleWindow> m_accessible;
    SIZE m_size{};  // that the library was told or told us last
    UINT m_dots = 0;
    unsigned m_raised = 0, m_stateAsked = 0;
    std::string m_title;
    WORD m_systemCursor = 0;
    const void* m_cursorPicture = nullptr;
    bool m_takesFiles = false;
    std::vector<const void*> m_icons;
};
