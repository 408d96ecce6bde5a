#include "comm/telnet.h"

namespace {
constexpr BYTE kSe = 240, kSb = 250, kWill = 251, kWont = 252, kDo = 253, kDont = 254, kIac = 255;
constexpr size_t kLongestMessage = 256;

void AppendCommand(BYTE verb, BYTE option, std::vector<BYTE>& out) { out.insert(out.end(), {kIac, verb, option}); }
}  // namespace

TelnetEnd::TelnetEnd(std::initializer_list<BYTE> own, std::initializer_list<BYTE> theirs) {
    for (const BYTE option : own) m_own[option] = Off;
    for (const BYTE option : theirs) m_theirs[option] = Off;
}

TelnetEnd::~TelnetEnd() = default;
void TelnetEnd::OnOwnOption(BYTE, bool, std::vector<BYTE>&) {}
void TelnetEnd::OnMessage(BYTE, std::span<const BYTE>, std::vector<BYTE>&) {}

void TelnetEnd::Begin(std::vector<BYTE>& out) {
    for (unsigned option = 0; option < 256; ++option) {
        const auto number = static_cast<BYTE>(option);
        if (m_own[number] == Off) {
            m_own[number] = Asked;
            AppendCommand(kWill, number, out);
        }
        if (m_theirs[number] == Off) {
            m_theirs[number] = Asked;
            AppendCommand(kDo, number, out);
        }
    }
}

void TelnetEnd::Feed(std::span<const BYTE> bytes, std::vector<BYTE>& data, std::vector<BYTE>& out) {
    for (const BYTE octet : bytes) Take(octet, data, out);
}

void TelnetEnd::Take(BYTE octet, std::vector<BYTE>& data, std::vector<BYTE>& out) {
    switch (m_place) {
        case Data:
            if (octet == kIac) {
                m_place = Command;
            } else {
                data.push_back(octet);
            }
            break;
        case Command:
            m_place = Data;
            if (octet == kIac) {
                data.push_back(octet);
            } else if (octet == kSb) {
                m_message.clear();
                m_place = Message;
            } else if (octet >= kWill) {
                m_verb = octet;
                m_place = Option;
            }  // others, "no operation" and the like, stand alone
            break;
        case Option:
            m_place = Data;
            Negotiate(m_verb, octet, out);
            break;
        case Message:
            if (octet == kIac) {
                m_place = MessageCommand;
            } else if (m_message.size() <= kLongestMessage + 1) {
                m_message.push_back(octet);
            }
            break;
        case MessageCommand:
            m_place = Message;
            if (octet == kIac) {
                if (m_message.size() <= kLongestMessage + 1) m_message.push_back(octet);
                break;
            }
            m_place = Data;  // whatever ends a message that is not ended rightly, this one is over
            if (octet == kSe && !m_message.empty() && m_message.size() <= kLongestMessage + 1)
                OnMessage(m_message.front(), std::span<const BYTE>(m_message).subspan(1), out);
            break;
    }
}

// What is on already is not answered, or two ends could talk about it for ever.
void TelnetEnd::Negotiate(BYTE verb, BYTE option, std::vector<BYTE>& out) {
    const bool aboutOwn = verb == kDo || verb == kDont, wanted = verb == kDo || verb == kWill;
    EState& state = aboutOwn ? m_own[option] : m_theirs[option];
    const BYTE yes = aboutOwn ? kWill : kDo, no = aboutOwn ? kWont : kDont;
    const EState before = state;
    if (before == Foreign) {
        if (wanted) AppendCommand(no, option, out);
        return;
    }
    state = wanted ? On : Off;
    if (wanted && before == Off) AppendCommand(yes, option, out);
    if (!wanted && before == On) AppendCommand(no, option, out);
    if (aboutOwn && (state != before)) OnOwnOption(option, wanted, out);
}

void TelnetEnd::Escape(std::span<const BYTE> data, std::vector<BYTE>& out) {
    for (const BYTE octet : data) {
        out.push_back(octet);
        if (octet == kIac) out.push_back(octet);
    }
}

void TelnetEnd::AppendMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out) {
    out.insert(out.end(), {kIac, kSb, option});
    Escape(content, out);
    out.insert(out.end(), {kIac, kSe});
}
