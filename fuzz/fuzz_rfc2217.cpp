// What a terminal server may send: in two pieces it means what it means in one, and what is escaped comes out as it went in.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "comm/rfc2217_client_internal.h"
#include "fuzz/fuzz_support.h"

namespace {
struct Outcome {
    std::vector<BYTE> data, out;
    int state;
    bool operator==(const Outcome&) const = default;
};

Outcome Feed(std::span<const BYTE> bytes, size_t cut) {
    orvik::detail::Rfc2217Client client;
    Outcome outcome{};
    client.Start({}, outcome.out);
    client.Feed(bytes.first(cut), outcome.data, outcome.out);
    client.Feed(bytes.subspan(cut), outcome.data, outcome.out);
    outcome.state = client.State();
    return outcome;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const std::span<const BYTE> bytes(data + 1, size - 1);
    const Outcome whole = Feed(bytes, 0);
    FUZZ_REQUIRE(Feed(bytes, data[0] % (bytes.size() + 1)) == whole);
    FUZZ_REQUIRE(whole.data.size() <= bytes.size());
    // The agreement, the settings, and as much again as was received.
    FUZZ_REQUIRE(whole.out.size() <= 200 + 3 * bytes.size());
    std::vector<BYTE> escaped;
    TelnetEnd::Escape(bytes, escaped);
    FUZZ_REQUIRE(std::ranges::equal(Feed(escaped, escaped.size() / 2).data, bytes));
    return 0;
}
