// The MQTT family: what the host finds in this plug-in.
#include "frame/plugin_stamp.h"
#include "plugins/mqtt/mqtt_json_sink.h"
#include "plugins/mqtt/mqtt_sparkplug_sink.h"
#include "record/sink.h"

ORVIK_SINK_PLUGIN("MQTT");

namespace {
class MqttFamily final : public ISinkFamily {
public:
    const char* const* SettingKeys() override { return mqtt::SettingKeys(); }
    ISink* CreateSink(IPropertyDB& db, const char* folder) override {
        mqtt::Settings settings = mqtt::ReadSettings(db, folder);
        if (settings.form == mqtt::Settings::Sparkplug) return new mqtt::SparkplugSink(std::move(settings));
        return new mqtt::JsonSink(std::move(settings));
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ISinkFamily* OrvikPlugin_SinkFamily() {
    static MqttFamily family;
    return &family;
}
