#include "host/session/session.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "afx/collections.h"
#include "host/session/channel_intervals.h"
#include "host/session/missing_cells.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"
#include "host/session/series_range.h"
#include "host/words/console.h"
#include "host/words/same_text.h"
#include "host/words/texts.h"

namespace {
std::string ReadText(IPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    return static_cast<const char*>(text);
}

// Of another kind, or none: it stays empty.
template <class Array>
void ShareValue(const IPropertyDB& db, const std::string& key, ReadingArray<Array>& array) {
    const CObject* const value = db.GetValueObject(key.c_str(), TRUE);
    if (value != nullptr && value->IsKindOf(RUNTIME_CLASS(Array))) array.Share(*static_cast<const Array*>(value));
}

// Units that look the same are one unit, with one axis: written as the first channel has it.
class UnitSpellings {
public:
    const std::string& Spelling(const std::string& unit) { return m_first.emplace(LooksOf(unit), unit).first->second; }

private:
    std::map<std::string, std::string> m_first;
};
}  // namespace

Session::Channel::Channel(std::string channelKey, std::string channelName, std::string channelUnit)
    : key(std::move(channelKey)), name(std::move(channelName)), unit(std::move(channelUnit)) {}

Session::Session(IPropertyDB& description, const std::string& port)
    : m_family(ReadText(description, "sFamily")), m_logger(ReadText(description, "sName")), m_port(port) {
    UnitSpellings units;
    CStringArray keys;
    description.Enum("Channels", keys, FALSE, FALSE);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = static_cast<const char*>(keys.GetAt(i)), at = "Channels." + key;
        const std::string name = ReadText(description, at + ".sName");
        m_channels.emplace_back(key, name.empty() ? key : name, units.Spelling(ReadText(description, at + ".sUnit")));
    }
}

Session::Session(IPropertyDB& stored, const std::string& path, int) : m_keptIn(&stored) {
    const Failure none{kFileFailed, Say(Text::NoSession, {ToUtf8(path)})};
    if (!stored.Find("Session") || !stored.Find("Channels")) throw none;
    TakeNames(stored);
    ShareValue(stored, "Session.tTimes", m_times);
    for (Channel& channel : m_channels) {
        ShareValue(stored, "Channels." + channel.key + ".rValues", channel.values);
        if (channel.values.GetSize() != m_times.GetSize()) throw none;
    }
    FindNotDue(stored);
}

// The XML form keeps no bits of what is no number: what was not missing, in a channel that is not always read, was not to be
// read.
void Session::FindNotDue(IPropertyDB& stored) {
    const std::vector<bool> own = HaveOwnIntervals(stored, m_channels.size());
    if (std::find(own.begin(), own.end(), true) == own.end()) return;
    RecordedNotes notes;
    notes.Load(stored, ChannelKeys(stored));
    MissingCells missing(notes.Gaps());
    std::vector<double> row(m_channels.size());
    for (INT_PTR at = 0; at < m_times.GetSize(); ++at) {
        for (size_t i = 0; i < row.size(); ++i) row[i] = m_channels[i].values.GetAt(at);
        if (std::all_of(row.begin(), row.end(), [](double value) { return std::isnan(value); })) continue;
        const BYTE* const flags = missing.FlagsOf(m_times.GetAt(at), row.data(), row.size());
        for (size_t i = 0; i < row.size(); ++i) {
            if (own[i] && flags[i] == RF_NO_VALUE) m_channels[i].values.SetAt(at, NotDueValue());
        }
    }
}

Session::Session(IPropertyDB& facts, std::unique_ptr<RecordedSeries> readings) : m_recorded(std::move(readings)) {
    TakeNames(facts);
}

void Session::TakeNames(IPropertyDB& stored) {
    m_family = ReadText(stored, "Session.sFamily");
    m_logger = ReadText(stored, "Session.sLogger");
    m_port = ReadText(stored, "Session.sPort");
    UnitSpellings units;
    for (const std::string& key : ChannelKeys(stored)) {
        const std::string at = "Channels." + key;
        m_channels.emplace_back(key, ReadText(stored, at + ".sName"), units.Spelling(ReadText(stored, at + ".sUnit")));
    }
}

size_t Session::Count() const {
    return m_recorded != nullptr ? static_cast<size_t>(m_recorded->Count()) : static_cast<size_t>(m_times.GetSize());
}

bool Session::Range(size_t channel, double& low, double& high) const {
    if (m_recorded != nullptr) return m_recorded->Index().Range(channel, low, high);
    return FiniteRange(m_channels[channel].values.GetData(), 0, Count(), low, high);
}

double Session::LastValue(size_t channel) const {
    if (m_recorded != nullptr) return m_recorded->LastValue(channel);
    const CDoubleArray& values = m_channels[channel].values.Whole();
    for (INT_PTR at = values.GetSize(); at-- > 0;) {
        if (!IsNotDue(values.GetAt(at))) return values.GetAt(at);
    }
    return std::numeric_limits<double>::quiet_NaN();
}

void Session::Add(CVXTTime time, const CDoubleArray& values) {
    __int64 at = time.GetBinaryTime();
    if (m_times.GetSize() > 0) at = std::max(at, m_times.GetAt(m_times.GetSize() - 1) + 1);
    m_times.Add(at);
    for (size_t i = 0; i < m_channels.size(); ++i) m_channels[i].values.Add(values.GetAt(static_cast<INT_PTR>(i)));
}

void Session::Store(IPropertyDB& db) const {
    CInt64Array times;
    std::vector<CDoubleArray> values;
    const auto set = [&](const char* key, const auto& array) {
        if (!array.IsShared() || &db != m_keptIn) db.SetValue(key, array.Whole());  // else it stands there
    };
    if (m_recorded != nullptr) m_recorded->ReadAll(times, values);
    db.BeginUsing("Session");
    db.SetValue("sFamily", m_family.c_str());
    db.SetValue("sLogger", m_logger.c_str());
    db.SetValue("sPort", m_port.c_str());
    if (m_recorded != nullptr) {
        db.SetValue("tTimes", times);
    } else {
        set("tTimes", m_times);
    }
    db.EndUsing();
    db.SetPath("Channels");
    for (size_t i = 0; i < m_channels.size(); ++i) {
        const Channel& channel = m_channels[i];
        db.BeginUsing(("Channels." + channel.key).c_str());
        db.SetValue("sName", channel.name.c_str());
        db.SetValue("sUnit", channel.unit.c_str());
        if (m_recorded != nullptr) {
            db.SetValue("rValues", values[i]);
            values[i].RemoveAll();
        } else {
            set("rValues", channel.values);
        }
        db.EndUsing();
    }
    if (m_recorded != nullptr) m_recorded->Notes().Store(db, ChannelKeys(db));
}

std::string Session::Table(const std::string& picture) const {
    std::string table;
    const std::unique_ptr<ReadingWriter> writer = MakeTableWriter(*this, ChannelsNamed(*this, {}), picture);
    writer->Heading(table);
    const std::unique_ptr<ReadingSource> readings = ReadingsOf(*this);
    while (readings->Next()) writer->Row(table, readings->Time(), readings->Values());
    return table;
}
