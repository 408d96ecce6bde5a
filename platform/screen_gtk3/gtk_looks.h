// What the desktop wants its windows to look like: light or dark, its accent, its letters. Asked of GTK's settings and theme, and
// of the desktop portal, whose word on dark windows goes first.
// For the module's thread.
#pragma once

#include <gtk/gtk.h>

#include "platform/posix/window/screen_internal.h"

class GtkLooks {
public:
    explicit GtkLooks(orvik::detail::ScreenHost& host);  // tells the host at once
    ~GtkLooks();
    GtkLooks(const GtkLooks&) = delete;
    GtkLooks& operator=(const GtkLooks&) = delete;

private:
    void Tell();
    void Later();
    void AskPortal();
    void PortalSays(GVariant* value);

    orvik::detail::ScreenHost& m_host;
    GtkSettings* const m_settings;
    GtkWidget* const m_probe;  // a window that is never shown: it has the theme's colours
    GDBusConnection* m_bus = nullptr;
    GCancellable* const m_asking = g_cancellable_new();
    guint m_heard = 0, m_later = 0;
};
