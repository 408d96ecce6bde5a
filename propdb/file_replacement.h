// Replaces a file as a whole: the new contents are written to a file beside it, flushed to the disk and put in its place in one
// step. Whatever happens in between, the name holds the old file or the new one. Internal; one thread. Failures are
// CFileException by pointer. Until Commit has returned, the destructor removes the new file.
#pragma once

#include "afx/file.h"
#include "afx/string.h"

namespace orvik::detail {
class FileReplacement {
public:
    // A symbolic link is followed: its target is what is replaced, in the target's folder. Refused: what is neither a file nor
    // missing (a folder, a device), and a file that is marked read-only.
    explicit FileReplacement(const char* path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    CFile& File() { return m_file; }
    // Flushes, closes, gives the new file the old one's permissions, and puts it in place.
    void Commit();

private:
    void OpenBeside();

    CString m_target;
    CString m_new;
    bool m_replaces = false;  // there is an old file
    bool m_committed = false;
    CFile m_file;
};
}  // namespace orvik::detail
