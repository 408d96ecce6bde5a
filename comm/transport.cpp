#include "comm/transport.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string>

#include "comm/comm_exception.h"
#include "comm/rfc2217_transport_internal.h"
#include "comm/serial_ex.h"
#include "comm/serial_transport_internal.h"
#include "comm/tcp_transport_internal.h"

using namespace orvik::detail;

namespace {
// A line that is open once on this thread, however many use it.
struct SharedLine {
    std::shared_ptr<LineTransport> line;  // none: whoever needs it next opens it
    CLineSettings settings;               // as it is set up
    std::vector<LineUser*> users;

    bool IsUsable() const { return line && line->IsOpen() && !line->IsLost(); }
    void Close() {
        if (line) line->Close();
        line.reset();
    }
};

// Names of ports that differ in case only are the same one (docs/ports.md); so are addresses that are read alike.
std::string KeyOf(const CLineAddress& address) {
    std::string key = address.Text();
    const bool device = address.scheme == CLineAddress::Serial && key.find('/') != std::string::npos;
    if (!device) {
        for (char& letter : key) {
            if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
        }
    }
    return key;
}

// This thread's line of that address, open or not. The list is everybody's, for a thread's own objects end at no sure moment.
std::shared_ptr<SharedLine> LineAt(const CLineAddress& address) {
    struct Lines {
        std::mutex lock;
        std::map<std::pair<DWORD, std::string>, std::weak_ptr<SharedLine>> known;
    };
    static auto* const lines = new Lines;
    const std::lock_guard lock(lines->lock);
    std::erase_if(lines->known, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<SharedLine>& known = lines->known[{::GetCurrentThreadId(), KeyOf(address)}];
    std::shared_ptr<SharedLine> line = known.lock();
    if (!line) known = line = std::make_shared<SharedLine>();
    return line;
}

std::shared_ptr<LineTransport> MakeLine(CLineAddress::EScheme scheme) {
    if (scheme == CLineAddress::Serial) return std::make_shared<SerialTransport>();
    if (scheme == CLineAddress::Rfc2217) return std::make_shared<Rfc2217Transport>();
    return std::make_shared<TcpTransport>();
}

// The transport of whatever address was opened last.
class AddressedTransport : public ITransport {
public:
    AddressedTransport(CSerialOrvik& port, CLineConnection& connection) : m_user{port, connection, {}} {}
    ~AddressedTransport() override { Leave(); }

    void Open(const char* address, const CLineSettings& line, TimePoint until) override {
        Leave();
        try {
            if (m_user.abort.IsRaised()) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
            m_address = address;
            m_parsed = CLineAddress::Parse(address);
            m_settings = line;
            m_patience = until - Now();
            m_shared = LineAt(m_parsed);
            m_shared->users.push_back(&m_user);
            m_user.open = true;
            if (m_shared->IsUsable()) {
                m_user.connection.SetOnline(true);
            } else {
                OpenLine(until);
            }
        } catch (CCommException* failure) {
            Leave();
            if (failure->m_nError == CCommException::SessionAborted) m_user.abort.TakeBack();  // it has done what it was to do
            throw;
        }
    }
    void Close() override {
        Leave();
        m_user.abort.TakeBack();
    }
    bool IsOpen() const override { return m_shared && (!m_shared->line || m_shared->line->IsOpen()); }
    bool IsShared() const override {
        return m_shared && (m_shared->users.size() > 1 || (m_shared->line && m_shared->line->IsShared()));
    }
    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override {
        Refresh(std::chrono::milliseconds(50));
        Call(until, [&](SharedLine& shared, LineTransport& line) {
            if (shared.settings != m_settings) {
                line.SetUp(m_settings, until);
                shared.settings = m_settings;
            }
            line.Send(bytes, until);
        });
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        bool any = false;
        // Who looks whether something is left over before he asks is not to stumble over the end of an idle line either; an
        // answer that stops in the middle is another thing.
        Refresh(std::chrono::seconds(1));
        Call(until, [&](SharedLine&, LineTransport& line) { any = line.Receive(received, until); });
        return any;
    }
    void Abort() override { m_user.abort.Raise(); }

private:
    void OpenLine(TimePoint until) {
        const std::shared_ptr<SharedLine> shared = m_shared;
        shared->Close();
        const std::shared_ptr<LineTransport> line = MakeLine(m_parsed.scheme);
        line->Use(m_user);
        line->Open(m_address.c_str(), m_settings, until);
        // Closed by a message meanwhile, or opened otherwise: this line is nobody's.
        if (m_shared != shared || shared->line) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        shared->line = line;
        shared->settings = m_settings;
    }
    void Refresh(Duration idle) {
        if (m_shared && m_shared->line && m_shared->line->WasClosedWhileIdle(idle)) m_shared->Close();
    }
    template <class Do>
    void Call(TimePoint until, Do act) {
        if (m_user.abort.IsRaised()) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        if (!m_shared) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        // Who only looks whether something has come gives it hardly any time.
        if (!m_shared->line) OpenLine(std::max(until, Now() + m_patience));
        // Held, for a message that is handled during a wait may close the line, or open another.
        const std::shared_ptr<SharedLine> shared = m_shared;
        const std::shared_ptr<LineTransport> line = shared->line;
        line->Use(m_user);
        try {
            act(*shared, *line);
        } catch (CCommException*) {
            // Where another has opened the line, that one's connection alone was told.
            if (line->IsLost() && m_user.open && !m_user.connection.LineLost())
                m_user.connection.OnSerialCommEvent(CSerialEx::ListenerDiedEvent, CSerialEx::ListenerDiedError);
            throw;
        }
    }
    void Leave() {
        if (!m_shared) return;
        const std::shared_ptr<SharedLine> shared = std::move(m_shared);
        m_user.open = false;
        std::erase(shared->users, &m_user);
        if (shared->users.empty() || (shared->line && shared->line->Opener() == &m_user)) {
            shared->Close();
        } else if (shared->line) {
            shared->line->Use(*shared->users.front());
        }
        m_user.connection.SetOnline(false);
    }

    LineUser m_user;
    std::string m_address;
    CLineAddress m_parsed;
    CLineSettings m_settings;
    Duration m_patience{};  // that opening may take
    std::shared_ptr<SharedLine> m_shared;
};
}  // namespace

double CLineSettings::BitsPerCharacter() const {
    const double stop = static_cast<int>(stopBits) == 0 ? 1 : static_cast<int>(stopBits) == 1 ? 1.5 : 2;
    return 1 + static_cast<int>(dataBits) + (static_cast<int>(parity) != 0 ? 1 : 0) + stop;
}

std::unique_ptr<ITransport> OrvikMakeTransport(CSerialOrvik& port, CLineConnection& connection) {
    return std::make_unique<AddressedTransport>(port, connection);
}
