// The one door to the operating system: the Win32 names this house uses, on both homes. Threads, ownership and failures are those
// of their documentation. Windows has them in its own headers; elsewhere platform/posix/ gives each the meaning that its
// documentation gives it.
#pragma once

#include "platform/api.h"

#if defined(_WIN32)
#include <windows.h>
// These need windows.h before them.
#include <commctrl.h>
#include <setupapi.h>
// The C run-time's 64-bit time functions.
#include <sys/timeb.h>
#include <time.h>
// Its calls for directories, drives and access.
#include <direct.h>
#include <io.h>
// From here on the names ending in A take this process's text.
#include "platform/windows/doors.h"
#else
#include "platform/posix/win32_names.h"
#endif
