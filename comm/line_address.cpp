#include "comm/line_address.h"

#include <charconv>
#include <string_view>

#include "comm/comm_exception.h"

namespace {
struct Scheme {
    std::string_view name;
    CLineAddress::EScheme scheme;
    WORD standardPort;
};
// 502: the port registered for Modbus; 2217: what terminal servers have taken from the number of the document.
constexpr Scheme kSchemes[] = {
    {"tcp", CLineAddress::Tcp, 502}, {"rtu", CLineAddress::Rtu, 502}, {"rfc2217", CLineAddress::Rfc2217, 2217}};

constexpr UINT kNoScheme = 8200, kNoHost = 8201, kNoPort = 8202;  // texts

[[noreturn]] void Refuse(UINT why, const char* text) {
    CString picture, sentence;
    picture.LoadString(why);
    sentence.Format(picture, text);
    OrvikThrowCommException(CCommException::DeviceNotOpen, sentence);
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
    }
    return lower;
}

// `listener`: whether the host may be empty, and the port 0.
CLineAddress ParseAddress(const char* text, bool listener) {
    const std::string_view whole(text);
    const size_t colon = whole.find("://");
    CLineAddress address;
    if (colon == std::string_view::npos) {
        address.host = whole;
        return address;
    }
    const std::string name = Lower(whole.substr(0, colon));
    const Scheme* known = nullptr;
    for (const Scheme& scheme : kSchemes) {
        if (scheme.name == name) known = &scheme;
    }
    if (known == nullptr) Refuse(kNoScheme, text);
    address.scheme = known->scheme;
    address.port = known->standardPort;

    std::string_view rest = whole.substr(colon + 3);
    // An IPv6 address has colons of its own, so it stands in brackets.
    const bool bracketed = !rest.empty() && rest.front() == '[';
    const size_t close = bracketed ? rest.find(']') : rest.find(':');
    if (bracketed && close == std::string_view::npos) Refuse(kNoHost, text);
    address.host = rest.substr(bracketed ? 1 : 0, bracketed ? close - 1 : close);
    rest.remove_prefix(close == std::string_view::npos ? rest.size() : close + (bracketed ? 1 : 0));
    if ((address.host.empty() && !listener) || address.host.find_first_of(" \t/") != std::string::npos) Refuse(kNoHost, text);
    if (rest.empty()) return address;
    if (rest.front() != ':') Refuse(kNoHost, text);
    rest.remove_prefix(1);
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), address.port);
    if (error != std::errc() || end != rest.data() + rest.size() || (address.port == 0 && !listener)) Refuse(kNoPort, text);
    return address;
}
}  // namespace

CLineAddress CLineAddress::Parse(const char* text) { return ParseAddress(text, false); }
CLineAddress CLineAddress::ParseListener(const char* text) { return ParseAddress(text, true); }

std::string CLineAddress::Text() const {
    std::string name;
    for (const Scheme& known : kSchemes) {
        if (known.scheme == scheme) name = known.name;
    }
    if (name.empty()) return host;
    const bool bracketed = host.find(':') != std::string::npos;
    return name + "://" + (bracketed ? "[" + host + "]" : host) + ":" + std::to_string(port);
}
