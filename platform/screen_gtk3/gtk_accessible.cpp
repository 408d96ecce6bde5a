#include "platform/screen_gtk3/gtk_accessible.h"

#include <algorithm>

#include "platform/screen_gtk3/gtk_screen.h"
#include "platform/screen_gtk3/gtk_window.h"

namespace {
const OrvikAccessible kNothing;
constexpr char kWindowOf[] = "orvik-window";  // of the area, while there is one

struct Stated {
    OrvikAccessible::State state;
    AtkStateType told;
    bool inverse = false;
};
constexpr Stated kStates[] = {
    {OrvikAccessible::kDisabled, ATK_STATE_ENABLED, true},   {OrvikAccessible::kDisabled, ATK_STATE_SENSITIVE, true},
    {OrvikAccessible::kOutOfSight, ATK_STATE_SHOWING, true}, {OrvikAccessible::kFocusable, ATK_STATE_FOCUSABLE},
    {OrvikAccessible::kFocused, ATK_STATE_FOCUSED},          {OrvikAccessible::kSelectable, ATK_STATE_SELECTABLE},
    {OrvikAccessible::kSelected, ATK_STATE_SELECTED},        {OrvikAccessible::kChecked, ATK_STATE_CHECKED},
    {OrvikAccessible::kMixed, ATK_STATE_INDETERMINATE},      {OrvikAccessible::kExpandable, ATK_STATE_EXPANDABLE},
    {OrvikAccessible::kExpanded, ATK_STATE_EXPANDED},        {OrvikAccessible::kMultiLine, ATK_STATE_MULTI_LINE},
    {OrvikAccessible::kDefault, ATK_STATE_DEFAULT},          {OrvikAccessible::kModal, ATK_STATE_MODAL}};

bool IsWritten(const OrvikAccessible& said) { return said.role == OrvikRole::Edit || said.role == OrvikRole::ComboBox; }

void TellText(AtkObject* object, const std::string& before, const std::string& now) {
    // What is the same at both ends was not touched; never within a letter.
    const auto inside = [](const std::string& text, size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    const size_t least = std::min(before.size(), now.size());
    size_t front = 0, back = 0;
    while (front < least && before[front] == now[front]) ++front;
    while (front > 0 && (inside(before, front) || inside(now, front))) --front;
    while (back < least - front && before[before.size() - 1 - back] == now[now.size() - 1 - back]) ++back;
    while (back > 0 && (inside(before, before.size() - back) || inside(now, now.size() - back))) --back;
    const auto tell = [&](const char* signal, const std::string& text) {
        const std::string part = text.substr(front, text.size() - front - back);
        if (part.empty()) return;
        const auto at = static_cast<gint>(g_utf8_strlen(text.c_str(), static_cast<gssize>(front)));
        g_signal_emit_by_name(object, signal, at, static_cast<gint>(g_utf8_strlen(part.c_str(), -1)), part.c_str());
    };
    tell("text-remove", before);
    tell("text-insert", now);
}

void Forget(AtkObject* object) {
    AccessiblePart& part = PartOf(object);
    part = {};
    part.said = &kNothing;
    atk_object_notify_state_change(object, ATK_STATE_DEFUNCT, TRUE);
    g_object_unref(object);
}
}  // namespace

void AddStates(AtkStateSet* set, const OrvikAccessible& said) {
    for (const Stated& each : kStates)
        if (said.Is(each.state) != each.inverse) atk_state_set_add_state(set, each.told);
    atk_state_set_add_state(set, ATK_STATE_VISIBLE);
    if (said.role == OrvikRole::Edit) {
        if (!said.Is(OrvikAccessible::kReadOnly)) atk_state_set_add_state(set, ATK_STATE_EDITABLE);
        if (!said.Is(OrvikAccessible::kMultiLine)) atk_state_set_add_state(set, ATK_STATE_SINGLE_LINE);
    }
    if (said.role == OrvikRole::CheckBox || said.role == OrvikRole::RadioButton || said.role == OrvikRole::CheckMenuItem)
        atk_state_set_add_state(set, ATK_STATE_CHECKABLE);
}

// What Show has found, to be told when all of it is in place.
struct AccessibleWindow::Moves {
    struct Child {
        AtkObject *above, *child;
        guint index;
    };
    std::map<Key, AtkObject*> before, kept;
    std::vector<Child> gone, come;
    std::vector<Change> changes;
};

AccessibleWindow::~AccessibleWindow() {
    g_object_set_data(G_OBJECT(m_window.Area()), kWindowOf, nullptr);
    for (const auto& [key, object] : m_objects) Forget(object);
}

const OrvikAccessible& AccessibleWindow::Said() const { return m_said != nullptr ? *m_said : kNothing; }
AtkObject* AccessibleWindow::Area() const { return gtk_widget_get_accessible(m_window.Area()); }

void AccessibleWindow::Take(const std::vector<OrvikAccessible>& said, AtkObject* above, std::vector<AtkObject*>& below,
                            bool known, Moves& moves) {
    std::vector<AtkObject*> now;
    for (const OrvikAccessible& each : said) {
        const Key key{each.window, each.part};
        if (moves.kept.count(key) != 0) continue;
        const auto found = moves.before.find(key);
        AtkObject* object = found != moves.before.end() ? found->second : nullptr;
        const bool same = object != nullptr && PartOf(object).said->role == each.role &&
                          InterfacesOf(*PartOf(object).said) == InterfacesOf(each);
        if (!same) object = MakeAccessible(each);
        AccessiblePart& part = PartOf(object);
        moves.changes.push_back({object, same ? part.said : nullptr});
        if (same) moves.before.erase(found);
        moves.kept[key] = object;
        part.owner = this;
        part.said = &each;
        part.above = above;
        part.index = static_cast<int>(now.size());
        now.push_back(object);
        Take(each.parts, object, part.below, same, moves);
    }
    for (size_t i = below.size(); i-- > 0;)
        if (std::find(now.begin(), now.end(), below[i]) == now.end())
            moves.gone.push_back({above, below[i], static_cast<guint>(i)});
    // Whoever learns of a new one asks it for what is below.
    for (size_t i = 0; known && i < now.size(); ++i)
        if (std::find(below.begin(), below.end(), now[i]) == below.end())
            moves.come.push_back({above, now[i], static_cast<guint>(i)});
    below = std::move(now);
}

void AccessibleWindow::Show(std::shared_ptr<const OrvikAccessible> said) {
    const std::shared_ptr<const OrvikAccessible> before = std::exchange(m_said, std::move(said));
    Moves moves;
    moves.before = std::move(m_objects);
    Take(m_said->parts, Area(), m_top, true, moves);
    m_objects = std::move(moves.kept);

    AtkObject* const area = Area();
    // A window's frame has its name and role; a popup has no frame.
    const bool framed = m_said->role == OrvikRole::Window || m_said->role == OrvikRole::Dialog;
    atk_object_set_role(area, RoleOf(framed ? OrvikRole::Pane : m_said->role));
    if (!framed) atk_object_set_name(area, m_said->name.c_str());
    if (m_said->role == OrvikRole::Dialog) atk_object_set_role(gtk_widget_get_accessible(m_window.Widget()), ATK_ROLE_DIALOG);
    for (const auto& [above, child, index] : moves.gone) g_signal_emit_by_name(above, "children-changed::remove", index, child);
    for (const auto& [above, child, index] : moves.come) g_signal_emit_by_name(above, "children-changed::add", index, child);
    for (const auto& [key, object] : moves.before) Forget(object);
    // The focus leaves one before it comes to another.
    std::stable_partition(moves.changes.begin(), moves.changes.end(),
                          [](const Change& each) { return !PartOf(each.object).said->Is(OrvikAccessible::kFocused); });
    for (const Change& each : moves.changes) Tell(each);
    const bool had = before != nullptr && before->Is(OrvikAccessible::kFocused), has = m_said->Is(OrvikAccessible::kFocused);
    if (had != has) atk_object_notify_state_change(area, ATK_STATE_FOCUSED, has);
}

void AccessibleWindow::Tell(const Change& change) const {
    AtkObject* const object = change.object;
    const OrvikAccessible& now = *PartOf(object).said;
    if (change.before == nullptr) {
        if (now.Is(OrvikAccessible::kFocused)) atk_object_notify_state_change(object, ATK_STATE_FOCUSED, TRUE);
        return;
    }
    const OrvikAccessible& before = *change.before;
    if (before.name != now.name) g_object_notify(G_OBJECT(object), "accessible-name");
    if (before.description != now.description) g_object_notify(G_OBJECT(object), "accessible-description");
    if (IsWritten(now)) {
        if (before.value != now.value) TellText(object, before.value, now.value);
        if (before.caret != now.caret) g_signal_emit_by_name(object, "text-caret-moved", static_cast<gint>(now.caret));
        if (before.selectedFrom != now.selectedFrom || before.selectedTo != now.selectedTo)
            g_signal_emit_by_name(object, "text-selection-changed");
    }
    if (ATK_IS_VALUE(object) && (before.now != now.now || before.least != now.least || before.most != now.most))
        g_object_notify(G_OBJECT(object), "accessible-value");
    for (const Stated& each : kStates)
        if (before.Is(each.state) != now.Is(each.state))
            atk_object_notify_state_change(object, each.told, now.Is(each.state) != each.inverse);
    if (before.Is(OrvikAccessible::kSelected) != now.Is(OrvikAccessible::kSelected)) {
        AtkObject* const above = PartOf(object).above;
        if (ATK_IS_SELECTION(above)) g_signal_emit_by_name(above, "selection-changed");
    }
}

void AccessibleWindow::TellFocus() {
    for (const auto& [key, object] : m_objects)
        if (PartOf(object).said->Is(OrvikAccessible::kFocused)) atk_object_notify_state_change(object, ATK_STATE_FOCUSED, TRUE);
}

void AccessibleWindow::Ask(const OrvikAccessible& of, OrvikAccessibleAct act) const {
    act.part = of.part;
    m_window.Owner().Host().Ask(m_window.Handle(), of.window, act);
}

GdkRectangle AccessibleWindow::PlaceOf(const OrvikAccessible& said, AtkCoordType of) const {
    const int scale = m_window.Scale();
    int left = 0, top = 0;
    if (of == ATK_XY_SCREEN)
        gdk_window_get_origin(gtk_widget_get_window(m_window.Area()), &left, &top);
    else if (of == ATK_XY_WINDOW)
        gtk_widget_translate_coordinates(m_window.Area(), m_window.Widget(), 0, 0, &left, &top);
    return {left + static_cast<int>(said.place.left) / scale, top + static_cast<int>(said.place.top) / scale,
            static_cast<int>(said.place.right - said.place.left) / scale,
            static_cast<int>(said.place.bottom - said.place.top) / scale};
}

// The area, between GTK's accessible of the window and ours of what is in it.
namespace {
ScreenWindow* WindowOf(AtkObject* accessible) {
    GtkWidget* const area = gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible));
    return area == nullptr ? nullptr : static_cast<ScreenWindow*>(g_object_get_data(G_OBJECT(area), kWindowOf));
}

// Being asked means that somebody listens.
const std::vector<AtkObject*>& PartsBelow(AtkObject* accessible) {
    static const std::vector<AtkObject*> s_none;
    ScreenWindow* const window = WindowOf(accessible);
    if (window == nullptr) return s_none;
    window->Owner().Host().Listen();
    return window->Accessible().Parts();
}

gint CountBelow(AtkObject* accessible) { return static_cast<gint>(PartsBelow(accessible).size()); }

AtkObject* RefBelow(AtkObject* accessible, gint index) {
    const auto& parts = PartsBelow(accessible);
    if (index < 0 || static_cast<size_t>(index) >= parts.size()) return nullptr;
    return ATK_OBJECT(g_object_ref(parts[static_cast<size_t>(index)]));
}

GType AreaAccessibleType() {
    static gpointer s_parent = nullptr;
    static const GType s_type = g_type_register_static_simple(
        GTK_TYPE_WIDGET_ACCESSIBLE, "OrvikAreaAccessible", sizeof(GtkWidgetAccessibleClass),
        +[](gpointer given, gpointer) {
            s_parent = g_type_class_peek_parent(given);
            auto* const object = ATK_OBJECT_CLASS(given);
            object->get_n_children = &CountBelow;
            object->ref_child = &RefBelow;
            object->ref_state_set = +[](AtkObject* accessible) {
                AtkStateSet* const set = ATK_OBJECT_CLASS(s_parent)->ref_state_set(accessible);
                ScreenWindow* const window = WindowOf(accessible);
                if (window != nullptr && window->Accessible().Said().Is(OrvikAccessible::kFocused))
                    atk_state_set_add_state(set, ATK_STATE_FOCUSED);
                return set;
            };
        },
        sizeof(GtkWidgetAccessible), nullptr, GTypeFlags{});
    return s_type;
}
}  // namespace

GtkWidget* MakeAccessibleArea(ScreenWindow& window) {
    static const GType s_type = g_type_register_static_simple(
        GTK_TYPE_DRAWING_AREA, "OrvikArea", sizeof(GtkDrawingAreaClass),
        +[](gpointer given, gpointer) { gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(given), AreaAccessibleType()); },
        sizeof(GtkDrawingArea), nullptr, GTypeFlags{});
    auto* const area = GTK_WIDGET(g_object_new(s_type, nullptr));
    g_object_set_data(G_OBJECT(area), kWindowOf, &window);
    return area;
}
