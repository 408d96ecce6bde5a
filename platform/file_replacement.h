// Replaces a file as a whole: the new contents are written to a file beside it, flushed to the disk and put in its place in one
// step. Whatever happens in between, the name holds the old file or the new one; of several that write one file at once the last
// one wins, and nothing is left of the others. Owner, group and permissions stay what they were, where the system allows it.
//
// Where nothing can stand beside a file that may itself be written (a folder that is not ours, a file that is mounted alone, a
// link whose target has no name here), its bytes are written over at the end: first what is longer than the old file, so that a full
// disk leaves it as it was. A power cut or a kill in that moment can leave it half written; nothing else can.
//
// One thread for one of them. Failures are Win32 codes.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/win32.h"

namespace orvik::detail {

class NewFile;

class ORVIK_API FileReplacement {
public:
    FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    // Closes and removes the new file, unless Commit has put it in place.
    ~FileReplacement();

    // Makes the new file, with the old one's owner and permissions, and removes what a killed program left of an earlier one. Once
    // only. A symbolic link is followed: its target is what is replaced, in the target's folder. Refused with 5: what is neither a
    // file nor missing (a folder, a device), and a file that is marked read-only.
    DWORD Begin(std::string path);
    // The new file, to be written; not to be closed.
    HANDLE File() const;
    // Flushes, puts the new file in place and closes it.
    DWORD Commit();

private:
    std::string m_target;
    bool m_replaces = false;  // there is an old file
    bool m_over = false;      // which is written over
    std::unique_ptr<NewFile> m_new;
};

// The whole of it for contents that are at hand.
ORVIK_API DWORD ReplaceWholeFile(const std::string& path, std::string_view content);

}  // namespace orvik::detail
