// The Influx family: what the host finds in this plug-in.
#include "plugins/influx/influx_sink.h"

ORVIK_SINK_PLUGIN("Influx");

namespace {
class Family final : public ISinkFamily {
public:
    const char* const* SettingKeys() override { return influx::Settings::Keys(); }
    ISink* CreateSink(IPropertyDB& settings, const char* folder) override {
        return new influx::Sink(influx::Settings::Read(settings, folder));
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ISinkFamily* OrvikPlugin_SinkFamily() {
    static Family family;
    return &family;
}
