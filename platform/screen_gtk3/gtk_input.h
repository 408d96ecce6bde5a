// What the user does with a window: pointer, wheel, keys and letters, told to the library.
// For the module's thread.
#pragma once

#include <gtk/gtk.h>

#include <set>
#include <string>

#include "platform/posix/window/screen_internal.h"

class ScreenWindow;

class GtkInput {
public:
    explicit GtkInput(ScreenWindow& window);
    ~GtkInput();
    GtkInput(const GtkInput&) = delete;
    GtkInput& operator=(const GtkInput&) = delete;

    void SetCaret(const RECT& caret);  // in the picture
    void Focus(bool has);              // keys go to the window, or no longer
    bool Key(GdkEventKey& event);

private:
    void Post(const orvik::detail::ScreenEvent& event) const;
    void Pointer(UINT message, double rootX, double rootY, int wheel = 0) const;
    void FollowModifiers(guint state);
    void SendModifier(UINT key, bool down);
    void Button(const GdkEventButton& event);
    void Scroll(const GdkEventScroll& event);
    static gboolean OnButton(GtkWidget* area, GdkEventButton* event, gpointer self);
    static gboolean OnMotion(GtkWidget* area, GdkEventMotion* event, gpointer self);
    static gboolean OnLeave(GtkWidget* area, GdkEventCrossing* event, gpointer self);
    static gboolean OnScroll(GtkWidget* area, GdkEventScroll* event, gpointer self);
    static void OnCommit(GtkIMContext* context, const char* text, gpointer self);

    ScreenWindow& m_window;
    GtkIMContext* m_method;
    bool m_filtering = false;               // an input method is asked about a key at this moment
    std::u16string m_written;               // what it made of that
    std::set<UINT> m_modifiers;             // that the library knows to be down
    double m_wheel = 0, m_wheelAcross = 0;  // less than one part so far
    guint32 m_pressTime = 0;                // of the last press, for double ones
    guint m_pressButton = 0;
    double m_pressX = 0, m_pressY = 0;
};
