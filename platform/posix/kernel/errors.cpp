#include "platform/posix/kernel/errors_internal.h"

#include <cerrno>

namespace {
thread_local DWORD t_lastError = 0;
}

DWORD GetLastError() { return t_lastError; }
void SetLastError(DWORD code) { t_lastError = code; }

namespace orvik::detail {
DWORD ErrorFromErrno(int error) {
    switch (error) {
        case 0:
            return ERROR_SUCCESS;
        case ENOENT:
        case ENXIO:
        case ENODEV:
            return ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EMFILE:
        case ENFILE:
            return ERROR_TOO_MANY_OPEN_FILES;
        case EACCES:
        case EPERM:
        case EBUSY:
        case EISDIR:
            return ERROR_ACCESS_DENIED;
        case EBADF:
            return ERROR_INVALID_HANDLE;
        case ENOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case EXDEV:
            return ERROR_NOT_SAME_DEVICE;
        case EROFS:
            return ERROR_WRITE_PROTECT;
        case EIO:
            return ERROR_NOT_READY;  // what a serial device answers once it is gone
        case EEXIST:
            return ERROR_FILE_EXISTS;
        case EINVAL:
            return ERROR_INVALID_PARAMETER;
        case EPIPE:
            return ERROR_BROKEN_PIPE;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:  // a limit of the file system or the user
            return ERROR_DISK_FULL;
        case ENOTTY:
        case ENOSYS:
            return ERROR_INVALID_FUNCTION;
        case ENAMETOOLONG:
            return ERROR_FILENAME_EXCED_RANGE;
        case ECANCELED:
            return ERROR_OPERATION_ABORTED;
        case ETIMEDOUT:
            return ERROR_TIMEOUT;
        case EADDRINUSE:
            return WSAEADDRINUSE;
        case EADDRNOTAVAIL:
            return WSAEADDRNOTAVAIL;
        case ENETDOWN:
            return WSAENETDOWN;
        case ENETUNREACH:
            return WSAENETUNREACH;
        case ECONNABORTED:
            return WSAECONNABORTED;
        case ECONNRESET:
            return WSAECONNRESET;
        case ECONNREFUSED:
            return WSAECONNREFUSED;
        case EHOSTUNREACH:
            return WSAEHOSTUNREACH;
        default:
            return ERROR_GEN_FAILURE;
    }
}
}  // namespace orvik::detail
