#include "platform/posix/handles.h"

#include "platform/posix/handle_table_internal.h"
#include "platform/posix/threads.h"

using namespace orvik::detail;

BOOL CloseHandle(HANDLE handle) {
    if (handle == GetCurrentThread()) return TRUE;
    return Finish(RemoveHandle(handle));
}
