// A session: the readings of one logger, kept in a property database (docs/formats.md has the keys).
// The times are strictly increasing; every channel has as many values as there are times. Readings are in memory, or stay in a
// recording, which may be longer than memory is.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/session/reading_array.h"
#include "host/session/recorded_series.h"
#include "propdb/property_db.h"
#include "time/time_point.h"

class Session {
public:
    struct Channel {
        std::string key, name, unit;
        ReadingArray<CDoubleArray> values;
        Channel(std::string key, std::string name, std::string unit);
    };

    // A new session with the channels of a logger description.
    Session(IPropertyDB& description, const std::string& port);
    // A stored one. A Failure if the database holds none; `path` is named in it. Its readings stay where they are, so that the
    // database must outlast the session and keep them.
    Session(IPropertyDB& stored, const std::string& path, int);
    // One whose readings stay in their recording; `facts` are the recording's.
    Session(IPropertyDB& facts, std::unique_ptr<RecordedSeries> readings);

    // One reading. A time that is not later than the last one is taken as one microsecond after it.
    void Add(CVXTTime time, const CDoubleArray& values);
    // A recording's readings are all read for it; a Failure if they cannot be.
    void Store(IPropertyDB& db) const;

    size_t Count() const;
    // Of readings in memory; microseconds since 1970.
    const CInt64Array& Times() const { return m_times.Whole(); }
    const std::vector<Channel>& Channels() const { return m_channels; }
    const std::string& Logger() const { return m_logger; }
    // Where the readings are that are not in memory; else null.
    RecordedSeries* Recorded() const { return m_recorded.get(); }

    // The lowest and highest finite value of a channel; false without any.
    bool Range(size_t channel, double& low, double& high) const;
    double LastValue(size_t channel) const;  // of the last reading that asked for it; NaN without any

    // A heading and one line a reading, for people, as `show` writes it.
    std::string Table(const std::string& picture = {}) const;

private:
    void TakeNames(IPropertyDB& stored);
    void FindNotDue(IPropertyDB& stored);

    std::string m_family, m_logger, m_port;
    ReadingArray<CInt64Array> m_times;
    const IPropertyDB* m_keptIn = nullptr;  // that readings are shared with
    std::vector<Channel> m_channels;
    std::unique_ptr<RecordedSeries> m_recorded;
};
