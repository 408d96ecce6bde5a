#include "platform/service.h"

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

void OrvikAllowManyFiles() {
    constexpr rlim_t kEnough = 1 << 20;  // "without a limit" is refused where the system has one all the same
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kEnough) return;
    limit.rlim_cur = std::min(limit.rlim_max, kEnough);
    setrlimit(RLIMIT_NOFILE, &limit);
}

BOOL OrvikTellService(LPCSTR lines) {
    const char* const path = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // "@" in front is a name in the abstract name space, whose first byte is 0.
    if (lines == nullptr || path == nullptr || (path[0] != '/' && path[0] != '@')) return FALSE;
    const size_t length = std::strlen(path);
    if (length >= sizeof address.sun_path) return FALSE;
    std::memcpy(address.sun_path, path, length);
    if (path[0] == '@') address.sun_path[0] = 0;
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) return FALSE;
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length + (path[0] == '@' ? 0 : 1));
    const size_t count = std::strlen(lines);
    ssize_t sent = 0;
    do {
        sent = sendto(socket, lines, count, MSG_NOSIGNAL | MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&address), size);
    } while (sent < 0 && errno == EINTR);
    close(socket);
    return sent == static_cast<ssize_t>(count);
}

DWORD OrvikServiceWatchdog() {
    const char* const microseconds = std::getenv("WATCHDOG_USEC");
    const char* const process = std::getenv("WATCHDOG_PID");
    // Inherited from a parent, it is meant for that one.
    if (microseconds == nullptr || (process != nullptr && std::atol(process) != getpid())) return 0;
    const long long value = std::atoll(microseconds);
    constexpr long long kMost = 0x7FFFFFFF;
    return value <= 0 ? 0 : static_cast<DWORD>(value / 1000 > kMost ? kMost : value / 1000);
}
