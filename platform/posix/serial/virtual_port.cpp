#include "platform/virtual_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/clock_internal.h"
#include "platform/posix/kernel/errors_internal.h"

using namespace orvik::detail;

namespace {
// Held on a port's end as long as it lives, so that nobody takes its link; who opens the port locks it by other means.
struct flock WholePort() {
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

// Whether a link leads to a port that another object, or another process, keeps.
bool LeadsToALivePort(const char* link) {
    const int port = open(link, O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (port < 0) return false;
    struct flock range = WholePort();
    const bool live = isatty(port) && fcntl(port, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
    close(port);
    return live;
}
}  // namespace

struct VirtualPort::State {
    int device = -1;  // our end
    int keeper = -1;  // the port's end, kept open: without any opener our end would report a hang-up
    std::string name, link;

    ~State() {
        char target[256];
        // Only the link we made goes, not one that somebody else has put there since.
        const ssize_t length = link.empty() ? -1 : readlink(link.c_str(), target, sizeof target);
        if (length > 0 && name == std::string(target, static_cast<size_t>(length))) unlink(link.c_str());
        if (keeper >= 0) close(keeper);
        if (device >= 0) close(device);
    }
    DWORD WaitFor(short events, int64_t deadline) const;
};

// 0 when the descriptor is ready, 1460 after the time.
DWORD VirtualPort::State::WaitFor(short events, int64_t deadline) const {
    for (;;) {
        const int64_t left = deadline - NowNs();
        pollfd ready{device, events, 0};
        const timespec timeout = ToTimespec(left < 0 ? 0 : left);
        const int count = ppoll(&ready, 1, deadline == kNever ? nullptr : &timeout, nullptr);
        if (count > 0) return ERROR_SUCCESS;
        if (count == 0) return ERROR_TIMEOUT;
        if (errno != EINTR) return ErrorFromErrno(errno);
    }
}

VirtualPort::VirtualPort() = default;
VirtualPort::~VirtualPort() = default;

DWORD VirtualPort::Create(const char* link) {
    if (m_state) return ERROR_ALREADY_INITIALIZED;
    auto state = std::make_unique<State>();
    state->device = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    char name[128];
    if (state->device < 0 || grantpt(state->device) != 0 || unlockpt(state->device) != 0 ||
        ptsname_r(state->device, name, sizeof name) != 0)
        return ErrorFromErrno(errno);
    state->name = name;
    state->keeper = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw;
    if (state->keeper < 0 || tcgetattr(state->keeper, &raw) != 0) return ErrorFromErrno(errno);
    cfmakeraw(&raw);  // before anybody opens the port: an echo would come back to the device as input
    if (tcsetattr(state->keeper, TCSANOW, &raw) != 0) return ErrorFromErrno(errno);
    if (link != nullptr && *link != 0) {
        const std::string path = SystemPath(link);
        struct stat info;
        if (lstat(path.c_str(), &info) == 0) {
            if (!S_ISLNK(info.st_mode)) return ERROR_ALREADY_EXISTS;
            if (LeadsToALivePort(path.c_str())) return ERROR_SHARING_VIOLATION;
            unlink(path.c_str());
        }
        if (symlink(name, path.c_str()) != 0) return errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
        state->link = path;
    }
    struct flock range = WholePort();
    fcntl(state->keeper, F_OFD_SETLK, &range);
    m_state = std::move(state);
    return ERROR_SUCCESS;
}

void VirtualPort::Unplug() { m_state.reset(); }
bool VirtualPort::IsPlugged() const { return m_state != nullptr; }

const std::string& VirtualPort::GetDeviceName() const {
    static const std::string none;
    return m_state ? m_state->name : none;
}

DWORD VirtualPort::Read(void* data, DWORD size, DWORD& count, DWORD timeout) {
    count = 0;
    if (!m_state) return ERROR_INVALID_HANDLE;
    const int64_t deadline = DeadlineIn(timeout);
    while (size != 0) {
        const ssize_t got = read(m_state->device, data, size);
        if (got > 0) {
            count = static_cast<DWORD>(got);
            break;
        }
        if (got == 0 || (errno != EAGAIN && errno != EINTR)) return got == 0 ? ERROR_NOT_READY : ErrorFromErrno(errno);
        const DWORD error = m_state->WaitFor(POLLIN, deadline);
        if (error != ERROR_SUCCESS) return error == ERROR_TIMEOUT ? ERROR_SUCCESS : error;
    }
    return ERROR_SUCCESS;
}

DWORD VirtualPort::Write(const void* data, DWORD size, DWORD timeout) {
    if (!m_state) return ERROR_INVALID_HANDLE;
    const int64_t deadline = DeadlineIn(timeout);
    const char* at = static_cast<const char*>(data);
    while (size != 0) {
        const ssize_t sent = write(m_state->device, at, size);
        if (sent > 0) {
            at += sent;
            size -= static_cast<DWORD>(sent);
            continue;
        }
        if (sent < 0 && errno != EAGAIN && errno != EINTR) return ErrorFromErrno(errno);
        if (const DWORD error = m_state->WaitFor(POLLOUT, deadline)) return error;
    }
    return ERROR_SUCCESS;
}
