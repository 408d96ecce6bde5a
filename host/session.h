// A session: the readings of one logger, kept in a property database (docs/formats.md has the keys).
// The times are strictly increasing; every channel has as many values as there are times.
#pragma once

#include <string>
#include <vector>

#include "frame/numeric_arrays.h"
#include "propdb/property_db.h"
#include "time/time_point.h"

class Session {
public:
    struct Channel {
        std::string key, name, unit;
        CDoubleArray values;
        Channel() = default;
        Channel(std::string key, std::string name, std::string unit);
        Channel(Channel&& other) noexcept;
    };

    // A new session with the channels of a logger description.
    Session(IPropertyDB& description, const std::string& port);
    // A stored one. A Failure if the database holds none; `path` is named in it.
    Session(IPropertyDB& stored, const std::string& path, int);

    // One reading. A time that is not later than the last one is taken as one microsecond after it.
    void Add(CVXTTime time, const CDoubleArray& values);
    void Store(IPropertyDB& db) const;

    size_t Count() const { return static_cast<size_t>(m_times.GetSize()); }
    const CInt64Array& Times() const { return m_times; }  // microseconds since 1970
    const std::vector<Channel>& Channels() const { return m_channels; }
    const std::string& Logger() const { return m_logger; }

    // A heading and one line a reading, for people: local times to the millisecond, six digits, in the user's regional format.
    // A number picture (time/number_text.h) chooses other digits.
    std::string Table(const std::string& picture = {}) const;
    // The same for programs: UTC times to the microsecond (those outside the years 1601 to 9999 as their ends), values to the
    // last bit, commas; one heading line.
    std::string Csv() const;

private:
    std::string m_family, m_logger, m_port;
    CInt64Array m_times;
    std::vector<Channel> m_channels;
};
