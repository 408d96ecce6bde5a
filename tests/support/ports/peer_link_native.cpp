// The far end in this very process.
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "pty_peer.h"
#include "tests/support/ports/serial_peer.h"
#include "tests/support/time_limit.h"

namespace {
// One folder a process for the ports and their records, gone with it.
struct Folder {
    Folder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "orvik-ports-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        path = pattern;
        setenv("ORVIK_PORTS_DIR", path.c_str(), 1);
        setenv("ORVIK_PTYSIM_DIR", path.c_str(), 1);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::string path;
};
// Set before main, and so before any thread looks at the environment.
Folder g_folder;
PtyPeer g_peer(g_folder.path, g_folder.path);
}  // namespace

std::string AskPeer(const std::string& command) {
    const Awaiting farEnd("the far end to answer");
    const std::string answer = g_peer.Execute(command);
    if (answer.compare(0, 2, "ok") == 0) return answer.size() > 3 ? answer.substr(3) : std::string();
    std::fprintf(stderr, "far end: %s: %s\n", command.c_str(), answer.c_str());
    std::abort();
}
