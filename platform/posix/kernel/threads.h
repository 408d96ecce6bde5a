// Threads, and the clocks they read.
// Any thread. The exit code of a running thread is 259 (STILL_ACTIVE).
#pragma once

#include "platform/posix/kernel/handles.h"

#define STILL_ACTIVE 259u
#define STACK_SIZE_PARAM_IS_A_RESERVATION 0x00010000u

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);

// `flags` may hold STACK_SIZE_PARAM_IS_A_RESERVATION; a suspended start is refused (error 87). A stack size of 0 is the
// system's default. The thread runs on after its handle is closed.
ORVIK_API HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                                     LPVOID parameter, DWORD flags, LPDWORD threadId);
ORVIK_API DWORD WINAPI GetCurrentThreadId();
// The calling thread's pseudo handle: valid in its own thread only, and closing it does nothing.
ORVIK_API HANDLE WINAPI GetCurrentThread();
ORVIK_API DWORD WINAPI GetThreadId(HANDLE thread);
ORVIK_API BOOL WINAPI GetExitCodeThread(HANDLE thread, LPDWORD exitCode);

// Ends the thread at its next wait (a wait for objects or messages, a sleep, a blocking read or write), unwinding its stack, and
// waits up to 100 ms for that: no thread is ever stopped in the middle of an instruction, with locks held. FALSE with error
// 1460 when the thread did not come to a wait in that time; it will still end at the next one.
ORVIK_API BOOL WINAPI TerminateThread(HANDLE thread, DWORD exitCode);

ORVIK_API void WINAPI Sleep(DWORD milliseconds);

// Milliseconds of the monotonic clock; the 32-bit form wraps after 49.7 days.
ORVIK_API DWORD WINAPI GetTickCount();
ORVIK_API ULONGLONG WINAPI GetTickCount64();

// A clock for measuring: nanoseconds, going on while the machine sleeps, as it does on Windows. Never fail.
ORVIK_API BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* count);
ORVIK_API BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency);
