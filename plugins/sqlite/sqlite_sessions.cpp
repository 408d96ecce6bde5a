#include "plugins/sqlite/sqlite_sessions.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>
#include <sstream>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "plugins/sqlite/sqlite_file.h"
#include "record/sink.h"

namespace sqlite {
namespace {
std::string Names() {
    return "SELECT ltrim(iif(station = '', '', station || '/') || logger || ' ') || " + Moment("began") +
           ", session, device, family, port, logger FROM session ORDER BY began, station, logger";
}

template <class Value>
void Set(IPropertyDB& db, const std::string& key, const Value& value) {
    if (!db.SetValue(key.c_str(), value)) throw CSinkFailure("a session has no place for \"" + key + "\"");
}
void Set(IPropertyDB& db, const std::string& key, const std::string& text) { Set(db, key, text.c_str()); }

// In the texts of a list ";" parts elements.
CString Element(std::string text) {
    std::replace(text.begin(), text.end(), ';', ',');
    return text.c_str();
}

struct Gap {
    __int64 from, until;
    bool missing;               // it was not over before it took a reading with it
    std::vector<bool> channels;  // by their places; empty: all
};

// Into the session as well.
std::vector<Gap> LoadGaps(const File& file, sqlite3_int64 session, const std::vector<std::string>& keys, IPropertyDB& db) {
    std::vector<Gap> all;
    CInt64Array from, until;
    CDWordArray missed, attempts, causes;
    CStringArray texts, channels;
    Statement gaps(file, "SELECT from_time, until_time, missed, attempts, cause, text, channels FROM gap WHERE session = ? ORDER BY from_time, number");
    gaps.Bind(session);
    while (gaps.Next()) {
        Gap& gap = all.emplace_back(Gap{gaps.Number(0), gaps.Number(1), gaps.Number(2) > 0 || gaps.Number(3) == 0, {}});
        std::istringstream places(gaps.Text(6));
        std::string names;
        for (size_t place = 0; places >> place;) {
            gap.channels.resize(keys.size());
            if (place == 0 || place > keys.size()) continue;
            gap.channels[place - 1] = true;
            names += (names.empty() ? "" : " ") + keys[place - 1];
        }
        from.Add(gap.from);
        until.Add(gap.until);
        missed.Add(static_cast<DWORD>(gaps.Number(2)));
        attempts.Add(static_cast<DWORD>(gaps.Number(3)));
        causes.Add(static_cast<DWORD>(gaps.Number(4)));
        texts.Add(Element(gaps.Text(5)));
        channels.Add(Element(names));
    }
    if (all.empty()) return all;
    Set(db, "Gaps.tFrom", from);
    Set(db, "Gaps.tUntil", until);
    Set(db, "Gaps.nMissed", missed);
    Set(db, "Gaps.nAttempts", attempts);
    Set(db, "Gaps.nCause", causes);
    Set(db, "Gaps.sCause", texts);
    Set(db, "Gaps.sChannels", channels);
    return all;
}

using Times = std::vector<__int64>;
Times Merged(const Times& one, const Times& other) {
    Times all;
    all.reserve(std::max(one.size(), other.size()));
    std::set_union(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(all));
    return all;
}

// Where a stretch without readings begins a session has a row without values, so that lines end there.
Times MarksOf(const Times& times, const std::vector<Gap>& gaps) {
    Times marks;
    for (const Gap& gap : gaps) {
        const auto next = std::lower_bound(times.begin(), times.end(), gap.from);
        const bool read = next != times.end() && *next == gap.from;
        const bool goesOn = !marks.empty() && (next == times.begin() || *std::prev(next) < marks.back());
        if (gap.channels.empty() && gap.missing && !read && !goesOn) marks.push_back(gap.from);
    }
    return marks;
}

void LoadReadings(const File& file, sqlite3_int64 session, const std::vector<std::string>& keys, const std::vector<Gap>& gaps,
                  IPropertyDB& db) {
    Times times;
    Statement moments(file, "SELECT time FROM reading WHERE session = ? AND channel = ? ORDER BY time");
    for (size_t i = 0; i < keys.size(); ++i) {
        Times own;
        moments.Bind(session, static_cast<sqlite3_int64>(i + 1));
        while (moments.Next()) own.push_back(moments.Number(0));
        if (own != times) times = Merged(times, own);
    }
    times = Merged(times, MarksOf(times, gaps));
    const auto count = static_cast<INT_PTR>(times.size());
    CInt64Array column;
    column.SetSize(count);
    std::copy(times.begin(), times.end(), column.GetData());
    Set(db, "Session.tTimes", column);

    Statement values(file, "SELECT time, value FROM reading WHERE session = ? AND channel = ? ORDER BY time");
    for (size_t i = 0; i < keys.size(); ++i) {
        CDoubleArray row;
        row.SetSize(count);
        values.Bind(session, static_cast<sqlite3_int64>(i + 1));
        bool more = values.Next();
        size_t next = 0;
        __int64 missingUntil = std::numeric_limits<__int64>::min();
        for (INT_PTR at = 0; at < count; ++at) {
            const __int64 time = times[static_cast<size_t>(at)];
            for (; next < gaps.size() && gaps[next].from <= time; ++next) {
                if (gaps[next].channels.empty() || gaps[next].channels[i]) missingUntil = std::max(missingUntil, gaps[next].until);
            }
            // What has no row and is not missing was not to be read.
            double value = std::numeric_limits<double>::quiet_NaN();
            if (!more || values.Number(0) != time) {
                if (missingUntil < time) value = std::bit_cast<double>(kNotDueBits);
            } else {
                if (!values.IsNull(1)) value = values.Real(1);
                more = values.Next();
            }
            row.SetAt(at, value);
        }
        Set(db, "Channels." + keys[i] + ".rValues", row);
    }
}

void LoadEvents(const File& file, sqlite3_int64 session, IPropertyDB& db) {
    CInt64Array times, amounts;
    CDWordArray kinds;
    CStringArray told;
    Statement events(file, "SELECT time, amount, kind, text FROM event WHERE session = ? ORDER BY time, kind");
    events.Bind(session);
    while (events.Next()) {
        times.Add(events.Number(0));
        amounts.Add(events.Number(1));
        kinds.Add(static_cast<DWORD>(events.Number(2)));
        told.Add(Element(events.Text(3)));
    }
    if (times.GetSize() == 0) return;
    Set(db, "Events.tTime", times);
    Set(db, "Events.nAmount", amounts);
    Set(db, "Events.nKind", kinds);
    Set(db, "Events.sText", told);
}

void LoadComments(const File& file, sqlite3_int64 session, IPropertyDB& db) {
    CInt64Array times;
    CDoubleArray values;
    CStringArray channels;
    Statement comments(file, "SELECT time, value, channel, text FROM comment WHERE session = ? ORDER BY number");
    comments.Bind(session);
    while (comments.Next()) {
        const std::string at = "Chart.Tags.Comment #" + std::to_string(times.GetSize());
        Set(db, at + ".sText", comments.Text(3));
        Set(db, at + ".fLeft", 0.0F);  // times and values go before these
        Set(db, at + ".fTop", 0.0F);
        times.Add(comments.Number(0));
        values.Add(comments.IsNull(1) ? std::numeric_limits<double>::quiet_NaN() : comments.Real(1));
        channels.Add(comments.Text(2).c_str());
    }
    if (times.GetSize() == 0) return;
    Set(db, "Chart.tTagTimes", times);
    Set(db, "Chart.rTagValues", values);
    Set(db, "Chart.sTagChannels", channels);
}
}  // namespace

std::vector<std::string> SessionNames(const std::string& path) {
    File file;
    file.OpenToRead(path);
    std::vector<std::string> names;
    for (Statement all(file, Names()); all.Next();) names.push_back(all.Text(0));
    return names;
}

void LoadSession(const std::string& path, const std::string& name, IPropertyDB& db) {
    File file;
    file.OpenToRead(path);
    file.Run("BEGIN");  // of one moment, whoever writes meanwhile
    Statement all(file, Names());
    while (all.Next()) {
        if (all.Text(0) != name) continue;
        const sqlite3_int64 session = all.Number(1);
        Set(db, "Session.sLogger", all.Text(all.Text(2).empty() ? 5 : 2));
        Set(db, "Session.sFamily", all.Text(3));
        Set(db, "Session.sPort", all.Text(4));
        db.SetPath("Channels");
        std::vector<std::string> keys;
        Statement channels(file, "SELECT key, name, unit FROM channel WHERE session = ? ORDER BY place");
        channels.Bind(session);
        while (channels.Next()) {
            keys.push_back(channels.Text(0));
            Set(db, "Channels." + keys.back() + ".sName", channels.Text(1));
            Set(db, "Channels." + keys.back() + ".sUnit", channels.Text(2));
        }
        LoadReadings(file, session, keys, LoadGaps(file, session, keys, db), db);
        LoadEvents(file, session, db);
        LoadComments(file, session, db);
        return;
    }
    throw CSinkFailure(path + ": there is no session \"" + name + "\"");
}

}  // namespace sqlite
