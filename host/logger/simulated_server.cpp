#include "host/logger/simulated_server.h"

#include <atomic>
#include <deque>
#include <thread>

#include "host/logger/rfc2217_port.h"
#include "host/logger/speech.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
constexpr DWORD kForgetSlice = 1000;  // ms until a connection that has ended is forgotten
constexpr DWORD kPatience = 5000;     // ms for a far end that takes nothing
constexpr size_t kMostConnections = 500;
constexpr size_t kMostUnsaid = 1000;  // pieces of speech for one that is held up by a late answer

std::string WhyNot(DWORD error) {
    switch (error) {
        case kSocketAddressInUse:
            return ::Say(Text::ReasonAddressInUse);
        case kSocketDenied:
        case ERROR_ACCESS_DENIED:
            return ::Say(Text::ReasonDenied);
        case kSocketNoSuchHost:
        case kSocketNameUnknownYet:
        case kSocketNoSuchAddress:
            return ::Say(Text::ReasonNotOwnAddress);
        default:
            return Reason(error);
    }
}
}  // namespace

// One master's connection, on a thread of its own.
class SimulatedServer::Connection {
public:
    Connection(SimulatedServer& server, Socket socket)
        : m_server(server), m_socket(std::move(socket)), m_thread([this] { Talk(); }) {}
    ~Connection() {
        m_thread.join();
        CloseHandle(m_wake);
    }

    // Any thread.
    bool HasEnded() const { return m_ended; }
    void Tell(const LineFaults::Fate& said) {
        const std::lock_guard lock(m_lock);
        if (m_unsaid.size() < kMostUnsaid) m_unsaid.push_back(said);
        SetEvent(m_wake);
    }

private:
    void Talk() {
        while (Step()) {
        }
        m_socket.Close();
        m_ended = true;
    }
    // False at the end.
    bool Step() {
        BYTE block[512];
        DWORD got = 0;
        if (m_socket.Receive(block, sizeof block, got) != 0) return false;
        LineFaults::Fate fate;
        if (got != 0) return Take({block, got});
        if (TakeUnsaid(fate)) return Deliver(fate);
        const HANDLE any[] = {m_server.m_stop, m_wake, m_socket.Await()};
        return WaitForMultipleObjects(3, any, FALSE, INFINITE) != WAIT_OBJECT_0;
    }
    bool Take(std::span<const BYTE> bytes) {
        std::vector<BYTE> data, replies;
        if (m_server.m_address.scheme == CLineAddress::Rfc2217) {
            m_port.Feed(bytes, data, replies);
            if (!SendRaw(replies)) return false;
            bytes = data;
        }
        LineFaults::Fate fate;
        return bytes.empty() || !m_server.m_logger.Receive(m_asker, bytes.data(), bytes.size(), fate) || Deliver(fate);
    }
    bool TakeUnsaid(LineFaults::Fate& said) {
        const std::lock_guard lock(m_lock);
        ResetEvent(m_wake);
        if (m_unsaid.empty()) return false;
        said = std::move(m_unsaid.front());
        m_unsaid.pop_front();
        return true;
    }
    bool Deliver(const LineFaults::Fate& fate) {
        if (fate.unplug) m_server.Stop();
        if (fate.unplug || fate.drop) return false;
        if (fate.late != 0 && Stopped(fate.late)) return false;
        const std::span<const BYTE> bytes = fate.bytes;
        if (fate.first != 0 && (!Send(bytes.first(fate.first)) || Stopped(kBetweenPieces))) return false;
        return Send(bytes.subspan(fate.first));
    }
    bool Stopped(DWORD within) const { return WaitForSingleObject(m_server.m_stop, within) == WAIT_OBJECT_0; }
    bool Send(std::span<const BYTE> data) {
        if (m_server.m_address.scheme != CLineAddress::Rfc2217) return SendRaw(data);
        std::vector<BYTE> escaped;
        TelnetEnd::Escape(data, escaped);
        return SendRaw(escaped);
    }
    bool SendRaw(std::span<const BYTE> bytes) {
        while (!bytes.empty()) {
            DWORD sent = 0;
            if (m_socket.Send(bytes.data(), static_cast<DWORD>(bytes.size()), sent) != 0) return false;
            bytes = bytes.subspan(sent);
            if (sent != 0) continue;
            const HANDLE any[] = {m_server.m_stop, m_socket.Await(true)};
            if (WaitForMultipleObjects(2, any, FALSE, kPatience) != WAIT_OBJECT_0 + 1) return false;
        }
        return true;
    }

    SimulatedServer& m_server;
    Socket m_socket;
    SimulatedLogger::Asker m_asker;
    Rfc2217Port m_port;  // where the address asks for one
    const HANDLE m_wake = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    std::mutex m_lock;
    std::deque<LineFaults::Fate> m_unsaid;
    std::atomic<bool> m_ended = false;
    std::thread m_thread;  // last: it uses the others
};

SimulatedServer::SimulatedServer(SimulatedLogger& logger, const std::string& address) : m_logger(logger) {
    try {
        m_address = CLineAddress::ParseListener(address.c_str());
    } catch (CCommException* failure) {
        const std::string sentence = ToUtf8(failure->m_strError.GetString()) + ".";
        failure->Delete();
        throw Failure{kWrongUse, sentence};
    }
    if (m_address.scheme == CLineAddress::Serial) throw Failure{kWrongUse, ::Say(Text::NotToListenAt, {ToUtf8(address)})};
    if (const DWORD error = m_listener.Listen(m_address.host.c_str(), m_address.port))
        throw Failure{kCommunicationFailed, ::Say(Text::CannotListen, {ToUtf8(address), WhyNot(error)})};
    m_address.port = m_listener.Port();
    m_logger.SetLine(Address());
}

SimulatedServer::~SimulatedServer() {
    Stop();
    m_connections.clear();
    CloseHandle(m_stop);
}

std::string SimulatedServer::Address() const {
    CLineAddress own = m_address;
    if (own.host.empty()) own.host = "localhost";
    return own.Text();
}

void SimulatedServer::Serve() {
    Speech speech(m_logger);
    LineFaults::Fate said;
    for (;;) {
        if (speech.Next(said)) Say(said);
        TakeNewcomers();
        m_connections.remove_if([](const Connection& connection) { return connection.HasEnded(); });
        const HANDLE any[] = {m_stop, m_listener.Await()};
        if (WaitForMultipleObjects(2, any, FALSE, speech.Wait(kForgetSlice)) == WAIT_OBJECT_0) break;
    }
    m_listener.Close();
    m_connections.clear();
}

void SimulatedServer::Say(const LineFaults::Fate& said) {
    for (Connection& connection : m_connections) connection.Tell(said);
}

void SimulatedServer::TakeNewcomers() {
    for (;;) {
        Socket newcomer;
        if (m_listener.Accept(newcomer) != 0) {
            // No room for one more at present; he waits, and would wake this thread without an end.
            WaitForSingleObject(m_stop, 100);
            return;
        }
        if (!newcomer.IsOpen()) return;
        if (m_connections.size() >= kMostConnections) continue;  // and is closed
        try {
            m_connections.emplace_back(*this, std::move(newcomer));
        } catch (const std::exception&) {  // no thread for him
        }
    }
}
