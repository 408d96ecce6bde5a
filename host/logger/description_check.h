// The keys of a logger description: what a person may have typed in another case is brought to the spelling that is known, and
// what nobody knows is refused with what was probably meant. Values are the family's to check.
// User-interface thread only. Text is the house's, sentences are UTF-8.
#pragma once

#include <string>
#include <vector>

#include "propdb/property_db.h"

// Brings the host's own keys, and the folders on the way to them, to their spelling. A Failure if a key comes twice.
void SpellHostKeys(CPropertyDB& description);

// The same with the family's keys as well (ILoggerFamily::DescriptionKeys). A Failure for a key that neither knows, and for one
// of several elements, of which only the first would count. Null: the family's keys are its own affair.
void CheckKeys(CPropertyDB& description, const char* const* familyKeys);

// The same for other files of which people type keys, by a null-terminated list of patterns: their spelling; and those that no
// pattern fits, each with the one that was probably meant.
void SpellKeys(CPropertyDB& db, const char* const* keys);
struct StrayKey {
    std::string key, meant;
};
std::vector<StrayKey> FindStrayKeys(const CPropertyDB& db, const char* const* known);
