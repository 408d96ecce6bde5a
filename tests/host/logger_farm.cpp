// Many Modbus RTU loggers in one program, each on a pseudo-terminal of its own, whose names it prints: the far end of a station
// under load. Answers at once, with registers that count its answers; a request that no logger could answer gets exception 3.
// Each line has loggers of all addresses below 100.
//   logger_farm COUNT
#include <fcntl.h>
#include <sys/epoll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {
constexpr uint8_t kSilent = 100;
constexpr size_t kRequest = 8;  // unit, function, first, count, CRC

uint16_t Crc(const uint8_t* bytes, size_t size) {
    uint16_t crc = 0xFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc = static_cast<uint16_t>(crc ^ bytes[i]);
        for (int bit = 0; bit < 8; ++bit) crc = static_cast<uint16_t>(crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1);
    }
    return crc;
}

struct Logger {
    int device = -1;
    std::vector<uint8_t> heard;
    uint16_t answers = 0;

    bool Open() {
        device = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        if (device < 0 || grantpt(device) != 0 || unlockpt(device) != 0) return false;
        const int keeper = open(ptsname(device), O_RDWR | O_NOCTTY | O_CLOEXEC);  // without any opener our end would hang up
        termios raw{};
        if (keeper < 0 || tcgetattr(keeper, &raw) != 0) return false;
        cfmakeraw(&raw);
        return tcsetattr(keeper, TCSANOW, &raw) == 0 && std::puts(ptsname(device)) >= 0;
    }
    void Serve() {
        uint8_t block[256];
        const ssize_t got = read(device, block, sizeof block);
        if (got <= 0) return;
        heard.insert(heard.end(), block, block + got);
        while (heard.size() >= kRequest) {
            if (Crc(heard.data(), kRequest) != 0) {  // a frame and its own CRC leave nothing
                heard.erase(heard.begin());
                continue;
            }
            if (heard[0] < kSilent) Answer(heard.data());
            heard.erase(heard.begin(), heard.begin() + kRequest);
        }
    }
    void Answer(const uint8_t* request) {
        const unsigned count = request[4] << 8 | request[5];
        std::vector<uint8_t> reply = {request[0], request[1]};
        if (count == 0 || count > 125) {
            reply[1] |= 0x80;
            reply.push_back(3);
        } else {
            reply.push_back(static_cast<uint8_t>(2 * count));
            ++answers;
            for (unsigned i = 0; i < count; ++i)
                reply.insert(reply.end(), {static_cast<uint8_t>(answers >> 8 & 0x3F), static_cast<uint8_t>(answers)});
        }
        const uint16_t crc = Crc(reply.data(), reply.size());
        reply.insert(reply.end(), {static_cast<uint8_t>(crc), static_cast<uint8_t>(crc >> 8)});
        if (write(device, reply.data(), reply.size()) < 0) return;  // who does not read misses it
    }
};
}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 1;
    std::vector<Logger> loggers(static_cast<size_t>(count));
    const int poll = epoll_create1(EPOLL_CLOEXEC);
    for (size_t i = 0; i < loggers.size(); ++i) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = i;
        if (!loggers[i].Open() || epoll_ctl(poll, EPOLL_CTL_ADD, loggers[i].device, &event) != 0) {
            std::perror("logger_farm");
            return 1;
        }
    }
    std::fflush(stdout);
    for (;;) {
        epoll_event events[64];
        const int ready = epoll_wait(poll, events, 64, -1);
        for (int i = 0; i < ready; ++i) loggers[events[i].data.u64].Serve();
    }
}
