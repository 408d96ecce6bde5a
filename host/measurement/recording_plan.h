// What is asked of a recording before it begins, on the command line and in a station's file: when the next file begins, and what
// may stand under its name. Failures have their sentence. User-interface thread.
#pragma once

#include <string>

#include "host/measurement/recording_writer.h"

constexpr __int64 kLongestSpan = 100ll * 366 * 86'400 * 1'000'000;  // us

// A span ("1 day") or a size ("100 MiB"), whichever `text` says; `name` is what a Failure calls it.
void SetRotation(const std::string& name, const std::string& text, RecordingWriter::Plan& record);

// What an earlier run left under the recording's name, or under that of the session that it becomes: a Failure unless it may be
// replaced, or be gone on with where the plan says so. A session to go on with is made a recording again. `force`: whatever
// stands there is replaced.
void CheckEarlier(const RecordingWriter::Plan& record, bool force, CPropertyDB& description);
