// Readings as JSON, a message each, under topics of their logger; the state of station and loggers beside them; and what hubs of
// home automation want to know of the channels, if they are to be told. docs/mqtt.md has the topics.
//
// A station that runs is known by what is told of it: until then, and for sessions that are sent by themselves, the connection has
// no will, and a client's name of its own, so that it pushes nobody out.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "plugins/mqtt/mqtt_broker.h"
#include "plugins/mqtt/mqtt_settings.h"
#include "record/sink.h"

namespace mqtt {

class JsonSink final : public ISink {
public:
    explicit JsonSink(Settings settings);

    void Connect() override;
    void Deliver(const CSinkBatch& batch) override;
    void Tell(const CSinkStatus& status) override;
    void Disconnect() override;
    void Abort() override;

private:
    void Open();
    std::string StationTopic(const std::string& station) const;
    Message StationState(const char* word) const;
    // Publishes what is kept there, if it differs from what this connection has said already. True if it did.
    bool Say(const std::string& topic, const std::string& payload);
    void Describe(const CSinkSource& source, const std::string& topic);
    void DeliverPart(const CSinkPart& part);

    const Settings m_settings;
    Broker m_broker;
    std::optional<std::string> m_station;        // the one that runs, once it is known
    std::map<std::string, std::string> m_said;   // by topic
    std::set<std::string> m_announced;           // topics of loggers whose channels hubs have been told
};

}  // namespace mqtt
