// A serial port that is not there: never was, or has been unplugged. Any thread.
#pragma once

#include <string>

#include "platform/win32.h"

// Of a serial port, not of a network's address.
bool IsPortMissing(const std::string& port);
// Why a line gives nothing, by the code and text of the failure. What a system says of a port that was pulled out ("hardware
// error", then "device not open") tells nobody that it was: then that the port is not there. House texts.
std::string WhyLost(const std::string& port, LONG code, const std::string& text);
