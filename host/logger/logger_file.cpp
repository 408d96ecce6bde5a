#include "host/logger/logger_file.h"

#include "comm/comm_exception.h"
#include "host/logger/description_check.h"
#include "host/logger/name_check.h"
#include "host/session/channel_intervals.h"
#include "host/session/database_file.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
void AddChannel(CPropertyDB& db, const char* key, const char* name, const char* unit, unsigned short number, const char* type,
                const char* order, double scale, double offset) {
    db.BeginUsingFmt("Channels.%s", key);
    db.SetValue("sName", name);
    db.SetValue("sUnit", unit);
    db.SetValue("nFunction", static_cast<unsigned short>(4));
    db.SetValue("nRegister", number);
    db.SetValue("sType", type);
    db.SetValue("sOrder", order);
    db.SetValue("rScale", scale);
    db.SetValue("rOffset", offset);
    db.EndUsing();
}

// One channel of every type, so that the demonstration shows what a description can say.
void DescribeEmbeddedLogger(CPropertyDB& db) {
    db.SetValue("sFamily", "Modbus");
    db.SetValue("sName", "Demo logger");
    db.SetValue("nSlave", static_cast<unsigned short>(17));
    db.BeginUsing("Line");
    db.SetValue("nBaud", 19200u);
    db.SetValue("nDataBits", static_cast<unsigned short>(8));
    db.SetValue("sParity", "none");
    db.SetValue("nStopBits", static_cast<unsigned short>(1));
    db.EndUsing();
    AddChannel(db, "1", "Air temperature", "°C", 100, "float32", "high", 1, 0);
    AddChannel(db, "2", "Humidity", "%", 102, "uint16", "high", 0.1, 0);
    AddChannel(db, "3", "Soil temperature", "°C", 103, "int16", "high", 0.01, -40);
    AddChannel(db, "4", "Wind speed", "km/h", 104, "uint32", "low", 0.2, 0);
    AddChannel(db, "5", "Level", "mm", 106, "int32", "high", 0.001, 0);
}

// House texts in a sentence.
std::string Listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + ToUtf8(name);
    return text;
}

// The family that a description is for, and that knows all of its keys.
ILoggerFamily& FamilyOf(CHostApp& app, CPropertyDB& description) {
    CString name;
    if (!description.GetValue("sFamily", name) || name.IsEmpty()) throw Failure{kWrongUse, Say(Text::FamilyMissing)};
    const std::string family = static_cast<const char*>(name);
    if (ILoggerFamily* const plugin = app.Plugins().Find(family)) {
        CheckKeys(description, plugin->DescriptionKeys());
        return *plugin;
    }
    const std::string families = Listed(PluginLibrary::Families());
    throw Failure{kWrongUse, Say(Text::NoFamily, {ToUtf8(family), Listed(PluginLibrary::Folders()),
                                                  families.empty() ? Say(Text::NoPlugin) : families})};
}

// What `make` makes of the description, whose mistakes are the user's.
template <class Made, class Make>
std::unique_ptr<Made> MakeOf(CPropertyDB& description, Make make) {
    try {
        std::unique_ptr<Made> made(make());
        OwnIntervals(description);  // behind the family, which knows what else a key may have been meant for
        return made;
    } catch (CCommException* failure) {
        throw Failure{kWrongUse, Say(Text::DescriptionWrong, {TakeMessage(failure)})};
    }
}
}  // namespace

bool IsLoggerDescription(const std::string& path) {
    constexpr unsigned __int64 kMost = 1024 * 1024;  // nobody describes that much
    if (FileSize(path) > kMost) return false;
    try {
        CPropertyDB db;
        LoadLoggerDescription(path, db);
        CString family;
        return db.GetValue("sFamily", family) && !db.Find("Session");
    } catch (const Failure&) {
        return false;
    }
}

std::string TakeMessage(CCommException* failure) {
    const std::string text = ToUtf8(static_cast<const char*>(failure->m_strError));
    failure->Delete();
    return text;
}

std::unique_ptr<ILogger> MakeLogger(CHostApp& app, CPropertyDB& description) {
    ILoggerFamily& family = FamilyOf(app, description);
    return MakeOf<ILogger>(description, [&] { return family.CreateLogger(description); });
}

std::unique_ptr<ILoggerSimulator> MakeSimulator(CHostApp& app, CPropertyDB& description) {
    ILoggerFamily& family = FamilyOf(app, description);
    return MakeOf<ILoggerSimulator>(description, [&] { return family.CreateSimulator(description); });
}

void LoadLoggerDescription(const std::string& path, CPropertyDB& description) {
    if (path.empty()) {
        DescribeEmbeddedLogger(description);
    } else {
        LoadDatabase(path, description);
        if (IsXmlName(path)) CheckXml(path);
        SpellHostKeys(description);
        CheckNames(description);
    }
}
