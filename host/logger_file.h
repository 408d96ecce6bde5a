// The description of the logger to read: from a file, or of the logger that every installation has to practise on.
#pragma once

#include <string>

#include "propdb/property_db.h"

// An empty path means the embedded logger. A Failure if the file is missing or no property database.
void LoadLoggerDescription(const std::string& path, CPropertyDB& description);
