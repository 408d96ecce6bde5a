// Loading and storing property databases for a command: what fails is a Failure with exit code 3.
#pragma once

#include <string>

#include "propdb/property_db.h"

void LoadDatabase(const std::string& path, CPropertyDB& db);
void StoreDatabase(const std::string& path, CPropertyDB& db);
// Before long work whose result is to be stored at `path`: a Failure now if that is known to be impossible. What stands there
// stays.
void RequireWritable(const std::string& path);
bool FileExists(const std::string& path);
// Whether two names lead to the same place, as far as the names tell.
bool SameFile(const std::string& one, const std::string& other);
// True for names that the property database stores as XML.
bool IsXmlName(const std::string& path);
