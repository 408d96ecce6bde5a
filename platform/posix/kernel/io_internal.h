// What CreateFileA, ReadFile and WriteFile dispatch on: the kinds of object behind a file handle.
// Methods are called by any thread, several at a time; each object takes its own lock.
#pragma once

#include <memory>

#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/kernel/io.h"

namespace orvik::detail {

class IoObject : public KernelObject {
public:
    static constexpr Kind kKind = kIo;
    explicit IoObject(Kind kind = kFile) : KernelObject(static_cast<unsigned>(kIo) | kind) {}

    // Give 0, 997 (pending) or the failure's Win32 code; `moved` holds the bytes moved (0 unless the result is 0).
    // `overlapped` may be null, unless the object was opened for overlapped use.
    virtual DWORD Read(void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) = 0;
    virtual DWORD Write(const void* buffer, DWORD length, DWORD& moved, OVERLAPPED* overlapped) = 0;
    // The object's part of GetOverlappedResult and CancelIo; a plain file has nothing pending, ever.
    virtual DWORD Result(OVERLAPPED& overlapped, DWORD& moved, bool wait);
    virtual DWORD Cancel() { return ERROR_SUCCESS; }
};

// A regular file as CreateFileA opens it; on failure null and the Win32 code in `error`. Implemented in regular_file.cpp.
std::shared_ptr<IoObject> OpenRegularFile(const char* path, DWORD access, DWORD share, DWORD disposition, DWORD flags,
                                          DWORD& error);

// A serial port by what follows "\\.\": COMn, or a device's absolute path. Implemented in serial_open.cpp.
std::shared_ptr<IoObject> OpenPort(const char* nameAfterPrefix, DWORD access, DWORD share, DWORD disposition, DWORD flags,
                                   DWORD& error);

}  // namespace orvik::detail
