#include "host/logger/rfc2217_port.h"

void Rfc2217Port::OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out) {
    constexpr BYTE kSignature = 0, kLastSetting = 5, kLineStateMask = 10, kPurge = 12, kFromServer = 100;
    if (option != kComPort || content.empty()) return;
    const BYTE command = content[0];
    std::vector<BYTE> value(content.begin() + 1, content.end());
    const bool setting = command > kSignature && command <= kLastSetting;
    if (setting) {
        // All zeros ask for what is set, and so do the queries among the controls; both get it.
        bool query = true;
        for (const BYTE octet : value) query = query && octet == 0;
        if (query && !m_set[command].empty()) value = m_set[command];
        if (!query) m_set[command] = value;
    } else if (command != kSignature && (command < kLineStateMask || command > kPurge)) {
        return;
    }
    value.insert(value.begin(), static_cast<BYTE>(command + kFromServer));
    AppendMessage(kComPort, value, out);
}
