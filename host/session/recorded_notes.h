// What a recording says besides its readings: why some are missing, and what happened meanwhile; and the form in which a session
// keeps that (docs/formats.md). Plain values; any thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "propdb/property_db_interface.h"
#include "record/recording_types.h"

class RecordedNotes {
public:
    // A gap under a number that was there before takes that one's place.
    void Add(const CRecordedGap& gap);
    void Add(const CRecordedEvent& event) { m_events.push_back(event); }

    const std::vector<CRecordedGap>& Gaps() const { return m_gaps; }
    const std::vector<CRecordedEvent>& Events() const { return m_events; }
    // Readings that gaps in all channels tell of.
    unsigned __int64 Missed() const;
    // Nothing was recorded after the program had said that it ended.
    bool Ended() const;

    // Keys of channels in their order, for the gaps of single channels. What is empty leaves no key. A ";" in a text becomes ",".
    void Store(IPropertyDB& db, const std::vector<std::string>& channels) const;
    // What there is of it; arrays of different lengths count as far as the shortest one.
    void Load(IPropertyDB& db, const std::vector<std::string>& channels);
    static constexpr char kGaps[] = "Gaps", kEvents[] = "Events";

private:
    std::vector<CRecordedGap> m_gaps;
    std::vector<CRecordedEvent> m_events;
    std::map<DWORD, size_t> m_places;  // of gaps, by their numbers
};

// A key for the channel of this number, from 1 on, where it has none of its own: their order is that of the numbers.
std::string NumberedKey(size_t number, size_t count);
// The keys of the folder "Channels", in the order in which a reading has their values.
std::vector<std::string> ChannelKeys(IPropertyDB& db);
