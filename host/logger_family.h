// What a device plug-in offers the reference host: a logger to read, and a simulated one to practise on.
// A plug-in exports one function, OrvikPlugin_Family; it stays loaded as long as anything it made lives.
// Everything here runs on the host's user-interface thread, but for ILogger::Abort.
#pragma once

#include "comm/orvik_connection.h"
#include "comm/serial_orvik.h"
#include "frame/app_link.h"
#include "frame/numeric_arrays.h"
#include "propdb/property_db_interface.h"

// One logger, described by a property database (docs/formats.md). Destroying it closes its port.
// Failures are CCommException objects, thrown by pointer; the catcher deletes them.
class ILogger {
public:
    virtual ~ILogger() = default;

    // The connection with its state and description, and the port with its trace switches; both belong to the logger.
    virtual COrvikConnection& Connection() = 0;
    virtual CSerialOrvik& Port() = 0;

    // Opens the port and sets the line up. `timeout` in milliseconds bounds every single answer.
    virtual void Connect(const char* port, DWORD timeout) = 0;
    // One reading of all channels: `values` gets as many elements as the description has channels, in the order of their keys.
    virtual void ReadSample(CDoubleArray& values) = 0;
    virtual void Disconnect() = 0;

    // Any thread: the exchange under way, or the next one, ends with code 9 (session aborted).
    virtual void Abort() = 0;
};

// The far end of the line for the same description: takes what the master sends, gives what the logger answers.
class ILoggerSimulator {
public:
    virtual ~ILoggerSimulator() = default;
    // `reply` is emptied and gets the answer, or stays empty while a request is not complete (or not for this logger).
    virtual void Receive(const BYTE* data, size_t size, CByteArray& reply) = 0;
};

class ILoggerFamily : public IDeviceFamily {
public:
    // The caller owns the result. A description that cannot be understood is a CCommException with code 3 and a text that names
    // the key.
    virtual ILogger* CreateLogger(IPropertyDB& description) = 0;
    virtual ILoggerSimulator* CreateSimulator(IPropertyDB& description) = 0;

    // The keys that a description of this family may have besides the host's own, as a null-terminated list of patterns in which
    // "*" is any one segment ("nSlave", "Channels.*.nRegister"); it lives as long as the plug-in. The host brings keys that
    // differ in the case of letters to this spelling before the family sees them, and refuses all others. Null: the host leaves
    // the family's keys alone.
    virtual const char* const* DescriptionKeys() { return nullptr; }

protected:
    ~ILoggerFamily() = default;
};

// extern "C" ILoggerFamily* OrvikPlugin_Family(): the plug-in's one family object, owned by the plug-in.
using OrvikPluginFamilyFunction = ILoggerFamily* (*)();
#define ORVIK_PLUGIN_FAMILY_NAME "OrvikPlugin_Family"
