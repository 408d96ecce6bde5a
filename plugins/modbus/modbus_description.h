// The description of Modbus loggers on one line: its settings, the slaves and the channels, read from a property database
// (docs/modbus.md has the keys). Plain data for any thread.
#pragma once

#include <string>
#include <vector>

#include "comm/transport.h"
#include "plugins/modbus/modbus_channel.h"
#include "propdb/property_db_interface.h"

namespace modbus {

struct Slave {
    BYTE address = 1;
    std::string key = {}, name = {};  // both empty for one that is known by its number alone
    DWORD timeout = 0;                // ms for an answer; 0: the host's
    int attempts = 3;                 // for a request that is not answered
    WORD most = kMaxRegisters;        // registers in a request
    WORD gap = 0;                     // registers, or coils, that may be read along between channels
    DWORD pause = 0;                  // ms between its last answer and the next request to it
};

struct Description {
    std::vector<Slave> slaves = {Slave{}};  // those that channels are of, at least one
    CLineSettings line;
    DWORD pauseOpen = 0;            // ms between opening the line and the first request
    std::vector<Channel> channels;  // in the order of their keys
};

// Reads the description at the database's using path. What is wrong is a CCommException with code 3 and a text that names the
// key.
Description ReadDescription(IPropertyDB& db);
// The keys that it reads; see ILoggerFamily.
const char* const* DescriptionKeys();

}  // namespace modbus
