// The objects behind parts: a type for each set of interfaces, all over the same answers.
#include <algorithm>
#include <string>

#include "platform/screen_gtk3/gtk_accessible.h"
#include "platform/screen_gtk3/gtk_accessible_text.h"

namespace {
using Act = OrvikAccessibleAct;

enum Interface : unsigned { kAction = 1, kText = 2, kEditable = 4, kValue = 8, kSelection = 16, kTable = 32, kCell = 64 };

struct PartObject {
    AtkObject base;
    AccessiblePart* part;
};

const OrvikAccessible& SaidOf(gpointer object) { return *PartOf(object).said; }

void AskPart(gpointer object, Act::Kind kind) { AskPart(object, Act{kind}); }

AtkObject* ChildAt(gpointer object, gint index) {
    const auto& below = PartOf(object).below;
    return index >= 0 && static_cast<size_t>(index) < below.size() ? below[static_cast<size_t>(index)] : nullptr;
}
AtkObject* Referred(AtkObject* object) { return object != nullptr ? ATK_OBJECT(g_object_ref(object)) : nullptr; }

// --- What every object answers.
void BeObject(AtkObjectClass& type) {
    type.get_name = +[](AtkObject* object) { return SaidOf(object).name.c_str(); };
    type.get_description = +[](AtkObject* object) { return SaidOf(object).description.c_str(); };
    type.get_parent = +[](AtkObject* object) { return PartOf(object).above; };
    type.get_n_children = +[](AtkObject* object) { return static_cast<gint>(PartOf(object).below.size()); };
    type.ref_child = +[](AtkObject* object, gint index) { return Referred(ChildAt(object, index)); };
    type.get_index_in_parent = +[](AtkObject* object) { return PartOf(object).index; };
    type.get_role = +[](AtkObject* object) {
        const OrvikAccessible& said = SaidOf(object);
        return said.Is(OrvikAccessible::kSecret) ? ATK_ROLE_PASSWORD_TEXT : RoleOf(said.role);
    };
    type.ref_state_set = +[](AtkObject* object) {
        AtkStateSet* const set = atk_state_set_new();
        if (PartOf(object).owner == nullptr)
            atk_state_set_add_state(set, ATK_STATE_DEFUNCT);
        else
            AddStates(set, SaidOf(object));
        return set;
    };
    // Where only a part of a list is told: which one it is of how many.
    type.get_attributes = +[](AtkObject* object) -> AtkAttributeSet* {
        const OrvikAccessible& said = SaidOf(object);
        const auto attribute = [](const char* name, const std::string& value) {
            auto* const made = g_new(AtkAttribute, 1);
            *made = {g_strdup(name), g_strdup(value.c_str())};
            return made;
        };
        AtkAttributeSet* set = nullptr;
        if (said.at >= 0) {
            set = g_slist_prepend(set, attribute("posinset", std::to_string(said.at + 1)));
            set = g_slist_prepend(set, attribute("setsize", std::to_string(said.of)));
        }
        if (!said.value.empty() && !ATK_IS_TEXT(object)) set = g_slist_prepend(set, attribute("valuetext", said.value));
        if (!said.keys.empty()) set = g_slist_prepend(set, attribute("keyshortcuts", said.keys));
        return set;
    };
}

void BeComponent(gpointer given, gpointer) {
    auto& type = *static_cast<AtkComponentIface*>(given);
    type.get_extents = +[](AtkComponent* object, gint* x, gint* y, gint* width, gint* height, AtkCoordType of) {
        const AccessiblePart& part = PartOf(object);
        GdkRectangle place{0, 0, 0, 0};
        if (part.owner != nullptr) {
            place = part.owner->PlaceOf(*part.said, of);
            if (of == ATK_XY_PARENT && IsAccessiblePart(part.above)) {
                const GdkRectangle above = part.owner->PlaceOf(SaidOf(part.above), of);
                place.x -= above.x;
                place.y -= above.y;
            }
        }
        *x = place.x;
        *y = place.y;
        *width = place.width;
        *height = place.height;
    };
    type.grab_focus = +[](AtkComponent* object) -> gboolean {
        if (!SaidOf(object).Is(OrvikAccessible::kFocusable | OrvikAccessible::kSelectable)) return FALSE;
        AskPart(object, Act::Kind::Focus);
        return TRUE;
    };
}

// --- Press, check, open.
void BeAction(gpointer given, gpointer) {
    auto& type = *static_cast<AtkActionIface*>(given);
    type.get_n_actions = +[](AtkAction*) { return 1; };
    type.do_action = +[](AtkAction* object, gint index) -> gboolean {
        if (index != 0 || SaidOf(object).Is(OrvikAccessible::kDisabled)) return FALSE;
        AskPart(object, Act::Kind::Press);
        return TRUE;
    };
    type.get_name = +[](AtkAction* object, gint index) -> const gchar* {
        if (index != 0) return nullptr;
        const OrvikRole role = SaidOf(object).role;
        return role == OrvikRole::CheckBox || role == OrvikRole::RadioButton ? "toggle" : "click";
    };
    type.get_keybinding =
        +[](AtkAction* object, gint index) -> const gchar* { return index == 0 ? SaidOf(object).keys.c_str() : nullptr; };
}

// --- A position in a range.
void BeValue(gpointer given, gpointer) {
    auto& type = *static_cast<AtkValueIface*>(given);
    type.get_current_value = +[](AtkValue* object, GValue* out) {
        g_value_init(out, G_TYPE_DOUBLE);
        g_value_set_double(out, SaidOf(object).now);
    };
    type.get_value_and_text = +[](AtkValue* object, gdouble* value, gchar** text) {
        const OrvikAccessible& said = SaidOf(object);
        *value = said.now;
        if (text != nullptr) *text = said.value.empty() ? nullptr : g_strdup(said.value.c_str());
    };
    type.get_range = +[](AtkValue* object) { return atk_range_new(SaidOf(object).least, SaidOf(object).most, nullptr); };
    type.set_value = +[](AtkValue* object, gdouble value) {
        Act act{Act::Kind::Value};
        act.value = value;
        AskPart(object, std::move(act));
    };
}

// --- What is chosen among the parts below.
std::vector<AtkObject*> Chosen(gpointer object) {
    std::vector<AtkObject*> chosen;
    for (AtkObject* const each : PartOf(object).below)
        if (SaidOf(each).Is(OrvikAccessible::kSelected)) chosen.push_back(each);
    return chosen;
}

void BeSelection(gpointer given, gpointer) {
    auto& type = *static_cast<AtkSelectionIface*>(given);
    type.get_selection_count = +[](AtkSelection* object) { return static_cast<gint>(Chosen(object).size()); };
    type.ref_selection = +[](AtkSelection* object, gint index) -> AtkObject* {
        const std::vector<AtkObject*> chosen = Chosen(object);
        return index >= 0 && static_cast<size_t>(index) < chosen.size() ? Referred(chosen[static_cast<size_t>(index)]) : nullptr;
    };
    type.is_child_selected = +[](AtkSelection* object, gint index) -> gboolean {
        AtkObject* const child = ChildAt(object, index);
        return child != nullptr && SaidOf(child).Is(OrvikAccessible::kSelected);
    };
    type.add_selection = +[](AtkSelection* object, gint index) -> gboolean {
        AtkObject* const child = ChildAt(object, index);
        if (child == nullptr || !SaidOf(child).Is(OrvikAccessible::kSelectable)) return FALSE;
        AskPart(child, Act::Kind::Select);
        return TRUE;
    };
}

// --- Rows and columns. Of the rows only those in sight are told.
AtkObject* RowAt(gpointer table, gint row) {
    for (AtkObject* const each : PartOf(table).below)
        if (SaidOf(each).role == OrvikRole::TableRow && SaidOf(each).at == row) return each;
    return nullptr;
}
AtkObject* HeaderAt(gpointer table, gint column) {
    for (AtkObject* const each : PartOf(table).below)
        if (SaidOf(each).role == OrvikRole::Header) return ChildAt(each, column);
    return nullptr;
}
AtkObject* TableOf(gpointer cell) {
    AtkObject* const row = PartOf(cell).above;
    return IsAccessiblePart(row) && ATK_IS_TABLE(PartOf(row).above) ? PartOf(row).above : nullptr;
}

void BeTable(gpointer given, gpointer) {
    auto& type = *static_cast<AtkTableIface*>(given);
    type.get_n_rows = +[](AtkTable* object) { return SaidOf(object).of; };
    type.get_n_columns = +[](AtkTable* object) { return SaidOf(object).columns; };
    type.ref_at = +[](AtkTable* object, gint row, gint column) -> AtkObject* {
        AtkObject* const found = RowAt(object, row);
        return found != nullptr ? Referred(ChildAt(found, column)) : nullptr;
    };
    type.get_index_at = +[](AtkTable* object, gint row, gint column) { return row * SaidOf(object).columns + column; };
    type.get_row_at_index = +[](AtkTable* object, gint index) { return index / std::max(1, SaidOf(object).columns); };
    type.get_column_at_index = +[](AtkTable* object, gint index) { return index % std::max(1, SaidOf(object).columns); };
    type.get_row_extent_at = +[](AtkTable*, gint, gint) { return 1; };
    type.get_column_extent_at = +[](AtkTable*, gint, gint) { return 1; };
    type.get_column_header = +[](AtkTable* object, gint column) { return HeaderAt(object, column); };
    type.get_column_description = +[](AtkTable* object, gint column) -> const gchar* {
        AtkObject* const header = HeaderAt(object, column);
        return header != nullptr ? SaidOf(header).name.c_str() : nullptr;
    };
    type.is_row_selected = +[](AtkTable* object, gint row) -> gboolean {
        AtkObject* const found = RowAt(object, row);
        return found != nullptr && SaidOf(found).Is(OrvikAccessible::kSelected);
    };
}

void BeCell(gpointer given, gpointer) {
    auto& type = *static_cast<AtkTableCellIface*>(given);
    type.get_column_span = +[](AtkTableCell*) { return 1; };
    type.get_row_span = +[](AtkTableCell*) { return 1; };
    type.get_position = +[](AtkTableCell* object, gint* row, gint* column) -> gboolean {
        if (TableOf(object) == nullptr) return FALSE;
        *row = SaidOf(PartOf(object).above).at;
        *column = SaidOf(object).at;
        return TRUE;
    };
    type.get_row_column_span = +[](AtkTableCell* object, gint* row, gint* column, gint* rows, gint* columns) -> gboolean {
        *rows = *columns = 1;
        return atk_table_cell_get_position(object, row, column);
    };
    type.get_table = +[](AtkTableCell* object) { return Referred(TableOf(object)); };
    type.get_column_header_cells = +[](AtkTableCell* object) -> GPtrArray* {
        GPtrArray* const headers = g_ptr_array_new_with_free_func(&g_object_unref);
        AtkObject* const table = TableOf(object);
        AtkObject* const header = table != nullptr ? HeaderAt(table, SaidOf(object).at) : nullptr;
        if (header != nullptr) g_ptr_array_add(headers, g_object_ref(header));
        return headers;
    };
}

GType BaseType() {
    static gpointer s_parent = nullptr;
    static const GType s_type = g_type_register_static_simple(
        ATK_TYPE_OBJECT, "OrvikPart", sizeof(AtkObjectClass),
        +[](gpointer given, gpointer) {
            s_parent = g_type_class_peek_parent(given);
            BeObject(*ATK_OBJECT_CLASS(given));
            G_OBJECT_CLASS(given)->finalize = +[](GObject* object) {
                delete reinterpret_cast<PartObject*>(object)->part;
                G_OBJECT_CLASS(s_parent)->finalize(object);
            };
        },
        sizeof(PartObject),
        +[](GTypeInstance* made, gpointer) { reinterpret_cast<PartObject*>(made)->part = new AccessiblePart; },
        G_TYPE_FLAG_ABSTRACT);
    return s_type;
}

GType TypeWith(unsigned interfaces) {
    static std::map<unsigned, GType> s_types;
    GType& type = s_types[interfaces];
    if (type != 0) return type;
    const std::string name = "OrvikPart" + std::to_string(interfaces);
    type = g_type_register_static_simple(BaseType(), name.c_str(), sizeof(AtkObjectClass), nullptr, sizeof(PartObject), nullptr,
                                         GTypeFlags{});
    const auto add = [&](bool wanted, GType which, GInterfaceInitFunc fill) {
        const GInterfaceInfo info{fill, nullptr, nullptr};
        if (wanted) g_type_add_interface_static(type, which, &info);
    };
    add(true, ATK_TYPE_COMPONENT, &BeComponent);
    add((interfaces & kAction) != 0, ATK_TYPE_ACTION, &BeAction);
    add((interfaces & kText) != 0, ATK_TYPE_TEXT, &FillAccessibleText);
    add((interfaces & kEditable) != 0, ATK_TYPE_EDITABLE_TEXT, &FillAccessibleEditableText);
    add((interfaces & kValue) != 0, ATK_TYPE_VALUE, &BeValue);
    add((interfaces & kSelection) != 0, ATK_TYPE_SELECTION, &BeSelection);
    add((interfaces & kTable) != 0, ATK_TYPE_TABLE, &BeTable);
    add((interfaces & kCell) != 0, ATK_TYPE_TABLE_CELL, &BeCell);
    return type;
}
}  // namespace

AtkRole RoleOf(OrvikRole role) {
    switch (role) {
        case OrvikRole::Pane:
            return ATK_ROLE_PANEL;
        case OrvikRole::Window:
            return ATK_ROLE_FRAME;
        case OrvikRole::Dialog:
            return ATK_ROLE_DIALOG;
        case OrvikRole::Label:
            return ATK_ROLE_LABEL;
        case OrvikRole::Button:
            return ATK_ROLE_PUSH_BUTTON;
        case OrvikRole::CheckBox:
            return ATK_ROLE_CHECK_BOX;
        case OrvikRole::RadioButton:
            return ATK_ROLE_RADIO_BUTTON;
        case OrvikRole::Edit:
            return ATK_ROLE_ENTRY;
        case OrvikRole::ComboBox:
            return ATK_ROLE_COMBO_BOX;
        case OrvikRole::List:
            return ATK_ROLE_LIST_BOX;
        case OrvikRole::ListItem:
            return ATK_ROLE_LIST_ITEM;
        case OrvikRole::Table:
            return ATK_ROLE_TABLE;
        case OrvikRole::TableRow:
            return ATK_ROLE_TABLE_ROW;
        case OrvikRole::TableCell:
            return ATK_ROLE_TABLE_CELL;
        case OrvikRole::Header:
            return ATK_ROLE_PANEL;
        case OrvikRole::ColumnHeader:
            return ATK_ROLE_COLUMN_HEADER;
        case OrvikRole::Tree:
            return ATK_ROLE_TREE;
        case OrvikRole::TreeItem:
            return ATK_ROLE_TREE_ITEM;
        case OrvikRole::Progress:
            return ATK_ROLE_PROGRESS_BAR;
        case OrvikRole::ScrollBar:
            return ATK_ROLE_SCROLL_BAR;
        case OrvikRole::StatusBar:
            return ATK_ROLE_STATUSBAR;
        case OrvikRole::MenuBar:
            return ATK_ROLE_MENU_BAR;
        case OrvikRole::Menu:
            return ATK_ROLE_MENU;
        case OrvikRole::MenuItem:
            return ATK_ROLE_MENU_ITEM;
        case OrvikRole::CheckMenuItem:
            return ATK_ROLE_CHECK_MENU_ITEM;
        case OrvikRole::Separator:
            return ATK_ROLE_SEPARATOR;
        case OrvikRole::Group:
            return ATK_ROLE_GROUPING;
        case OrvikRole::Image:
            return ATK_ROLE_IMAGE;
        case OrvikRole::Link:
            return ATK_ROLE_LINK;
        case OrvikRole::Chart:
            return ATK_ROLE_CHART;
    }
    return ATK_ROLE_UNKNOWN;
}

unsigned InterfacesOf(const OrvikAccessible& said) {
    unsigned all = said.Is(OrvikAccessible::kPressable) ? kAction : 0u;
    switch (said.role) {
        case OrvikRole::Edit:
            return all | kText | (said.Is(OrvikAccessible::kReadOnly) ? 0u : kEditable);
        case OrvikRole::ComboBox:
            return all | kText;
        case OrvikRole::Progress:
        case OrvikRole::ScrollBar:
            return all | kValue;
        case OrvikRole::List:
        case OrvikRole::Tree:
        case OrvikRole::Menu:
        case OrvikRole::MenuBar:
            return all | kSelection;
        case OrvikRole::Table:
            return all | kSelection | kTable;
        case OrvikRole::TableCell:
            return all | kCell;
        default:
            return all;
    }
}

AtkObject* MakeAccessible(const OrvikAccessible& said) { return ATK_OBJECT(g_object_new(TypeWith(InterfacesOf(said)), nullptr)); }

AccessiblePart& PartOf(gpointer object) { return *reinterpret_cast<PartObject*>(object)->part; }
void AskPart(gpointer object, OrvikAccessibleAct act) {
    const AccessiblePart& part = PartOf(object);
    if (part.owner != nullptr) part.owner->Ask(*part.said, std::move(act));
}
bool IsAccessiblePart(gpointer object) { return object != nullptr && g_type_is_a(G_OBJECT_TYPE(object), BaseType()); }
