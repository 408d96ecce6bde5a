// Opening and saving sessions, whichever form their file has: a property database, or a recording that is read where it is.
#pragma once

#include <memory>
#include <string>

#include "host/app/work_progress.h"
#include "host/session/session.h"

struct SessionFile {
    std::string path;                                                   // that was opened
    std::unique_ptr<CPropertyDB> db = std::make_unique<CPropertyDB>();  // what stands beside the readings
    std::unique_ptr<Session> session;
    std::string note;  // what the user should know of the file, one sentence; mostly empty
};

// Whether a session can be kept under this name: .odb or .xml, in letters of either case.
bool HasSessionName(const std::string& path);

// The file to open for a session of this name: that one, or the recording of a download that did not come to its end where there
// is no other. The note tells of a recording that lies beside it.
std::string FileOfSession(const std::string& path, std::string& note);

// A Failure for what is no session; WorkStopped when the progress does not want it any more.
SessionFile OpenSession(const std::string& path, WorkProgress* progress = nullptr);

// Keeps `db` with the session: into its recording, if it is at `path`, else as a session of its own. A recording is never
// replaced. `size` is about how many bytes will be written.
void SaveSession(const std::string& path, const Session& session, CPropertyDB& db, WorkProgress* progress = nullptr,
                 unsigned __int64 size = 0);
// A Failure if that is known to be impossible.
void RequireSavable(const std::string& path, const Session& session);
