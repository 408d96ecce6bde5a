// The serial ports of this machine, for menus and lists to choose from. House text. User-interface thread.
#pragma once

#include <string>
#include <vector>

struct ListedPort {
    std::string name, description;  // the latter may be empty
};

// As they are at this moment.
std::vector<ListedPort> ListPorts();
// Two names of one port.
bool SamePort(const std::string& one, const std::string& other);
