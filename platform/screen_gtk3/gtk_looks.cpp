#include "platform/screen_gtk3/gtk_looks.h"

#include <algorithm>
#include <cmath>

using namespace orvik::detail;

namespace {
constexpr char kPortal[] = "org.freedesktop.portal.Desktop", kPortalPath[] = "/org/freedesktop/portal/desktop";
constexpr char kPortalSettings[] = "org.freedesktop.portal.Settings", kAppearance[] = "org.freedesktop.appearance";
constexpr char kColourScheme[] = "color-scheme", kPreferDark[] = "gtk-application-prefer-dark-theme";

std::optional<GdkRGBA> ThemeColour(GtkWidget* probe, const char* name) {
    GdkRGBA colour{};
    if (!gtk_style_context_lookup_color(gtk_widget_get_style_context(probe), name, &colour)) return std::nullopt;
    return colour;
}

COLORREF Rgb(const GdkRGBA& colour) {
    const auto part = [](double value) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255)); };
    return RGB(part(colour.red), part(colour.green), part(colour.blue));
}
}  // namespace

GtkLooks::GtkLooks(ScreenHost& host)
    : m_host(host), m_settings(gtk_settings_get_default()), m_probe(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
    const auto changed = +[](GObject*, GParamSpec*, gpointer self) { static_cast<GtkLooks*>(self)->Later(); };
    for (const char* each : {"notify::gtk-theme-name", "notify::gtk-application-prefer-dark-theme", "notify::gtk-font-name"})
        g_signal_connect(m_settings, each, G_CALLBACK(changed), this);
    Tell();
    AskPortal();
}

GtkLooks::~GtkLooks() {
    g_cancellable_cancel(m_asking);
    g_object_unref(m_asking);
    if (m_heard != 0) g_dbus_connection_signal_unsubscribe(m_bus, m_heard);
    if (m_bus != nullptr) g_object_unref(m_bus);
    if (m_later != 0) g_source_remove(m_later);
    g_signal_handlers_disconnect_by_data(m_settings, this);
    gtk_widget_destroy(m_probe);
}

// The theme follows its name when GTK is back at its loop.
void GtkLooks::Later() {
    if (m_later != 0) return;
    m_later = g_idle_add(
        +[](gpointer given) -> gboolean {
            auto& self = *static_cast<GtkLooks*>(given);
            self.m_later = 0;
            self.Tell();
            return G_SOURCE_REMOVE;
        },
        this);
}

void GtkLooks::Tell() {
    DesktopLooks looks;
    const auto ground = ThemeColour(m_probe, "theme_bg_color"), text = ThemeColour(m_probe, "theme_fg_color");
    if (ground && text) {
        const auto brightness = [](const GdkRGBA& colour) { return colour.red + colour.green + colour.blue; };
        looks.dark = brightness(*ground) < brightness(*text);
    }
    if (const auto accent = ThemeColour(m_probe, "theme_selected_bg_color")) looks.accent = Rgb(*accent);
    gchar* name = nullptr;
    g_object_get(m_settings, "gtk-font-name", &name, nullptr);
    if (PangoFontDescription* const font = pango_font_description_from_string(name != nullptr ? name : "")) {
        if (const char* const family = pango_font_description_get_family(font)) looks.font = family;
        const double size = pango_font_description_get_size(font) / static_cast<double>(PANGO_SCALE);
        const double pixels = pango_font_description_get_size_is_absolute(font) ? size : size * 96 / 72;
        if (pixels > 0) looks.fontPixels = static_cast<int>(std::lround(std::clamp(pixels, 8.0, 64.0)));
        pango_font_description_free(font);
    }
    g_free(name);
    m_host.SetLooks(looks);
}

// Nothing is started for the answer, and nobody waits for it: a desktop without a portal has its theme.
void GtkLooks::AskPortal() {
    if (g_getenv("DBUS_SESSION_BUS_ADDRESS") == nullptr) return;
    const auto connected = +[](GObject*, GAsyncResult* result, gpointer given) {
        GError* error = nullptr;
        GDBusConnection* const bus = g_bus_get_finish(result, &error);
        if (bus == nullptr) return g_error_free(error);  // cancelled: the object is gone
        auto& self = *static_cast<GtkLooks*>(given);
        self.m_bus = bus;
        const auto heard =
            +[](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* words, gpointer to) {
                const char *space = nullptr, *key = nullptr;
                GVariant* value = nullptr;
                if (!g_variant_is_of_type(words, G_VARIANT_TYPE("(ssv)"))) return;
                g_variant_get(words, "(&s&sv)", &space, &key, &value);
                if (g_str_equal(space, kAppearance) && g_str_equal(key, kColourScheme))
                    static_cast<GtkLooks*>(to)->PortalSays(value);
                g_variant_unref(value);
            };
        self.m_heard = g_dbus_connection_signal_subscribe(bus, kPortal, kPortalSettings, "SettingChanged", kPortalPath,
                                                          kAppearance, G_DBUS_SIGNAL_FLAGS_NONE, heard, given, nullptr);
        const auto answered = +[](GObject* source, GAsyncResult* answer, gpointer to) {
            GError* wrong = nullptr;
            GVariant* const words = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), answer, &wrong);
            if (words == nullptr) return g_error_free(wrong);
            GVariant* value = nullptr;
            g_variant_get(words, "(v)", &value);
            static_cast<GtkLooks*>(to)->PortalSays(value);
            g_variant_unref(value);
            g_variant_unref(words);
        };
        g_dbus_connection_call(bus, kPortal, kPortalPath, kPortalSettings, "Read",
                               g_variant_new("(ss)", kAppearance, kColourScheme), G_VARIANT_TYPE("(v)"),
                               G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, self.m_asking, answered, given);
    };
    g_bus_get(G_BUS_TYPE_SESSION, m_asking, connected, this);
}

// 0: no wish, 1: dark, 2: light. An old portal packs the number twice.
void GtkLooks::PortalSays(GVariant* value) {
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
        GVariant* const inner = g_variant_get_variant(value);
        PortalSays(inner);
        return g_variant_unref(inner);
    }
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)) return;
    const guint32 wish = g_variant_get_uint32(value);
    // The frames of windows and GTK's own dialogs follow too; the setting's change brings Tell.
    if (wish == 0)
        gtk_settings_reset_property(m_settings, kPreferDark);
    else
        g_object_set(m_settings, kPreferDark, static_cast<gboolean>(wish == 1), nullptr);
}
