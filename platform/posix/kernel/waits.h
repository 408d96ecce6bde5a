// Waiting for events and threads; for messages too: messages.h.
// Any thread. A thread that waits for an event with a pending port operation serves that operation itself: it polls the
// port, moves the bytes and completes the operation. So no service thread stands between the line and the waiter.
#pragma once

#include "platform/posix/kernel/handles.h"

#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu
#define MAXIMUM_WAIT_OBJECTS 64u

// Time-outs are milliseconds; 0 looks once, INFINITE waits for ever. Failure is WAIT_FAILED: error 6 for what is no event or
// thread, 87 for a count of 0 or above 64.
ORVIK_API DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
ORVIK_API DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds);
