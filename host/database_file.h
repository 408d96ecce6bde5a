// Loading and storing property databases for a command: what fails is a Failure with exit code 3.
#pragma once

#include <string>

#include "propdb/property_db.h"

void LoadDatabase(const std::string& path, CPropertyDB& db);
void StoreDatabase(const std::string& path, CPropertyDB& db);
bool FileExists(const std::string& path);
// True for names that the property database stores as XML.
bool IsXmlName(const std::string& path);
