#include <cstdio>

#include "plugins/influx/influx_sink.h"
#include "plugins/support/sink_settings.h"

namespace influx {
namespace {
// For a query.
std::string Percent(const std::string& text) {
    std::string out;
    for (const char c : text) {
        const bool plain = (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '-' || c == '_' || c == '.';
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
        out += plain ? std::string(1, c) : code;
    }
    return out;
}
}  // namespace

const char* const* Settings::Keys() {
    static constexpr const char* kKeys[] = {"sAddress",  "sDatabase",     "sOrganisation", "sBucket", "sPath",  "sUser",
                                            "sPasswordFile", "sTokenFile", "sCaFile",       "sMeasurement", nullptr};
    return kKeys;
}

Settings Settings::Read(IPropertyDB& db, const std::string& folder) {
    using namespace orvik::settings;
    Settings settings;
    settings.address = NeedText(db, "sAddress");
    if (!settings.address.starts_with("http://") && !settings.address.starts_with("https://"))
        throw CSinkFailure("sAddress: " + settings.address + " begins neither with http:// nor with https://");
    while (settings.address.ends_with('/')) settings.address.pop_back();
    const std::string database = ReadText(db, "sDatabase"), bucket = ReadText(db, "sBucket"), path = ReadText(db, "sPath");
    if ((database.empty() ? 0 : 1) + (bucket.empty() ? 0 : 1) + (path.empty() ? 0 : 1) != 1)
        throw CSinkFailure("sDatabase, sBucket or sPath is to say where readings go: one of them");
    if (!path.empty() && path[0] != '/') throw CSinkFailure("sPath: " + path + " does not begin with /");
    if (!database.empty()) {
        settings.path = "/write?db=" + Percent(database) + "&precision=u";
        settings.ping = "/ping";
    } else if (!bucket.empty()) {
        settings.path = "/api/v2/write?org=" + Percent(NeedText(db, "sOrganisation")) + "&bucket=" + Percent(bucket) + "&precision=us";
        settings.ping = "/ping";
    } else {
        settings.path = path;
    }
    settings.user = ReadText(db, "sUser");
    settings.password = ReadSecret(db, "sPasswordFile", folder);
    settings.token = ReadSecret(db, "sTokenFile", folder);
    settings.caFile = PathOf(ReadText(db, "sCaFile"), folder);
    settings.measurement = ReadText(db, "sMeasurement", "orvik");
    return settings;
}

}  // namespace influx
