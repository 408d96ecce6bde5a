#include "plugins/prometheus/listen_address.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

#include "record/sink.h"

namespace prometheus {
namespace {
std::string WordsOf(const ListenAddress& address) {
    const bool six = address.host.find(':') != std::string::npos;
    return (six ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

// 0, or what the system says; `made` is then closed.
int ListenAt(const addrinfo& at, int& made) {
    made = socket(at.ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made < 0) return errno;
    const int yes = 1, no = 0;
    setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);  // after a restart, while old connections fade away
    if (at.ai_family == AF_INET6) setsockopt(made, IPPROTO_IPV6, IPV6_V6ONLY, &no, sizeof no);
    if (bind(made, at.ai_addr, at.ai_addrlen) == 0 && listen(made, 16) == 0) return 0;
    const int error = errno;
    close(made);
    return error;
}
}  // namespace

ListenAddress ListenAddress::Parse(const std::string& text, const char* key) {
    const size_t colon = text.rfind(':');
    ListenAddress address;
    if (colon != std::string::npos) address.host = text.substr(0, colon);
    if (address.host.size() >= 2 && address.host.front() == '[' && address.host.back() == ']') {
        address.host = address.host.substr(1, address.host.size() - 2);
    } else if (address.host.find(':') != std::string::npos) {
        throw CSinkFailure(std::string(key) + ": " + text + " is no address; an IPv6 one stands in brackets, as in [::1]:9100");
    }
    const char *const begin = text.data() + (colon == std::string::npos ? 0 : colon + 1), *const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(begin, end, address.port);
    if (begin == end || error != std::errc() || read != end || address.port < 0 || address.port > 65'535)
        throw CSinkFailure(std::string(key) + ": " + text + " names no port; write :9100 or 127.0.0.1:9100");
    return address;
}

int ListenAddress::Listen() const {
    addrinfo wish{}, *found = nullptr;
    wish.ai_socktype = SOCK_STREAM;
    wish.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    const int unknown = getaddrinfo(host.empty() ? nullptr : host.c_str(), std::to_string(port).c_str(), &wish, &found);
    if (unknown != 0) throw CSinkFailure("cannot listen at " + WordsOf(*this) + ": " + gai_strerror(unknown));
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(found, freeaddrinfo);
    int made = -1, error = 0;
    // Of "all addresses" the one of both protocols, where the machine has both.
    for (const int family : {AF_INET6, AF_INET}) {
        for (const addrinfo* at = all.get(); at != nullptr; at = at->ai_next) {
            if (at->ai_family != family) continue;
            const int failed = ListenAt(*at, made);
            if (failed == 0) return made;
            // The other protocol is no way round a port that is taken: half of the clients would find somebody else there.
            if (error != EADDRINUSE && error != EACCES) error = failed;
        }
        if (error == EADDRINUSE || error == EACCES) break;
    }
    const std::string why = error == EADDRINUSE ? "another program listens there" : std::strerror(error);
    throw CSinkFailure("cannot listen at " + WordsOf(*this) + ": " + why);
}

}  // namespace prometheus
