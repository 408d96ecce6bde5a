#include "plugins/mqtt/mqtt_sparkplug_sink.h"

#include <sparkplug.pb.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "plugins/mqtt/mqtt_level.h"

namespace mqtt {
namespace {
// The standard's numbers of types.
constexpr DWORD kInt64 = 4, kDouble = 10, kBoolean = 11, kString = 12;
constexpr char kRebirth[] = "Node Control/Rebirth", kSession[] = "bdSeq";
// us; what is older when it is sent counts as history.
constexpr __int64 kLive = 10'000'000;

__int64 Now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}
uint64_t Milliseconds(__int64 time) { return static_cast<uint64_t>(std::max<__int64>(time, 0) / 1000); }

void AddSession(sparkplug::Payload& payload, BYTE session, uint64_t time) {
    sparkplug::Metric& metric = *payload.add_metrics();
    metric.set_name(kSession);
    metric.set_timestamp(time);
    metric.set_datatype(kInt64);
    metric.set_long_value(session);
}

void AddTextProperty(sparkplug::Metric& metric, const char* key, const std::string& text) {
    sparkplug::PropertySet& properties = *metric.mutable_properties();
    properties.add_keys(key);
    sparkplug::PropertyValue& value = *properties.add_values();
    value.set_type(kString);
    value.set_string_value(text);
}

// Names where they tell channels apart, else with their keys behind them.
std::vector<std::string> MetricNames(const std::vector<CSinkChannel>& channels) {
    std::map<std::string, int> count;
    for (const CSinkChannel& channel : channels) ++count[channel.name];
    std::vector<std::string> names;
    for (const CSinkChannel& channel : channels) {
        const bool alone = !channel.name.empty() && count[channel.name] == 1;
        names.push_back(alone ? channel.name : channel.name.empty() ? channel.key : channel.name + " (" + channel.key + ')');
    }
    return names;
}

bool SameChannels(const std::vector<CSinkChannel>& one, const std::vector<CSinkChannel>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const CSinkChannel& a, const CSinkChannel& b) {
        return a.key == b.key && a.name == b.name && a.unit == b.unit;
    });
}

bool AsksForRebirth(const std::string& bytes) {
    sparkplug::Payload command;
    if (!command.ParseFromString(bytes)) return false;
    return std::any_of(command.metrics().begin(), command.metrics().end(), [](const sparkplug::Metric& metric) {
        return metric.name() == kRebirth && metric.boolean_value();
    });
}
}  // namespace

// From the clock's seconds: a program that was begun anew does not know where it was, but is to differ from what it was before.
SparkplugSink::SparkplugSink(Settings settings)
    : m_settings(std::move(settings)), m_broker(m_settings), m_session(static_cast<BYTE>(Now() / 1'000'000)) {}

std::string SparkplugSink::Topic(const char* type, const std::string& device) const {
    return "spBv1.0/" + m_settings.group + '/' + type + '/' + m_settings.node + (device.empty() ? "" : '/' + device);
}

Message SparkplugSink::Death() const {
    sparkplug::Payload payload;
    payload.set_timestamp(Milliseconds(Now()));
    AddSession(payload, m_session, payload.timestamp());
    return {Topic("NDEATH"), payload.SerializeAsString()};
}

void SparkplugSink::Connect() {
    ++m_session;
    m_number = 0;
    m_connected = false;
    for (auto& [name, device] : m_devices) device.born = false;
    m_broker.Open(m_settings.client.empty() ? m_settings.group + '-' + m_settings.node : m_settings.client, Death());
    m_broker.Listen(Topic("NCMD"), [this](const std::string& bytes) {
        if (AsksForRebirth(bytes)) m_rebirth = true;
    });
    m_rebirth = false;
    BearNode();
    m_broker.Flush();
    m_connected = true;
}

void SparkplugSink::Publish(const std::string& topic, sparkplug::Payload& payload) {
    payload.set_timestamp(Milliseconds(Now()));
    payload.set_seq(m_number++);
    m_broker.Publish({topic, payload.SerializeAsString()});
}

void SparkplugSink::BearNode() {
    m_number = 0;
    const uint64_t now = Milliseconds(Now());
    sparkplug::Payload payload;
    AddSession(payload, m_session, now);
    sparkplug::Metric& rebirth = *payload.add_metrics();
    rebirth.set_name(kRebirth);
    rebirth.set_timestamp(now);
    rebirth.set_datatype(kBoolean);
    rebirth.set_boolean_value(false);
    Publish(Topic("NBIRTH"), payload);
}

void SparkplugSink::BearDevice(const std::string& name, Device& device) {
    const __int64 now = Now();
    sparkplug::Payload payload;
    for (size_t i = 0; i < device.channels.size(); ++i) {
        sparkplug::Metric& metric = *payload.add_metrics();
        metric.set_name(device.names[i]);
        metric.set_datatype(kDouble);
        const CSinkLogger::Last& last = device.last[i];
        metric.set_timestamp(Milliseconds(last.time == 0 ? now : last.time));
        if (last.time == 0) {
            metric.set_is_null(true);
        } else {
            metric.set_double_value(last.value);
        }
        AddTextProperty(metric, "engUnit", device.channels[i].unit);
        AddTextProperty(metric, "key", device.channels[i].key);
    }
    Publish(Topic("DBIRTH", name), payload);
    device.born = true;
}

void SparkplugSink::BearAgain() {
    if (!m_rebirth.exchange(false)) return;
    BearNode();
    for (auto& [name, device] : m_devices) {
        if (device.born) BearDevice(name, device);
    }
}

SparkplugSink::Device& SparkplugSink::DeviceOf(const CSinkSource& source, const std::string& name) {
    Device& device = m_devices[name];
    if (!SameChannels(device.channels, source.channels)) {
        device = {source.channels, MetricNames(source.channels), std::vector<CSinkLogger::Last>(source.channels.size())};
    }
    if (!device.born) BearDevice(name, device);
    device.delivered = true;
    return device;
}

void SparkplugSink::DeliverPart(const CSinkPart& part) {
    // Gaps, events and comments have no place there.
    if (part.times.empty()) return;
    const std::string name = Level(part.source->logger);
    for (size_t row = 0; row < part.times.size(); ++row) {
        BearAgain();
        Device& device = DeviceOf(*part.source, name);
        const double* const values = part.Row(row);
        const BYTE* const flags = part.RowFlags(row);
        const __int64 time = part.times[row];
        const bool historical = Now() - time > kLive;
        sparkplug::Payload payload;
        for (size_t i = 0; i < device.names.size(); ++i) {
            if (flags[i] != RF_GOOD && flags[i] != RF_NO_VALUE) continue;
            sparkplug::Metric& metric = *payload.add_metrics();
            metric.set_name(device.names[i]);
            metric.set_timestamp(Milliseconds(time));
            metric.set_datatype(kDouble);
            if (historical) metric.set_is_historical(true);
            if (flags[i] == RF_NO_VALUE) {
                metric.set_is_null(true);
            } else {
                metric.set_double_value(values[i]);
                if (time >= device.last[i].time) device.last[i] = {values[i], time};
            }
        }
        if (payload.metrics_size() > 0) Publish(Topic("DDATA", name), payload);
    }
}

void SparkplugSink::Deliver(const CSinkBatch& batch) {
    BearAgain();
    for (const CSinkPart& part : batch.parts) DeliverPart(part);
    m_broker.Flush();
}

void SparkplugSink::Tell(const CSinkStatus& status) {
    BearAgain();
    for (const CSinkLogger& logger : status.loggers) {
        const std::string name = Level(logger.logger);
        const auto device = m_devices.find(name);
        if (device == m_devices.end()) continue;
        // While old readings still come, it is not dead yet.
        const bool delivered = std::exchange(device->second.delivered, false);
        if (!device->second.born || delivered || (logger.state != SS_SILENT && logger.state != SS_OVER)) continue;
        sparkplug::Payload payload;
        Publish(Topic("DDEATH", name), payload);
        device->second.born = false;
    }
    m_broker.Flush();
}

void SparkplugSink::Disconnect() {
    m_broker.Close(m_connected ? std::optional(Death()) : std::nullopt);
    m_connected = false;
}

void SparkplugSink::Abort() { m_broker.Abort(); }

}  // namespace mqtt
