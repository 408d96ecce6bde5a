// Replaces a file as a whole: the new contents are written to a file beside it, flushed to the disk and put in its place in one
// step. Whatever happens in between, the name holds the old file or the new one. One thread for one of them.
// Failures are Win32 codes.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32.h"

namespace orvik::detail {

class ORVIK_API FileReplacement {
public:
    FileReplacement() = default;
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    // Closes and removes the new file, unless Commit has put it in place.
    ~FileReplacement();

    // Makes the new file, with the old one's permissions. Once only. A symbolic link is followed: its target is what is replaced,
    // in the target's folder. Refused with 5: what is neither a file nor missing (a folder, a device), and a file that is marked
    // read-only.
    DWORD Begin(std::string path);
    // The new file, to be written; not to be closed.
    HANDLE File() const { return m_file; }
    // Flushes, closes and puts the new file in place.
    DWORD Commit();

private:
    DWORD Close();

    std::string m_target;
    std::string m_new;
    bool m_replaces = false;  // there is an old file
    HANDLE m_file = INVALID_HANDLE_VALUE;
};

// The whole of it for contents that are at hand.
DWORD ReplaceWholeFile(const std::string& path, std::string_view content);

}  // namespace orvik::detail
