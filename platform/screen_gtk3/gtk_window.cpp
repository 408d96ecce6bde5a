#include "platform/screen_gtk3/gtk_window.h"

#include <algorithm>

#include "platform/screen_gtk3/gtk_drop.h"
#include "platform/screen_gtk3/gtk_screen.h"
#include "platform/win32.h"

using namespace orvik::detail;

namespace {
// A cursor of the desktop's theme, by the names that style sheets have for them; null for the arrow that is there anyway.
const char* NameOf(WORD systemId) {
    struct Named {
        LPCSTR id;
        const char* name;
    };
    static const Named kNames[] = {{IDC_ARROW, "default"},        {IDC_IBEAM, "text"},       {IDC_WAIT, "wait"},
                                   {IDC_CROSS, "crosshair"},      {IDC_UPARROW, "n-resize"}, {IDC_SIZENWSE, "nwse-resize"},
                                   {IDC_SIZENESW, "nesw-resize"}, {IDC_SIZEWE, "ew-resize"}, {IDC_SIZENS, "ns-resize"},
                                   {IDC_SIZEALL, "move"},         {IDC_NO, "not-allowed"},   {IDC_HAND, "pointer"},
                                   {IDC_APPSTARTING, "progress"}, {IDC_HELP, "help"}};
    for (const Named& each : kNames)
        if (reinterpret_cast<ULONG_PTR>(each.id) == systemId) return each.name;
    return nullptr;
}

// Cairo's pixels are premultiplied.
cairo_surface_t* PictureOf(const CursorLook& look) {
    cairo_surface_t* const picture = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, look.width, look.height);
    cairo_surface_flush(picture);
    unsigned char* const bytes = cairo_image_surface_get_data(picture);
    const int stride = cairo_image_surface_get_stride(picture);
    for (int y = 0; y < look.height; ++y) {
        auto* const row = reinterpret_cast<uint32_t*>(bytes + y * stride);
        for (int x = 0; x < look.width; ++x) {
            const uint32_t pixel = look.pixels[static_cast<size_t>(y * look.width + x)], alpha = pixel >> 24;
            const auto part = [&](int shift) { return ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift; };
            row[x] = alpha << 24 | part(16) | part(8) | part(0);
        }
    }
    cairo_surface_mark_dirty(picture);
    return picture;
}

GdkCursor* MakeCursor(GdkDisplay* display, const CursorLook& look) {
    if (look.pixels.empty()) {
        const char* const name = NameOf(look.systemId);
        return gdk_cursor_new_from_name(display, name != nullptr ? name : "default");
    }
    cairo_surface_t* const picture = PictureOf(look);
    GdkCursor* const cursor = gdk_cursor_new_from_surface(display, picture, look.hotX, look.hotY);
    cairo_surface_destroy(picture);
    return cursor;
}
}  // namespace

ScreenWindow::ScreenWindow(GtkScreen& screen, HWND handle, const ShownWindow& shown)
    : m_screen(screen),
      m_handle(handle),
      m_popup(shown.popup.has_value()),
      m_lookedAt(m_popup && !shown.enabled),
      m_raised(shown.raised) {
    m_window = gtk_window_new(m_popup ? GTK_WINDOW_POPUP : GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_app_paintable(m_window, TRUE);
    m_area = MakeAccessibleArea(*this);
    m_accessible = std::make_unique<AccessibleWindow>(*this);
    gtk_container_add(GTK_CONTAINER(m_window), m_area);
    auto* const window = GTK_WINDOW(m_window);
    if (m_popup)
        gtk_window_set_type_hint(window, m_lookedAt ? GDK_WINDOW_TYPE_HINT_TOOLTIP : GDK_WINDOW_TYPE_HINT_POPUP_MENU);
    else if (shown.dialog)
        gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_DIALOG);
    gtk_window_set_resizable(window, shown.resizable || m_popup);
    m_owner = shown.owner;
    if (ScreenWindow* const owner = screen.Find(shown.owner)) {
        gtk_window_set_transient_for(window, GTK_WINDOW(owner->Widget()));
        if (!m_popup) gtk_window_set_position(window, GTK_WIN_POS_CENTER_ON_PARENT);
    }
    m_input = std::make_unique<GtkInput>(*this);
    Connect();
    gtk_window_set_title(window, shown.title.c_str());
    m_title = shown.title;
    m_dots = shown.dots;
    SetSize(shown.size);
    gtk_widget_realize(m_window);
    if (const UINT dots = Dots(); dots != m_dots) {
        const auto scaled = [&](LONG pixels) { return static_cast<LONG>(static_cast<int64_t>(pixels) * dots / m_dots); };
        SetSize({scaled(shown.size.cx), scaled(shown.size.cy)});
        TellDots(dots);
    }
    SetLeast(shown.least);
    gtk_widget_show(m_area);
    if (!shown.popup) {
        gtk_widget_show(m_window);
        return;
    }
    g_signal_connect(gtk_widget_get_window(m_window), "moved-to-rect", G_CALLBACK(&OnPlaced), this);
    if (!m_lookedAt) g_signal_connect(m_window, "unmap-event", G_CALLBACK(&OnUnmap), this);
    Place(*shown.popup);
    // On Wayland a popup is shown within its grab; one that is only looked at has none, and lets the pointer through.
    if (m_lookedAt) {
        cairo_region_t* const nothing = cairo_region_create();
        gtk_widget_input_shape_combine_region(m_window, nothing);
        cairo_region_destroy(nothing);
    } else {
        screen.Grab(*this);
    }
    gtk_widget_show(m_window);
}

ScreenWindow::~ScreenWindow() {
    if (m_popup) g_signal_handlers_disconnect_by_data(gtk_widget_get_window(m_window), this);
    g_signal_handlers_disconnect_by_data(gtk_widget_get_settings(m_window), this);
    g_signal_handlers_disconnect_by_data(m_window, this);
    g_signal_handlers_disconnect_by_data(m_area, this);
    for (GtkWidget* const widget : {m_area, m_window}) g_signal_handlers_disconnect_by_data(widget, m_input.get());
    m_input.reset();
    m_accessible.reset();
    gtk_widget_destroy(m_window);
}

void ScreenWindow::Connect() {
    g_signal_connect(m_area, "draw", G_CALLBACK(&OnDraw), this);
    g_signal_connect(m_area, "size-allocate", G_CALLBACK(&OnAllocate), this);
    g_signal_connect(m_window, "notify::scale-factor", G_CALLBACK(&OnScale), this);
    g_signal_connect(gtk_widget_get_settings(m_window), "notify::gtk-xft-dpi", G_CALLBACK(&OnLetters), this);
    g_signal_connect(m_window, "window-state-event", G_CALLBACK(&OnState), this);
    g_signal_connect(m_window, "delete-event", G_CALLBACK(&OnDelete), this);
    const auto onKey = +[](GtkWidget*, GdkEventKey* event, gpointer self) -> gboolean {
        return static_cast<ScreenWindow*>(self)->m_input->Key(*event);
    };
    g_signal_connect(m_window, "key-press-event", G_CALLBACK(onKey), this);
    g_signal_connect(m_window, "key-release-event", G_CALLBACK(onKey), this);
    const auto onFocus = +[](GtkWidget*, GdkEventFocus* event, gpointer given) -> gboolean {
        auto& self = *static_cast<ScreenWindow*>(given);
        if (self.m_popup) return FALSE;  // it has the keys by its grab, and never the focus
        self.m_input->Focus(event->in != 0);
        self.m_screen.Focused(self.m_handle, event->in != 0);
        return FALSE;
    };
    g_signal_connect(m_window, "focus-in-event", G_CALLBACK(onFocus), this);
    g_signal_connect(m_window, "focus-out-event", G_CALLBACK(onFocus), this);
}

ScreenWindow* ScreenWindow::OwnedBy() const { return m_screen.Find(m_owner); }

// A popup's is its owner's: Wayland tells a window of its own only when it is seen.
int ScreenWindow::Scale() const {
    const ScreenWindow* const owner = m_popup ? OwnedBy() : nullptr;
    return owner != nullptr ? owner->Scale() : gtk_widget_get_scale_factor(m_window);
}

int ScreenWindow::Logical(LONG pixels) const {
    const int scale = Scale();
    return std::max(1, (static_cast<int>(pixels) + scale - 1) / scale);
}

// The desktop's scale, and how much larger than usual it wants its letters.
UINT ScreenWindow::Dots() const {
    const double dots = gdk_screen_get_resolution(gtk_widget_get_screen(m_window));
    return static_cast<UINT>((dots > 0 ? dots : 96) * Scale() + 0.5);
}

void ScreenWindow::SetSize(SIZE size) {
    m_size = size;
    const int width = Logical(size.cx), height = Logical(size.cy);
    auto* const window = GTK_WINDOW(m_window);
    if (!gtk_window_get_resizable(window) || m_popup) gtk_widget_set_size_request(m_area, width, height);
    if (gtk_widget_get_realized(m_window))
        gtk_window_resize(window, width, height);
    else
        gtk_window_set_default_size(window, width, height);
}

void ScreenWindow::SetLeast(SIZE least) {
    if (gtk_window_get_resizable(GTK_WINDOW(m_window)) && !m_popup)
        gtk_widget_set_size_request(m_area, Logical(least.cx), Logical(least.cy));
}

namespace {
// The point of the anchor that the popup's own point comes to lie on; `far` edges are right and lower ones.
struct Gravities {
    GdkGravity anchor, popup;
};
Gravities GravitiesOf(const PopupPlace& place) {
    constexpr GdkGravity kCorners[3][3] = {{GDK_GRAVITY_NORTH_WEST, GDK_GRAVITY_NORTH, GDK_GRAVITY_NORTH_EAST},
                                           {GDK_GRAVITY_WEST, GDK_GRAVITY_CENTER, GDK_GRAVITY_EAST},
                                           {GDK_GRAVITY_SOUTH_WEST, GDK_GRAVITY_SOUTH, GDK_GRAVITY_SOUTH_EAST}};
    const int along = place.edge == PopupEdge::Near ? 0 : place.edge == PopupEdge::Middle ? 1 : 2;
    switch (place.side) {
        case PopupSide::Below:
            return {kCorners[2][along], kCorners[0][along]};
        case PopupSide::Above:
            return {kCorners[0][along], kCorners[2][along]};
        case PopupSide::Right:
            return {kCorners[along][2], kCorners[along][0]};
        default:
            return {kCorners[along][0], kCorners[along][2]};
    }
}
bool AreEqual(const PopupPlace& a, const PopupPlace& b) {
    return a.owner == b.owner && a.side == b.side && a.edge == b.edge && a.anchor.left == b.anchor.left &&
           a.anchor.top == b.anchor.top && a.anchor.right == b.anchor.right && a.anchor.bottom == b.anchor.bottom;
}
}  // namespace

// Wayland knows no absolute places: the desktop is told the rule, and tells what came of it.
void ScreenWindow::Place(const PopupPlace& place) {
    m_place = place;
    ScreenWindow* const owner = m_screen.Find(m_owner);
    if (owner == nullptr) return;
    const int scale = Scale();
    // Within the owner's window there may be a frame, too.
    int left = 0, top = 0;
    gtk_widget_translate_coordinates(owner->Area(), owner->Widget(), 0, 0, &left, &top);
    const GdkRectangle anchor{left + static_cast<int>(place.anchor.left) / scale,
                              top + static_cast<int>(place.anchor.top) / scale,
                              std::max(1, static_cast<int>(place.anchor.right - place.anchor.left) / scale),
                              std::max(1, static_cast<int>(place.anchor.bottom - place.anchor.top) / scale)};
    const Gravities gravities = GravitiesOf(place);
    const bool across = place.side == PopupSide::Below || place.side == PopupSide::Above;
    const int hints = across ? GDK_ANCHOR_FLIP_Y | GDK_ANCHOR_SLIDE : GDK_ANCHOR_FLIP_X | GDK_ANCHOR_SLIDE;
    gdk_window_move_to_rect(gtk_widget_get_window(m_window), &anchor, gravities.anchor, gravities.popup,
                            static_cast<GdkAnchorHints>(hints), 0, 0);
}

void ScreenWindow::OnPlaced(GdkWindow* window, GdkRectangle*, GdkRectangle*, gboolean, gboolean, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    ScreenWindow* const owner = self.m_screen.Find(self.m_owner);
    if (owner == nullptr) return;
    int left = 0, top = 0, ownerLeft = 0, ownerTop = 0;
    gdk_window_get_origin(window, &left, &top);
    gdk_window_get_origin(gtk_widget_get_window(owner->Area()), &ownerLeft, &ownerTop);
    ScreenEvent event{ScreenEvent::Kind::Placed};
    event.x = (left - ownerLeft) * self.Scale();
    event.y = (top - ownerTop) * self.Scale();
    self.m_screen.Host().Post(self.m_handle, event);
}

// Only the desktop unmaps one that is still there.
gboolean ScreenWindow::OnUnmap(GtkWidget*, GdkEvent*, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    self.m_screen.Host().Post(self.m_handle, ScreenEvent{ScreenEvent::Kind::Dismissed});
    return FALSE;
}

void ScreenWindow::SetCursor(const CursorLook& look) {
    if (look.systemId == m_systemCursor && look.picture == m_cursorPicture) return;
    m_systemCursor = look.systemId;
    m_cursorPicture = look.picture;
    GdkWindow* const window = gtk_widget_get_window(m_area);
    GdkCursor* const cursor = MakeCursor(gdk_window_get_display(window), look);
    gdk_window_set_cursor(window, cursor);
    if (cursor != nullptr) g_object_unref(cursor);
}

void ScreenWindow::SetIcons(const std::vector<CursorLook>& icons) {
    std::vector<const void*> pictures;
    for (const CursorLook& each : icons) pictures.push_back(each.picture);
    if (pictures == m_icons) return;
    m_icons = pictures;
    GList* list = nullptr;
    for (const CursorLook& each : icons) {
        if (each.pixels.empty()) continue;
        cairo_surface_t* const picture = PictureOf(each);
        list = g_list_append(list, gdk_pixbuf_get_from_surface(picture, 0, 0, each.width, each.height));
        cairo_surface_destroy(picture);
    }
    gtk_window_set_icon_list(GTK_WINDOW(m_window), list);
    g_list_free_full(list, g_object_unref);
}

void ScreenWindow::Follow(const ShownWindow& shown) {
    auto* const window = GTK_WINDOW(m_window);
    if (shown.title != m_title) {
        m_title = shown.title;
        gtk_window_set_title(window, m_title.c_str());
    }
    const bool placed = shown.popup && AreEqual(*shown.popup, m_place);
    if (!shown.sizedByScreen && (shown.size.cx != m_size.cx || shown.size.cy != m_size.cy)) SetSize(shown.size);
    if (shown.popup && !placed) Place(*shown.popup);
    if (shown.stateAsked != m_stateAsked) {
        m_stateAsked = shown.stateAsked;
        if (shown.state == ShownWindow::State::Maximised) gtk_window_maximize(window);
        if (shown.state == ShownWindow::State::Minimised) gtk_window_iconify(window);
        if (shown.state == ShownWindow::State::Normal) gtk_window_deiconify(window), gtk_window_unmaximize(window);
    }
    if (shown.raised != m_raised) {
        m_raised = shown.raised;
        if (!m_popup && !gtk_window_is_active(window)) gtk_window_present(window);
    }
    // Not while a question stands over it.
    if (const bool takes = shown.takesFiles && shown.enabled; takes != m_takesFiles) {
        m_takesFiles = takes;
        TakeDrops(*this, m_takesFiles);
    }
    SetIcons(shown.icons);
    SetCursor(shown.cursor);
    m_input->SetCaret(shown.caret);
}

void ScreenWindow::Draw(const RECT& area) {
    const int scale = Scale();
    const int left = static_cast<int>(area.left) / scale, top = static_cast<int>(area.top) / scale;
    gtk_widget_queue_draw_area(m_area, left, top, Logical(area.right) - left, Logical(area.bottom) - top);
}

gboolean ScreenWindow::OnDraw(GtkWidget*, cairo_t* context, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    // What the window has grown by shows the picture's last column and row until there is a new one.
    self.m_screen.Host().Lend(self.m_handle, [&](const PixelView& picture) {
        if (picture.width == 0 || picture.height == 0) return;
        cairo_surface_t* const surface = cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(picture.bits), CAIRO_FORMAT_RGB24, picture.width, picture.height,
            static_cast<int>(picture.stride) * static_cast<int>(sizeof(uint32_t)));
        const double scale = self.Scale();
        cairo_surface_set_device_scale(surface, scale, scale);
        cairo_set_source_surface(context, surface, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
        cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
        cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
        cairo_paint(context);
        cairo_surface_finish(surface);
        cairo_surface_destroy(surface);
    });
    return TRUE;
}

void ScreenWindow::OnAllocate(GtkWidget*, GdkRectangle* place, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    const int scale = self.Scale();
    const SIZE size{place->width * scale, place->height * scale};
    // Of a picture that is not a multiple of the scale some pixels stand beyond the edge, unseen.
    if (self.Logical(self.m_size.cx) == place->width && self.Logical(self.m_size.cy) == place->height) return;
    self.m_size = size;
    ScreenEvent event{ScreenEvent::Kind::Resized};
    event.x = static_cast<int>(size.cx);
    event.y = static_cast<int>(size.cy);
    self.m_screen.Host().Post(self.m_handle, event);
}

void ScreenWindow::OnScale(GObject*, GParamSpec*, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    const UINT dots = self.Dots();
    if (dots == self.m_dots) return;
    const int scale = self.Scale();
    self.m_size = {gtk_widget_get_allocated_width(self.m_area) * scale, gtk_widget_get_allocated_height(self.m_area) * scale};
    self.TellDots(dots);
}

// The user wants larger or smaller letters. What nobody can size grows with what stands in it.
void ScreenWindow::OnLetters(GObject*, GParamSpec*, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    const UINT dots = self.Dots();
    if (dots == self.m_dots || self.m_popup) return;
    if (!gtk_window_get_resizable(GTK_WINDOW(self.m_window))) {
        const auto scaled = [&](LONG pixels) { return static_cast<LONG>(static_cast<int64_t>(pixels) * dots / self.m_dots); };
        self.SetSize({scaled(self.m_size.cx), scaled(self.m_size.cy)});
    }
    self.TellDots(dots);
}

// The size by these is m_size.
void ScreenWindow::TellDots(UINT dots) {
    m_dots = dots;
    ScreenEvent event{ScreenEvent::Kind::DotsChanged};
    event.code = dots;
    event.x = static_cast<int>(m_size.cx);
    event.y = static_cast<int>(m_size.cy);
    m_screen.Host().Post(m_handle, event);
}

gboolean ScreenWindow::OnState(GtkWidget*, GdkEventWindowState* event, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    if ((event->changed_mask & (GDK_WINDOW_STATE_ICONIFIED | GDK_WINDOW_STATE_MAXIMIZED)) == 0) return FALSE;
    using State = ShownWindow::State;
    ScreenEvent told{ScreenEvent::Kind::State};
    told.code = static_cast<UINT>((event->new_window_state & GDK_WINDOW_STATE_ICONIFIED) != 0   ? State::Minimised
                                  : (event->new_window_state & GDK_WINDOW_STATE_MAXIMIZED) != 0 ? State::Maximised
                                                                                                : State::Normal);
    self.m_screen.Host().Post(self.m_handle, told);
    return FALSE;
}

gboolean ScreenWindow::OnDelete(GtkWidget*, GdkEvent*, gpointer given) {
    auto& self = *static_cast<ScreenWindow*>(given);
    self.m_screen.Host().Post(self.m_handle, ScreenEvent{ScreenEvent::Kind::CloseWished});
    return TRUE;  // the program decides
}
