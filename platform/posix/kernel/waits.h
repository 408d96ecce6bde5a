// Waiting for events, threads and messages.
// Any thread. A thread that waits for an event with a pending port operation serves that operation itself: it polls the
// port, moves the bytes and completes the operation. So no service thread stands between the line and the waiter.
#pragma once

#include "platform/posix/kernel/handles.h"

#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu
#define MAXIMUM_WAIT_OBJECTS 64u

#define QS_KEY 0x0001u
#define QS_MOUSEMOVE 0x0002u
#define QS_MOUSEBUTTON 0x0004u
#define QS_POSTMESSAGE 0x0008u
#define QS_TIMER 0x0010u
#define QS_PAINT 0x0020u
#define QS_SENDMESSAGE 0x0040u
#define QS_HOTKEY 0x0080u
#define QS_ALLPOSTMESSAGE 0x0100u
#define QS_MOUSE (QS_MOUSEMOVE | QS_MOUSEBUTTON)
#define QS_INPUT (QS_MOUSE | QS_KEY)
#define QS_ALLEVENTS (QS_INPUT | QS_POSTMESSAGE | QS_TIMER | QS_PAINT | QS_HOTKEY)
#define QS_ALLINPUT (QS_ALLEVENTS | QS_SENDMESSAGE)

// Time-outs are milliseconds; 0 looks once, INFINITE waits for ever. Failure is WAIT_FAILED: error 6 for what is no event or
// thread, 87 for a count of 0 or above 64.
ORVIK_API DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
ORVIK_API DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds);
// Also ends, with WAIT_OBJECT_0 + count, when a message of a kind in `wakeMask` came after the thread last looked at its queue.
ORVIK_API DWORD WINAPI MsgWaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds,
                                                 DWORD wakeMask);
