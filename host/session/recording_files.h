// Recordings as files: known by what they hold, folded into sessions, and added to. Failures have their sentence.
#pragma once

#include <memory>
#include <string>

#include "platform/win32.h"
#include "propdb/property_db.h"

// By its first bytes, not by its name; false for what cannot be read.
bool IsRecording(const std::string& path);
// Where a download into a session records: the session's name and ".rec".
std::string RecordingBeside(const std::string& path);
bool EndsInRec(const std::string& path);

// What was found in a recording.
struct FoldedRecording {
    unsigned __int64 readings = 0, torn = 0, damaged = 0;  // the latter two are bytes
    size_t gaps = 0;
};
// Makes a session of a recording, an archive or the XML form by its name, in one step. The recording stays. What is damaged in it
// is a gap in the session, and told on the error stream; a file that cannot be read is a Failure, and the target as it was.
FoldedRecording FoldRecording(const std::string& recording, const std::string& target);
// What has become a session is not needed any more, and is removed; a damaged one gets another name ("x.damaged.rec"), which is
// told: somebody may get more out of it. A Failure when that cannot be done.
void LayAside(const std::string& recording, const std::string& target, const FoldedRecording& folded);

// What a session keeps of comments and of a view, without its readings.
std::unique_ptr<CPropertyDB> FactsBesideReadings(CPropertyDB& db);
// Adds what is kept of comments and of a view to a recording that nobody records into at the moment.
void SaveIntoRecording(const std::string& path, CPropertyDB& db);
// Whether somebody records into the file at the moment.
bool IsRecordedInto(const std::string& path);
// A Failure if so.
void RequireNobodyRecords(const std::string& path);
