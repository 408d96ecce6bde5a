#include "plugins/mqtt/mqtt_settings.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <string_view>

#include "plugins/mqtt/mqtt_complaint.h"

namespace mqtt {
namespace {
// Longer ones leave too little of the 65,535 bytes that a topic may have.
constexpr size_t kLongestTopic = 1000;

void ReadAddress(const std::string& text, Settings& settings) {
    const auto refuse = [&](MqttComplaint complaint) { return Failure(complaint, "sAddress: " + text); };
    std::string_view rest = text;
    const struct {
        std::string_view scheme;
        bool tls;
        int port;
    } schemes[] = {{"mqtt://", false, 1883}, {"mqtts://", true, 8883}};
    for (const auto& known : schemes) {
        if (!rest.starts_with(known.scheme)) continue;
        rest.remove_prefix(known.scheme.size());
        settings.tls = known.tls;
        settings.port = known.port;
        break;
    }
    if (settings.port == 0) throw refuse(NoScheme);
    // An IPv6 address has colons of its own, so it stands in brackets.
    const bool bracketed = rest.starts_with('[');
    const size_t end = bracketed ? rest.find(']') : rest.find(':');
    if (bracketed && end == std::string_view::npos) throw refuse(NoHost);
    settings.host = rest.substr(bracketed ? 1 : 0, bracketed ? end - 1 : end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + (bracketed ? 1 : 0));
    if (settings.host.empty() || settings.host.find_first_of(" \t/@") != std::string::npos) throw refuse(NoHost);
    if (rest.empty()) return;
    if (rest.front() != ':') throw refuse(NoHost);
    rest.remove_prefix(1);
    const auto [read, error] = std::from_chars(rest.data(), rest.data() + rest.size(), settings.port);
    const bool number = error == std::errc() && read == rest.data() + rest.size();
    if (!number || settings.port < 1 || settings.port > 65535) throw refuse(NoPort);
}

bool IsTopic(const std::string& text) {
    return !text.empty() && text.size() <= kLongestTopic && text.find_first_of("+#") == std::string::npos && text.front() != '$' &&
           text.front() != '/' && text.back() != '/' && text.find("//") == std::string::npos;
}

std::string TextOf(IPropertyDB& db, const char* key, const char* standard) {
    CString text = ReadText(db, key, standard).c_str();
    text.Trim();
    return OrvikUtf8FromText(text.GetString());
}
std::string TopicOf(IPropertyDB& db, const char* key, const char* standard) {
    const std::string topic = TextOf(db, key, standard);
    if (db.Find(key) && !IsTopic(topic)) throw Failure(NoTopic, key);
    return topic;
}
std::string LevelOf(IPropertyDB& db, const char* key, const char* standard) {
    const std::string level = TextOf(db, key, standard);
    if (!IsTopic(level) || level.find('/') != std::string::npos)
        throw Failure(db.Find(key) ? NoLevel : MqttComplaint{IsMissing}, key);
    return level;
}

std::ifstream OpenFile(const char* key, const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    // A folder can be opened, but has nothing to read.
    if (file.is_open()) file.peek();
    if (!file.is_open() || file.bad()) throw Failure(CannotBeRead, key, path.c_str(), std::strerror(errno));
    return file;
}
std::string FileOf(IPropertyDB& db, const char* key, const std::string& folder) {
    const std::string name = ReadText(db, key, "");
    if (name.empty()) return {};
    const std::string path = name.front() == '/' ? name : folder + name;
    OpenFile(key, path);
    return path;
}

Settings Read(IPropertyDB& db, const std::string& folder) {
    Settings settings;
    if (!db.Find("sAddress")) throw Failure(MqttComplaint{IsMissing}, "sAddress");
    ReadAddress(TextOf(db, "sAddress", ""), settings);

    settings.user = TextOf(db, "sUser", "");
    settings.passwordFile = FileOf(db, "sPasswordFile", folder);
    settings.caFile = FileOf(db, "sCaFile", folder);
    settings.certificateFile = FileOf(db, "sCertificateFile", folder);
    settings.keyFile = FileOf(db, "sKeyFile", folder);
    if (settings.user.empty() && !settings.passwordFile.empty()) throw Failure(NeedsToo, "sPasswordFile", "sUser");
    if (!settings.passwordFile.empty()) ReadPassword(settings);
    const struct {
        const char *key, *other;
        const std::string &file, &otherFile;
    } pairs[] = {{"sCaFile", nullptr, settings.caFile, settings.caFile},
                 {"sCertificateFile", "sKeyFile", settings.certificateFile, settings.keyFile},
                 {"sKeyFile", "sCertificateFile", settings.keyFile, settings.certificateFile}};
    for (const auto& pair : pairs) {
        if (!pair.file.empty() && !settings.tls) throw Failure(ForTlsOnly, pair.key);
        if (!pair.file.empty() && pair.otherFile.empty()) throw Failure(NeedsToo, pair.key, pair.other);
    }

    settings.client = TextOf(db, "sClient", "");
    settings.form =
        ReadChoice<Settings::EForm>(db, "sForm", "json", {{"json", Settings::Json}, {"sparkplug", Settings::Sparkplug}});
    const bool json = settings.form == Settings::Json;
    for (const char* const key : {"sTopic", "sDiscovery"}) {
        if (!json && db.Find(key)) throw Failure(ForFormOnly, key, "json");
    }
    for (const char* const key : {"sGroup", "sNode"}) {
        if (json && db.Find(key)) throw Failure(ForFormOnly, key, "sparkplug");
    }
    if (json) {
        settings.topic = TopicOf(db, "sTopic", "orvik");
        settings.discovery = TopicOf(db, "sDiscovery", "");
    } else {
        settings.group = LevelOf(db, "sGroup", "orvik");
        settings.node = LevelOf(db, "sNode", "");
    }
    return settings;
}
}  // namespace

std::string Settings::Address() const {
    return (host.find(':') == std::string::npos ? host : '[' + host + ']') + ':' + std::to_string(port);
}

const char* const* SettingKeys() {
    static constexpr const char* keys[] = {"sAddress",  "sUser",    "sPasswordFile", "sCaFile", "sCertificateFile",
                                           "sKeyFile",  "sTopic",   "sClient",       "sForm",   "sDiscovery",
                                           "sGroup",    "sNode",    nullptr};
    return keys;
}

Settings ReadSettings(IPropertyDB& db, const char* folder) {
    try {
        return Read(db, folder);
    } catch (CCommException* complaint) {  // what any description may earn
        const std::string sentence = OrvikUtf8FromText(complaint->m_strError.GetString());
        complaint->Delete();
        throw CSinkFailure(sentence);
    }
}

std::string ReadPassword(const Settings& settings) {
    std::ifstream file = OpenFile("sPasswordFile", settings.passwordFile);
    std::string line;
    std::getline(file, line);
    if (line.ends_with('\r')) line.pop_back();
    if (line.empty()) throw Failure(NoFirstLine, "sPasswordFile", settings.passwordFile.c_str());
    return line;
}

}  // namespace mqtt
