// The gaps and events of a session in words, in the order of time. User-interface thread.
#pragma once

#include <string>

#include "host/session/reading_source.h"

// A line for each that lies in the range or reaches into it. UTF-8.
std::string GapList(const RecordedNotes& notes, const Session& session, TimeRange range);
// What a gap's or an event's code means.
std::string CauseInWords(unsigned cause);
// "Flow, Level": the channels at those places. UTF-8.
std::string ChannelNames(const std::vector<WORD>& places, const Session& session);
