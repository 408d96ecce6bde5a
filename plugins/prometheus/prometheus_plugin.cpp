// The Prometheus family: what the host finds in this plug-in.
#include "plugins/prometheus/prometheus_sink.h"
#include "plugins/support/sink_settings.h"

ORVIK_SINK_PLUGIN("Prometheus");

namespace {
class Family final : public ISinkFamily {
public:
    const char* const* SettingKeys() override {
        static constexpr const char* kKeys[] = {"sAddress", nullptr};
        return kKeys;
    }
    ISink* CreateSink(IPropertyDB& settings, const char*) override {
        constexpr char kKey[] = "sAddress";
        return new prometheus::Sink(prometheus::ListenAddress::Parse(orvik::settings::NeedText(settings, kKey), kKey));
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ISinkFamily* OrvikPlugin_SinkFamily() {
    static Family family;
    return &family;
}
