// db edit, and what it shares with the other db actions.
#pragma once

#include <string>

#include "host/words/console.h"
#include "propdb/property_db.h"

ExitCode EditDatabase(const std::string& path);

// Every value at and below the prefix (everything for an empty one) by key, kind and text, which is cut short unless wished
// whole; folders without values with a "." behind them. A Failure when nothing is there.
void ListDatabase(const CPropertyDB& db, const std::string& prefix, bool whole);
// The value's text; a Failure, in which `path` is named, when there is none.
void PrintValue(const CPropertyDB& db, const std::string& path, const std::string& key);
// Says, key by key, what a file with an XML name does not hold, or not as it stands.
void TellXmlLosses(const std::string& path, const CPropertyDB& db);
