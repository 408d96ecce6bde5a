// The gaps and events of a session in words, in the order of time. User-interface thread.
#pragma once

#include <string>

#include "host/session/reading_source.h"

// A line for each that lies in the range or reaches into it. UTF-8.
std::string GapList(const RecordedNotes& notes, const Session& session, TimeRange range);
// Not one of an attempt in vain that was over before it took a reading with it.
bool HasMissing(const CRecordedGap& gap);
// Why it came, in words: what was told of it, with the code's meaning. UTF-8.
std::string CauseOf(const CRecordedGap& gap);
// What a gap's or an event's code means.
std::string CauseInWords(unsigned cause);
// "Flow, Level": the channels at those places. UTF-8.
std::string ChannelNames(const std::vector<WORD>& places, const Session& session);
