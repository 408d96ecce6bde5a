#include "platform/posix/kernel/waits.h"

#include "platform/posix/kernel/thread_internal.h"
#include "platform/posix/kernel/wait_list_internal.h"

using namespace orvik::detail;

namespace {
DWORD Fail(DWORD error) {
    SetLastError(error);
    return WAIT_FAILED;
}
}  // namespace

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const Pinned<Waitable> object(handle);
    if (!object) return Fail(ERROR_INVALID_HANDLE);
    std::unique_lock kernel(KernelLock());
    EndIfTerminated(kernel);
    if (object->IsSignalled()) {
        object->Consume();
        return WAIT_OBJECT_0;
    }
    Waitable* const waited[] = {&*object};
    const bool signalled = WaitUntil(kernel, waited, DeadlineIn(milliseconds), [&] { return waited[0]->IsSignalled(); });
    if (!signalled) return WAIT_TIMEOUT;
    object->Consume();
    return WAIT_OBJECT_0;
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    WaitList list;
    if (const DWORD error = list.Take(count, handles)) return Fail(error);
    std::unique_lock kernel(KernelLock());
    DWORD result = WAIT_TIMEOUT;
    WaitUntil(kernel, list.Objects(), DeadlineIn(milliseconds), [&] { return list.TakeSignal(waitAll != FALSE, result); });
    return result;
}
