#include "host/sending/sink_settings.h"

#include <algorithm>

#include "afx/collections.h"
#include "host/logger/description_check.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
ISinkFamily& FamilyOf(CHostApp& app, const std::string& name) {
    if (ISinkFamily* const family = app.Plugins().FindSink(name)) return *family;
    const std::vector<std::string> known = app.Plugins().SinkFamilies();
    std::string names;
    for (const std::string& one : known) names += (names.empty() ? "" : ", ") + one;
    throw Failure{kWrongUse, known.empty() ? Say(Text::SinkNoFamilies, {ToUtf8(name)}) : Say(Text::SinkNoFamily, {ToUtf8(name), names})};
}
}  // namespace

std::shared_ptr<const SinkSettings> ReadSinkSettings(CHostApp& app, CPropertyDB& db, const std::string& key,
                                                     const std::string& file) {
    static constexpr const char* kKeys[] = {"sSink", "sFrom", nullptr};
    auto made = std::make_shared<SinkSettings>();
    made->key = key;
    made->folder = file.substr(0, file.find_last_of("/\\") + 1);  // npos + 1 is 0
    SpellKeys(db, kKeys);
    CString text;
    db.GetValue("sSink", text);
    made->family = text.GetString();
    if (made->family.empty()) throw Failure{kWrongUse, Say(Text::StationKeyMissing, {"sSink"})};
    ISinkFamily& family = FamilyOf(app, made->family);
    std::vector<const char*> keys = {"sSink", "sFrom"};
    for (const char* const* each = family.SettingKeys(); each != nullptr && *each != nullptr; ++each) keys.push_back(*each);
    keys.push_back(nullptr);
    SpellKeys(db, keys.data());
    for (const StrayKey& stray : FindStrayKeys(db, keys.data()))
        throw Failure{kWrongUse, Say(Text::SinkUnknownKey, {ToUtf8(stray.key), ToUtf8(made->family), ToUtf8(stray.meant)})};
    if (db.Find("sFrom")) {
        CString from;
        db.GetValue("sFrom", from);
        made->fromNow = from == "now";
        if (!made->fromNow && from != "beginning") throw Failure{kWrongUse, Say(Text::SinkFrom, {ToUtf8(from.GetString())})};
    }
    made->own.OverlayCopy(&db, nullptr, nullptr, TRUE);
    made->own.Remove("sSink");
    made->own.Remove("sFrom");
    CStringArray all;
    db.EnumAll(all);
    made->identity = file;
    for (INT_PTR i = 0; i < all.GetSize(); ++i) {
        const char* const name = all.GetAt(i).GetString();
        made->identity += std::string("\n") + name + "=" + TextOf(db.GetValueObject(name, TRUE));
    }
    MakeSink(app, *made);  // what it cannot use, it says
    return made;
}

std::unique_ptr<ISink> MakeSink(CHostApp& app, const SinkSettings& settings) {
    CPropertyDB own;
    own.OverlayCopy(&settings.own, nullptr, nullptr, TRUE);
    try {
        return std::unique_ptr<ISink>(FamilyOf(app, settings.family).CreateSink(own, settings.folder.c_str()));
    } catch (const CSinkFailure& failure) {
        throw Failure{kWrongUse, std::string(failure.what()) + "."};
    }
}
