// The readings of a session as a text file (docs/formats.md), put in the place of the old one as a whole. User-interface thread.
#pragma once

#include <string>

#include "host/app/work_progress.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"

// False where damage kept some of the readings from being there. A Failure if the file cannot be written; WorkStopped when the
// progress does not want it any more. In both cases what stood there stays.
bool StoreCsv(const std::string& path, const Session& session, const CsvForm& form = {}, TimeRange range = {},
              WorkProgress* progress = nullptr);
