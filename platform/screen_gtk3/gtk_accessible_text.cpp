#include "platform/screen_gtk3/gtk_accessible_text.h"

#include <algorithm>
#include <string>

#include "platform/screen_gtk3/gtk_accessible.h"

namespace {
using Act = OrvikAccessibleAct;

const std::string& TextOf(gpointer object) { return PartOf(object).said->value; }
gint Length(const std::string& text) { return static_cast<gint>(g_utf8_strlen(text.c_str(), static_cast<gssize>(text.size()))); }

// Places are characters, and beyond the text its end; -1 as well.
gint Within(const std::string& text, gint at) {
    const gint length = Length(text);
    return at < 0 ? length : std::min(at, length);
}
size_t ByteOf(const std::string& text, gint at) {
    return static_cast<size_t>(g_utf8_offset_to_pointer(text.c_str(), Within(text, at)) - text.c_str());
}
gchar* Copy(const std::string& text, gint from, gint to) {
    const size_t begin = ByteOf(text, std::max(from, 0)), end = ByteOf(text, to);
    return g_strndup(text.c_str() + begin, end > begin ? end - begin : 0);
}

// Whether a unit begins with the character at `at`, which has one before it.
bool Begins(const std::string& text, gint at, AtkTextGranularity unit) {
    const auto letter = [&](gint i) { return g_utf8_get_char(text.c_str() + ByteOf(text, i)); };
    switch (unit) {
        case ATK_TEXT_GRANULARITY_CHAR:
            return true;
        case ATK_TEXT_GRANULARITY_WORD:
            return !g_unichar_isspace(letter(at)) && g_unichar_isspace(letter(at - 1));
        default:
            return letter(at - 1) == '\n';
    }
}

gchar* UnitAt(AtkText* object, gint at, AtkTextGranularity unit, gint* from, gint* to) {
    const std::string& text = TextOf(object);
    const gint length = Length(text);
    *from = *to = Within(text, at);
    if (*from < length) {
        while (*from > 0 && !Begins(text, *from, unit)) --*from;
        do ++*to;
        while (*to < length && !Begins(text, *to, unit));
    } else if (unit != ATK_TEXT_GRANULARITY_CHAR) {
        while (*from > 0 && (*from == length || !Begins(text, *from, unit))) --*from;
    }
    return Copy(text, *from, *to);
}

AtkTextGranularity UnitOf(AtkTextBoundary boundary) {
    switch (boundary) {
        case ATK_TEXT_BOUNDARY_CHAR:
            return ATK_TEXT_GRANULARITY_CHAR;
        case ATK_TEXT_BOUNDARY_WORD_START:
        case ATK_TEXT_BOUNDARY_WORD_END:
            return ATK_TEXT_GRANULARITY_WORD;
        default:
            return ATK_TEXT_GRANULARITY_LINE;
    }
}

gboolean Select(gpointer object, gint from, gint to) {
    const OrvikAccessible& said = *PartOf(object).said;
    if (said.role != OrvikRole::Edit || said.Is(OrvikAccessible::kDisabled)) return FALSE;
    Act act{Act::Kind::Caret};
    act.from = static_cast<size_t>(Within(said.value, from));
    act.to = static_cast<size_t>(Within(said.value, to));
    AskPart(object, std::move(act));
    return TRUE;
}

// Without the letters from `from` to `to`, and with these in their place.
void Write(gpointer object, gint from, gint to, const std::string& letters) {
    const OrvikAccessible& said = *PartOf(object).said;
    if (said.Is(OrvikAccessible::kDisabled | OrvikAccessible::kReadOnly)) return;
    // What is not seen cannot be written anew around what is.
    if (said.Is(OrvikAccessible::kSecret) && (from > 0 || Within(said.value, to) < Length(said.value))) return;
    Act act{Act::Kind::Text};
    act.text = said.value.substr(0, ByteOf(said.value, std::max(from, 0))) + letters + said.value.substr(ByteOf(said.value, to));
    AskPart(object, std::move(act));
}
}  // namespace

void FillAccessibleText(gpointer given, gpointer) {
    auto& type = *static_cast<AtkTextIface*>(given);
    type.get_text = +[](AtkText* object, gint from, gint to) { return Copy(TextOf(object), from, to); };
    type.get_character_count = +[](AtkText* object) { return Length(TextOf(object)); };
    type.get_character_at_offset = +[](AtkText* object, gint at) -> gunichar {
        const std::string& text = TextOf(object);
        return at < 0 || at >= Length(text) ? 0 : g_utf8_get_char(text.c_str() + ByteOf(text, at));
    };
    type.get_string_at_offset = &UnitAt;
    type.get_text_at_offset = +[](AtkText* object, gint at, AtkTextBoundary boundary, gint* from, gint* to) {
        return UnitAt(object, at, UnitOf(boundary), from, to);
    };
    type.get_caret_offset = +[](AtkText* object) { return static_cast<gint>(PartOf(object).said->caret); };
    type.set_caret_offset = +[](AtkText* object, gint at) { return Select(object, at, at); };
    type.get_n_selections = +[](AtkText* object) {
        const OrvikAccessible& said = *PartOf(object).said;
        return said.selectedFrom != said.selectedTo ? 1 : 0;
    };
    type.get_selection = +[](AtkText* object, gint index, gint* from, gint* to) -> gchar* {
        const OrvikAccessible& said = *PartOf(object).said;
        if (index != 0 || said.selectedFrom == said.selectedTo) return nullptr;
        *from = static_cast<gint>(said.selectedFrom);
        *to = static_cast<gint>(said.selectedTo);
        return Copy(said.value, *from, *to);
    };
    type.add_selection = +[](AtkText* object, gint from, gint to) { return Select(object, from, to); };
    type.set_selection =
        +[](AtkText* object, gint index, gint from, gint to) -> gboolean { return index == 0 && Select(object, from, to); };
    type.remove_selection = +[](AtkText* object, gint index) -> gboolean {
        const auto at = static_cast<gint>(PartOf(object).said->caret);
        return index == 0 && Select(object, at, at);
    };
}

void FillAccessibleEditableText(gpointer given, gpointer) {
    auto& type = *static_cast<AtkEditableTextIface*>(given);
    type.set_text_contents =
        +[](AtkEditableText* object, const gchar* text) { Write(object, 0, -1, text != nullptr ? text : ""); };
    type.insert_text = +[](AtkEditableText* object, const gchar* text, gint length, gint* at) {
        const std::string letters = length < 0 ? std::string(text) : std::string(text, static_cast<size_t>(length));
        Write(object, *at, *at, letters);
        *at += Length(letters);
    };
    type.delete_text = +[](AtkEditableText* object, gint from, gint to) { Write(object, from, to, ""); };
}
