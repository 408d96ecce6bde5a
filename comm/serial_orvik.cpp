#include "comm/serial_orvik.h"

#include <mutex>

#include "comm/orvik_connection.h"
#include "comm/serial_device.h"
#include "frame/app_link.h"
#include "time/time_point.h"

CMap<CString, LPCSTR, CSerialOrvik*, CSerialOrvik*> CSerialOrvik::m_mapPorts;

namespace {
std::mutex g_ports;  // of m_mapPorts

constexpr LONG kReceiving = 1;
constexpr LONG kSending = -1;

bool HostTraces() {
    IOrvikApp* const app = GetOrvikApp();
    return app && app->IsCommTraceEnabled();
}
}  // namespace

CSerialOrvik::CSerialOrvik() = default;

CSerialOrvik::~CSerialOrvik() {
    CSerialOrvik::DumpTrace();
    m_wndCom.DestroyWindow();
    if (m_hThread) CSerialWnd::Close();  // while this is still the object that the listener calls
}

LONG CSerialOrvik::Open(const char* name, COrvikConnection* connection, DWORD dwInQueue, DWORD dwOutQueue) {
    if (!m_wndCom.GetSafeHwnd() && !m_wndCom.Create()) return ERROR_INVALID_WINDOW_HANDLE;
    if (const LONG error = CSerialWnd::Open(name, m_wndCom.GetSafeHwnd(), COrvikComWnd::ComMsg,
                                            reinterpret_cast<LPARAM>(connection), dwInQueue, dwOutQueue)) {
        return error;
    }
    m_strPort = name;
    const std::lock_guard lock(g_ports);
    CSerialDevice::AddBusyPort(name, connection);
    m_mapPorts[name] = this;
    return ERROR_SUCCESS;
}

LONG CSerialOrvik::Close() {
    {
        // A second Close finds the name taken by whoever opened it since.
        const std::lock_guard lock(g_ports);
        CSerialOrvik* holder = nullptr;
        if (m_mapPorts.Lookup(m_strPort, holder) && holder == this) {
            CSerialDevice::RemoveBusyPort(m_strPort);
            m_mapPorts.RemoveKey(m_strPort);
            if (m_mapPorts.IsEmpty()) m_mapPorts.RemoveAll();
        }
    }
    return CSerialWnd::Close();
}

BOOL CSerialOrvik::IsPortOpen(const char* name) {
    const std::lock_guard lock(g_ports);
    CSerialOrvik* holder = nullptr;
    return m_mapPorts.Lookup(name, holder);
}

LONG CSerialOrvik::Write(const void* data, size_t len, DWORD* written, OVERLAPPED* ov, DWORD timeout) {
    const LONG result = CSerial::Write(data, len, written, ov, timeout);
    // What was asked for is traced, not what the driver reports as written.
    if (HostTraces() && m_bTraceEnabled) Trace(m_strPort, kSending, data, len);
    return result;
}

LONG CSerialOrvik::Read(void* buf, size_t len, DWORD* read, OVERLAPPED* ov, DWORD timeout) {
    DWORD count = 0;
    const LONG result = CSerial::Read(buf, len, &count, ov, timeout);
    if (read) *read = count;
    // A read of nothing starts its line as well.
    if (HostTraces() && m_bTraceEnabled) Trace(m_strPort, kReceiving, buf, count);
    return result;
}

void CSerialOrvik::TraceTransfer(const char* name, BOOL sent, const void* data, size_t len) {
    if (HostTraces() && m_bTraceEnabled) Trace(name, sent ? kSending : kReceiving, data, len);
}

void CSerialOrvik::Trace(const char* name, LONG direction, const void* data, size_t len) {
    if (m_nTraceDirection != direction) {
        DumpTrace();
        m_nTraceDirection = direction;
        m_strTrace = CVXTTime::Now().Format();
        m_strTrace += " - ";
        m_strTrace += name;
        m_strTrace += direction == kSending ? " > " : " < ";
    }
    const auto* const bytes = static_cast<const unsigned char*>(data);
    if (!m_bTraceHex) {
        m_strTrace.Append(reinterpret_cast<const char*>(bytes), static_cast<int>(len));
        return;
    }
    for (size_t i = 0; i < len; ++i) {
        constexpr char digits[] = "0123456789ABCDEF";
        const char text[] = {digits[bytes[i] >> 4], digits[bytes[i] & 15], ' '};
        m_strTrace.Append(text, sizeof(text));
    }
}

void CSerialOrvik::DumpTrace() {
    // The finished text is the format itself, and no arguments follow: a host that formats it must expect per-cent signs.
    if (HostTraces() && m_bTraceEnabled && !m_strTrace.IsEmpty()) GetOrvikApp()->Trace(m_strTrace);
    m_strTrace.Empty();
    m_nTraceDirection = 0;
}
