#include "pty_peer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <termios.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <vector>

namespace {
std::string Failure() { return std::string("error ") + std::strerror(errno); }

std::string LinkName(std::string name) {
    for (char& c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return name;
}

std::string ToHex(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::vector<unsigned char> FromHex(const std::string& text) {
    std::vector<unsigned char> bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// What nobody reads must not hold up the test: a write that stands still for two seconds is an error.
bool WriteAll(int fd, const std::vector<unsigned char>& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        pollfd line{fd, POLLOUT, 0};
        if (poll(&line, 1, 2000) <= 0) return false;
        const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EAGAIN) return false;
        if (count > 0) done += static_cast<size_t>(count);
    }
    return true;
}

std::vector<unsigned char> ReadUpTo(int fd, size_t count, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::vector<unsigned char> bytes;
    while (bytes.size() < count) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd line{fd, POLLIN, 0};
        if (poll(&line, 1, left > 0 ? static_cast<int>(left) : 0) <= 0 || !(line.revents & POLLIN)) break;
        unsigned char buffer[4096];
        const ssize_t got = read(fd, buffer, std::min(sizeof(buffer), count - bytes.size()));
        if (got <= 0) break;
        bytes.insert(bytes.end(), buffer, buffer + got);
    }
    return bytes;
}

struct Counter {
    const char* name;
    std::atomic<uint32_t> PtySim::*field;
};
constexpr Counter kErrors[] = {{"frame", &PtySim::frame},
                               {"overrun", &PtySim::overrun},
                               {"parity", &PtySim::parity},
                               {"brk", &PtySim::brk},
                               {"buf_overrun", &PtySim::buf_overrun}};
constexpr Counter kFields[] = {{"lines", &PtySim::lines},
                               {"breakOn", &PtySim::breakOn},
                               {"breakCount", &PtySim::breakCount},
                               {"breakMilliseconds", &PtySim::breakMilliseconds}};
struct ModemLine {
    const char* name;
    uint32_t bit;
    std::atomic<uint32_t> PtySim::*changes;
};
constexpr ModemLine kLines[] = {{"cts", TIOCM_CTS, &PtySim::cts},
                                {"dsr", TIOCM_DSR, &PtySim::dsr},
                                {"rng", TIOCM_RNG, &PtySim::rng},
                                {"dcd", TIOCM_CAR, &PtySim::dcd}};

template <class Table>
auto Find(const Table& table, const std::string& name) {
    for (const auto& entry : table) {
        if (name == entry.name) return &entry;
    }
    return static_cast<decltype(&table[0])>(nullptr);
}
}  // namespace

PtyPeer::PtyPeer(std::string ports, std::string records) : m_ports(std::move(ports)), m_records(std::move(records)) {}
PtyPeer::~PtyPeer() = default;

void PtyPeer::Line::StopStream() {
    streaming = false;
    if (stream.joinable()) stream.join();
}

PtyPeer::Line::~Line() {
    StopStream();
    if (!link.empty()) unlink(link.c_str());
    if (master >= 0) close(master);
    // After the line itself: while it stands, its record does.
    if (!record.empty()) unlink(record.c_str());
    if (sim) munmap(sim, sizeof(PtySim));
}

std::string PtyPeer::Add(const std::string& name) {
    m_lines.erase(name);
    auto line = std::make_unique<Line>();
    line->master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (line->master < 0 || grantpt(line->master) != 0 || unlockpt(line->master) != 0) return Failure();
    char device[64];
    if (ptsname_r(line->master, device, sizeof(device)) != 0) return Failure();
    termios settings;
    tcgetattr(line->master, &settings);
    cfmakeraw(&settings);
    tcsetattr(line->master, TCSANOW, &settings);

    line->record = m_records + "/pts" + (std::strrchr(device, '/') + 1);
    const int file = open(line->record.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || ftruncate(file, sizeof(PtySim)) != 0) return Failure();
    void* const map = mmap(nullptr, sizeof(PtySim), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (map == MAP_FAILED) return Failure();
    line->sim = static_cast<PtySim*>(map);
    line->sim->magic = PtySim::kMagic;

    const std::string link = m_ports + "/" + LinkName(name);
    unlink(link.c_str());
    if (symlink(device, link.c_str()) != 0) return Failure();
    line->link = link;
    m_lines[name] = std::move(line);
    return std::string("ok ") + device;
}

std::string PtyPeer::Execute(const std::string& command) {
    std::istringstream words(command);
    std::string verb, name, what;
    words >> verb >> name >> what;
    if (verb == "add") return Add(name);
    const auto found = m_lines.find(name);
    if (found == m_lines.end()) return "error no such port";
    Line& line = *found->second;

    if (verb == "remove") {
        m_lines.erase(found);
        return "ok";
    }
    if (verb == "send") {
        line.StopStream();
        return WriteAll(line.master, FromHex(what)) ? "ok" : Failure();
    }
    if (verb == "receive") {
        int milliseconds = 0;
        words >> milliseconds;
        return "ok " + ToHex(ReadUpTo(line.master, std::stoul(what), milliseconds));
    }
    if (verb == "stream") {
        if (line.streaming.exchange(true)) return "ok";
        line.stream = std::thread([&line] {
            const std::vector<unsigned char> bytes(16, 'S');
            while (line.streaming) {
                pollfd ready{line.master, POLLOUT, 0};
                if (poll(&ready, 1, 10) <= 0 || write(line.master, bytes.data(), bytes.size()) > 0) continue;
                if (errno != EAGAIN) break;
                poll(nullptr, 0, 1);  // nobody reads just now
            }
        });
        return "ok";
    }
    if (verb == "raise" || verb == "drop") {
        const ModemLine* const modem = Find(kLines, what);
        if (!modem) return "error no such line";
        const bool on = verb == "raise";
        const uint32_t before = on ? line.sim->lines.fetch_or(modem->bit) : line.sim->lines.fetch_and(~modem->bit);
        if (((before & modem->bit) != 0) != on) ++(line.sim->*modem->changes);
        return "ok";
    }
    if (verb == "count") {
        const Counter* const error = Find(kErrors, what);
        if (!error) return "error no such error";
        ++(line.sim->*error->field);
        return "ok";
    }
    if (verb == "get") {
        const Counter* const field = Find(kFields, what);
        return field ? "ok " + std::to_string((line.sim->*field->field).load()) : "error no such field";
    }
    return "error no such command";
}
