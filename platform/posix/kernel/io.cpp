#include "platform/posix/kernel/io.h"

#include <cstring>

#include "platform/posix/kernel/io_internal.h"
#include "platform/posix/kernel/wait_internal.h"

namespace orvik::detail {

DWORD IoObject::Result(OVERLAPPED& overlapped, DWORD& moved, bool) {
    moved = static_cast<DWORD>(overlapped.InternalHigh);
    return overlapped.Internal == STATUS_PENDING ? ERROR_IO_INCOMPLETE : static_cast<DWORD>(overlapped.Internal);
}

namespace {
// COM1 to COM9 are names of devices wherever they stand; higher numbers need the prefix.
bool IsPlainPortName(const char* name) {
    return (name[0] | 32) == 'c' && (name[1] | 32) == 'o' && (name[2] | 32) == 'm' && name[3] >= '1' && name[3] <= '9' &&
           name[4] == 0;
}

// The tail of a read or write.
BOOL Conclude(DWORD error, DWORD moved, LPDWORD count) {
    if (count != nullptr) *count = moved;
    return Finish(error);
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

HANDLE CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES, DWORD disposition, DWORD flags, HANDLE) {
    DWORD error = ERROR_SUCCESS;
    std::shared_ptr<IoObject> object;
    if (name == nullptr || *name == 0) {
        error = name == nullptr ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND;
    } else if (std::strncmp(name, R"(\\.\)", 4) == 0) {
        object = OpenPort(name + 4, access, share, disposition, flags, error);
    } else if (IsPlainPortName(name)) {
        object = OpenPort(name, access, share, disposition, flags, error);
    } else {
        object = OpenRegularFile(name, access, share, disposition, flags, error);
    }
    // Opening may succeed with something to tell, as that the file was there already.
    SetLastError(error);
    if (!object) return INVALID_HANDLE_VALUE;
    const HANDLE handle = NewHandle(object);
    if (handle != nullptr) return handle;
    object->Closing();
    return INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD length, LPDWORD read, LPOVERLAPPED overlapped) {
    const Pinned<IoObject> object(file);
    DWORD moved = 0;
    if (!object) return Conclude(ERROR_INVALID_HANDLE, 0, read);
    if ((buffer == nullptr && length != 0) || (read == nullptr && overlapped == nullptr))
        return Conclude(ERROR_INVALID_PARAMETER, 0, read);
    const DWORD error = object->Read(buffer, length, moved, overlapped);
    return Conclude(error, moved, read);
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD length, LPDWORD written, LPOVERLAPPED overlapped) {
    const Pinned<IoObject> object(file);
    DWORD moved = 0;
    if (!object) return Conclude(ERROR_INVALID_HANDLE, 0, written);
    if ((buffer == nullptr && length != 0) || (written == nullptr && overlapped == nullptr))
        return Conclude(ERROR_INVALID_PARAMETER, 0, written);
    const DWORD error = object->Write(buffer, length, moved, overlapped);
    return Conclude(error, moved, written);
}

BOOL GetOverlappedResult(HANDLE file, LPOVERLAPPED overlapped, LPDWORD moved, BOOL wait) {
    const Pinned<IoObject> object(file);
    if (!object) return Finish(ERROR_INVALID_HANDLE);
    if (overlapped == nullptr || moved == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return Finish(object->Result(*overlapped, *moved, wait != FALSE));
}

BOOL CancelIo(HANDLE file) {
    const Pinned<IoObject> object(file);
    return Finish(object ? object->Cancel() : ERROR_INVALID_HANDLE);
}
