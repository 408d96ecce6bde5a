// What a device plug-in says of itself inside its file: its family and the module version it was compiled for.
// A host reads it from the file's bytes, so that a plug-in of another version is refused before any of its code runs.
// The stamp is plain data that both homes' file formats hold unchanged. Any thread.
#pragma once

#include "afx/string.h"
#include "frame/version.h"
#include "platform/win32.h"

struct OrvikPluginStamp {
    char magic[16];
    char moduleVersion[16];
    char family[32];
};

// Once, at file scope of a plug-in: ORVIK_PLUGIN("Modbus")
#define ORVIK_PLUGIN(familyName)                                                                                              \
    extern "C" ORVIK_PLUGIN_EXPORT const OrvikPluginStamp OrvikPlugin_Stamp = {"\x7FOrvikPlugin\x01\n", ORVIK_MODULE_VERSION, \
                                                                               familyName}

enum EPluginFit {
    PF_FITS = 0,           // a plug-in for this very module version
    PF_OTHER_VERSION = 1,  // a plug-in for another one: do not load it
    PF_NO_PLUGIN = 2,      // readable, but without a stamp, or with more than one
    PF_UNREADABLE = 3,     // GetLastError tells why
};

// Reads the stamp of the file at `path` without loading it. `family` and `version` are filled for the first two results.
ORVIK_API EPluginFit OrvikCheckPlugin(const char* path, CString& family, CString& version);
