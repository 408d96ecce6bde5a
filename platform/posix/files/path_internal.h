// File names at the edge of the system, and drive letters over this system's one tree of folders. C: is the root "/". Every other
// letter is a symbolic link "d:" in the drives directory ($ORVIK_DRIVES_DIR, else $XDG_CONFIG_HOME/orvik/drives, else
// ~/.config/orvik/drives) to the folder that is its root; a letter without a link is a drive that is not there. docs/files.md
// tells users. Any thread. The current drive and each drive's folder belong to the process, as the working directory does.
#pragma once

#include <string>
#include <string_view>

#include "platform/api.h"

namespace orvik::detail {

// Whether the name begins with a drive: a letter and a colon.
bool HasDrive(std::string_view name);
// The root folder of a drive, symbolic links followed, without "/" at its end except for "/" itself; empty where there is none.
// Letters of either case.
std::string DriveRoot(char letter);
// Where a name that begins with a drive leads, its separators being "/": "c:/a" from the drive's root, "c:a" from the folder that
// was last the working directory on it. On a drive that is not there it names nothing, and nothing can be made under it.
std::string DrivePath(std::string_view name);
// A name that no file can have.
inline constexpr std::string_view kNowhere = "/dev/null/no drive";

// The name that the system's file calls take for a name in this house's text. Windows-1252 text becomes UTF-8; text beyond
// Windows-1252 passes as it stands, so that a file named in any script can be reached; a UTF-8 process's names are its own.
// A backslash separates folders as "/" does; a drive letter leads to its folder; a name of another computer (two backslashes
// first) leads nowhere. docs/files.md has the whole rule.
std::string SystemPath(std::string_view name);
// The reverse for names that the system gives: Windows-1252 where it can be said in it, else as it stands.
std::string HousePath(std::string_view name);

}  // namespace orvik::detail
