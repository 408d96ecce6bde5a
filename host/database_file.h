// Loading and storing property databases for a command: what fails is a Failure with exit code 3.
#pragma once

#include <string>

#include "host/work_progress.h"
#include "propdb/property_db.h"

// Progress is a line on the terminal where none is given. WorkStopped is thrown when it does not want the work any more: the
// database then holds a part, and the file is as it was. `size` is about how many bytes will be written.
void LoadDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress = nullptr);
void StoreDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress = nullptr, unsigned __int64 size = 0);
// Bytes; 0 for a file that there is not.
unsigned __int64 FileSize(const std::string& path);
// Before long work whose result is to be stored at `path`: a Failure now if that is known to be impossible. What stands there
// stays.
void RequireWritable(const std::string& path);
bool FileExists(const std::string& path);
// Whether two names lead to the same place, as far as the names tell.
bool SameFile(const std::string& one, const std::string& other);
// True for names that the property database stores as XML.
bool IsXmlName(const std::string& path);
