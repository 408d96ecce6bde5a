#include "platform/screen_gtk3/gtk_input.h"

#include <algorithm>
#include <cmath>

#include "platform/screen_gtk3/gtk_keys.h"
#include "platform/screen_gtk3/gtk_screen.h"
#include "platform/screen_gtk3/gtk_window.h"
#include "platform/scripted_input_internal.h"
#include "platform/win32.h"

using orvik::detail::ScreenEvent;

namespace {
struct Modifier {
    guint mask;
    UINT key;
};
constexpr Modifier kModifiers[] = {{GDK_SHIFT_MASK, VK_SHIFT}, {GDK_CONTROL_MASK, VK_CONTROL}, {GDK_MOD1_MASK, VK_MENU}};

bool IsModifier(UINT key) { return key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU; }

std::u16string Utf16(const char* utf8) {
    glong length = 0;
    gunichar2* const units = g_utf8_to_utf16(utf8, -1, nullptr, &length, nullptr);
    std::u16string text;
    for (glong i = 0; units != nullptr && i < length; ++i) text += static_cast<char16_t>(units[i]);
    g_free(units);
    return text;
}

// The message of a press; the two others of its button follow it.
UINT PressOf(guint button) {
    switch (button) {
        case GDK_BUTTON_PRIMARY:
            return WM_LBUTTONDOWN;
        case GDK_BUTTON_SECONDARY:
            return WM_RBUTTONDOWN;
        case GDK_BUTTON_MIDDLE:
            return WM_MBUTTONDOWN;
        default:
            return 0;
    }
}
constexpr UINT kToRelease = WM_LBUTTONUP - WM_LBUTTONDOWN, kToDouble = WM_LBUTTONDBLCLK - WM_LBUTTONDOWN;
}  // namespace

GtkInput::GtkInput(ScreenWindow& window) : m_window(window), m_method(gtk_im_multicontext_new()) {
    GtkWidget* const area = window.Area();
    // GDK gives a grab's own window what it cannot place: after a press that opened a popup, all that follows above the window
    // of that press.
    for (GtkWidget* const widget : {area, window.Widget()}) {
        if (widget != area && !window.IsPopup()) continue;
        gtk_widget_add_events(widget, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                                          GDK_LEAVE_NOTIFY_MASK | GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
        g_signal_connect(widget, "button-press-event", G_CALLBACK(&OnButton), this);
        g_signal_connect(widget, "button-release-event", G_CALLBACK(&OnButton), this);
        g_signal_connect(widget, "motion-notify-event", G_CALLBACK(&OnMotion), this);
        g_signal_connect(widget, "leave-notify-event", G_CALLBACK(&OnLeave), this);
        g_signal_connect(widget, "scroll-event", G_CALLBACK(&OnScroll), this);
    }
    // What is being composed is shown by the method itself: our fields show what is written.
    gtk_im_context_set_use_preedit(m_method, FALSE);
    g_signal_connect(m_method, "commit", G_CALLBACK(&OnCommit), this);
    g_signal_connect(area, "realize", G_CALLBACK(+[](GtkWidget* widget, gpointer self) {
                         gtk_im_context_set_client_window(static_cast<GtkInput*>(self)->m_method, gtk_widget_get_window(widget));
                         // Moves of the pointer come one by one, and the library passes over those that are overtaken: GDK
                         // would keep the last one back until it draws the next time.
                         gdk_window_set_event_compression(gtk_widget_get_window(widget), FALSE);
                         gdk_window_set_event_compression(gtk_widget_get_window(gtk_widget_get_toplevel(widget)), FALSE);
                     }),
                     this);
}

GtkInput::~GtkInput() {
    gtk_im_context_set_client_window(m_method, nullptr);
    g_object_unref(m_method);
}

void GtkInput::Post(const ScreenEvent& event) const { m_window.Owner().Host().Post(m_window.Handle(), event); }

// By the place on the desktop: while a popup has the grab, Wayland tells it of the pointer over other windows by their
// coordinates.
void GtkInput::Pointer(UINT message, double rootX, double rootY, int wheel) const {
    const int scale = m_window.Scale();
    int left = 0, top = 0;
    gdk_window_get_origin(gtk_widget_get_window(m_window.Area()), &left, &top);
    const double x = rootX - left, y = rootY - top;
    ScreenEvent event{ScreenEvent::Kind::Pointer};
    event.code = message;
    event.x = static_cast<int>(std::floor(x * scale));
    event.y = static_cast<int>(std::floor(y * scale));
    event.wheel = wheel;
    Post(event);
}

void GtkInput::SendModifier(UINT key, bool down) {
    if (down == (m_modifiers.count(key) != 0)) return;
    if (down)
        m_modifiers.insert(key);
    else
        m_modifiers.erase(key);
    ScreenEvent event{ScreenEvent::Kind::Key};
    event.code = key;
    event.down = down;
    Post(event);
}

// Keys that went up or down while another window had them.
void GtkInput::FollowModifiers(guint state) {
    for (const Modifier& each : kModifiers) SendModifier(each.key, (state & each.mask) != 0);
}

void GtkInput::Focus(bool has) {
    if (has) {
        gtk_im_context_focus_in(m_method);
    } else {
        gtk_im_context_focus_out(m_method);
        // Alt that goes up by itself would open the menu bar; here it left with the keys, as when windows are switched.
        if (m_modifiers.count(VK_MENU) != 0) {
            ScreenEvent other{ScreenEvent::Kind::Key};
            other.code = VK_PROCESSKEY;
            other.untyped = true;
            for (const bool down : {true, false}) {
                other.down = down;
                Post(other);
            }
        }
        FollowModifiers(0);
    }
}

void GtkInput::SetCaret(const RECT& caret) {
    const int scale = m_window.Scale();
    GdkRectangle place{static_cast<int>(caret.left) / scale, static_cast<int>(caret.top) / scale,
                       static_cast<int>(caret.right - caret.left) / scale, static_cast<int>(caret.bottom - caret.top) / scale};
    gtk_im_context_set_cursor_location(m_method, &place);
}

void GtkInput::OnCommit(GtkIMContext*, const char* text, gpointer given) {
    auto& self = *static_cast<GtkInput*>(given);
    if (self.m_filtering) {
        self.m_written += Utf16(text);
        return;
    }
    ScreenEvent event{ScreenEvent::Kind::Text};
    event.letters = Utf16(text);
    self.Post(event);
}

bool GtkInput::Key(GdkEventKey& given) {
    ScreenEvent event{ScreenEvent::Kind::Key};
    event.code = KeyOf(given);
    event.down = given.type == GDK_KEY_PRESS;
    if (IsModifier(event.code)) {
        gtk_im_context_filter_keypress(m_method, &given);
        SendModifier(event.code, event.down);
        return true;
    }
    if (event.down) m_window.Owner().Noted(reinterpret_cast<GdkEvent*>(&given));
    FollowModifiers(given.state);
    m_written.clear();
    m_filtering = true;
    const bool taken = gtk_im_context_filter_keypress(m_method, &given);
    m_filtering = false;
    event.letters = m_written;
    event.untyped = taken && m_written.empty();
    if (event.untyped && event.down) event.code = VK_PROCESSKEY;
    // Keys that write without being letters (Return, a digit of the number pad) do so by their code; so do letters with Ctrl.
    if (!taken && event.down && (given.state & GDK_CONTROL_MASK) == 0) {
        const gunichar letter = gdk_keyval_to_unicode(given.keyval);
        if (letter > 0x20 && letter != 0x7F) {
            char utf8[8] = "";
            g_unichar_to_utf8(letter, utf8);
            event.letters = Utf16(utf8);
        }
    }
    if (event.code == 0) {  // a key of another world: what it writes is all there is of it
        if (event.letters.empty() || !event.down) return true;
        event.kind = ScreenEvent::Kind::Text;
    }
    Post(event);
    return true;
}

void GtkInput::Button(const GdkEventButton& event) {
    UINT message = PressOf(event.button);
    if (message == 0) return;
    FollowModifiers(event.state);
    if (event.type == GDK_BUTTON_RELEASE) return Pointer(message + kToRelease, event.x_root, event.y_root);
    GtkSettings* const settings = gtk_settings_get_default();
    gint time = 0, distance = 0;
    g_object_get(settings, "gtk-double-click-time", &time, "gtk-double-click-distance", &distance, nullptr);
    const bool again = m_pressButton == event.button && event.time - m_pressTime <= static_cast<guint32>(time) &&
                       std::fabs(event.x - m_pressX) <= distance && std::fabs(event.y - m_pressY) <= distance;
    if (again) message += kToDouble;
    m_pressButton = again ? 0 : event.button;
    m_pressTime = event.time;
    m_pressX = event.x;
    m_pressY = event.y;
    Pointer(message, event.x_root, event.y_root);
}

void GtkInput::Scroll(const GdkEventScroll& event) {
    FollowModifiers(event.state);
    switch (event.direction) {
        case GDK_SCROLL_UP:
            return Pointer(WM_MOUSEWHEEL, event.x_root, event.y_root, WHEEL_DELTA);
        case GDK_SCROLL_DOWN:
            return Pointer(WM_MOUSEWHEEL, event.x_root, event.y_root, -WHEEL_DELTA);
        case GDK_SCROLL_LEFT:
            return Pointer(WM_MOUSEHWHEEL, event.x_root, event.y_root, -WHEEL_DELTA);
        case GDK_SCROLL_RIGHT:
            return Pointer(WM_MOUSEHWHEEL, event.x_root, event.y_root, WHEEL_DELTA);
        case GDK_SCROLL_SMOOTH: {
            const auto turn = [&](UINT message, double& left, double by) {
                left += by * WHEEL_DELTA;
                const int parts = std::clamp(static_cast<int>(left), -0x7FFF, 0x7FFF);
                left -= parts;
                if (parts != 0) Pointer(message, event.x_root, event.y_root, parts);
            };
            turn(WM_MOUSEWHEEL, m_wheel, -event.delta_y);
            turn(WM_MOUSEHWHEEL, m_wheelAcross, event.delta_x);
            return;
        }
        default:
            return;
    }
}

gboolean GtkInput::OnButton(GtkWidget*, GdkEventButton* event, gpointer self) {
    if (event->type == GDK_BUTTON_PRESS) static_cast<GtkInput*>(self)->m_window.Owner().Noted(reinterpret_cast<GdkEvent*>(event));
    if (event->type == GDK_BUTTON_PRESS || event->type == GDK_BUTTON_RELEASE) static_cast<GtkInput*>(self)->Button(*event);
    return TRUE;
}

gboolean GtkInput::OnMotion(GtkWidget*, GdkEventMotion* event, gpointer given) {
    auto& self = *static_cast<GtkInput*>(given);
    self.FollowModifiers(event->state);
    self.Pointer(WM_MOUSEMOVE, event->x_root, event->y_root);
    return TRUE;
}

gboolean GtkInput::OnLeave(GtkWidget*, GdkEventCrossing* event, gpointer given) {
    // Where it went to, so that what it lay on learns that it left.
    if (event->mode == GDK_CROSSING_NORMAL) static_cast<GtkInput*>(given)->Pointer(WM_MOUSEMOVE, event->x_root, event->y_root);
    return TRUE;
}

gboolean GtkInput::OnScroll(GtkWidget*, GdkEventScroll* event, gpointer self) {
    static_cast<GtkInput*>(self)->Scroll(*event);
    return TRUE;
}
