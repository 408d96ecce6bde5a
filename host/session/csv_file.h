// Readings back from the text form that `show --csv` and `convert` write.
#pragma once

#include <string>

#include "propdb/property_db.h"

// A session of the file: a first line "time" and the channels' names with their units, then a line a reading; times in UTC, or,
// where the first one does not end in Z, local ones with the decimal sign of spreadsheets; nothing stands for NaN. UTF-8, with a
// byte-order mark or without.
// Channels have their numbers for keys. A Failure that names the line of the first fault.
void LoadCsv(const std::string& path, CPropertyDB& db);
// What the ends of the names say.
bool EndsInCsv(const std::string& path);
