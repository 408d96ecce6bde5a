#include "plugins/sqlite/sqlite_sessions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "plugins/sqlite/sqlite_file.h"
#include "record/sink.h"

namespace sqlite {
namespace {
constexpr char kNames[] = R"(
SELECT station || CASE station WHEN '' THEN '' ELSE '/' END || logger || ' ' ||
       strftime('%Y-%m-%dT%H:%M:%S', (began - ((began % 1000000) + 1000000) % 1000000) / 1000000, 'unixepoch') ||
       printf('.%06dZ', ((began % 1000000) + 1000000) % 1000000), session, device, family, port
FROM session ORDER BY began, station, logger)";

void LoadReadings(const File& file, sqlite3_int64 session, const std::vector<std::string>& keys, IPropertyDB& db) {
    CInt64Array times;
    Statement moments(file, "SELECT DISTINCT time FROM reading WHERE session = ? ORDER BY time");
    moments.Bind(session);
    while (moments.Next()) times.Add(moments.Number(0));
    db.SetValue("Session.tTimes", times);
    Statement values(file, "SELECT time, value FROM reading WHERE session = ? AND channel = ? ORDER BY time");
    for (size_t i = 0; i < keys.size(); ++i) {
        CDoubleArray row;
        row.SetSize(times.GetSize());
        std::fill_n(row.GetData(), static_cast<size_t>(times.GetSize()), std::numeric_limits<double>::quiet_NaN());
        values.Bind(session, static_cast<sqlite3_int64>(i + 1));
        for (INT_PTR at = 0; values.Next();) {
            while (at < times.GetSize() && times.GetAt(at) < values.Number(0)) ++at;
            if (at < times.GetSize() && !values.IsNull(1)) row.SetAt(at, values.Real(1));
        }
        db.SetValue(("Channels." + keys[i] + ".rValues").c_str(), row);
    }
}

// In these texts ";" parts elements.
CString Element(std::string text) {
    std::replace(text.begin(), text.end(), ';', ',');
    return text.c_str();
}

void LoadNotes(const File& file, sqlite3_int64 session, IPropertyDB& db) {
    CInt64Array from, until, times, amounts;
    CDWordArray missed, attempts, causes, kinds;
    CStringArray texts, channels, told;
    Statement gaps(file, "SELECT from_time, until_time, missed, attempts, cause, text, channels FROM gap WHERE session = ? ORDER BY from_time, number");
    gaps.Bind(session);
    while (gaps.Next()) {
        from.Add(gaps.Number(0));
        until.Add(gaps.Number(1));
        missed.Add(static_cast<DWORD>(gaps.Number(2)));
        attempts.Add(static_cast<DWORD>(gaps.Number(3)));
        causes.Add(static_cast<DWORD>(gaps.Number(4)));
        texts.Add(Element(gaps.Text(5)));
        channels.Add(Element(gaps.Text(6)));
    }
    if (from.GetSize() > 0) {
        db.SetValue("Gaps.tFrom", from);
        db.SetValue("Gaps.tUntil", until);
        db.SetValue("Gaps.nMissed", missed);
        db.SetValue("Gaps.nAttempts", attempts);
        db.SetValue("Gaps.nCause", causes);
        db.SetValue("Gaps.sCause", texts);
        db.SetValue("Gaps.sChannels", channels);
    }
    Statement events(file, "SELECT time, amount, kind, text FROM event WHERE session = ? ORDER BY time, kind");
    events.Bind(session);
    while (events.Next()) {
        times.Add(events.Number(0));
        amounts.Add(events.Number(1));
        kinds.Add(static_cast<DWORD>(events.Number(2)));
        told.Add(Element(events.Text(3)));
    }
    if (times.GetSize() == 0) return;
    db.SetValue("Events.tTime", times);
    db.SetValue("Events.nAmount", amounts);
    db.SetValue("Events.nKind", kinds);
    db.SetValue("Events.sText", told);
}

void LoadComments(const File& file, sqlite3_int64 session, IPropertyDB& db) {
    CInt64Array times;
    CDoubleArray values;
    CStringArray channels;
    Statement comments(file, "SELECT time, value, channel, text FROM comment WHERE session = ? ORDER BY number");
    comments.Bind(session);
    while (comments.Next()) {
        const std::string at = "Chart.Tags.Comment #" + std::to_string(times.GetSize());
        db.SetValue((at + ".sText").c_str(), comments.Text(3).c_str());
        db.SetValue((at + ".fLeft").c_str(), 0.0F);  // times and values go before these
        db.SetValue((at + ".fTop").c_str(), 0.0F);
        times.Add(comments.Number(0));
        values.Add(comments.Real(1));
        channels.Add(comments.Text(2).c_str());
    }
    if (times.GetSize() == 0) return;
    db.SetValue("Chart.tTagTimes", times);
    db.SetValue("Chart.rTagValues", values);
    db.SetValue("Chart.sTagChannels", channels);
}
}  // namespace

std::vector<std::string> SessionNames(const std::string& path) {
    File file;
    file.OpenToRead(path);
    std::vector<std::string> names;
    for (Statement all(file, kNames); all.Next();) names.push_back(all.Text(0));
    return names;
}

void LoadSession(const std::string& path, const std::string& name, IPropertyDB& db) {
    File file;
    file.OpenToRead(path);
    Statement all(file, kNames);
    while (all.Next()) {
        if (all.Text(0) != name) continue;
        const sqlite3_int64 session = all.Number(1);
        db.SetValue("Session.sLogger", all.Text(2).c_str());
        db.SetValue("Session.sFamily", all.Text(3).c_str());
        db.SetValue("Session.sPort", all.Text(4).c_str());
        std::vector<std::string> keys;
        Statement channels(file, "SELECT key, name, unit FROM channel WHERE session = ? ORDER BY place");
        channels.Bind(session);
        while (channels.Next()) {
            keys.push_back(channels.Text(0));
            db.SetValue(("Channels." + keys.back() + ".sName").c_str(), channels.Text(1).c_str());
            db.SetValue(("Channels." + keys.back() + ".sUnit").c_str(), channels.Text(2).c_str());
        }
        LoadReadings(file, session, keys, db);
        LoadNotes(file, session, db);
        LoadComments(file, session, db);
        return;
    }
    throw CSinkFailure(path + ": there is no session \"" + name + "\"");
}

}  // namespace sqlite
