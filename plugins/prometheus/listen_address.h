// Where metrics are served: ":9100" and "9100" on all addresses of the machine, "127.0.0.1:9100", "[::1]:9100" or "name:9100" on one.
#pragma once

#include <string>

namespace prometheus {

struct ListenAddress {
    std::string host;  // empty: all
    int port = 0;      // 0: any that is free

    // A CSinkFailure that begins with the key for what is none.
    static ListenAddress Parse(const std::string& text, const char* key);
    // A socket that listens there; the caller closes it. A CSinkFailure if none can.
    int Listen() const;
};

}  // namespace prometheus
