// Files and disks for dialogs: access, the working directory, lists of files, copying with messages to the user, free space.
// Static functions without state of their own; the working directory belongs to the process. CopyFileA is for the user-interface
// thread, since it shows messages; the others for any. How names with drive letters and backslashes behave on Linux is in
// docs/files.md. Null names are empty ones.
#pragma once

#include "afx/array.h"
#include "afx/string.h"

// As the run-time library's _access takes them.
enum eACCESS_MODE : int { accessExist = 0, accessWrite = 2, accessRead = 4, accessReadWrite = 6 };

// What a list holds: entries without the directory attribute, those with it, or all. Any other value gives an empty list.
enum eDIRSPECIFIER : int { dirFilesOnly = 0, dirDirectoriesOnly = 1, dirAll = 2 };

class ORVIK_API CDisk {
public:
    CDisk() = default;
    CDisk(const CDisk&) = default;
    CDisk& operator=(const CDisk&) { return *this; }

    // 1 if the path may be used so, else 0.
    static int Access(const char* path, eACCESS_MODE mode);

    // The working directory, always with a backslash at its end. 0, and `dir` as it was, where it has more than 255 characters or
    // is gone.
    static int GetDir(CString& dir);

    // Changes drive and directory to a path that starts with a drive letter; a backslash at its end does not matter. 1, or 0:
    // then the drive may have been changed, or, where the free space of the drive cannot be read, both.
    static int ChDir(const char* path);

    // The bare names of the entries that match a pattern such as "C:\\data\\*.xml", "." and ".." among them. Sorted by their
    // bytes, so capitals first, if `sort` is not 0. An empty list when nothing matches or the folder cannot be read.
    static void ListDir(const char* pattern, CStringArray& names, int sort, eDIRSPECIFIER kind);

    // Copies a file to a name that does not exist yet. 1, or 0 after one message to the user. Names that differ in the case of
    // their letters only count as the same file, on both homes.
    static int CopyFileA(const char* source, const char* target);

    // Free bytes on a drive, cut to 32 bits: beyond 4 GiB the number starts again, which is kept on purpose. -1 for a drive that
    // cannot be read.
    static LONG FreeSpace(char drive);
};
