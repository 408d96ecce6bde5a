// The keys of a logger description: what a person may have typed in another case is brought to the spelling that is known, and
// what nobody knows is refused with what was probably meant. Values are the family's to check.
// User-interface thread only. Text is the house's, sentences are UTF-8.
#pragma once

#include "propdb/property_db.h"

// Brings the host's own keys, and the folders on the way to them, to their spelling. A Failure if a key comes twice.
void SpellHostKeys(CPropertyDB& description);

// The same with the family's keys as well (ILoggerFamily::DescriptionKeys). A Failure for a key that neither knows, and for one
// of several elements, of which only the first would count. Null: the family's keys are its own affair.
void CheckKeys(CPropertyDB& description, const char* const* familyKeys);
