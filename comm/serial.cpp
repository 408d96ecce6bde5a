#include "comm/serial.h"

#include "comm/held_bytes_internal.h"

#include <cstring>
#include <string>

static_assert(sizeof(CSerial) == (sizeof(void*) == 4 ? 24 : 40), "the layout that modules built apart rely on");
static_assert(sizeof(DCB) == 28 && sizeof(COMMCONFIG) == 52, "the driver and the stored settings count these bytes");

namespace {
constexpr DWORD kInitialMask = CSerial::EventReceived | CSerial::EventBreak | CSerial::EventLineError;
constexpr DWORD kBreakMilliseconds = 100;
constexpr char kDevicePrefix[] = R"(\\.\)";

// The device path of a port; only with it do the names above COM9 reach their device.
std::string DevicePath(const char* name) {
    if (!name) name = "";
    return std::strncmp(name, kDevicePrefix, 4) == 0 ? name : std::string(kDevicePrefix) + name;
}

HANDLE OpenDevice(const char* name, DWORD flags) {
    const HANDLE file =
        ::CreateFileA(DevicePath(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, flags, nullptr);
    return file == INVALID_HANDLE_VALUE ? nullptr : file;
}
}  // namespace

CSerial::CSerial() = default;

CSerial::CSerial(const CSerial& other)
    : m_lLastError(other.m_lLastError.load()),
      m_hFile(other.m_hFile),
      m_eEvent(other.m_eEvent),
      m_dwEventMask(other.m_dwEventMask.load()),
      m_hevtOverlapped(other.m_hevtOverlapped) {}

CSerial& CSerial::operator=(const CSerial& other) {
    m_lLastError = other.m_lLastError.load();
    m_hFile = other.m_hFile;
    m_eEvent = other.m_eEvent;
    m_dwEventMask = other.m_dwEventMask.load();
    m_hevtOverlapped = other.m_hevtOverlapped;
    return *this;
}

CSerial::~CSerial() { CloseHandles(); }

CSerial::EPort CSerial::CheckPort(const char* name) {
    if (const HANDLE file = OpenDevice(name, 0)) {
        ::CloseHandle(file);
        return PortAvailable;
    }
    switch (::GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
            return PortMissing;
        case ERROR_ACCESS_DENIED:
            return PortInUse;
        default:
            return PortUnknownError;
    }
}

LONG CSerial::Open(const char* name, DWORD dwInQueue, DWORD dwOutQueue, bool fOverlapped) {
    Result(ERROR_SUCCESS);
    if (m_hFile) return Result(ERROR_ALREADY_INITIALIZED);

    m_hFile = OpenDevice(name, fOverlapped ? FILE_FLAG_OVERLAPPED : 0u);
    if (!m_hFile) return Failed();

    if (fOverlapped) {
        m_hevtOverlapped = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
        if (!m_hevtOverlapped) {
            const LONG error = Failed();
            ::CloseHandle(m_hFile);
            m_hFile = nullptr;
            return error;
        }
    }

    if ((dwInQueue || dwOutQueue) && !::SetupComm(m_hFile, dwInQueue, dwOutQueue)) {
        const DWORD error = ::GetLastError();
        Close();
        return Result(error);
    }

    SetMask(kInitialMask);
    SetupReadTimeouts(ReadNonBlocking);
    if (const LONG error = GetLastError()) {  // no serial port at all: what opened is not to stay open behind a failure
        Close();
        return Result(static_cast<DWORD>(error));
    }

    // The defaults that the system keeps for this port, by the name as given; without any, the driver's settings stay.
    COMMCONFIG config{};
    DWORD size = sizeof(config);
    config.dwSize = size;
    if (::GetDefaultCommConfigA(name, &config, &size)) ::SetCommConfig(m_hFile, &config, size);
    return GetLastError();
}

LONG CSerial::Close() {
    CloseHandles();
    return Result(ERROR_SUCCESS);
}

void CSerial::CloseHandles() {
    if (!m_hFile) return;
    if (m_hevtOverlapped) {
        ::CloseHandle(m_hevtOverlapped);
        m_hevtOverlapped = nullptr;
    }
    orvik::detail::DropHeldBytes(m_hFile);
    ::CloseHandle(m_hFile);
    m_hFile = nullptr;
}

LONG CSerial::Setup(EBaudrate baudrate, EDataBits dataBits, EParity parity, EStopBits stopBits) {
    DCB dcb;
    if (const LONG error = GetState(dcb)) return error;
    dcb.BaudRate = static_cast<DWORD>(baudrate);
    dcb.ByteSize = static_cast<BYTE>(dataBits);
    dcb.Parity = static_cast<BYTE>(parity);
    dcb.StopBits = static_cast<BYTE>(stopBits);
    dcb.fParity = parity != ParityNone ? 1 : 0;
    return SetState(dcb);
}

LONG CSerial::SetEventChar(BYTE ch, bool fAdjustMask) {
    DCB dcb;
    if (const LONG error = GetState(dcb)) return error;
    dcb.EvtChar = static_cast<char>(ch);
    if (fAdjustMask) SetMask(GetEventMask() | EventCharReceived);
    return SetState(dcb);
}

LONG CSerial::SetMask(DWORD mask) {
    Result(ERROR_SUCCESS);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    if (!::SetCommMask(m_hFile, mask)) return Failed();
    m_dwEventMask = mask;
    return ERROR_SUCCESS;
}

LONG CSerial::SetupHandshaking(EHandshake mode) {
    DCB dcb;
    if (const LONG error = GetState(dcb)) return error;
    switch (mode) {
        case HandshakeOff:
            dcb.fDtrControl = DTR_CONTROL_ENABLE;
            dcb.fRtsControl = RTS_CONTROL_ENABLE;
            break;
        case HandshakeHardware:
            dcb.fDtrControl = DTR_CONTROL_HANDSHAKE;
            dcb.fRtsControl = RTS_CONTROL_HANDSHAKE;
            break;
        case HandshakeSoftware:
            dcb.fDtrControl = DTR_CONTROL_DISABLE;
            dcb.fRtsControl = RTS_CONTROL_DISABLE;
            break;
        default:
            return Result(static_cast<DWORD>(E_INVALIDARG));
    }
    dcb.fOutxCtsFlow = dcb.fOutxDsrFlow = mode == HandshakeHardware ? 1 : 0;
    dcb.fOutX = dcb.fInX = mode == HandshakeSoftware ? 1 : 0;
    return SetState(dcb);
}

LONG CSerial::SetupReadTimeouts(EReadTimeout mode) {
    Result(ERROR_SUCCESS);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    COMMTIMEOUTS timeouts{};
    if (!::GetCommTimeouts(m_hFile, &timeouts)) return Failed();
    switch (mode) {
        case ReadNonBlocking:
            timeouts.ReadIntervalTimeout = MAXDWORD;
            break;
        case ReadBlocking:
            timeouts.ReadIntervalTimeout = 0;
            break;
        default:
            return Result(static_cast<DWORD>(E_INVALIDARG));
    }
    timeouts.ReadTotalTimeoutMultiplier = 0;
    timeouts.ReadTotalTimeoutConstant = 0;
    return ::SetCommTimeouts(m_hFile, &timeouts) ? ERROR_SUCCESS : Failed();
}

CSerial::EBaudrate CSerial::GetBaudrate() {
    DCB dcb;
    return GetState(dcb) ? BaudrateUnknown : static_cast<EBaudrate>(dcb.BaudRate);
}

CSerial::EDataBits CSerial::GetDataBits() {
    DCB dcb;
    return GetState(dcb) ? DataBitsUnknown : static_cast<EDataBits>(dcb.ByteSize);
}

CSerial::EParity CSerial::GetParity() {
    DCB dcb;
    if (GetState(dcb)) return ParityUnknown;
    return dcb.fParity ? static_cast<EParity>(dcb.Parity) : ParityNone;
}

CSerial::EStopBits CSerial::GetStopBits() {
    DCB dcb;
    return GetState(dcb) ? StopBitsUnknown : static_cast<EStopBits>(dcb.StopBits);
}

CSerial::EHandshake CSerial::GetHandshaking() {
    DCB dcb;
    if (GetState(dcb)) return HandshakeUnknown;
    if (dcb.fDtrControl == DTR_CONTROL_HANDSHAKE && dcb.fRtsControl == RTS_CONTROL_HANDSHAKE) return HandshakeHardware;
    return dcb.fOutX && dcb.fInX ? HandshakeSoftware : HandshakeOff;
}

DWORD CSerial::GetEventMask() {
    Result(ERROR_SUCCESS);
    if (m_hFile) return m_dwEventMask;
    Result(ERROR_INVALID_HANDLE);
    return 0;
}

BYTE CSerial::GetEventChar() {
    DCB dcb;
    return GetState(dcb) ? BYTE{0} : static_cast<BYTE>(dcb.EvtChar);
}

LONG CSerial::Purge() {
    Result(ERROR_SUCCESS);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    orvik::detail::DropHeldBytes(m_hFile);
    return ::PurgeComm(m_hFile, PURGE_TXCLEAR | PURGE_RXCLEAR) ? ERROR_SUCCESS : Failed();
}

LONG CSerial::Break() {
    Result(ERROR_SUCCESS);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    ::SetCommBreak(m_hFile);
    ::Sleep(kBreakMilliseconds);
    ::ClearCommBreak(m_hFile);
    return ERROR_SUCCESS;
}

CSerial::EEvent CSerial::GetEventType() {
    Result(ERROR_SUCCESS);
    const DWORD event = m_eEvent & m_dwEventMask;
    m_eEvent = EventNone;
    return static_cast<EEvent>(event);
}

CSerial::EError CSerial::GetError() {
    Result(ERROR_SUCCESS);
    DWORD errors = 0;
    if (!m_hFile) {
        Result(ERROR_INVALID_HANDLE);
    } else if (!::ClearCommError(m_hFile, &errors, nullptr)) {
        Failed();
        errors = 0;
    }
    return static_cast<EError>(errors);
}

bool CSerial::GetCTS() { return ModemLine(MS_CTS_ON); }
bool CSerial::GetDSR() { return ModemLine(MS_DSR_ON); }
bool CSerial::GetRing() { return ModemLine(MS_RING_ON); }
bool CSerial::GetRLSD() { return ModemLine(MS_RLSD_ON); }

LONG CSerial::GetLastError() const { return m_lLastError.load(std::memory_order_relaxed); }
HANDLE CSerial::GetCommHandle() { return m_hFile; }
bool CSerial::IsOpen() const { return m_hFile != nullptr; }

BOOL CSerial::CancelCommIo() { return ::CancelIo(m_hFile); }
void CSerial::CheckRequirements(OVERLAPPED*, DWORD) const {}

LONG CSerial::Result(DWORD code) {
    const LONG result = static_cast<LONG>(code);
    m_lLastError.store(result, std::memory_order_relaxed);
    return result;
}

LONG CSerial::Failed() { return Result(::GetLastError()); }

// 0, or the error, stored already.
LONG CSerial::GetState(DCB& dcb) {
    Result(ERROR_SUCCESS);
    if (!m_hFile) return Result(ERROR_INVALID_HANDLE);
    dcb = DCB{};
    dcb.DCBlength = sizeof(dcb);
    return ::GetCommState(m_hFile, &dcb) ? ERROR_SUCCESS : Failed();
}

LONG CSerial::SetState(DCB& dcb) { return ::SetCommState(m_hFile, &dcb) ? Result(ERROR_SUCCESS) : Failed(); }

// Unlike its neighbours it leaves the closed port to the system, which answers with the same error.
bool CSerial::ModemLine(DWORD bit) {
    Result(ERROR_SUCCESS);
    DWORD lines = 0;
    if (::GetCommModemStatus(m_hFile, &lines)) return (lines & bit) != 0;
    Failed();
    return false;
}
