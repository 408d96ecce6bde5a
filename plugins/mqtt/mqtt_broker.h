// A connection to a broker on which messages count only once the broker has acknowledged them (QoS 1, clean session). What is lost
// with a connection is the caller's to send again: nothing of it goes out later by itself.
//
// One thread of the caller's uses it, and waits inside; a thread of its own reads, and keeps the connection alive meanwhile. Abort
// is for any thread. Failures are CSinkFailure, and stay until Close, which is all there is to do after one.
#pragma once

#include <mosquitto.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>

#include "plugins/mqtt/mqtt_complaint.h"
#include "plugins/mqtt/mqtt_settings.h"

namespace mqtt {

struct Message {
    std::string topic, payload;
    bool retained = false;
};

class Broker {
public:
    // The settings stay the caller's, and there.
    explicit Broker(const Settings& settings);
    ~Broker();
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;

    // As a client of this name, whom another one of the same name would push out. The broker is to publish `will` should the
    // connection end otherwise than by Close.
    void Open(const std::string& client, const std::optional<Message>& will);
    // What others publish under the topic, from when the broker has agreed on. Called on the connection's own thread, which it must
    // not keep; not to be used for anything here.
    void Listen(const std::string& topic, std::function<void(const std::string& payload)> listener);
    // Returns when there is room for the next one: at most 1,000 messages and about 4 MiB are on their way.
    void Publish(const Message& message);
    // Returns when the broker has acknowledged all of them.
    void Flush();
    // In order, with a last message, where nothing has failed; else the connection just ends, and the broker publishes the will.
    // May come at any time.
    void Close(const std::optional<Message>& last);
    // What waits here fails at once, and so does all that follows.
    void Abort();

private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    void Knock();
    void Begin(const std::string& client, const std::optional<Message>& will, int protocol);
    [[noreturn]] void RefuseBy(int answer) const;
    void Run();
    void Wake();
    void End();
    int Send(const Message& message);
    void Check() const;
    // Until the condition holds; fails when the far end has done nothing for it as long as `patience`.
    template <class Condition>
    void Await(Lock& lock, Condition condition, Clock::duration patience, MqttComplaint complaint);
    void LoseBy(int error);
    void Fail(const CSinkFailure& failure);

    const Settings& m_settings;
    const std::string m_address;
    int m_protocol;
    int m_wake = -1;
    std::thread m_thread;

    // Everything below, and the client's library with it: its calls come from both threads, one at a time.
    mutable std::mutex m_lock;
    std::condition_variable m_change;
    mosquitto* m_client = nullptr;
    bool m_stop = false, m_aborted = false;
    std::optional<int> m_answer, m_subscribed;  // the broker's codes
    std::optional<CSinkFailure> m_failed;
    std::string m_detail;  // what the library said last, which knows more than the code that it returns
    struct Flying {
        std::string topic;
        size_t size;
    };
    std::unordered_map<int, Flying> m_flying;  // not acknowledged, by the library's numbers
    size_t m_bytes = 0;
    Clock::time_point m_progress;
    std::function<void(const std::string&)> m_listener;
};

}  // namespace mqtt
