#include "platform/posix/kernel/handles.h"

#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/kernel/threads.h"

using namespace orvik::detail;

BOOL CloseHandle(HANDLE handle) {
    if (handle == GetCurrentThread()) return TRUE;
    return Finish(RemoveHandle(handle));
}
