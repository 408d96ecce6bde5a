// The Win32 names on a POSIX home, one header per topic; include platform/win32.h, never this file.
#pragma once

#include "platform/posix/types.h"
#include "platform/posix/errors.h"
#include "platform/posix/console.h"
#include "platform/posix/files.h"
#include "platform/posix/modules.h"
#include "platform/posix/text.h"
