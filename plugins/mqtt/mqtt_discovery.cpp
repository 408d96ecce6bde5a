#include "plugins/mqtt/mqtt_discovery.h"

#include <string_view>

#include "plugins/mqtt/mqtt_json.h"
#include "plugins/mqtt/mqtt_level.h"

namespace mqtt {
namespace {
// Where the unit says what is measured. Others (% could be humidity, a level, a battery) stay without.
constexpr struct {
    std::string_view unit, kind;
} kKinds[] = {{"°C", "temperature"}, {"°F", "temperature"}, {"hPa", "pressure"},  {"mbar", "pressure"}, {"kPa", "pressure"},
              {"Pa", "pressure"},    {"bar", "pressure"},   {"psi", "pressure"},  {"V", "voltage"},     {"mV", "voltage"},
              {"A", "current"},      {"mA", "current"},     {"W", "power"},       {"kW", "power"},      {"Wh", "energy"},
              {"kWh", "energy"},     {"MWh", "energy"},     {"Hz", "frequency"},  {"lx", "illuminance"}};

std::string_view KindOf(std::string_view unit) {
    for (const auto& known : kKinds) {
        if (known.unit == unit) return known.kind;
    }
    return {};
}

// A channel that a reading lacks leaves what is shown as it is (an empty text), one without a value shows none.
std::string Template(const std::string& key) {
    std::string quoted;
    for (const char c : key) quoted += (c == '\'' || c == '\\' ? "\\" : "") + std::string(1, c);
    return "{% set v = value_json['values']['" + quoted + "'] %}{{ v if v is number or v is none else '' }}";
}
}  // namespace

std::vector<Message> DiscoveryOf(const Settings& settings, const CSinkSource& source, const std::string& topic,
                                 const std::string& availability) {
    // Of the topic, so that two stations at one broker do not share an id.
    const std::string device = PlainId(topic);
    const std::string deviceText =
        JsonObject()
            .Add("identifiers", '[' + JsonText(device) + ']')
            .Add("name", JsonText(source.station.empty() ? source.logger : source.station + ' ' + source.logger))
            .Add("model", JsonText(source.device))
            .Text();
    std::vector<Message> messages;
    for (const CSinkChannel& channel : source.channels) {
        const std::string id = device + '-' + PlainId(channel.key);
        JsonObject config;
        config.Add("name", JsonText(channel.name.empty() ? channel.key : channel.name))
            .Add("unique_id", JsonText(id))
            .Add("state_topic", JsonText(topic + "/readings"))
            .Add("value_template", JsonText(Template(channel.key)))
            .Add("availability_topic", JsonText(availability))
            .Add("device", deviceText);
        if (!channel.unit.empty()) config.Add("unit_of_measurement", JsonText(channel.unit));
        const std::string_view kind = KindOf(channel.unit);
        if (!kind.empty()) config.Add("device_class", JsonText(kind));
        // Whether energy is a meter's count or an amount of its own is not for a unit to say.
        if (kind != "energy") config.Add("state_class", JsonText("measurement"));
        messages.push_back({settings.discovery + "/sensor/" + id + "/config", config.Text(), true});
    }
    return messages;
}

}  // namespace mqtt
