// Names and units of a logger description that would mislead whoever reads what was measured.
#pragma once

#include "propdb/property_db.h"

// A Failure if a name or a unit holds a character that is an order and no letter, or if two channels have names that look the
// same but are not.
void CheckNames(const CPropertyDB& description);
