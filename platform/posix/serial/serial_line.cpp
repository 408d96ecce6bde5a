#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/kernel/clock_internal.h"
#include "platform/posix/kernel/errors_internal.h"
#include "platform/posix/serial/serial_line_internal.h"

namespace orvik::detail {
namespace {
struct Speed {
    unsigned rate;
    speed_t code;
};
constexpr Speed kSpeeds[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},         {200, B200},
    {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},     {115200, B115200},   {230400, B230400},
    {460800, B460800},   {500000, B500000},   {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
    {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000}};
constexpr DWORD kHighestRate = 20'000'000;
constexpr DWORD kFirstRate = CBR_9600;

// A pseudo-terminal answers requests for modem lines and counters so; old systems with the second.
bool HasNone(int error) { return error == ENOTTY || error == EINVAL; }
DWORD LineError(int error) { return HasNone(error) ? ERROR_INVALID_FUNCTION : ErrorFromErrno(error); }

DWORD Request(int fd, unsigned long request, void* argument) {
    return ioctl(fd, request, argument) == 0 ? ERROR_SUCCESS : LineError(errno);
}

// Numbers 136 to 143 are the major device numbers of pseudo-terminals.
bool IsPseudoTerminal(int fd) {
    struct stat info;
    return fstat(fd, &info) == 0 && S_ISCHR(info.st_mode) && major(info.st_rdev) >= 136 && major(info.st_rdev) <= 143;
}

DCB SettingsOf(const termios& found) {
    DCB dcb{};
    dcb.DCBlength = sizeof dcb;
    dcb.BaudRate = kFirstRate;
    for (const Speed& speed : kSpeeds) {
        if (speed.code == cfgetospeed(&found)) dcb.BaudRate = speed.rate;
    }
    dcb.fBinary = TRUE;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    dcb.XonLim = 2048;
    dcb.XoffLim = 512;
    const tcflag_t size = found.c_cflag & CSIZE;
    dcb.ByteSize = size == CS5 ? 5 : size == CS6 ? 6 : size == CS7 ? 7 : 8;
    if (found.c_cflag & PARENB) {
        const bool odd = (found.c_cflag & PARODD) != 0;
        dcb.fParity = TRUE;
        dcb.Parity = static_cast<BYTE>(found.c_cflag & CMSPAR ? (odd ? MARKPARITY : SPACEPARITY) : odd ? ODDPARITY : EVENPARITY);
    }
    dcb.StopBits = (found.c_cflag & CSTOPB) == 0 ? ONESTOPBIT : size == CS5 ? ONE5STOPBITS : TWOSTOPBITS;
    dcb.XonChar = 0x11;
    dcb.XoffChar = 0x13;
    return dcb;
}

bool IsPossible(const DCB& dcb) {
    if (dcb.BaudRate == 0 || dcb.BaudRate > kHighestRate || dcb.ByteSize < 5 || dcb.ByteSize > 8) return false;
    if (dcb.Parity > SPACEPARITY || dcb.StopBits > TWOSTOPBITS) return false;
    if (dcb.StopBits == (dcb.ByteSize == 5 ? TWOSTOPBITS : ONE5STOPBITS)) return false;
    return !((dcb.fOutX || dcb.fInX) && dcb.XonChar == dcb.XoffChar);
}

// Every bit that the system would work on by itself goes: a byte arrives as it was sent.
void MakeRaw(termios& settings) {
    cfmakeraw(&settings);
    // A break is an event here, not a byte; it is counted all the same.
    settings.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY | INPCK | BRKINT);
    settings.c_iflag |= IGNBRK;
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
    settings.c_cc[VMIN] = 1;  // so that reading 0 bytes means the end of the device and nothing else
    settings.c_cc[VTIME] = 0;
}

constexpr tcflag_t kFraming = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB;

tcflag_t FramingOf(const DCB& dcb) {
    tcflag_t flags = dcb.ByteSize == 5 ? CS5 : dcb.ByteSize == 6 ? CS6 : dcb.ByteSize == 7 ? CS7 : CS8;
    if (dcb.Parity != NOPARITY) flags |= PARENB;
    if (dcb.Parity == ODDPARITY || dcb.Parity == MARKPARITY) flags |= PARODD;
    if (dcb.Parity == MARKPARITY || dcb.Parity == SPACEPARITY) flags |= CMSPAR;
    if (dcb.StopBits != ONESTOPBIT) flags |= CSTOPB;
    return flags;
}
}  // namespace

std::unique_ptr<SerialLine> SerialLine::Open(const std::string& device, DWORD access, DWORD& error) {
    const bool reads = (access & GENERIC_READ) != 0, writes = (access & GENERIC_WRITE) != 0;
    const int mode = reads && writes ? O_RDWR : writes ? O_WRONLY : O_RDONLY;
    const int fd = open(device.c_str(), mode | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        // EIO: a device file with nothing behind it.
        error = errno == EIO ? ERROR_FILE_NOT_FOUND : ErrorFromErrno(errno);
        return nullptr;
    }
    std::unique_ptr<SerialLine> line(new SerialLine(fd));
    error = line->Begin();
    if (error != ERROR_SUCCESS) line.reset();
    return line;
}

DWORD SerialLine::Begin() {
    m_released = true;  // nothing to give back yet
    int exclusive = 0;
    if (flock(m_fd, LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
    // Another program's exclusive use keeps everyone out but the administrator; here it keeps the administrator out as well.
    if (ioctl(m_fd, TIOCGEXCL, &exclusive) == 0 && exclusive != 0) return ERROR_ACCESS_DENIED;
    if (tcgetattr(m_fd, &m_found) != 0) return errno == EIO ? ERROR_FILE_NOT_FOUND : LineError(errno);
    m_isPseudo = IsPseudoTerminal(m_fd);
    // The system forgets exclusive use when the last user of a device ends, but not on a pseudo-terminal whose far end lives on:
    // there a program that was killed would leave the port locked for good. The file lock does by itself.
    if (!m_isPseudo) ioctl(m_fd, TIOCEXCL);
    m_released = false;

    DWORD modem;
    m_hasModemLines = GetModemLines(modem) == ERROR_SUCCESS;
    m_hasCounters = Count(m_counted) == ERROR_SUCCESS;
    m_dcb = SettingsOf(m_found);
    termios raw = m_found;
    MakeRaw(raw);
    if (tcsetattr(m_fd, TCSANOW, &raw) != 0 && !(errno == EINVAL && m_isPseudo)) return LineError(errno);
    return ERROR_SUCCESS;
}

SerialLine::~SerialLine() {
    Release();
    close(m_fd);
}

void SerialLine::Release() {
    if (m_released) return;
    m_released = true;
    const int64_t until = NowNs() + 80 * kMillisecond;
    DWORD unsent = 0;
    while (BytesToSend(unsent) == ERROR_SUCCESS && unsent != 0 && NowNs() < until) usleep(2000);
    if (unsent != 0) tcflush(m_fd, TCOFLUSH);
    tcsetattr(m_fd, TCSANOW, &m_found);
    if (!m_isPseudo) ioctl(m_fd, TIOCNXCL);
    flock(m_fd, LOCK_UN);
}

DWORD SerialLine::Probe() const {
    termios now;
    return tcgetattr(m_fd, &now) == 0 ? ERROR_SUCCESS : LineError(errno);
}

DWORD SerialLine::Apply(const DCB& dcb) {
    if (!IsPossible(dcb)) return ERROR_INVALID_PARAMETER;
    termios before;
    if (tcgetattr(m_fd, &before) != 0) return LineError(errno);
    termios wanted = before;
    MakeRaw(wanted);
    wanted.c_cflag = (wanted.c_cflag & ~kFraming) | FramingOf(dcb);
    if (dcb.fOutxCtsFlow || dcb.fRtsControl == RTS_CONTROL_HANDSHAKE) wanted.c_cflag |= CRTSCTS;
    if (dcb.fOutX) wanted.c_iflag |= IXON;
    if (dcb.fInX) wanted.c_iflag |= IXOFF;
    wanted.c_cc[VSTART] = static_cast<cc_t>(dcb.XonChar);
    wanted.c_cc[VSTOP] = static_cast<cc_t>(dcb.XoffChar);
    const auto* known =
        std::find_if(std::begin(kSpeeds), std::end(kSpeeds), [&](const Speed& s) { return s.rate == dcb.BaudRate; });
    if (known != std::end(kSpeeds)) cfsetspeed(&wanted, known->code);

    // A pseudo-terminal keeps 8 bits without parity, which the C library reports as a refusal after it has set the rest.
    int error = tcsetattr(m_fd, TCSANOW, &wanted) == 0 || (errno == EINVAL && m_isPseudo) ? 0 : errno;
    if (error == 0 && known == std::end(kSpeeds)) error = SetAnySpeed(m_fd, dcb.BaudRate);
    termios now;
    if (error == 0 && !m_isPseudo && tcgetattr(m_fd, &now) == 0 &&
        ((now.c_cflag ^ wanted.c_cflag) & (kFraming & ~static_cast<tcflag_t>(CMSPAR))))
        error = EINVAL;  // the device took something else
    if (error != 0) {
        tcsetattr(m_fd, TCSANOW, &before);
        return error == EINVAL ? ERROR_INVALID_PARAMETER : LineError(error);
    }
    // Lines that hardware or the system drives are left alone; a device without lines is fine.
    SetModemLines(dcb.fDtrControl != DTR_CONTROL_DISABLE, true, false);
    if (dcb.fRtsControl != RTS_CONTROL_HANDSHAKE) SetModemLines(dcb.fRtsControl != RTS_CONTROL_DISABLE, false, true);
    m_dcb = dcb;
    m_dcb.DCBlength = sizeof m_dcb;
    m_dcb.fBinary = TRUE;
    return ERROR_SUCCESS;
}

DWORD SerialLine::GetModemLines(DWORD& status) {
    int bits = 0;
    status = 0;
    if (ioctl(m_fd, TIOCMGET, &bits) != 0) return LineError(errno);
    if (bits & TIOCM_CTS) status |= MS_CTS_ON;
    if (bits & TIOCM_DSR) status |= MS_DSR_ON;
    if (bits & TIOCM_RNG) status |= MS_RING_ON;
    if (bits & TIOCM_CAR) status |= MS_RLSD_ON;
    return ERROR_SUCCESS;
}

DWORD SerialLine::SetModemLines(bool on, bool dtr, bool rts) {
    int bits = (dtr ? TIOCM_DTR : 0) | (rts ? TIOCM_RTS : 0);
    return Request(m_fd, on ? TIOCMBIS : TIOCMBIC, &bits);
}

DWORD SerialLine::Count(Counters& now) const {
    serial_icounter_struct counts{};
    if (ioctl(m_fd, TIOCGICOUNT, &counts) != 0) return LineError(errno);
    now = {counts.frame, counts.overrun, counts.parity, counts.brk, counts.buf_overrun};
    return ERROR_SUCCESS;
}

DWORD SerialLine::TakeErrors(DWORD& errors) {
    errors = 0;
    if (!m_hasCounters) return ERROR_SUCCESS;
    Counters now;
    if (const DWORD error = Count(now)) return error;
    if (now.frame != m_counted.frame) errors |= CE_FRAME;
    if (now.overrun != m_counted.overrun) errors |= CE_OVERRUN;
    if (now.parity != m_counted.parity) errors |= CE_RXPARITY;
    if (now.breaks != m_counted.breaks) errors |= CE_BREAK;
    if (now.full != m_counted.full) errors |= CE_RXOVER;
    m_counted = now;
    return ERROR_SUCCESS;
}

DWORD SerialLine::BytesWaiting(DWORD& bytes) const {
    int count = 0;
    const DWORD error = Request(m_fd, FIONREAD, &count);
    bytes = static_cast<DWORD>(std::max(count, 0));
    return error;
}

DWORD SerialLine::BytesToSend(DWORD& bytes) const {
    int count = 0;
    const DWORD error = Request(m_fd, TIOCOUTQ, &count);
    bytes = static_cast<DWORD>(std::max(count, 0));
    return error;
}

bool SerialLine::IsTransmitterEmpty() const {
    DWORD unsent = 0;
    if (BytesToSend(unsent) != ERROR_SUCCESS || unsent != 0) return false;
    unsigned state = 0;  // the last byte may still be in the shift register, where the driver can tell
    return ioctl(m_fd, TIOCSERGETLSR, &state) != 0 || (state & TIOCSER_TEMT) != 0;
}

DWORD SerialLine::DropReceived() { return tcflush(m_fd, TCIFLUSH) == 0 ? ERROR_SUCCESS : LineError(errno); }

DWORD SerialLine::DropUnsent() {
    DWORD unsent = 0;
    if (const DWORD error = BytesToSend(unsent)) return error;
    // With nothing unsent a pseudo-terminal would take bytes back that the far end has already got.
    return unsent == 0 || tcflush(m_fd, TCOFLUSH) == 0 ? ERROR_SUCCESS : LineError(errno);
}

DWORD SerialLine::Break(bool on) { return Request(m_fd, on ? TIOCSBRK : TIOCCBRK, nullptr); }
DWORD SerialLine::Hold(bool sending) { return tcflow(m_fd, sending ? TCOON : TCOOFF) == 0 ? ERROR_SUCCESS : LineError(errno); }

}  // namespace orvik::detail
