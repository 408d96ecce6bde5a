// Makes a recording of a session that is held elsewhere.
#pragma once

#include <string>

#include "host/recorded_notes.h"
#include "host/session.h"

// Written as a whole or not at all; what stands at `path` is replaced. The facts are what the database holds besides readings,
// gaps and events; these stand between the readings by their times. A Failure with a sentence.
void StoreAsRecording(const std::string& path, const Session& session, CPropertyDB& db);
