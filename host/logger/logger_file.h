// The description of the logger to read, from a file or of the logger that every installation has to practise on, and what the
// plug-in of its family makes of it.
// The user-interface thread only. What is made belongs to the caller, and must go before the application object does.
#pragma once

#include <memory>
#include <string>

#include "host/app/host_app.h"
#include "propdb/property_db.h"

class CCommException;

// An empty path means the embedded logger. A Failure if the file is missing or no property database. The host's own keys have
// their spelling afterwards, whatever the case of letters was.
void LoadLoggerDescription(const std::string& path, CPropertyDB& description);

// Whether the file is such a description, and no session.
bool IsLoggerDescription(const std::string& path);

// A Failure if the description names no family, its plug-in cannot be used, it holds keys that nobody knows, or the plug-in
// cannot use it. Its keys have their spelling afterwards.
std::unique_ptr<ILogger> MakeLogger(CHostApp& app, CPropertyDB& description);
std::unique_ptr<ILoggerSimulator> MakeSimulator(CHostApp& app, CPropertyDB& description);

// Ends an exception that a logger threw and gives what it says, in UTF-8.
std::string TakeMessage(CCommException* failure);
