// The keys that were held when the message that is being handled was sent. User-interface thread.
#pragma once

#include "platform/win32.h"

inline bool IsDown(int key) { return ::GetKeyState(key) < 0; }
