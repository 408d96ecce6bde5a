// Makes a recording of a session that is held elsewhere.
#pragma once

#include <string>

#include "host/session/recorded_notes.h"
#include "host/session/session.h"

// Written as a whole or not at all; what stands at `path` is replaced. The facts are what the database holds besides readings,
// gaps and events; these stand between the readings by their times. False where readings are damaged: they are gaps in what is
// written. A Failure with a sentence.
bool StoreAsRecording(const std::string& path, const Session& session, CPropertyDB& db);
