// learn: listens to an unknown device, and describes it.
#include <algorithm>
#include <chrono>
#include <utility>

#include "comm/comm_exception.h"
#include "comm/line_address.h"
#include "comm/line_connection.h"
#include "comm/transport.h"
#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/measurement/download.h"
#include "host/session/database_file.h"
#include "host/words/arguments.h"
#include "host/words/shell_word.h"
#include "host/words/texts.h"

namespace {
using Clock = std::chrono::steady_clock;

constexpr int kKnown = 70, kCertain = 80;         // of a family's answer; certain: no need to listen to the end
constexpr size_t kMostHeard = 1 << 16;            // bytes, of which the last ones count
constexpr size_t kSilentSettings = 2;             // a device that is silent with so many is silent with all
constexpr std::chrono::milliseconds kSlice{100};  // until a wish to stop is seen
constexpr std::chrono::milliseconds kAsk{500};    // between two questions to the families
constexpr std::chrono::milliseconds kOld{200};    // in which what waited before has come
constexpr int kPatience = 4;                      // times as long, where lines of text come

struct Setting {
    DWORD baud;
    CSerial::EDataBits dataBits;
    CSerial::EParity parity;

    std::string Words() const { return std::to_string(baud) + (parity == CSerial::ParityEven ? " 7E1" : " 8N1"); }
    CLineSettings Line() const {
        CLineSettings line;
        line.baud = baud;
        line.dataBits = dataBits;
        line.parity = parity;
        return line;
    }
};
constexpr Setting N(DWORD baud) { return {baud, CSerial::DataBits8, CSerial::ParityNone}; }
constexpr Setting E(DWORD baud) { return {baud, CSerial::DataBits7, CSerial::ParityEven}; }
// The most usual ones first.
constexpr Setting kSettings[] = {N(9600), N(115200), N(19200), N(38400), N(57600), N(4800),
                                 N(2400), N(1200),   E(9600),  E(4800),  E(2400),  E(1200)};

// What a family made of the device.
struct Guess {
    int sure = 0;
    CPropertyDB description;
    std::string shown;
};

// The line that is listened to, one setting after the other.
class Listener {
public:
    Listener(CHostApp& app, const std::string& port, DWORD time) : m_app(app), m_port(port), m_time(time) {
        m_connection->AddRef();
        m_transport = OrvikMakeTransport(m_serial, *m_connection);
    }
    ~Listener() {
        m_transport->Close();
        m_connection->Release();
    }

    // Listens until a family is certain, or the time is over. Returns how many bytes came.
    size_t Listen(const CLineSettings& line, Guess& guess) {
        std::vector<BYTE> heard;
        size_t count = 0;
        Clock::duration pause{};
        m_transport->Open(m_port.c_str(), line, m_transport->Now() + std::chrono::milliseconds(m_time));
        const size_t old = Discard();
        const std::chrono::milliseconds time(m_time);
        auto until = m_transport->Now() + time;
        const auto limit = until + (kPatience - 1) * time;
        auto last = m_transport->Now(), ask = last + kAsk;
        while (m_transport->Now() < until && guess.sure < kCertain) {
            if (StopRequest::Asked()) throw Failure{kCommunicationFailed, Say(Text::LearnStopped)};
            const size_t before = heard.size();
            if (m_transport->Receive(heard, std::min(until, m_transport->Now() + kSlice))) {
                const auto now = m_transport->Now();
                // How long it was silent before it first spoke says nothing of it.
                if (count > 0) pause = std::max(pause, now - last);
                last = now;
                count += heard.size() - before;
                if (heard.size() > kMostHeard) heard.erase(heard.begin(), heard.end() - kMostHeard);
            }
            // Who speaks, and in text, is only slow. Once is enough: other settings make no more of it.
            if (m_transport->Now() >= until && IsText(heard) && !std::exchange(m_waited, true)) until = limit;
            if (m_transport->Now() < ask) continue;
            Ask(heard, pause, guess);
            ask = m_transport->Now() + kAsk;
        }
        Ask(heard, pause, guess);
        m_transport->Close();
        return old + count;
    }

private:
    // Throws away what had waited, whose times nobody knows. Returns how many bytes.
    size_t Discard() {
        std::vector<BYTE> old;
        const auto until = m_transport->Now() + kOld;
        while (m_transport->Now() < until) {
            m_transport->Receive(old, until);
            if (old.size() > kMostHeard) break;
        }
        return old.size();
    }

    // Lines as people can read them: with wrong settings of the line most bytes are none.
    static bool IsText(const std::vector<BYTE>& heard) {
        const auto readable = [](BYTE byte) {
            return (byte >= ' ' && byte < 0x7F) || byte == '\r' || byte == '\n' || byte == '\t';
        };
        const bool ended = std::any_of(heard.begin(), heard.end(), [](BYTE byte) { return byte == '\r' || byte == '\n'; });
        return ended &&
               20 * std::count_if(heard.begin(), heard.end(), readable) >= 19 * static_cast<std::ptrdiff_t>(heard.size());
    }

    void Ask(const std::vector<BYTE>& heard, Clock::duration pause, Guess& best) {
        if (heard.empty()) return;
        best = {};
        for (const std::string& name : PluginLibrary::Families()) {
            ILoggerFamily* const family = m_app.Plugins().Find(name);
            if (family == nullptr) continue;
            Guess guess;
            CString shown;
            const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(pause).count();
            guess.sure = family->Learn(heard.data(), heard.size(), static_cast<DWORD>(milliseconds), guess.description, shown);
            if (guess.sure <= best.sure) continue;
            guess.description.SetValue("sFamily", name.c_str());
            guess.shown = ToUtf8(shown.GetString());
            best = guess;
        }
    }

    CHostApp& m_app;
    const std::string m_port;
    const DWORD m_time;
    bool m_waited = false;  // longer than the time
    CSerialOrvik m_serial;
    CLineConnection* const m_connection = new CLineConnection;  // one reference held
    std::unique_ptr<ITransport> m_transport;
};

void DescribeLine(CPropertyDB& description, const Setting& setting) {
    description.BeginUsing("Line");
    description.SetValue("nBaud", static_cast<unsigned int>(setting.baud));
    description.SetValue("nDataBits", static_cast<unsigned int>(setting.dataBits));
    description.SetValue("sParity", setting.parity == CSerial::ParityEven ? "even" : "none");
    description.SetValue("nStopBits", 1u);
    description.EndUsing();
}

CLineAddress AddressOf(const std::string& port) {
    try {
        return CLineAddress::Parse(port.c_str());
    } catch (CCommException* failure) {
        throw Failure{kWrongUse, Say(Text::PortFailed, {ToUtf8(port), TakeMessage(failure)})};
    }
}
}  // namespace

ExitCode RunLearn(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--port", "--out", "--time"}, {"--force"}, 0);
    const std::string port = arguments.Require("--port"), path = arguments.Get("--out", "logger.xml");
    const DWORD time = arguments.Milliseconds("--time", 500, 3'600'000, 5000);
    if (FileExists(path) && !arguments.Has("--force")) throw Failure{kFileFailed, Say(Text::FileThere, {ToUtf8(path)})};
    RequireWritable(path);
    const CLineAddress address = AddressOf(port);
    const bool framed = address.scheme == CLineAddress::Serial || address.scheme == CLineAddress::Rfc2217;

    const StopRequest stop;
    Listener listener(app, port, time);
    Guess guess;
    size_t total = 0, silent = 0;
    const Setting* found = nullptr;
    for (const Setting& setting : kSettings) {
        size_t count = 0;
        Print(framed ? Say(Text::LearnListening, {ToUtf8(port), setting.Words()})
                     : Say(Text::LearnListeningNetwork, {ToUtf8(port)}));
        try {
            count = listener.Listen(setting.Line(), guess);
        } catch (CCommException* failure) {
            const LONG code = failure->m_nError;
            const std::string text = TakeMessage(failure);
            throw Failure{kCommunicationFailed, address.scheme == CLineAddress::Serial
                                                    ? WhyNotOpened(port, code, text)
                                                    : Say(Text::PortFailed, {ToUtf8(port), text})};
        }
        total += count;
        silent += count == 0 ? 1 : 0;
        if (guess.sure >= kKnown) {
            found = &setting;
            break;
        }
        if (!framed || (total == 0 && silent == kSilentSettings)) break;
    }
    const std::string seconds = std::to_string((time + 999) / 1000);
    if (total == 0) throw Failure{kCommunicationFailed, Say(Text::LearnSilent, {ToUtf8(port), seconds})};
    if (found == nullptr) throw Failure{kCommunicationFailed, Say(Text::LearnUnknown, {ToUtf8(port), std::to_string(total)})};

    guess.description.SetValue("sName", port.c_str());
    if (framed) DescribeLine(guess.description, *found);
    MakeLogger(app, guess.description);  // it can be used, or says why not
    StoreDatabase(path, guess.description);
    guess.shown.erase(guess.shown.find_last_not_of('\n') + 1);
    Print(guess.shown);
    Print(Say(Text::LearnDone, {ToUtf8(path), ShellWord(port), ShellWord(path)}));
    return kDone;
}
