// The one link to the host application.
// User-interface thread. The module stores the host's object and never owns it: the host keeps it alive until it has connected
// null.
#pragma once

#include "platform/win32.h"

class CView;

// A device family's factory, which the host keeps.
class IDeviceFamily {
public:
    // A new view of the family, owned by the caller as every dynamically created object is; null if there is none.
    virtual CView* CreateView() = 0;

protected:
    ~IDeviceFamily() = default;
};

// What the module asks of the host. A host's own interface may add operations behind these.
class IOrvikApp {
public:
    // Appends one line to the communication trace. The module passes finished text as the format and no arguments: a host must
    // print it as data, since a device may send per-cent signs.
    virtual void Trace(const char* format, ...) = 0;
    // The factory of "Cedar", "Modbus", "OPCClient", "Alder" or "Birch", null for a family that is not there.
    virtual IDeviceFamily* FindDeviceFamily(const char* family) = 0;
    // Non-zero while serial traffic is to be traced.
    virtual int IsCommTraceEnabled() = 0;

protected:
    ~IOrvikApp() = default;
};

// Always 1; null disconnects.
ORVIK_API int Connect2Application(IOrvikApp* app);
// Null before the first connection.
ORVIK_API IOrvikApp* GetOrvikApp();
