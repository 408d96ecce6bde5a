#include "host/measurement/missing_port.h"

#include "comm/comm_exception.h"
#include "comm/serial.h"
#include "host/words/texts.h"

bool IsPortMissing(const std::string& port) {
    return port.find("://") == std::string::npos && CSerial::CheckPort(port.c_str()) == CSerial::PortMissing;
}

std::string WhyLost(const std::string& port, LONG code, const std::string& text) {
    const bool gone = code == CCommException::DeviceNotOpen || code == CCommException::HardwareError;
    return gone && IsPortMissing(port) ? Say(Text::PortNotThere) : text;
}
