// A file that is being written, to be put in another one's place. Nobody else touches it while it is; what a killed program left of
// one is found by its name and removed by the next that is made for the same target. Internal. One thread.
#pragma once

#include <memory>
#include <string>

#include "platform/win32.h"

namespace orvik::detail {

class NewFile {
public:
    // In `folder` (with its separator; empty for the working directory), for this target. Null with the folder's error where there
    // can be none.
    static std::unique_ptr<NewFile> Make(const std::string& folder, const std::string& target, DWORD& error);
    ~NewFile();  // removes it, unless it was moved
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    HANDLE File() const { return m_file; }
    const std::string& Name() const { return m_name; }
    DWORD MoveTo(const std::string& target, DWORD flags);

private:
    NewFile(HANDLE file, std::string name) : m_file(file), m_name(std::move(name)) {}
    static HANDLE Claim(const std::string& name, DWORD& error);
    static bool IsLeftOver(const std::string& name);

    HANDLE m_file;
    std::string m_name;
    bool m_moved = false;
};

// Where a path's last part leads, when it is a symbolic link; the path as it is, when it is none. False when it cannot be said.
bool FollowLink(std::string& path);

}  // namespace orvik::detail
