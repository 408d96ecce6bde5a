// The PostgreSQL family: what the host finds in this plug-in.
#include "plugins/postgresql/postgresql_sink.h"
#include "plugins/support/sink_settings.h"

ORVIK_SINK_PLUGIN("PostgreSQL");

namespace {
class Family final : public ISinkFamily {
public:
    const char* const* SettingKeys() override {
        static constexpr const char* kKeys[] = {"sAddress", "sPasswordFile", "sSchema", nullptr};
        return kKeys;
    }
    ISink* CreateSink(IPropertyDB& settings, const char* folder) override {
        using namespace orvik::settings;
        postgresql::Sink::Settings read;
        read.address = NeedText(settings, "sAddress");
        postgresql::Connection::Check(read.address);
        read.password = ReadSecret(settings, "sPasswordFile", folder);
        read.schema = ReadText(settings, "sSchema", "orvik");
        return new postgresql::Sink(std::move(read));
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ISinkFamily* OrvikPlugin_SinkFamily() {
    static Family family;
    return &family;
}
