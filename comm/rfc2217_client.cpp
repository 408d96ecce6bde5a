#include "comm/rfc2217_client_internal.h"

namespace orvik::detail {
namespace {
// Commands; a server's are higher by 100.
constexpr BYTE kBaud = 1, kDataSize = 2, kParity = 3, kStopSize = 4, kControl = 5, kLineStateMask = 10, kModemStateMask = 11,
               kPurge = 12, kFromServer = 100;
constexpr BYTE kNoFlowControl = 1, kDtrOn = 8, kRtsOn = 11, kPurgeBoth = 3;

BYTE ParityCode(CSerial::EParity parity) {
    return static_cast<BYTE>(static_cast<int>(parity) + 1);
}  // none, odd, even, mark, space
BYTE StopCode(CSerial::EStopBits stop) {
    return stop == CSerial::StopBits1 ? BYTE{1} : stop == CSerial::StopBits2 ? BYTE{2} : BYTE{3};
}
DWORD Number(std::span<const BYTE> bytes) {
    DWORD number = 0;
    for (const BYTE octet : bytes) number = number << 8 | octet;
    return number;
}
}  // namespace

void Rfc2217Client::Start(const CLineSettings& line, std::vector<BYTE>& out) {
    m_line = line;
    Begin(out);
}

void Rfc2217Client::OnOwnOption(BYTE option, bool agreed, std::vector<BYTE>& out) {
    if (option != kComPort) return;
    if (!agreed) {
        m_state = Refused;
    } else if (m_state == Offered) {
        SendSettings(out);
    }
}

void Rfc2217Client::SetUp(const CLineSettings& line, std::vector<BYTE>& out) {
    m_line = line;
    SendSettings(out);
}

void Rfc2217Client::SendSettings(std::vector<BYTE>& out) {
    const auto send = [&](std::initializer_list<BYTE> content) {
        AppendMessage(kComPort, std::span<const BYTE>(content.begin(), content.size()), out);
    };
    const DWORD baud = m_line.baud;
    send({kBaud, static_cast<BYTE>(baud >> 24), static_cast<BYTE>(baud >> 16), static_cast<BYTE>(baud >> 8),
          static_cast<BYTE>(baud)});
    send({kDataSize, static_cast<BYTE>(m_line.dataBits)});
    send({kParity, ParityCode(m_line.parity)});
    send({kStopSize, StopCode(m_line.stopBits)});
    send({kControl, kNoFlowControl});
    // As a port that is opened does; nobody waits for these.
    send({kControl, kDtrOn});
    send({kControl, kRtsOn});
    send({kLineStateMask, 0});
    send({kModemStateMask, 0});
    send({kPurge, kPurgeBoth});
    m_open = 1u << kBaud | 1u << kDataSize | 1u << kParity | 1u << kStopSize | 1u << kControl;
    m_state = SettingUp;
}

void Rfc2217Client::OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>&) {
    if (option != kComPort || content.empty() || m_state != SettingUp) return;
    const unsigned command = content[0] - unsigned{kFromServer};
    if (command > kControl || (m_open >> command & 1) == 0) return;  // notifications, and what nobody waits for
    // Four bytes of the rate, one of anything else: what is longer or shorter was damaged, and confirms nothing.
    if (content.size() != (command == kBaud ? 5u : 2u)) return;
    const DWORD value = Number(content.subspan(1));
    const DWORD asked = command == kBaud       ? m_line.baud
                        : command == kDataSize ? static_cast<DWORD>(m_line.dataBits)
                        : command == kParity   ? ParityCode(m_line.parity)
                        : command == kStopSize ? StopCode(m_line.stopBits)
                                               : kNoFlowControl;
    if (value != asked) {
        m_state = OtherLine;
        return;
    }
    m_open &= ~(1u << command);
    if (m_open == 0) m_state = Ready;
}

}  // namespace orvik::detail
