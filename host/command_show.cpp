// show: the readings of a session file.
#include <cstdio>

#include "host/arguments.h"
#include "host/commands.h"
#include "host/database_file.h"
#include "host/session.h"

ExitCode RunShow(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {"--csv"}, 1);
    const std::string& path = arguments.At(0, "FILE");
    CPropertyDB db;
    LoadDatabase(path, db);
    const Session session(db, path, 0);
    const std::string text = arguments.Has("--csv") ? session.Csv() : session.Table();
    std::fwrite(text.data(), 1, text.size(), stdout);
    return kDone;
}
