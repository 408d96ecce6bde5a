// What a terminal server may send. Any bytes: in two pieces they mean what they mean in one, data are those that another reader
// finds in them, the port counts as set up only where each setting was confirmed to the letter, and what is escaped comes out as
// it went in. And a server's part of a session that is damaged: it sets up nothing, and gives no value, that was not sent.
#include "comm/rfc2217_client_internal.h"
#include "fuzz/fuzz_line.h"
#include "plugins/modbus/modbus_frame.h"

namespace {
using Bytes = std::vector<BYTE>;
using orvik::detail::Rfc2217Client;

constexpr BYTE kSb = 250, kSe = 240, kWill = 251, kDo = 253, kIac = 255;
constexpr CLineSettings kLine{19200, CSerial::DataBits7, CSerial::ParityEven, CSerial::StopBits2};

struct Outcome {
    Bytes data, out;
    int state;
    bool operator==(const Outcome&) const = default;
};

Outcome Feed(std::span<const BYTE> bytes, size_t cut) {
    Rfc2217Client client;
    Outcome outcome{};
    client.Start(kLine, outcome.out);
    client.Feed(bytes.first(cut), outcome.data, outcome.out);
    client.Feed(bytes.subspan(cut), outcome.data, outcome.out);
    outcome.state = client.State();
    return outcome;
}

// What the server has to say for each of the settings.
std::vector<Bytes> Confirmations() {
    std::vector<Bytes> messages;
    for (const Bytes& content : {Bytes{101, 0, 0, 0x4B, 0}, Bytes{102, 7}, Bytes{103, 3}, Bytes{104, 2}, Bytes{105, 1}})
        TelnetEnd::AppendMessage(TelnetEnd::kComPort, content, messages.emplace_back());
    return messages;
}

// The bytes outside of commands, found by looking ahead.
Bytes DataIn(std::span<const BYTE> bytes) {
    Bytes data;
    for (size_t i = 0; i < bytes.size();) {
        const int next = i + 1 < bytes.size() ? bytes[i + 1] : -1;
        if (bytes[i] != kIac) {
            data.push_back(bytes[i++]);
        } else if (next == kIac) {
            data.push_back(kIac);
            i += 2;
        } else if (next == kSb) {
            for (i += 2; i < bytes.size() && bytes[i] != kIac; ++i) continue;
            while (i + 1 < bytes.size() && bytes[i + 1] == kIac) {
                for (i += 2; i < bytes.size() && bytes[i] != kIac; ++i) continue;
            }
            i += 2;
        } else {
            i += next >= kWill ? 3 : 2;
        }
    }
    return data;
}

Outcome Try(std::span<const BYTE> bytes, size_t cut) {
    const Outcome whole = Feed(bytes, 0);
    FUZZ_REQUIRE(Feed(bytes, cut % (bytes.size() + 1)) == whole);
    FUZZ_REQUIRE(whole.data == DataIn(bytes));
    // The agreement, the settings, and as much again as was received.
    FUZZ_REQUIRE(whole.out.size() <= 200 + 3 * bytes.size());
    if (whole.state == Rfc2217Client::Ready) {
        for (const Bytes& message : Confirmations())
            FUZZ_REQUIRE(std::search(bytes.begin(), bytes.end(), message.begin(), message.end()) != bytes.end());
    }
    return whole;
}

// A server that agrees, confirms in any order, and passes an answer of a Modbus slave on, with states of its lines anywhere in
// it.
void TrySession(fuzz::Input input) {
    const modbus::Request asked{.slave = 5, .count = 4};
    Bytes values;
    for (int i = 0, value = input.Next(); i < 8; ++i, value = value * 5 + 1) values.push_back(static_cast<BYTE>(value));
    values[input.Next() % 8] = kIac;
    const Bytes frame = modbus::SerialFrame(asked.slave, modbus::AnswerMessage(asked, values));

    Bytes stream{kIac, kDo, 0, kIac, kWill, 0, kIac, kDo, TelnetEnd::kComPort};
    std::vector<Bytes> messages = Confirmations();
    while (!messages.empty()) {
        const auto at = messages.begin() + input.Next() % static_cast<int>(messages.size());
        stream.insert(stream.end(), at->begin(), at->end());
        messages.erase(at);
    }
    const size_t notified = input.Next() % frame.size();
    TelnetEnd::Escape(std::span(frame).first(notified), stream);
    const BYTE lines[] = {107, input.Next()};
    TelnetEnd::AppendMessage(TelnetEnd::kComPort, lines, stream);
    TelnetEnd::Escape(std::span(frame).subspan(notified), stream);

    const Outcome sound = Try(stream, input.Next());
    FUZZ_REQUIRE(sound.state == Rfc2217Client::Ready && sound.data == frame);

    const auto at = [&] { return (input.Next() * 256u + input.Next()) % stream.size(); };
    switch (input.Next() % 4) {
        case 0:
            for (int flips = 1 + input.Next() % 3; flips > 0; --flips) stream[at()] ^= static_cast<BYTE>(1 << input.Next() % 8);
            break;
        case 1:
            stream.resize(at());
            break;
        case 2:
            stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(at()), input.Next() % 5, input.Next());
            break;
        default: {
            const size_t from = at();
            stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(from),
                         stream.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(stream.size(), from + input.Next())));
        }
    }
    const Outcome damaged = Try(stream, input.Next());
    size_t begin = 0, end = 0;
    const auto answer = modbus::FindAnswer(damaged.data, begin, end);
    FUZZ_REQUIRE(!answer || answer->exception != 0 || !answer->Fits(asked) || answer->data == values);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const std::span<const BYTE> bytes(data + 1, std::min<size_t>(size - 1, 1024));
    Try(bytes, data[0]);
    Bytes escaped;
    TelnetEnd::Escape(bytes, escaped);
    FUZZ_REQUIRE(std::ranges::equal(Feed(escaped, escaped.size() / 2).data, bytes));
    TrySession({data, size});
    return 0;
}
