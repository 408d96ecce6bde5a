#include "plugins/influx/influx_lines.h"

#include <cmath>

#include "record/line_protocol.h"

namespace influx {
namespace {
using namespace orvik::line;

std::string HeadOf(const std::string& measurement, const CSinkSource& source) {
    return Escaped(measurement, false) + Tag("station", source.station) + Tag("logger", source.logger);
}

std::string Whole(__int64 value) { return std::to_string(value) + "i"; }

// "all", or their names.
std::string ChannelsOf(const CRecordedGap& gap, const CSinkSource& source) {
    std::string names;
    for (const WORD place : gap.channels) {
        if (place < source.channels.size()) names += (names.empty() ? "" : ", ") + source.channels[place].name;
    }
    return names.empty() ? "all" : names;
}

const char* EventName(WORD kind) {
    switch (kind) {
        case RE_STARTED:
            return "started";
        case RE_CONNECTED:
            return "connected";
        case RE_LOST:
            return "lost";
        case RE_CLOCK_STEPPED:
            return "clock_stepped";
        case RE_CLOCK_AGREES:
            return "clock_agrees";
        case RE_TAG:
            return "tag";
        case RE_CONTINUED:
            return "continued";
        case RE_ENDED:
            return "ended";
        default:
            return "other";
    }
}
}  // namespace

size_t AppendReadings(std::string& out, const CSinkPart& part, const std::string& measurement, size_t row, size_t most) {
    const CSinkSource& source = *part.source;
    std::vector<std::string> heads;
    for (const CSinkChannel& channel : source.channels)
        heads.push_back(HeadOf(measurement, source) + ChannelTags(channel.name, channel.key, channel.unit));
    for (; row < part.times.size() && out.size() < most; ++row) {
        for (size_t i = 0; i < heads.size(); ++i) {
            if (std::isfinite(part.Row(row)[i])) AppendValue(out, heads[i], part.Row(row)[i], part.times[row]);
        }
    }
    return row;
}

// Tags are what parts one from another at the same time: sent again, and told again while it goes on, a gap takes its own place.
void AppendNotes(std::string& out, const CSinkPart& part, const std::string& measurement) {
    const CSinkSource& source = *part.source;
    for (const CRecordedGap& gap : part.gaps) {
        out += HeadOf(measurement + "_gap", source) + Tag("channels", ChannelsOf(gap, source)) + " until=" + Whole(gap.until) +
               ",missed=" + Whole(gap.missed) + ",attempts=" + Whole(gap.attempts) + ",cause=" + Whole(gap.cause) +
               ",text=" + Quoted(gap.text) + " " + std::to_string(gap.from) + "\n";
    }
    for (const CRecordedEvent& event : part.events) {
        out += HeadOf(measurement + "_event", source) + Tag("event", EventName(event.kind)) + " amount=" + Whole(event.amount) +
               ",text=" + Quoted(event.text) + " " + std::to_string(event.time) + "\n";
    }
    for (const CSinkComment& comment : part.comments) {
        std::string name;
        for (const CSinkChannel& channel : source.channels) {
            if (channel.key == comment.channel) name = channel.name;
        }
        std::string head = HeadOf(measurement + "_comment", source) + Tag("channel", name) + Tag("id", comment.channel);
        out += head + " text=" + Quoted(comment.text) + " " + std::to_string(comment.time) + "\n";
        if (std::isfinite(comment.value)) AppendValue(out, head, comment.value, comment.time);
    }
}

}  // namespace influx
