// The Win32 functions for ports, and the opening of one.
#include "platform/posix/serial/serial.h"

#include <unistd.h>

#include "platform/posix/serial/port_names_internal.h"
#include "platform/posix/serial/serial_port_internal.h"

namespace orvik::detail {

std::shared_ptr<IoObject> OpenPort(const char* name, DWORD access, DWORD share, DWORD disposition, DWORD flags, DWORD& error) {
    // A port is never shared, and is there or not.
    if (share != 0 || disposition != OPEN_EXISTING) {
        error = ERROR_INVALID_PARAMETER;
        return nullptr;
    }
    const std::string device = DeviceOfPort(name);
    if (device.empty()) {
        error = ERROR_FILE_NOT_FOUND;
        return nullptr;
    }
    std::unique_ptr<SerialLine> line = SerialLine::Open(device, access, error);
    if (!line) return nullptr;
    return std::make_shared<SerialPort>(std::move(line), access, (flags & FILE_FLAG_OVERLAPPED) != 0);
}

namespace {
// Runs `call` on the port that the handle names.
template <class Call>
BOOL OnPort(HANDLE handle, Call call) {
    const Pinned<SerialPort> port(handle);
    return Finish(port ? call(*port) : ERROR_INVALID_HANDLE);
}
template <class Pointer, class Call>
BOOL OnPort(HANDLE handle, Pointer* argument, Call call) {
    if (argument == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    return OnPort(handle, call);
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

BOOL GetCommState(HANDLE port, LPDCB dcb) {
    return OnPort(port, dcb, [&](SerialPort& p) { return p.GetState(*dcb); });
}
BOOL SetCommState(HANDLE port, LPDCB dcb) {
    return OnPort(port, dcb, [&](SerialPort& p) { return p.SetState(*dcb); });
}
BOOL GetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
    return OnPort(port, timeouts, [&](SerialPort& p) { return p.GetTimeouts(*timeouts); });
}
BOOL SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
    return OnPort(port, timeouts, [&](SerialPort& p) { return p.SetTimeouts(*timeouts); });
}
BOOL SetupComm(HANDLE port, DWORD inQueue, DWORD) {
    return OnPort(port, [&](SerialPort& p) { return p.SetQueues(inQueue); });
}
BOOL GetCommMask(HANDLE port, LPDWORD mask) {
    return OnPort(port, mask, [&](SerialPort& p) { return p.GetMask(*mask); });
}
BOOL SetCommMask(HANDLE port, DWORD mask) {
    return OnPort(port, [&](SerialPort& p) { return p.SetMask(mask); });
}
BOOL WaitCommEvent(HANDLE port, LPDWORD events, LPOVERLAPPED overlapped) {
    return OnPort(port, events, [&](SerialPort& p) { return p.WaitEvent(*events, overlapped); });
}
BOOL ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status) {
    DWORD unused = 0;
    return OnPort(port, [&](SerialPort& p) { return p.ClearError(errors == nullptr ? unused : *errors, status); });
}
BOOL PurgeComm(HANDLE port, DWORD flags) {
    return OnPort(port, [&](SerialPort& p) { return p.Purge(flags); });
}
BOOL SetCommBreak(HANDLE port) {
    return OnPort(port, [](SerialPort& p) { return p.Break(true); });
}
BOOL ClearCommBreak(HANDLE port) {
    return OnPort(port, [](SerialPort& p) { return p.Break(false); });
}
BOOL GetCommModemStatus(HANDLE port, LPDWORD status) {
    return OnPort(port, status, [&](SerialPort& p) { return p.GetModemStatus(*status); });
}
BOOL EscapeCommFunction(HANDLE port, DWORD function) {
    return OnPort(port, [&](SerialPort& p) { return p.Escape(function); });
}

BOOL GetDefaultCommConfigA(LPCSTR name, LPCOMMCONFIG config, LPDWORD size) {
    if (name == nullptr || config == nullptr || size == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (*size < sizeof(COMMCONFIG)) {
        *size = sizeof(COMMCONFIG);
        return Finish(ERROR_INSUFFICIENT_BUFFER);
    }
    const std::string device = DeviceOfPort(name);
    if (device.empty() || access(device.c_str(), F_OK) != 0) return Finish(ERROR_FILE_NOT_FOUND);
    *config = {};
    config->dwSize = *size = sizeof(COMMCONFIG);
    config->wVersion = 1;
    config->dwProviderSubType = 1;  // PST_RS232
    DCB& dcb = config->dcb;
    dcb.DCBlength = sizeof dcb;
    dcb.BaudRate = CBR_9600;
    dcb.fBinary = TRUE;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    dcb.XonLim = 2048;
    dcb.XoffLim = 512;
    dcb.ByteSize = 8;
    dcb.XonChar = 0x11;
    dcb.XoffChar = 0x13;
    return TRUE;
}

BOOL SetCommConfig(HANDLE port, LPCOMMCONFIG config, DWORD size) {
    if (config == nullptr || size < sizeof(COMMCONFIG) || config->dwSize < sizeof(COMMCONFIG))
        return Finish(ERROR_INVALID_PARAMETER);
    return SetCommState(port, &config->dcb);
}
