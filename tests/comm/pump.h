// The main thread's message loop, as far as a test needs it.
#pragma once

#include "platform/win32.h"
#include "tests/support/time_limit.h"

// Handles messages until `done()` holds; false if it does not within five seconds.
template <class Done>
bool PumpUntil(Done done) {
    const Awaiting handled("messages of the main thread to be handled");
    const DWORD start = ::GetTickCount();
    for (;;) {
        MSG message{};
        while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageA(&message);
        if (done()) return true;
        const DWORD gone = ::GetTickCount() - start;
        if (gone >= 5000) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 5000 - gone, QS_ALLINPUT);
    }
}

// Handles what is waiting now.
inline void PumpOnce() {
    PumpUntil([] { return true; });
}
