#include "host/logger/name_check.h"

#include <cstdio>
#include <map>

#include "afx/collections.h"
#include "host/words/console.h"
#include "host/words/control_letters.h"
#include "host/words/same_text.h"
#include "host/words/texts.h"

namespace {
std::string TextAt(const CPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    const std::string utf8 = ToUtf8(text.GetString());
    const std::vector<ControlLetter> controls = FindControls(utf8);
    if (controls.empty()) return utf8;
    char code[16];
    std::snprintf(code, sizeof code, "U+%04X", controls.front().code);
    throw Failure{kWrongUse, Say(Text::NameControl, {ToUtf8(key), code})};
}
}  // namespace

void CheckNames(const CPropertyDB& description) {
    TextAt(description, "sName");
    CStringArray keys;
    description.Enum("Channels", keys, FALSE, FALSE);
    struct Named {
        std::string key, name;
    };
    std::map<std::string, Named> known;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString(), at = "Channels." + key;
        const std::string given = TextAt(description, at + ".sName"), name = given.empty() ? ToUtf8(key) : given;
        TextAt(description, at + ".sUnit");
        const auto [first, fresh] = known.emplace(LooksOf(name), Named{key, name});
        if (!fresh && first->second.name != name)
            throw Failure{kWrongUse, Say(Text::NamesLookTheSame, {ToUtf8(first->second.key), ToUtf8(key), name})};
    }
}
