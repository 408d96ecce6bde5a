// Whether a download may take a file's place. What stands there is looked at before anything is read from a logger.
#pragma once

#include <string>

#include "propdb/property_db.h"

// A Failure unless `path` is free, or holds a session or a recording without comments of the user's: nothing else is replaced
// without being asked to. Comments that the demonstration wrote itself are none of the user's.
void RequireReplaceable(const std::string& path);

// The comments that a user wrote into a session's database.
size_t CommentCount(const CPropertyDB& session);

// A Failure unless the session (its facts, as DescribeSession made them) is one of the logger that the description tells of.
void RequireSameLogger(const std::string& path, const CPropertyDB& session, CPropertyDB& description);
