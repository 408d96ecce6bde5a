// db: look into any property database and change it.
#include "host/command_line/command_edit.h"
#include "host/command_line/commands.h"
#include "host/session/database_file.h"
#include "host/session/value_text.h"
#include "host/words/arguments.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"

namespace {
std::vector<std::string> AllKeys(const CPropertyDB& db) {
    CStringArray found;
    db.EnumAll(found);
    std::vector<std::string> keys;
    for (INT_PTR i = 0; i < found.GetSize(); ++i) keys.emplace_back(static_cast<const char*>(found.GetAt(i)));
    return keys;
}

void Set(const std::string& path, const std::string& key, const std::string& text, const std::string& wishedKind) {
    CPropertyDB db;
    if (FileExists(path)) LoadDatabase(path, db);
    const std::string kind = KindOf(db.Find(key.c_str()) ? db.GetValueObject(key.c_str(), TRUE) : nullptr);
    if (!kind.empty() && !wishedKind.empty() && wishedKind != kind)
        throw Failure{kWrongUse, Say(Text::KindFixed, {ToUtf8(key), kind})};
    // Values are given as they stand on the command line, which is this house's text; SetFromText takes the terminal's.
    SetFromText(db, key, !kind.empty() ? kind : wishedKind.empty() ? "str" : wishedKind, ToUtf8(text));
    const XmlFit fit = IsXmlName(path) ? FitInXml(db.GetValueObject(key.c_str(), TRUE)) : XmlFit::Whole;
    if (fit == XmlFit::Nothing) throw Failure{kWrongUse, Say(Text::KindNotInXml, {ToUtf8(path), wishedKind})};
    StoreDatabase(path, db);
    if (fit == XmlFit::Changed) PrintError(Say(Text::ChangedInXml, {ToUtf8(key)}));
}

void Remove(const std::string& path, const std::string& key) {
    CPropertyDB db;
    LoadDatabase(path, db);
    if (!db.Remove(key.c_str())) throw Failure{kWrongUse, Say(Text::NoSuchKey, {ToUtf8(path), ToUtf8(key)})};
    StoreDatabase(path, db);
}

// Everything is converted that the other form can hold; what it cannot is told, key by key.
void ConvertTo(const std::string& path, const std::string& target) {
    RequireDifferentFiles({{"FILE", path}, {"KEY", target}});
    CPropertyDB db;
    LoadDatabase(path, db);
    StoreDatabase(target, db);
    TellXmlLosses(target, db);
}

// By the objects, not by their keys: a damaged file may hold names that no key leads to.
size_t CountFolders(const CPropertyDB& db) {
    std::vector<const CObject*> folders = {db.GetValueObject("", TRUE)};
    for (size_t i = 0; i < folders.size(); ++i) {
        const auto& folder = *static_cast<const CMapStringToOb*>(folders[i]);
        for (POSITION at = folder.GetStartPosition(); at;) {
            CString name;
            CObject* child = nullptr;
            folder.GetNextAssoc(at, name, child);
            if (child != nullptr && child->IsKindOf(RUNTIME_CLASS(CMapStringToOb))) folders.push_back(child);
        }
    }
    return folders.size() - 1;
}

void Check(const std::string& path) {
    CPropertyDB db;
    LoadDatabase(path, db);
    size_t values = 0;
    for (const std::string& key : AllKeys(db)) values += KindOf(db.GetValueObject(key.c_str(), TRUE)).empty() ? 0 : 1;
    Print(Say(Text::Checked, {ToUtf8(path), std::to_string(values), std::to_string(CountFolders(db))}));
}
}  // namespace

void TellXmlLosses(const std::string& path, const CPropertyDB& db) {
    if (!IsXmlName(path)) return;
    for (const std::string& key : AllKeys(db)) {
        const CObject* value = db.GetValueObject(key.c_str(), TRUE);
        const XmlFit fit = FitInXml(value);
        if (fit == XmlFit::Nothing) PrintError(Say(Text::NotInXml, {ToUtf8(key), KindOf(value)}));
        if (fit == XmlFit::Changed) PrintError(Say(Text::ChangedInXml, {ToUtf8(key)}));
    }
}

void ListDatabase(const CPropertyDB& db, const std::string& prefix, bool whole) {
    if (!prefix.empty() && !db.Find(prefix.c_str())) throw Failure{kWrongUse, Say(Text::NoSuchEntry, {ToUtf8(prefix)})};
    for (const std::string& key : AllKeys(db)) {
        if (!prefix.empty() && key != prefix && !key.starts_with(prefix + ".")) continue;
        const CObject* value = db.GetValueObject(key.c_str(), TRUE);
        const std::string kind = KindOf(value);
        const std::string text = kind.empty() ? "" : whole ? TextOf(value) : BriefTextOf(value);
        Print(kind.empty() ? Isolated(ToUtf8(key)) + "." : Isolated(ToUtf8(key)) + "  " + kind + "  " + Isolated(text));
    }
}

void PrintValue(const CPropertyDB& db, const std::string& path, const std::string& key) {
    const CObject* value = db.GetValueObject(key.c_str(), TRUE);
    if (KindOf(value).empty()) throw Failure{kWrongUse, Say(Text::NoSuchKey, {ToUtf8(path), ToUtf8(key)})};
    Print(TextOf(value));
}

ExitCode RunDb(CHostApp&, const Words& words) {
    const Arguments arguments(words, {"--kind"}, {"--all"}, 4);
    const std::string& action = arguments.At(0, "list|get|set|remove|convert|check|edit");
    const auto takes = [&](size_t most) {
        if (arguments.Count() > most) throw Failure{kWrongUse, Say(Text::ArgumentTooMany, {ToUtf8(arguments.At(most, ""))})};
    };
    // An option of another action would be passed over.
    if (arguments.Has("--all") && action != "list") throw Failure{kWrongUse, Say(Text::OptionAlone, {"--all", "list"})};
    if (arguments.Has("--kind") && action != "set") throw Failure{kWrongUse, Say(Text::OptionAlone, {"--kind", "set"})};
    if (action == "list") {
        takes(3);
        CPropertyDB db;
        LoadDatabase(arguments.At(1, "FILE"), db);
        ListDatabase(db, arguments.Count() > 2 ? arguments.At(2, "PREFIX") : "", arguments.Has("--all"));
    } else if (action == "check") {
        takes(2);
        Check(arguments.At(1, "FILE"));
    } else if (action == "get") {
        takes(3);
        CPropertyDB db;
        LoadDatabase(arguments.At(1, "FILE"), db);
        PrintValue(db, arguments.At(1, "FILE"), arguments.At(2, "KEY"));
    } else if (action == "set") {
        Set(arguments.At(1, "FILE"), arguments.At(2, "KEY"), arguments.At(3, "VALUE"), arguments.Get("--kind"));
    } else if (action == "remove") {
        takes(3);
        Remove(arguments.At(1, "FILE"), arguments.At(2, "KEY"));
    } else if (action == "convert") {
        takes(3);
        ConvertTo(arguments.At(1, "FILE"), arguments.At(2, "KEY"));
    } else if (action == "edit") {
        takes(2);
        return EditDatabase(arguments.At(1, "FILE"));
    } else {
        throw Failure{kWrongUse, Say(Text::UnknownCommand, {"db " + ToUtf8(action)})};
    }
    return kDone;
}
