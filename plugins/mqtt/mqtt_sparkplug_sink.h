// Readings as Sparkplug B has them: the station is an edge node, each logger a device, each channel a metric. docs/mqtt.md says
// what is sent when.
//
// Commands come on the connection's thread and are done with the next batch or news of the station; all else is as ISink has it.
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "plugins/mqtt/mqtt_broker.h"
#include "plugins/mqtt/mqtt_settings.h"
#include "record/sink.h"

namespace mqtt {

namespace sparkplug {
class Metric;
class Payload;
}  // namespace sparkplug

class SparkplugSink final : public ISink {
public:
    explicit SparkplugSink(Settings settings);

    void Connect() override;
    void Deliver(const CSinkBatch& batch) override;
    void Tell(const CSinkStatus& status) override;
    void Disconnect() override;
    void Abort() override;

private:
    struct Device {
        std::vector<CSinkChannel> channels;
        std::vector<std::string> names;          // of the metrics
        std::vector<CSinkLogger::Last> last;     // good values, for births
        bool born = false;
        bool delivered = false;  // since the station was told about last
    };

    std::string Topic(const char* type, const std::string& device = {}) const;
    Message Death() const;
    void Publish(const std::string& topic, sparkplug::Payload& payload);
    void BearNode();
    void BearDevice(const std::string& name, Device& device);
    // Again, if somebody has asked for it.
    void BearAgain();
    Device& DeviceOf(const CSinkSource& source, const std::string& name);
    void DeliverPart(const CSinkPart& part);

    const Settings m_settings;
    Broker m_broker;
    BYTE m_session;             // bdSeq: which connection a birth and a death belong to
    BYTE m_number = 0;          // seq: of the next message
    bool m_connected = false;
    std::map<std::string, Device> m_devices;  // by their levels
    std::atomic<bool> m_rebirth = false;
};

}  // namespace mqtt
