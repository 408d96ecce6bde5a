// The tables in which readings stand, as docs/postgresql.md shows them. Made where they are missing, brought up where they are of
// an earlier layout; of a later one they are refused. One connection's thread.
#pragma once

#include <string>

#include "plugins/postgresql/postgresql_connection.h"

namespace postgresql {

// The search path is the schema then. In a transaction of its own; two that do it at once wait for each other.
void PrepareLayout(Connection& connection, const std::string& schema);

}  // namespace postgresql
