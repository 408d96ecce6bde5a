// An independent Modbus RTU server (libmodbus) on a pseudo-terminal: modbus_server SLAVE HOLDING INPUT, each a list of registers
// with commas, served from number 0. Prints the device's name, then serves until its input ends.
#include <fcntl.h>
#include <modbus.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {
std::vector<uint16_t> Registers(const char* list) {
    std::vector<uint16_t> values;
    std::istringstream in(list);
    for (std::string one; std::getline(in, one, ',');) values.push_back(static_cast<uint16_t>(std::stoul(one, nullptr, 0)));
    return values;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 1;
    const int line = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (line < 0 || grantpt(line) != 0 || unlockpt(line) != 0) return 1;
    termios raw;
    tcgetattr(line, &raw);
    cfmakeraw(&raw);
    tcsetattr(line, TCSANOW, &raw);
    const std::string name = ptsname(line);
    const int open_end = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);  // or the line would hang up between two users

    const auto holding = Registers(argv[2]), input = Registers(argv[3]);
    modbus_t* context = modbus_new_rtu(name.c_str(), 19200, 'N', 8, 1);
    modbus_set_slave(context, std::atoi(argv[1]));
    modbus_set_socket(context, line);
    modbus_mapping_t* map = modbus_mapping_new(0, 0, static_cast<int>(holding.size()), static_cast<int>(input.size()));
    std::copy(holding.begin(), holding.end(), map->tab_registers);
    std::copy(input.begin(), input.end(), map->tab_input_registers);
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    for (;;) {
        pollfd waiting[2] = {{line, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        if (poll(waiting, 2, -1) < 0 || waiting[1].revents != 0) break;
        uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
        const int length = waiting[0].revents & POLLIN ? modbus_receive(context, query) : 0;
        if (length > 0) modbus_reply(context, query, length, map);
    }
    modbus_mapping_free(map);
    modbus_free(context);
    close(open_end);
    close(line);
    return 0;
}
