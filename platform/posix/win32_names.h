// The Win32 names on a POSIX home, one header per topic; include platform/win32.h, never this file.
#pragma once

#include "platform/posix/types.h"
#include "platform/posix/errors.h"
#include "platform/posix/console.h"
#include "platform/posix/files.h"
#include "platform/posix/modules.h"
#include "platform/posix/text.h"
#include "platform/posix/events.h"
#include "platform/posix/gdi.h"
#include "platform/posix/io.h"
#include "platform/posix/memory.h"
#include "platform/posix/messages.h"
#include "platform/posix/serial.h"
#include "platform/posix/setup.h"
#include "platform/posix/threads.h"
#include "platform/posix/waits.h"
#include "platform/posix/window.h"
