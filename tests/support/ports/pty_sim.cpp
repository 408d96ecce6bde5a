// Stands between a program and the C library and answers, for pseudo terminals that have a PtySim record, the device calls
// that the kernel does not answer for them. Linked into native test programs; preloaded as a library into Wine.
#include "pty_sim.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

// The kernel's own settings record, under the name that its request numbers are made of. <asm/termbits.h> has it as well,
// but does not go together with <termios.h>.
struct termios2 {
    tcflag_t c_iflag, c_oflag, c_cflag, c_lflag;
    cc_t c_line, c_cc[19];
    speed_t c_ispeed, c_ospeed;
};

namespace {
constexpr unsigned kFirstPtyMajor = 136, kLastPtyMajor = 143;
constexpr tcflag_t kMarkSpace = 010000000000;
constexpr tcflag_t kKept = CSIZE | CSTOPB | PARENB | PARODD | kMarkSpace | CRTSCTS;

template <class Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// The record of a line, mapped for one call: no map outlives its line, whose number may be used again.
class Record {
public:
    explicit Record(int fd) {
        const int error = errno;
        Map(fd);
        errno = error;
    }
    ~Record() {
        if (m_sim) munmap(m_sim, sizeof(PtySim));
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    explicit operator bool() const { return m_sim != nullptr; }
    PtySim* operator->() const { return m_sim; }

private:
    void Map(int fd) {
        const char* const folder = getenv("ORVIK_PTYSIM_DIR");
        struct stat about;
        if (!folder || fstat(fd, &about) != 0 || !S_ISCHR(about.st_mode)) return;
        const unsigned number = major(about.st_rdev);
        if (number < kFirstPtyMajor || number > kLastPtyMajor) return;
        char path[512];
        snprintf(path, sizeof(path), "%s/pts%u", folder, minor(about.st_rdev) + 256 * (number - kFirstPtyMajor));
        const int file = open(path, O_RDWR | O_CLOEXEC);
        if (file < 0) return;
        void* const map = mmap(nullptr, sizeof(PtySim), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        close(file);
        if (map == MAP_FAILED) return;
        m_sim = static_cast<PtySim*>(map);
        if (m_sim->magic == PtySim::kMagic) return;
        munmap(map, sizeof(PtySim));
        m_sim = nullptr;
    }
    PtySim* m_sim = nullptr;
};

bool HungUp(int fd) {
    pollfd line{fd, 0, 0};
    return poll(&line, 1, 0) > 0 && (line.revents & (POLLHUP | POLLERR | POLLNVAL));
}

uint64_t Nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000000u + static_cast<uint64_t>(now.tv_nsec);
}

void Keep(const Record& sim, tcflag_t& cflag) {
    sim->cflag = cflag & kKept;
    sim->cflagKept = 1;
    cflag = (cflag & ~(CSIZE | PARENB)) | CS8;  // all that a pseudo terminal takes
}

void Recall(const Record& sim, tcflag_t& cflag) {
    if (sim->cflagKept) cflag = (cflag & ~kKept) | sim->cflag;
}

// Waits for one of the lines to change, as a driver's interrupt would tell.
int AwaitLines(const Record& sim, int fd, uint32_t wanted) {
    const uint32_t before[] = {sim->cts, sim->dsr, sim->rng, sim->dcd};
    for (;;) {
        const timespec pause{0, 1000000};
        if (clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr) == EINTR) {
            errno = EINTR;
            return -1;
        }
        if (HungUp(fd)) {
            errno = EIO;
            return -1;
        }
        if (((wanted & TIOCM_CTS) && sim->cts != before[0]) || ((wanted & TIOCM_DSR) && sim->dsr != before[1]) ||
            ((wanted & TIOCM_RNG) && sim->rng != before[2]) || ((wanted & TIOCM_CAR) && sim->dcd != before[3])) {
            return 0;
        }
    }
}

int Answer(const Record& sim, int fd, unsigned long request, void* argument) {
    constexpr uint32_t outputs = TIOCM_DTR | TIOCM_RTS;
    auto* const bits = static_cast<uint32_t*>(argument);
    switch (request) {
        case TIOCMGET:
            *bits = sim->lines;
            return 0;
        case TIOCMSET:
            sim->lines = (sim->lines & ~outputs) | (*bits & outputs);
            return 0;
        case TIOCMBIS:
            sim->lines |= *bits & outputs;
            return 0;
        case TIOCMBIC:
            sim->lines &= ~(*bits & outputs);
            return 0;
        case TIOCMIWAIT:
            return AwaitLines(sim, fd, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(argument)));
        case TIOCSERGETLSR:
            *bits = TIOCSER_TEMT;
            return 0;
        case TIOCSBRK:
            sim->breakStart = Nanoseconds();
            sim->breakOn = 1;
            return 0;
        case TIOCCBRK:
            if (sim->breakOn.exchange(0)) {
                sim->breakMilliseconds = static_cast<uint32_t>((Nanoseconds() - sim->breakStart + 500000) / 1000000);
                ++sim->breakCount;
            }
            return 0;
        default: {  // TIOCGICOUNT
            auto* const counts = static_cast<serial_icounter_struct*>(argument);
            std::memset(counts, 0, sizeof(*counts));
            const auto put = [](int& field, uint32_t value) { field = static_cast<int>(value); };
            put(counts->cts, sim->cts), put(counts->dsr, sim->dsr), put(counts->rng, sim->rng), put(counts->dcd, sim->dcd);
            put(counts->frame, sim->frame), put(counts->overrun, sim->overrun), put(counts->parity, sim->parity);
            put(counts->brk, sim->brk), put(counts->buf_overrun, sim->buf_overrun);
            return 0;
        }
    }
}
}  // namespace

extern "C" {
__attribute__((visibility("default"))) int ioctl(int fd, unsigned long request, ...) noexcept {
    va_list list;
    va_start(list, request);
    void* const argument = va_arg(list, void*);
    va_end(list);
    static const auto next = Next<int (*)(int, unsigned long, ...)>("ioctl");
    request = static_cast<uint32_t>(request);  // callers differ in how they widen it
    switch (request) {
        case TIOCMGET:
        case TIOCMSET:
        case TIOCMBIS:
        case TIOCMBIC:
        case TIOCMIWAIT:
        case TIOCSERGETLSR:
        case TIOCSBRK:
        case TIOCCBRK:
        case TIOCGICOUNT: {
            const Record sim(fd);
            if (!sim) break;
            if (!HungUp(fd)) return Answer(sim, fd, request, argument);
            errno = EIO;
            return -1;
        }
        case TCGETS2: {
            const int result = next(fd, request, argument);
            if (result != 0) return result;
            if (const Record sim(fd); sim) Recall(sim, static_cast<termios2*>(argument)->c_cflag);
            return 0;
        }
        case TCSETS2:
        case TCSETSW2:
        case TCSETSF2: {
            const Record sim(fd);
            if (!sim) break;
            termios2 settings = *static_cast<const termios2*>(argument);
            Keep(sim, settings.c_cflag);
            return next(fd, request, &settings);
        }
        default:
            break;
    }
    return next(fd, request, argument);
}

__attribute__((visibility("default"))) int tcsetattr(int fd, int when, const termios* settings) noexcept {
    static const auto next = Next<int (*)(int, int, const termios*)>("tcsetattr");
    const Record sim(fd);
    if (!sim) return next(fd, when, settings);
    termios plain = *settings;
    Keep(sim, plain.c_cflag);
    return next(fd, when, &plain);
}

__attribute__((visibility("default"))) int tcgetattr(int fd, termios* settings) noexcept {
    static const auto next = Next<int (*)(int, termios*)>("tcgetattr");
    const int result = next(fd, settings);
    if (result != 0) return result;
    if (const Record sim(fd); sim) Recall(sim, settings->c_cflag);
    return 0;
}
}
