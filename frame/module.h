// The module's start-up as its users see it.
// On the thread that loads the user's module.
#pragma once

#include "platform/win32.h"

// Called once by each module that uses this one, host or plug-in, from its own initialisation: makes this module's texts, images
// and classes reachable from the caller's module, and gives the caller's module state the application's setting if it has none.
ORVIK_API void OrvikShared_InitModule();
