// The C run-time's calls for the working directory, drives and access to a file, as on Windows. Names are this house's
// (docs/files.md). The working directory is told with its drive and backslashes, so that _chdir, _chdrive and CDisk can
// take it back. Any thread; the working directory and the current drive are the process's. Failures set errno.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

// 0 if the file is there (mode 0) and may be written (2), read (4) or both (6), else -1. A file whose read-only attribute is set
// may not be written, whoever asks; on a folder the attribute means nothing.
ORVIK_API int _access(const char* path, int mode);

// The working directory in a buffer of maxlen bytes, its terminator included; null with ERANGE when it does not fit. A null
// buffer is refused.
ORVIK_API char* _getcwd(char* buffer, int maxlen);
// 0, or -1. A path with a drive changes the current drive too.
ORVIK_API int _chdir(const char* path);

// The current drive, 1 for A: the one last changed to while the working directory lies on it, else the one whose root lies
// deepest above the working directory.
ORVIK_API int _getdrive();
// Goes to the folder that was last the working directory on that drive, its root at first. 0, or -1 for a drive that is not
// there.
ORVIK_API int _chdrive(int drive);
