#include "host/station/station_status.h"

#include <cmath>

#include "afx/collections.h"
#include "host/session/database_file.h"
#include "host/session/time_stamp.h"
#include "host/session/value_text.h"
#include "host/station/station_file.h"
#include "host/words/console.h"
#include "host/words/isolated.h"
#include "host/words/json_text.h"
#include "host/words/texts.h"

namespace {
constexpr const char* kStates[] = {"starting", "reads", "partly", "silent", "nofile", "over"};
constexpr Text kStateTexts[] = {Text::StationStarting, Text::StationReads,  Text::StationPartly,
                                Text::StationSilent,   Text::StationNoFile, Text::StationOver};

template <class Number>
Number NumberAt(const CPropertyDB& db, const std::string& key) {
    Number number{};
    db.GetValue(key.c_str(), number);
    return number;
}

std::string UtcText(__int64 time) {
    std::string text;
    AppendUtcStamp(text, time);
    return text;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

std::vector<std::string> Names(const StationStatus::Logger& logger, const std::vector<WORD>& places) {
    std::vector<std::string> names;
    for (const WORD place : places) {
        if (place < logger.channels.size()) names.push_back(ToUtf8(logger.channels[place].name));
    }
    return names;
}

void StoreLogger(CPropertyDB& db, const StationStatus::Logger& logger) {
    const LoggerReport& report = logger.report;
    db.BeginUsing(("Loggers." + logger.key).c_str());
    db.SetValue("sPort", logger.port.c_str());
    db.SetValue("nState", static_cast<unsigned short>(report.state));
    db.SetValue("tSince", report.since);
    db.SetValue("sWhy", report.why.c_str());
    db.SetValue("nMade", static_cast<__int64>(report.made));
    db.SetValue("nMissing", static_cast<__int64>(report.missing));
    db.SetValue("nWaiting", static_cast<__int64>(report.waiting));
    db.SetValue("rLate", report.late);
    db.SetValue("rVeryLate", report.veryLate);
    db.SetValue("tLatest", report.latest);
    db.SetValue("sFile", report.file.c_str());
    CStringArray causes;
    CDWordArray missed;
    for (const GapKeeper::Count& cause : report.causes) {
        causes.Add(cause.text.c_str());
        missed.Add(cause.missed);
    }
    db.SetValue("Gaps.sCause", causes);
    db.SetValue("Gaps.nMissed", missed);
    for (INT_PTR i = 0; i < causes.GetSize(); ++i) {
        CWordArray places;
        for (const WORD place : report.causes[static_cast<size_t>(i)].channels) places.Add(place);
        db.SetValue(("Gaps.Channels." + std::to_string(i)).c_str(), places);
    }
    for (size_t i = 0; i < logger.channels.size(); ++i) {
        const StationStatus::Logger::Channel& channel = logger.channels[i];
        db.BeginUsing(("Channels." + channel.key).c_str());
        db.SetValue("sName", channel.name.c_str());
        db.SetValue("sUnit", channel.unit.c_str());
        const LoggerReport::Last last = i < report.last.size() ? report.last[i] : LoggerReport::Last{};
        db.SetValue("rValue", last.value);
        db.SetValue("tTime", last.time);
        db.EndUsing();
    }
    db.EndUsing();
}

StationStatus::Logger LoadLogger(const CPropertyDB& db, const std::string& key) {
    StationStatus::Logger logger;
    LoggerReport& report = logger.report;
    const std::string at = "Loggers." + key + ".";
    logger.key = key;
    logger.port = TextAt(db, at + "sPort");
    report.state =
        static_cast<LoggerState>(std::min<size_t>(NumberAt<unsigned short>(db, at + "nState"), std::size(kStates) - 1));
    report.since = NumberAt<__int64>(db, at + "tSince");
    report.why = ToUtf8(TextAt(db, at + "sWhy"));
    report.made = static_cast<unsigned __int64>(NumberAt<__int64>(db, at + "nMade"));
    report.missing = static_cast<unsigned __int64>(NumberAt<__int64>(db, at + "nMissing"));
    report.waiting = static_cast<unsigned __int64>(NumberAt<__int64>(db, at + "nWaiting"));
    report.late = NumberAt<double>(db, at + "rLate");
    report.veryLate = NumberAt<double>(db, at + "rVeryLate");
    report.latest = NumberAt<__int64>(db, at + "tLatest");
    report.file = TextAt(db, at + "sFile");
    CStringArray causes;
    CDWordArray missed;
    db.GetValue((at + "Gaps.sCause").c_str(), causes);
    db.GetValue((at + "Gaps.nMissed").c_str(), missed);
    for (INT_PTR i = 0; i < std::min(causes.GetSize(), missed.GetSize()); ++i) {
        CWordArray places;
        db.GetValue((at + "Gaps.Channels." + std::to_string(i)).c_str(), places);
        GapKeeper::Count cause{causes.GetAt(i).GetString(), {}, missed.GetAt(i)};
        for (INT_PTR k = 0; k < places.GetSize(); ++k) cause.channels.push_back(places.GetAt(k));
        report.causes.push_back(std::move(cause));
    }
    CStringArray channels;
    db.Enum((at + "Channels").c_str(), channels, FALSE, FALSE);
    for (INT_PTR i = 0; i < channels.GetSize(); ++i) {
        const std::string channel = channels.GetAt(i).GetString(), place = at + "Channels." + channel + ".";
        logger.channels.push_back({channel, TextAt(db, place + "sName"), TextAt(db, place + "sUnit")});
        report.last.push_back({NumberAt<double>(db, place + "rValue"), NumberAt<__int64>(db, place + "tTime")});
    }
    return logger;
}

void StoreSink(CPropertyDB& db, const StationStatus::Sink& sink) {
    db.BeginUsing(("Sinks." + sink.key).c_str());
    db.SetValue("sFamily", sink.family.c_str());
    db.SetValue("nReached", static_cast<unsigned short>(sink.report.reached ? 1 : 0));
    db.SetValue("tSince", sink.report.since);
    db.SetValue("sWhy", sink.report.why.c_str());
    db.SetValue("nSent", static_cast<__int64>(sink.report.sent));
    db.SetValue("nBehind", static_cast<__int64>(sink.report.behind));
    db.SetValue("tUpTo", sink.report.upTo);
    db.EndUsing();
}

StationStatus::Sink LoadSink(const CPropertyDB& db, const std::string& key) {
    const std::string at = "Sinks." + key + ".";
    StationStatus::Sink sink{key, TextAt(db, at + "sFamily"), {}};
    sink.report.reached = NumberAt<unsigned short>(db, at + "nReached") != 0;
    sink.report.since = NumberAt<__int64>(db, at + "tSince");
    sink.report.why = ToUtf8(TextAt(db, at + "sWhy"));
    sink.report.sent = static_cast<unsigned __int64>(NumberAt<__int64>(db, at + "nSent"));
    sink.report.behind = static_cast<unsigned __int64>(NumberAt<__int64>(db, at + "nBehind"));
    sink.report.upTo = NumberAt<__int64>(db, at + "tUpTo");
    return sink;
}

// To a tenth.
std::string Milliseconds(double microseconds) { return ShortTextOf(std::round(microseconds / 100) / 10); }
}  // namespace

std::string ReloadWishOf(const std::string& statusFile) { return statusFile + ".reload"; }

StationStatus::Logger StationStatus::Of(const StationLogger& plan) {
    CPropertyDB description = plan.description;
    const Session session(description, plan.plan.port);
    Logger logger;
    logger.key = plan.key;
    logger.port = plan.plan.port;
    for (const Session::Channel& channel : session.Channels())
        logger.channels.push_back({channel.key, channel.name, channel.unit});
    logger.report.last.resize(logger.channels.size());
    logger.report.file = plan.record.path;
    return logger;
}

DWORD StationStatus::Store(const std::string& path) const {
    CPropertyDB db;
    db.SetValue("Station.sName", name.c_str());
    db.SetValue("Station.tStarted", started);
    db.SetValue("Station.tWritten", written);
    db.SetValue("Station.nEnded", static_cast<unsigned short>(ended ? 1 : 0));
    db.SetValue("Station.sReloaded", reloaded.c_str());
    db.SetValue("Station.nRefused", static_cast<unsigned short>(refused ? 1 : 0));
    db.SetPath("Loggers");
    for (const Logger& logger : loggers) StoreLogger(db, logger);
    for (const Sink& sink : sinks) StoreSink(db, sink);
    return StoreOften(path, db);
}

bool StationStatus::Load(const std::string& path) {
    CPropertyDB db;
    if (!FileExists(path) || !db.LoadFromFile(path.c_str()) || !db.Find("Station.tWritten")) return false;
    name = TextAt(db, "Station.sName");
    started = NumberAt<__int64>(db, "Station.tStarted");
    written = NumberAt<__int64>(db, "Station.tWritten");
    ended = NumberAt<unsigned short>(db, "Station.nEnded") != 0;
    reloaded = ToUtf8(TextAt(db, "Station.sReloaded"));
    refused = NumberAt<unsigned short>(db, "Station.nRefused") != 0;
    CStringArray keys;
    db.Enum("Loggers", keys, FALSE, FALSE);
    loggers.clear();
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) loggers.push_back(LoadLogger(db, keys.GetAt(i).GetString()));
    keys.RemoveAll();
    db.Enum("Sinks", keys, FALSE, FALSE);
    sinks.clear();
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) sinks.push_back(LoadSink(db, keys.GetAt(i).GetString()));
    return true;
}

std::string StationStatus::Json(bool running) const {
    std::string out = "{\"station\":" + JsonText(ToUtf8(name)) + ",\"running\":" + (running ? "true" : "false") +
                      ",\"started\":" + JsonText(UtcText(started)) + ",\"written\":" + JsonText(UtcText(written)) +
                      ",\"loggers\":[";
    bool first = true;
    for (const Logger& logger : loggers) {
        const LoggerReport& report = logger.report;
        out += (first ? "{\"key\":" : ",{\"key\":") + JsonText(ToUtf8(logger.key)) + ",\"port\":" + JsonText(ToUtf8(logger.port));
        first = false;
        out += ",\"state\":" + JsonText(kStates[static_cast<size_t>(report.state)]) +
               ",\"since\":" + JsonText(UtcText(report.since));
        out += ",\"why\":" + JsonText(report.why) + ",\"made\":" + std::to_string(report.made);
        out += ",\"missing\":" + std::to_string(report.missing) + ",\"waiting\":" + std::to_string(report.waiting);
        out += ",\"late_ms\":{\"p50\":" + JsonNumber(report.late / 1000) + ",\"p99\":" + JsonNumber(report.veryLate / 1000) +
               ",\"max\":" + JsonNumber(static_cast<double>(report.latest) / 1000) + "}";
        out += ",\"file\":" + JsonText(ToUtf8(report.file)) + ",\"gaps\":[";
        for (size_t i = 0; i < report.causes.size(); ++i) {
            const GapKeeper::Count& cause = report.causes[i];
            out += std::string(i > 0 ? "," : "") + "{\"cause\":" + JsonText(ToUtf8(cause.text)) +
                   ",\"missing\":" + std::to_string(cause.missed) + ",\"channels\":[";
            const std::vector<std::string> names = Names(logger, cause.channels);
            for (size_t k = 0; k < names.size(); ++k) out += (k > 0 ? "," : "") + JsonText(names[k]);
            out += "]}";
        }
        out += "],\"channels\":[";
        for (size_t i = 0; i < logger.channels.size(); ++i) {
            const Logger::Channel& channel = logger.channels[i];
            const LoggerReport::Last& last = report.last[i];
            out += std::string(i > 0 ? "," : "") + "{\"key\":" + JsonText(ToUtf8(channel.key)) +
                   ",\"name\":" + JsonText(ToUtf8(channel.name)) + ",\"unit\":" + JsonText(ToUtf8(channel.unit)) +
                   ",\"value\":" + (last.time != 0 ? JsonNumber(last.value) : "null") +
                   ",\"time\":" + (last.time != 0 ? JsonText(UtcText(last.time)) : "null") + "}";
        }
        out += "]}";
    }
    out += "],\"sinks\":[";
    for (const Sink& sink : sinks) {
        const SinkReport& report = sink.report;
        out += std::string(&sink != sinks.data() ? "," : "") + "{\"key\":" + JsonText(ToUtf8(sink.key)) +
               ",\"kind\":" + JsonText(ToUtf8(sink.family)) + ",\"reached\":" + (report.reached ? "true" : "false") +
               ",\"since\":" + JsonText(UtcText(report.since)) + ",\"why\":" + JsonText(report.why) +
               ",\"sent\":" + std::to_string(report.sent) + ",\"behind_bytes\":" + std::to_string(report.behind) +
               ",\"up_to\":" + (report.upTo != 0 ? JsonText(UtcText(report.upTo)) : "null") + "}";
    }
    return out + "]}";
}

CSinkStatus StationStatus::ForSinks() const {
    CSinkStatus status;
    status.station = ToUtf8(name);
    status.time = written;
    status.started = started;
    status.ended = ended;
    for (const Logger& logger : loggers) {
        const LoggerReport& report = logger.report;
        CSinkLogger told;
        told.logger = ToUtf8(logger.key);
        told.state = static_cast<ESinkState>(report.state);
        told.since = report.since;
        told.why = report.why;
        told.made = report.made;
        told.missing = report.missing;
        told.waiting = report.waiting;
        told.late = report.late;
        told.veryLate = report.veryLate;
        told.latest = report.latest;
        for (const GapKeeper::Count& cause : report.causes) told.causes.push_back({ToUtf8(cause.text), cause.missed});
        for (size_t i = 0; i < logger.channels.size(); ++i) {
            const Logger::Channel& channel = logger.channels[i];
            told.channels.push_back({ToUtf8(channel.key), ToUtf8(channel.name), ToUtf8(channel.unit)});
            told.last.push_back({report.last[i].value, report.last[i].time});
        }
        status.loggers.push_back(std::move(told));
    }
    for (const Sink& sink : sinks)
        status.sinks.push_back({ToUtf8(sink.key), ToUtf8(sink.family), sink.report.reached, sink.report.behind, sink.report.sent});
    return status;
}

std::string StationStatus::Words(bool running) const {
    std::string out = running ? Say(Text::StationRunning, {Isolated(ToUtf8(name)), Isolated(TimeTextOf(started))})
                      : ended ? Say(Text::StationEnded, {Isolated(ToUtf8(name)), Isolated(TimeTextOf(written))})
                              : Say(Text::StationStale, {Isolated(ToUtf8(name)), Isolated(TimeTextOf(written))});
    if (out.ends_with("..")) out.pop_back();  // a clock may end in "p.m."
    const auto line = [&](const std::string& text) { out += "\n    " + text; };
    for (const Logger& logger : loggers) {
        const LoggerReport& report = logger.report;
        out += "\n" + Say(Text::StationSince, {Isolated(ToUtf8(logger.key)), Say(kStateTexts[static_cast<size_t>(report.state)]),
                                               Isolated(TimeTextOf(report.since))});
        if (!report.why.empty()) line(Isolated(report.why));
        line(Say(Text::StationCounts,
                 {std::to_string(report.made), std::to_string(report.missing), Isolated(ToUtf8(report.file))}));
        std::vector<std::string> causes;
        for (const GapKeeper::Count& cause : report.causes) {
            const std::string names = Joined(Names(logger, cause.channels));
            causes.push_back(std::to_string(cause.missed) + " x " + Isolated(ToUtf8(cause.text)) +
                             (names.empty() ? "" : " (" + Isolated(names) + ")"));
        }
        if (!causes.empty()) line(Say(Text::StationCauses, {Joined(causes)}));
        if (report.waiting > 0)
            line(Say(running ? Text::StationWaiting : Text::StationNotWritten, {std::to_string(report.waiting)}));
        if (report.made > 0)
            line(Say(Text::StationLate, {Isolated(Milliseconds(report.late)), Isolated(Milliseconds(report.veryLate))}));
        for (size_t i = 0; i < logger.channels.size(); ++i) {
            const Logger::Channel& channel = logger.channels[i];
            const LoggerReport::Last& last = report.last[i];
            if (last.time == 0) continue;
            const std::string value = std::isnan(last.value) ? "-" : WholeTextOf(last.value);
            line(Isolated(ToUtf8(channel.name)) + ": " + Isolated(value) +
                 (channel.unit.empty() ? "" : " " + Isolated(ToUtf8(channel.unit))) + "  " + Isolated(TimeTextOf(last.time)));
        }
    }
    for (const Sink& sink : sinks) {
        const SinkReport& report = sink.report;
        out += "\n" + Say(report.reached ? Text::SinkSends : Text::SinkWaits,
                          {Isolated(ToUtf8(sink.key)), Isolated(ToUtf8(sink.family)), Isolated(TimeTextOf(report.since))});
        if (!report.why.empty()) line(Isolated(report.why));
        line(Say(Text::SinkCounts, {std::to_string(report.sent), std::to_string(report.behind)}));
    }
    return out;
}
