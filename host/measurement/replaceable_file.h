// Whether a download may take a file's place. What stands there is looked at before anything is read from a logger.
#pragma once

#include <string>

#include "propdb/property_db.h"

// A Failure unless `path` is free, or holds a session or a recording of the logger that the description tells of, without
// comments of the user's: nothing else is replaced without being asked to. Comments that the demonstration wrote itself are none
// of the user's.
void RequireReplaceable(const std::string& path, CPropertyDB& description);

// The comments that a user wrote into a session's database.
size_t CommentCount(const CPropertyDB& session);

// Whether the session (its facts, as DescribeSession made them) is one of the logger that the description tells of; and a Failure
// unless it is, for one that is to be gone on with.
bool IsOfLogger(const CPropertyDB& session, CPropertyDB& description);
void RequireSameLogger(const std::string& path, const CPropertyDB& session, CPropertyDB& description);
