// The version of this module. Plug-ins are compiled with it and carry it in their stamp (plugin_stamp.h); the build reads it from
// here, and so does the resource compiler, which wants the numbers too.
#pragma once

#define ORVIK_MODULE_VERSION "1.0.0"
#define ORVIK_VERSION_NUMBERS 1, 0, 0, 0
