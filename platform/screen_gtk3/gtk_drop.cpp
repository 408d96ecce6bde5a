#include "platform/screen_gtk3/gtk_drop.h"

#include "platform/screen_gtk3/gtk_screen.h"

using namespace orvik::detail;

namespace {
constexpr size_t kMostFiles = 10'000;

// Of a list of addresses those that are files of this machine.
std::vector<std::string> PathsOf(GtkSelectionData* data) {
    std::vector<std::string> paths;
    gchar** const addresses = gtk_selection_data_get_uris(data);
    for (gchar** each = addresses; each != nullptr && *each != nullptr && paths.size() < kMostFiles; ++each) {
        if (gchar* const path = g_filename_from_uri(*each, nullptr, nullptr)) {
            paths.emplace_back(path);
            g_free(path);
        }
    }
    g_strfreev(addresses);
    return paths;
}

void OnDropped(GtkWidget*, GdkDragContext* context, gint x, gint y, GtkSelectionData* data, guint, guint time, gpointer given) {
    auto& window = *static_cast<ScreenWindow*>(given);
    ScreenEvent event{ScreenEvent::Kind::Dropped};
    event.paths = PathsOf(data);
    event.x = x * window.Scale();
    event.y = y * window.Scale();
    const bool any = !event.paths.empty();
    if (any) window.Owner().Host().Post(window.Handle(), event);
    gtk_drag_finish(context, any, FALSE, time);
}
}  // namespace

void TakeDrops(ScreenWindow& window, bool takes) {
    GtkWidget* const area = window.Area();
    g_signal_handlers_disconnect_by_func(area, reinterpret_cast<gpointer>(&OnDropped), &window);
    if (!takes) {
        gtk_drag_dest_unset(area);
        return;
    }
    gtk_drag_dest_set(area, GTK_DEST_DEFAULT_ALL, nullptr, 0, GDK_ACTION_COPY);
    gtk_drag_dest_add_uri_targets(area);
    g_signal_connect(area, "drag-data-received", G_CALLBACK(&OnDropped), &window);
}
