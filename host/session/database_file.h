// Loading and storing property databases for a command: what fails is a Failure with exit code 3.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "host/app/work_progress.h"
#include "propdb/property_db.h"

// Progress is a line on the terminal where none is given. WorkStopped is thrown when it does not want the work any more: the
// database then holds a part, and the file is as it was. `size` is about how many bytes will be written.
//
// An XML file that the module could have written is the module's to read. One with UTF-8 letters, or with what only XML at large
// knows, is read by the rules of XML (database_xml.h), and so is one that the module's reader refuses; what is neither is told
// with line and column. `db` is empty before, and after a Failure.
void LoadDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress = nullptr);
// For an XML file that could be loaded: a Failure if it is XML by the rules, and holds what the module's reader passes over or
// takes for something else, such as a type that there is not.
void CheckXml(const std::string& path);
// Reals are written to XML with all their digits.
void StoreDatabase(const std::string& path, CPropertyDB& db, WorkProgress* progress = nullptr, unsigned __int64 size = 0);
// In the archive form, as a whole or not at all, but not forced to the disk: for what is written again every second. A Win32 code.
DWORD StoreOften(const std::string& path, CPropertyDB& db);
// Bytes; 0 for a file that there is not.
unsigned __int64 FileSize(const std::string& path);
// Before long work whose result is to be stored at `path`: a Failure now if that is known to be impossible. What stands there
// stays.
void RequireWritable(const std::string& path);
bool FileExists(const std::string& path);
// Whether two names lead to one file, by whatever way (see platform/same_file.h).
bool SameFile(const std::string& one, const std::string& other);
// A Failure that names the options, or arguments, of the first two that lead to one file. An empty name is none.
void RequireDifferentFiles(std::initializer_list<std::pair<const char*, std::string>> files);
// True for names that the property database stores as XML.
bool IsXmlName(const std::string& path);
