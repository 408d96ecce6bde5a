// The recordings of one logger: the file under its name, and those that rotation makes beside it ("inlet.rec",
// "inlet-20261123T064512Z.rec", ...; RecordingWriter gives the names). Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

// Those that are there, in the order in which they began, as their names tell.
std::vector<std::string> RecordingsOf(const std::string& path);

// When a recording began: the time of its first reading, or of what stands in the place of one. A Win32 code; error 38 where
// there is none yet.
DWORD BeginOfRecording(const std::string& path, __int64& began);
