#include "plugins/mqtt/mqtt_json_sink.h"

#include <random>
#include <utility>

#include "plugins/mqtt/mqtt_discovery.h"
#include "plugins/mqtt/mqtt_json.h"
#include "plugins/mqtt/mqtt_level.h"

namespace mqtt {
namespace {
std::string ReadingPayload(const CSinkPart& part, size_t row) {
    const double* const values = part.Row(row);
    const BYTE* const flags = part.RowFlags(row);
    JsonObject channels;
    for (size_t i = 0; i < part.source->channels.size(); ++i) {
        if (flags[i] == RF_GOOD || flags[i] == RF_NO_VALUE) channels.Add(part.source->channels[i].key, JsonNumber(values[i]));
    }
    return JsonObject().Add("time", JsonTime(part.times[row])).Add("values", channels.Text()).Text();
}

std::string ChannelsPayload(const CSinkSource& source) {
    JsonObject channels;
    for (const CSinkChannel& channel : source.channels)
        channels.Add(channel.key, JsonObject().Add("name", JsonText(channel.name)).Add("unit", JsonText(channel.unit)).Text());
    return JsonObject()
        .Add("station", JsonText(source.station))
        .Add("logger", JsonText(source.logger))
        .Add("device", JsonText(source.device))
        .Add("family", JsonText(source.family))
        .Add("port", JsonText(source.port))
        .Add("channels", channels.Text())
        .Text();
}

std::string GapPayload(const CSinkSource& source, const CRecordedGap& gap) {
    const auto key = [&](WORD place) {
        return JsonText(place < source.channels.size() ? source.channels[place].key : std::string());
    };
    return JsonObject()
        .Add("session", JsonTime(source.began))
        .Add("number", std::to_string(gap.number))
        .Add("from", JsonTime(gap.from))
        .Add("until", JsonTime(gap.until))
        .Add("missed", std::to_string(gap.missed))
        .Add("attempts", std::to_string(gap.attempts))
        .Add("cause", std::to_string(gap.cause))
        .Add("text", JsonText(gap.text))
        .Add("channels", JsonList(gap.channels, key))
        .Text();
}

// Null for one that is to be passed over.
const char* WordOf(WORD event) {
    switch (event) {
        case RE_STARTED:
            return "started";
        case RE_CONNECTED:
            return "connected";
        case RE_LOST:
            return "lost";
        case RE_CLOCK_STEPPED:
            return "clock stepped";
        case RE_CLOCK_AGREES:
            return "clock agrees";
        case RE_TAG:
            return "comment";
        case RE_CONTINUED:
            return "continued";
        case RE_ENDED:
            return "ended";
        default:
            return nullptr;
    }
}

std::string EventPayload(const CSinkSource& source, const CRecordedEvent& event, const char* word) {
    JsonObject object;
    object.Add("session", JsonTime(source.began)).Add("time", JsonTime(event.time)).Add("event", JsonText(word));
    if (event.kind == RE_CLOCK_STEPPED) object.Add("amount", std::to_string(event.amount));
    return object.Add("text", JsonText(event.text)).Text();
}

std::string CommentsPayload(const CSinkPart& part) {
    const auto text = [](const CSinkComment& comment) {
        return JsonObject()
            .Add("time", JsonTime(comment.time))
            .Add("channel", JsonText(comment.channel))
            .Add("value", JsonNumber(comment.value))
            .Add("text", JsonText(comment.text))
            .Text();
    };
    return JsonObject().Add("session", JsonTime(part.source->began)).Add("comments", JsonList(part.comments, text)).Text();
}

const char* WordOf(ESinkState state) {
    switch (state) {
        case SS_STARTING:
            return "starting";
        case SS_READS:
            return "reads";
        case SS_PARTLY:
            return "partly";
        case SS_SILENT:
            return "silent";
        case SS_NO_FILE:
            return "no file";
        case SS_OVER:
            return "over";
    }
    return "unknown";
}

std::string StatePayload(const CSinkLogger& logger) {
    const auto cause = [](const CSinkLogger::Cause& one) {
        return JsonObject().Add("text", JsonText(one.text)).Add("missed", std::to_string(one.missed)).Text();
    };
    JsonObject last;
    for (size_t i = 0; i < logger.last.size() && i < logger.channels.size(); ++i) {
        if (logger.last[i].time == 0) continue;
        last.Add(logger.channels[i].key,
                 JsonObject().Add("time", JsonTime(logger.last[i].time)).Add("value", JsonNumber(logger.last[i].value)).Text());
    }
    return JsonObject()
        .Add("state", JsonText(WordOf(logger.state)))
        .Add("since", JsonTime(logger.since))
        .Add("why", JsonText(logger.why))
        .Add("made", std::to_string(logger.made))
        .Add("missing", std::to_string(logger.missing))
        .Add("waiting", std::to_string(logger.waiting))
        .Add("causes", JsonList(logger.causes, cause))
        .Add("late", JsonNumber(logger.late))
        .Add("veryLate", JsonNumber(logger.veryLate))
        .Add("latest", std::to_string(logger.latest))
        .Add("last", last.Text())
        .Text();
}

// Different for each connection that is nobody's in particular.
std::string RandomMark() { return std::to_string(std::random_device()()); }
}  // namespace

JsonSink::JsonSink(Settings settings) : m_settings(std::move(settings)), m_broker(m_settings) {}

void JsonSink::Connect() { Open(); }

void JsonSink::Open() {
    m_said.clear();
    m_announced.clear();
    const std::string name = m_settings.client.empty() ? m_settings.topic : m_settings.client;
    if (!m_station) return m_broker.Open(name + '-' + RandomMark(), std::nullopt);
    m_broker.Open(m_settings.client.empty() ? name + '-' + Level(*m_station) : name, StationState("offline"));
}

std::string JsonSink::StationTopic(const std::string& station) const {
    return station.empty() ? m_settings.topic : m_settings.topic + '/' + Level(station);
}

Message JsonSink::StationState(const char* word) const { return {StationTopic(*m_station) + "/state", word, true}; }

bool JsonSink::Say(const std::string& topic, const std::string& payload) {
    std::string& said = m_said[topic];
    if (said == payload) return false;
    m_broker.Publish({topic, payload, true});
    said = payload;
    return true;
}

void JsonSink::Describe(const CSinkSource& source, const std::string& topic) {
    const bool changed = Say(topic + "/channels", ChannelsPayload(source));
    // A session that is sent by itself has nobody who would tell hubs when it is over.
    if (m_settings.discovery.empty() || m_station != source.station) return;
    if (m_announced.insert(topic).second || changed) {
        for (const Message& message : DiscoveryOf(m_settings, source, topic, StationState("").topic)) m_broker.Publish(message);
    }
}

void JsonSink::DeliverPart(const CSinkPart& part) {
    const CSinkSource& source = *part.source;
    const std::string topic = StationTopic(source.station) + '/' + Level(source.logger);
    Describe(source, topic);
    const std::string readings = topic + "/readings";
    for (size_t row = 0; row < part.times.size(); ++row) m_broker.Publish({readings, ReadingPayload(part, row)});
    for (const CRecordedGap& gap : part.gaps) m_broker.Publish({topic + "/gaps", GapPayload(source, gap)});
    for (const CRecordedEvent& event : part.events) {
        if (const char* const word = WordOf(event.kind)) m_broker.Publish({topic + "/events", EventPayload(source, event, word)});
    }
    if (part.commented) m_broker.Publish({topic + "/comments", CommentsPayload(part), true});
}

void JsonSink::Deliver(const CSinkBatch& batch) {
    for (const CSinkPart& part : batch.parts) DeliverPart(part);
    m_broker.Flush();
}

void JsonSink::Tell(const CSinkStatus& status) {
    if (m_station != status.station) {
        Disconnect();
        m_station = status.station;
        Open();
    }
    const Message state = StationState(status.ended ? "offline" : "online");
    Say(state.topic, state.payload);
    for (const CSinkLogger& logger : status.loggers)
        Say(StationTopic(status.station) + '/' + Level(logger.logger) + "/state", StatePayload(logger));
    m_broker.Flush();
}

void JsonSink::Disconnect() {
    m_broker.Close(m_station ? std::optional(StationState("offline")) : std::nullopt);
}

void JsonSink::Abort() { m_broker.Abort(); }

}  // namespace mqtt
