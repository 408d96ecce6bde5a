#include "platform/screen_gtk3/gtk_screen.h"

#include <algorithm>
#include <future>
#include <utility>

#include "platform/screen_gtk3/gtk_looks.h"

using namespace orvik::detail;

namespace {
// By which a desktop knows whose a window is (its class, or application id); the program's file has the name.
void TakeProgramName() {
    if (g_get_prgname() != nullptr) return;
    gchar* const path = g_file_read_link("/proc/self/exe", nullptr);
    gchar* const name = path != nullptr ? g_path_get_basename(path) : nullptr;
    if (name != nullptr) g_set_prgname(name);
    g_free(name);
    g_free(path);
}
}  // namespace

bool GtkScreen::Start() {
    std::promise<bool> started;
    m_thread = std::thread([&, this] { Run([&](bool can) { started.set_value(can); }); });
    const bool can = started.get_future().get();
    if (!can) m_thread.join();
    return can;
}

void GtkScreen::Run(std::function<void(bool)> started) {
    gtk_disable_setlocale();  // the program's choice
    TakeProgramName();
    // A desktop without a message bus has no settings to keep either.
    if (g_getenv("DBUS_SESSION_BUS_ADDRESS") == nullptr) g_setenv("GSETTINGS_BACKEND", "memory", FALSE);
    int count = 0;
    char** words = nullptr;
    // Nothing here is drawn by a graphics card, and what could do so takes 20 MB.
    g_setenv("GDK_GL", "disable", FALSE);
    if (!gtk_init_check(&count, &words)) return started(false);
    TellDesktop();
    g_signal_connect_swapped(gtk_settings_get_default(), "notify::gtk-xft-dpi",
                             G_CALLBACK(+[](GtkScreen* self) { self->TellDesktop(); }), this);
    const GtkLooks looks(m_host);
    m_loop = g_main_loop_new(nullptr, FALSE);
    started(true);
    g_main_loop_run(m_loop);
    m_clipboards.Store();
    m_printers.Close();
    m_popups.clear();
    m_windows.clear();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

// How large it is, and its letters.
void GtkScreen::TellDesktop() {
    GdkDisplay* const display = gdk_display_get_default();
    GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
    if (monitor == nullptr) monitor = gdk_display_get_monitor(display, 0);
    if (monitor != nullptr) {
        GdkRectangle area{};
        gdk_monitor_get_geometry(monitor, &area);
        const int scale = gdk_monitor_get_scale_factor(monitor);
        const double dots = gdk_screen_get_resolution(gdk_screen_get_default());
        m_host.SetDesktop({area.width * scale, area.height * scale}, static_cast<UINT>((dots > 0 ? dots : 96) * scale + 0.5));
    }
}

void GtkScreen::End() {
    g_idle_add(
        +[](gpointer self) -> gboolean {
            g_main_loop_quit(static_cast<GtkScreen*>(self)->m_loop);
            return G_SOURCE_REMOVE;
        },
        this);
    m_thread.join();
}

void GtkScreen::Schedule() {
    if (m_scheduled) return;
    m_scheduled = true;
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        +[](gpointer self) -> gboolean {
            static_cast<GtkScreen*>(self)->Serve();
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
}

void GtkScreen::Changed(HWND window) {
    const std::lock_guard lock(m_lock);
    m_changed.insert(window);
    Schedule();
}

void GtkScreen::Damaged(HWND window, const RECT& area) {
    const std::lock_guard lock(m_lock);
    const auto [at, fresh] = m_damaged.try_emplace(window, area);
    RECT& all = at->second;
    all = {std::min(all.left, area.left), std::min(all.top, area.top), std::max(all.right, area.right),
           std::max(all.bottom, area.bottom)};
    Schedule();
}

void GtkScreen::Described(HWND window, std::shared_ptr<const OrvikAccessible> said) {
    const std::lock_guard lock(m_lock);
    m_described[window] = std::move(said);
    Schedule();
}

void GtkScreen::Serve() {
    std::set<HWND> changed;
    std::map<HWND, RECT> damaged;
    std::map<HWND, std::shared_ptr<const OrvikAccessible>> described;
    {
        const std::lock_guard lock(m_lock);
        m_scheduled = false;
        changed.swap(m_changed);
        damaged.swap(m_damaged);
        described.swap(m_described);
    }
    for (const HWND each : changed) Follow(each);
    for (const auto& [handle, area] : damaged)
        if (ScreenWindow* const window = Find(handle)) window->Draw(area);
    for (const auto& [handle, said] : described)
        if (ScreenWindow* const window = Find(handle)) window->Accessible().Show(said);
}

ScreenWindow* GtkScreen::Find(HWND handle) {
    const auto found = m_windows.find(handle);
    return found == m_windows.end() ? nullptr : found->second.get();
}

void GtkScreen::Follow(HWND handle) {
    ShownWindow shown;
    if (!m_host.Describe(handle, shown) || !shown.visible) {
        if (m_focused == handle) Focused(handle, false);
        ScreenWindow* const window = Find(handle);
        ScreenWindow* const owner = window != nullptr && window->IsPopup() ? window->OwnedBy() : nullptr;
        m_windows.erase(handle);
        if (std::erase(m_popups, handle) != 0) Release();
        if (owner != nullptr) owner->Accessible().TellFocus();
        return;
    }
    // Handles grow, so an owner comes before what it owns; one that is not shown yet will be followed by its own note.
    auto& window = m_windows[handle];
    if (window == nullptr) window = std::make_unique<ScreenWindow>(*this, handle, shown);
    window->Follow(shown);
}

void GtkScreen::Noted(const GdkEvent* event) {
    if (m_press != nullptr) gdk_event_free(m_press);
    m_press = gdk_event_copy(event);
}

void GtkScreen::Grab(ScreenWindow& popup) {
    if (m_popups.empty() || m_popups.back() != popup.Handle()) m_popups.push_back(popup.Handle());
    GdkWindow* const window = gtk_widget_get_window(popup.Widget());
    GdkSeat* const seat = gdk_display_get_default_seat(gdk_window_get_display(window));
    const auto show = +[](GdkSeat*, GdkWindow*, gpointer widget) { gtk_widget_show(GTK_WIDGET(widget)); };
    gdk_seat_grab(seat, window, GDK_SEAT_CAPABILITY_ALL, TRUE, nullptr, m_press, show, popup.Widget());
}

// The popup below has what the one that went had; after the last nobody has.
void GtkScreen::Release() {
    if (!m_popups.empty()) {
        if (ScreenWindow* const below = Find(m_popups.back())) Grab(*below);
        return;
    }
    gdk_seat_ungrab(gdk_display_get_default_seat(gdk_display_get_default()));
    // While popups had the keys, nobody was told where they went.
    for (const auto& [handle, window] : m_windows)
        if (!window->IsPopup() && gtk_window_is_active(GTK_WINDOW(window->Widget()))) return Focused(handle, true);
    Focused(m_focused, false);
}

// Between two windows the desktop takes the focus from one before it gives it to the other.
void GtkScreen::Focused(HWND window, bool has) {
    if (has)
        m_focused = window;
    else if (m_focused == window && m_popups.empty())
        m_focused = nullptr;
    if (m_settling) return;
    m_settling = true;
    g_timeout_add(
        has ? 0 : 30,
        +[](gpointer self) -> gboolean {
            static_cast<GtkScreen*>(self)->SettleFocus();
            return G_SOURCE_REMOVE;
        },
        this);
}

void GtkScreen::SettleFocus() {
    m_settling = false;
    if (m_focused == m_told) return;
    const HWND before = std::exchange(m_told, m_focused);
    const bool has = m_focused != nullptr;
    m_host.Post(has ? m_focused : before, ScreenEvent{has ? ScreenEvent::Kind::Focused : ScreenEvent::Kind::Left});
}

extern "C" __attribute__((visibility("default"))) Screen* OrvikOpenScreen(unsigned seam, ScreenHost& host) {
    if (seam != kScreenSeam) return nullptr;
    auto screen = std::make_unique<GtkScreen>(host);
    return screen->Start() ? screen.release() : nullptr;
}
