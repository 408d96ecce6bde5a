// Port names and the devices behind them; docs/ports.md tells users the same.
// Any thread; reads the environment and the ports directory at every call, so that a new link counts at once.
#pragma once

#include <string>
#include <string_view>

namespace orvik::detail {

// $ORVIK_PORTS_DIR, else $XDG_CONFIG_HOME/orvik/ports, else ~/.config/orvik/ports.
std::string PortsDirectory();

// The number of a name "COMn" (any case, n from 1 to 999 without leading zeros); 0 for another name.
int PortNumber(std::string_view name);

// The device path for "COMn" or an absolute path; empty for anything else. The device need not be there.
std::string DeviceOfPort(std::string_view name);

// The fixed number of a device's kernel name: ttyS0 is 1, ttyUSB0 is 33, ttyACM0 is 65, 32 of each; 0 for any other.
int FixedPortNumber(std::string_view deviceName);

}  // namespace orvik::detail
