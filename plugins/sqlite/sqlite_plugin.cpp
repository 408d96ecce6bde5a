// The SQLite family: what the host finds in this plug-in.
#include "plugins/sqlite/sqlite_sessions.h"
#include "plugins/sqlite/sqlite_sink.h"
#include "plugins/support/sink_settings.h"

ORVIK_SINK_PLUGIN("SQLite");

namespace {
class Family final : public ISinkFamily {
public:
    const char* const* SettingKeys() override {
        static constexpr const char* kKeys[] = {"sFile", nullptr};
        return kKeys;
    }
    ISink* CreateSink(IPropertyDB& settings, const char* folder) override {
        using namespace orvik::settings;
        return new sqlite::Sink(PathOf(NeedText(settings, "sFile"), folder));
    }
    bool Sessions(const char* path, std::vector<std::string>& names) override {
        names = sqlite::SessionNames(path);
        return true;
    }
    void LoadSession(const char* path, const std::string& name, IPropertyDB& session) override {
        sqlite::LoadSession(path, name, session);
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ISinkFamily* OrvikPlugin_SinkFamily() {
    static Family family;
    return &family;
}
