#include "plugins/mqtt/mqtt_broker.h"

#include <mqtt_protocol.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/socket.h"

namespace mqtt {
namespace {
using namespace std::chrono_literals;

constexpr int kKeepAlive = 15;  // s
constexpr auto kConnectTime = 12s, kPatience = 20s;
constexpr DWORD kAbortTime = 50;  // ms
constexpr size_t kMessages = 1000, kBytes = 4u << 20;
constexpr int kRefusedFrom = 0x80;  // the broker's codes
// Where systems keep the certificates that everybody trusts.
constexpr char kSystemCertificates[] = "/etc/ssl/certs";

std::string WithoutStop(std::string text) {
    while (text.ends_with('.') || text.ends_with('\n')) text.pop_back();
    return text;
}

// The last part of "Error[0]: error:0A000086:SSL routines::certificate verify failed".
std::string LastPart(const char* line) {
    const std::string_view text(line);
    const size_t colon = text.rfind(':');
    const size_t begin = colon == std::string_view::npos ? 0 : text.find_first_not_of(" :", colon);
    return WithoutStop(std::string(begin == std::string_view::npos ? text : text.substr(begin)));
}

MqttComplaint ComplaintOf(DWORD error) {
    switch (error) {
        case kSocketNoSuchHost:
            return NoSuchHost;
        case kSocketNameUnknownYet:
            return NameUnknownYet;
        case kSocketRefused:
            return Refused;
        case kSocketTimeOut:
            return NoAnswer;
        case kSocketNetworkDown:
        case kSocketNetworkUnreachable:
        case kSocketHostUnreachable:
        case kSocketNoSuchAddress:
            return NoRoute;
        default:
            return OtherError;
    }
}

// What the library sets up once for a process. It also lets writing to a closed connection be an error instead of a signal.
void StartLibrary() {
    struct Library {
        Library() { mosquitto_lib_init(); }
        ~Library() { mosquitto_lib_cleanup(); }
    };
    static const Library library;
}
}  // namespace

Broker::Broker(const Settings& settings) : m_settings(settings), m_address(settings.Address()), m_protocol(MQTT_PROTOCOL_V5) {
    StartLibrary();
}

Broker::~Broker() { End(); }

void Broker::Open(const std::string& client, const std::optional<Message>& will) {
    Knock();
    for (;;) {
        Begin(client, will, m_protocol);
        int answer = 0;
        {
            Lock lock(m_lock);
            Await(lock, [&] { return m_answer.has_value(); }, kConnectTime, BrokerIsSilent);
            answer = *m_answer;
        }
        if (answer == 0) return;
        // Refusals that tell why came with the newest protocol; an older broker may not know it.
        if (m_protocol != MQTT_PROTOCOL_V5 || answer != MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION) RefuseBy(answer);
        End();
        m_protocol = MQTT_PROTOCOL_V311;
    }
}

// Whether anybody is there. The library looks names up without a limit of time, and cannot be stopped at it; after a first look-up,
// which can, the answer is at hand.
void Broker::Knock() {
    const auto milliseconds = std::chrono::milliseconds(kConnectTime).count();
    SocketConnect connecting(m_settings.host.c_str(), static_cast<WORD>(m_settings.port), static_cast<DWORD>(milliseconds));
    Socket socket;
    const auto end = Clock::now() + kConnectTime + 100ms;
    for (DWORD error = ERROR_IO_PENDING; error != ERROR_SUCCESS;) {
        WaitForSingleObject(connecting.Done(), kAbortTime);
        {
            const Lock lock(m_lock);
            Check();
        }
        error = connecting.Take(socket);
        if (error == ERROR_IO_PENDING && Clock::now() > end) error = kSocketTimeOut;
        if (error != ERROR_SUCCESS && error != ERROR_IO_PENDING) throw Failure(ComplaintOf(error), m_address, error);
    }
}

void Broker::Begin(const std::string& client, const std::optional<Message>& will, int protocol) {
    const Lock lock(m_lock);
    m_stop = false;
    m_detail.clear();
    m_progress = Clock::now();
    m_client = mosquitto_new(client.empty() ? nullptr : client.c_str(), true, this);
    m_wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_client == nullptr || m_wake < 0) throw Failure(ConnectionLost, m_address, std::strerror(errno));

    const auto take = [&](int error) {
        if (error == MOSQ_ERR_SUCCESS) return;
        LoseBy(error);
        throw *m_failed;
    };
    mosquitto_log_callback_set(m_client, [](mosquitto*, void* self, int level, const char* text) {
        if (level == MOSQ_LOG_ERR) static_cast<Broker*>(self)->m_detail = LastPart(text);
    });
    take(mosquitto_int_option(m_client, MOSQ_OPT_PROTOCOL_VERSION, protocol));
    take(mosquitto_int_option(m_client, MOSQ_OPT_TCP_NODELAY, 1));
    take(mosquitto_max_inflight_messages_set(m_client, kMessages));
    if (!m_settings.user.empty()) {
        const std::string password = m_settings.passwordFile.empty() ? std::string() : ReadPassword(m_settings);
        take(mosquitto_username_pw_set(m_client, m_settings.user.c_str(), password.empty() ? nullptr : password.c_str()));
    }
    if (m_settings.tls) {
        const auto file = [](const std::string& name) { return name.empty() ? nullptr : name.c_str(); };
        // A key under a password is refused here instead of asked for on a terminal.
        const auto noPassword = [](char*, int, int, void*) { return 0; };
        take(mosquitto_tls_set(m_client, file(m_settings.caFile), m_settings.caFile.empty() ? kSystemCertificates : nullptr,
                               file(m_settings.certificateFile), file(m_settings.keyFile), noPassword));
    }
    if (will)
        take(mosquitto_will_set(m_client, will->topic.c_str(), static_cast<int>(will->payload.size()), will->payload.data(), 1,
                                will->retained));

    mosquitto_connect_v5_callback_set(m_client, [](mosquitto*, void* self, int answer, int, const mosquitto_property*) {
        static_cast<Broker*>(self)->m_answer = answer;
    });
    mosquitto_disconnect_v5_callback_set(m_client, [](mosquitto*, void* self, int reason, const mosquitto_property*) {
        if (reason >= kRefusedFrom) static_cast<Broker*>(self)->m_detail = WithoutStop(mosquitto_reason_string(reason));
    });
    mosquitto_publish_v5_callback_set(m_client, [](mosquitto*, void* self, int number, int reason, const mosquitto_property*) {
        auto& broker = *static_cast<Broker*>(self);
        const auto flying = broker.m_flying.find(number);
        if (flying == broker.m_flying.end()) return;
        const Flying message = std::move(flying->second);
        broker.m_flying.erase(flying);
        broker.m_bytes -= message.size;
        broker.m_progress = Clock::now();
        if (reason >= kRefusedFrom)
            broker.Fail(Failure(MessageRefused, broker.m_address, message.topic.c_str(),
                                WithoutStop(mosquitto_reason_string(reason)).c_str()));
    });
    mosquitto_subscribe_callback_set(m_client, [](mosquitto*, void* self, int, int count, const int* granted) {
        static_cast<Broker*>(self)->m_subscribed = count > 0 ? granted[0] : kRefusedFrom;
    });
    mosquitto_message_callback_set(m_client, [](mosquitto*, void* self, const mosquitto_message* message) {
        const auto& broker = *static_cast<Broker*>(self);
        if (!broker.m_listener) return;
        broker.m_listener(std::string(static_cast<const char*>(message->payload), static_cast<size_t>(message->payloadlen)));
    });
    take(mosquitto_connect_async(m_client, m_settings.host.c_str(), m_settings.port, kKeepAlive));
    m_thread = std::thread([this] { Run(); });
}

void Broker::RefuseBy(int answer) const {
    const std::string why =
        WithoutStop(m_protocol == MQTT_PROTOCOL_V5 ? mosquitto_reason_string(answer) : mosquitto_connack_string(answer));
    const bool ofUser = m_protocol == MQTT_PROTOCOL_V5
                            ? answer == MQTT_RC_BAD_USERNAME_OR_PASSWORD || answer == MQTT_RC_NOT_AUTHORIZED
                            : answer == CONNACK_REFUSED_BAD_USERNAME_PASSWORD || answer == CONNACK_REFUSED_NOT_AUTHORIZED;
    throw Failure(BrokerRefuses, ofUser ? "sUser" : m_address, why.c_str());
}

// The connection's own thread. The library is used under the lock, but waited for without.
void Broker::Run() {
    Lock lock(m_lock);
    while (!m_stop && !m_failed) {
        const int socket = mosquitto_socket(m_client);
        if (socket < 0) {
            LoseBy(MOSQ_ERR_CONN_LOST);
            break;
        }
        const short events = static_cast<short>(POLLIN | (mosquitto_want_write(m_client) ? POLLOUT : 0));
        pollfd sources[] = {{socket, events, 0}, {m_wake, POLLIN, 0}};
        lock.unlock();
        poll(sources, std::size(sources), 1000);
        lock.lock();
        eventfd_t count = 0;
        eventfd_read(m_wake, &count);
        int error = MOSQ_ERR_SUCCESS;
        // What the broker said last tells why it takes no more, so it comes first.
        if (sources[0].revents & ~POLLOUT) error = mosquitto_loop_read(m_client, 1);
        if (error == MOSQ_ERR_SUCCESS && (sources[0].revents & POLLOUT) != 0) error = mosquitto_loop_write(m_client, 1);
        if (error == MOSQ_ERR_SUCCESS) error = mosquitto_loop_misc(m_client);
        // A refusal ends the connection, too, and says more.
        if (error != MOSQ_ERR_SUCCESS && (!m_answer || *m_answer == 0)) LoseBy(error);
        m_change.notify_all();
        if (error != MOSQ_ERR_SUCCESS) break;
    }
}

void Broker::Wake() { eventfd_write(m_wake, 1); }

void Broker::Fail(const CSinkFailure& failure) {
    if (!m_failed) m_failed = failure;
    m_change.notify_all();
}

void Broker::LoseBy(int error) {
    const std::string system = error == MOSQ_ERR_ERRNO ? std::strerror(errno) : mosquitto_strerror(error);
    const std::string why = m_detail.empty() ? WithoutStop(system) : m_detail;
    if (error != MOSQ_ERR_TLS) return Fail(Failure(ConnectionLost, m_address, why.c_str()));
    const bool untrusted = why.find("certificate verify failed") != std::string::npos;
    Fail(Failure(TlsFailed, untrusted ? "sCaFile" : m_address, why.c_str()));
}

void Broker::Check() const {
    if (m_aborted) throw Failure(GivenUp, m_address);
    if (m_failed) throw *m_failed;
}

template <class Condition>
void Broker::Await(Lock& lock, Condition condition, Clock::duration patience, MqttComplaint complaint) {
    for (;;) {
        Check();
        if (condition()) return;
        const auto end = m_progress + patience;
        if (Clock::now() >= end) {
            Fail(Failure(complaint, m_address));
        } else {
            m_change.wait_until(lock, end);
        }
    }
}

void Broker::Listen(const std::string& topic, std::function<void(const std::string&)> listener) {
    Lock lock(m_lock);
    Check();
    m_listener = std::move(listener);
    m_progress = Clock::now();
    if (const int error = mosquitto_subscribe(m_client, nullptr, topic.c_str(), 1)) LoseBy(error);
    Wake();
    Await(lock, [&] { return m_subscribed.has_value(); }, kPatience, NotAcknowledged);
    if (*m_subscribed < kRefusedFrom) return;
    Fail(Failure(MessageRefused, m_address, topic.c_str(), WithoutStop(mosquitto_reason_string(*m_subscribed)).c_str()));
    throw *m_failed;
}

int Broker::Send(const Message& message) {
    int number = 0;
    const int error = mosquitto_publish_v5(m_client, &number, message.topic.c_str(), static_cast<int>(message.payload.size()),
                                           message.payload.data(), 1, message.retained, nullptr);
    if (error != MOSQ_ERR_SUCCESS) return error;
    if (m_flying.empty()) m_progress = Clock::now();
    m_flying[number] = {message.topic, message.payload.size()};
    m_bytes += message.payload.size();
    // What did not fit into the system's buffer is for the other thread.
    if (mosquitto_want_write(m_client)) Wake();
    return error;
}

void Broker::Publish(const Message& message) {
    Lock lock(m_lock);
    const auto hasRoom = [&] {
        return m_flying.size() < kMessages && (m_flying.empty() || m_bytes + message.payload.size() <= kBytes);
    };
    Await(lock, hasRoom, kPatience, NotAcknowledged);
    const int error = Send(message);
    if (error == MOSQ_ERR_SUCCESS) return;
    if (error == MOSQ_ERR_NO_CONN || error == MOSQ_ERR_CONN_LOST || error == MOSQ_ERR_ERRNO || error == MOSQ_ERR_TLS) {
        // The other thread may still read why.
        m_change.wait_for(lock, 200ms, [this] { return m_failed.has_value(); });
        LoseBy(error);
    } else {
        Fail(Failure(MessageRefused, m_address, message.topic.c_str(), WithoutStop(mosquitto_strerror(error)).c_str()));
    }
    throw *m_failed;
}

void Broker::Flush() {
    Lock lock(m_lock);
    Await(lock, [&] { return m_flying.empty(); }, kPatience, NotAcknowledged);
}

void Broker::Close(const std::optional<Message>& last) {
    {
        const Lock lock(m_lock);
        if (m_client != nullptr && m_answer == 0 && !m_failed && !m_aborted) {
            if (last) Send(*last);
            mosquitto_disconnect(m_client);
        }
    }
    End();
}

void Broker::End() {
    {
        const Lock lock(m_lock);
        m_stop = true;
        if (m_wake >= 0) Wake();
    }
    if (m_thread.joinable()) m_thread.join();
    const Lock lock(m_lock);
    if (m_client != nullptr) mosquitto_destroy(m_client);
    if (m_wake >= 0) close(m_wake);
    m_client = nullptr;
    m_wake = -1;
    m_answer.reset(), m_subscribed.reset(), m_failed.reset(), m_listener = nullptr;
    m_flying.clear(), m_bytes = 0;
}

void Broker::Abort() {
    const Lock lock(m_lock);
    m_aborted = true;
    m_change.notify_all();
}

}  // namespace mqtt
