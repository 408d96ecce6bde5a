// What a program that runs for long and whoever keeps it running tell each other. On Linux that is the service manager's
// notification socket ($NOTIFY_SOCKET) and the signal SIGHUP; Windows has neither, and there nobody listens.
// How many files it may hold open at once belongs to the same.
// OrvikTellService is for any thread, the others for the main thread.
#pragma once

#include "platform/win32.h"

// Lines "NAME=value" for the service manager ("READY=1\nSTATUS=..."). Non-zero when one has taken them.
ORVIK_API BOOL OrvikTellService(LPCSTR lines);
// The time in milliseconds within which the service manager wants to hear "WATCHDOG=1" again and again; 0: it does not.
ORVIK_API DWORD OrvikServiceWatchdog();

// As many open files as the system allows at most: shells begin programs with room for a thousand, which 250 ports use up. On
// Windows there is no such limit.
ORVIK_API void OrvikAllowManyFiles();

// From now on the wish to read its settings again is kept for OrvikReloadAsked and ends nothing. A terminal that goes away is a
// wish to stop all the same.
ORVIK_API void OrvikCatchReload();
// Non-zero once for each wish, or for several that came together.
ORVIK_API BOOL OrvikReloadAsked();
