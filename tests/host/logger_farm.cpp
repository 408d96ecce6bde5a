// Many Modbus RTU loggers in one program, each on a pseudo-terminal of its own, whose names it prints: the far end of a station
// under load. Answers at once, with registers that count its answers; a request that no logger could answer gets exception 3.
// Each line has loggers of all addresses below 100.
//   logger_farm COUNT
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "plugins/modbus/modbus_frame.h"

namespace {
constexpr BYTE kSilent = 100;

struct Logger {
    std::vector<BYTE> heard;
    WORD answers = 0;

    void Serve(int device) {
        BYTE block[256];
        const ssize_t got = read(device, block, sizeof block);
        if (got > 0) heard.insert(heard.end(), block, block + got);
        modbus::Request request;
        for (size_t used = 0; modbus::FindRequest(heard, request, used);) {
            heard.erase(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(used));
            if (request.slave >= kSilent) continue;
            const bool good = request.count > 0 && request.count <= modbus::kMaxRegisters;
            const std::vector<WORD> words(request.count, answers = static_cast<WORD>((answers + good) & 0x3FFF));
            const std::vector<BYTE> reply =
                good ? modbus::EncodeReply(request, words) : modbus::EncodeException(request, modbus::kIllegalValue);
            if (write(device, reply.data(), reply.size()) < 0) return;  // who does not read misses it
        }
    }
};

// A pseudo-terminal that is raw and stays, whose name is printed; -1 if there is none.
int Open() {
    const int device = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (device < 0 || grantpt(device) != 0 || unlockpt(device) != 0) return -1;
    const int keeper = open(ptsname(device), O_RDWR | O_NOCTTY | O_CLOEXEC);  // without any opener our end would hang up
    termios raw{};
    if (keeper < 0 || tcgetattr(keeper, &raw) != 0) return -1;
    cfmakeraw(&raw);
    return tcsetattr(keeper, TCSANOW, &raw) == 0 && std::puts(ptsname(device)) >= 0 ? device : -1;
}
}  // namespace

int main(int argc, char** argv) {
    std::vector<Logger> loggers(static_cast<size_t>(argc > 1 ? std::atoi(argv[1]) : 1));
    std::vector<pollfd> devices;
    while (devices.size() < loggers.size()) {
        devices.push_back({Open(), POLLIN, 0});
        if (devices.back().fd >= 0) continue;
        std::perror("logger_farm");
        return 1;
    }
    std::fflush(stdout);
    while (poll(devices.data(), devices.size(), -1) >= 0) {
        for (size_t i = 0; i < loggers.size(); ++i) {
            if (devices[i].revents & POLLIN) loggers[i].Serve(devices[i].fd);
        }
    }
}
