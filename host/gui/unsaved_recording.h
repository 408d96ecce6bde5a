// Where a window's download records until its user saves it or throws it away: what is found here when the window starts was left
// by one that was killed.
#pragma once

#include <string>
#include <vector>

// A name that nothing has, in $ORVIK_UNSAVED, else in the user's own folder for such data; empty if there can be none.
std::string NewUnsavedRecording();
// One for a window that nobody looks at, among the files that do not last.
std::string NewPassingRecording();
// Those that nobody records into, oldest first.
std::vector<std::string> UnsavedRecordings();
