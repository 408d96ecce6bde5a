#include "platform/posix/kernel/events.h"

#include "platform/posix/kernel/wait_internal.h"

using namespace orvik::detail;

HANDLE CreateEventA(LPSECURITY_ATTRIBUTES, BOOL manualReset, BOOL initialState, LPCSTR name) {
    if (name != nullptr) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    return NewHandle(std::make_shared<Event>(manualReset != FALSE, initialState != FALSE));
}

BOOL SetEvent(HANDLE event) {
    const NamedEvent named(event);
    if (!named) return Finish(ERROR_INVALID_HANDLE);
    named->Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    const NamedEvent named(event);
    if (!named) return Finish(ERROR_INVALID_HANDLE);
    named->Reset();
    return TRUE;
}
