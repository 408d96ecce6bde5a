// Windows has no pseudo-terminals that open as ports: there is nothing to create, and so nothing else to do.
#include "platform/virtual_port.h"

struct VirtualPort::State {};

VirtualPort::VirtualPort() = default;
VirtualPort::~VirtualPort() = default;
DWORD VirtualPort::Create(const char*) { return ERROR_NOT_SUPPORTED; }
void VirtualPort::Unplug() {}
bool VirtualPort::IsPlugged() const { return false; }
const std::string& VirtualPort::GetDeviceName() const {
    static const std::string none;
    return none;
}
DWORD VirtualPort::Read(void*, DWORD, DWORD& read, DWORD) {
    read = 0;
    return ERROR_INVALID_HANDLE;
}
DWORD VirtualPort::Write(const void*, DWORD, DWORD) { return ERROR_INVALID_HANDLE; }
