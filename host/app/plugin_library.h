// The plug-ins, those of devices and those of sinks: found in the plug-in folder, checked by their stamps, loaded when their family
// is first asked for. User-interface thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/logger_family.h"
#include "record/sink.h"

class PluginLibrary {
public:
    PluginLibrary() = default;
    ~PluginLibrary();  // unloads; nothing that a plug-in made may be left
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // Where plug-ins are looked for, the first one first: $ORVIK_PLUGINS, "plugins" beside the program, and where they are
    // installed.
    static std::vector<std::string> Folders();
    // The families whose plug-ins are there and fit, by name.
    static std::vector<std::string> Families();
    static std::vector<std::string> SinkFamilies();

    // The family of this name, its plug-in loaded if it was not. Null when no plug-in is of that family. A plug-in of that family
    // which was built for another module version, or which cannot be loaded, is a Failure; no code of it has run in the first
    // case.
    ILoggerFamily* Find(const std::string& family);
    // The same for what readings are sent to (record/sink.h).
    ISinkFamily* FindSink(const std::string& family);

private:
    // By its stamp; null where there is none.
    HMODULE FindStamped(const std::string& stamp);
    template <class Family>
    Family* FamilyOf(const std::string& stamp, const char* entry);
    std::map<std::string, HMODULE> m_loaded;  // by their stamps
};
