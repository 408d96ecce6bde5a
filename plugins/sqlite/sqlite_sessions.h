// Sessions out of a file that a sink wrote. Failures are CSinkFailure.
#pragma once

#include <string>
#include <vector>

#include "propdb/property_db_interface.h"

namespace sqlite {

// "Plant/inlet 2026-11-23T06:45:12.123456Z", in the order of their beginning.
std::vector<std::string> SessionNames(const std::string& path);
// The keys of docs/formats.md. A reading is a row; a channel that has none at its time is NaN there.
void LoadSession(const std::string& path, const std::string& name, IPropertyDB& session);

}  // namespace sqlite
