#include "host/session/channel_intervals.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "afx/collections.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "record/recording_types.h"

namespace {
constexpr double kLongest = 366.0 * 86'400;  // s

// Seconds by a value of any kind, in microseconds; nothing where the key is missing.
std::optional<__int64> SpanAt(IPropertyDB& db, const std::string& key) {
    if (!db.Find(key.c_str())) return std::nullopt;
    double seconds = 0;
    const CObject* const value = db.GetValueObject(key.c_str(), FALSE);
    const bool number = !KindOf(value).empty() && RealFromText(TextOf(value), seconds);
    const double milliseconds = std::round(seconds * 1e3);
    const bool whole = number && std::abs(seconds * 1e3 - milliseconds) < 1e-6;
    if (!whole || !(milliseconds >= 1) || !(seconds <= kLongest)) throw Failure{kWrongUse, Say(Text::NotSeconds, {ToUtf8(key)})};
    return static_cast<__int64>(milliseconds) * 1000;
}

std::string Seconds(__int64 microseconds) {
    char digits[64];
    return {digits, std::to_chars(digits, digits + sizeof digits, static_cast<double>(microseconds) / 1e6).ptr};
}

std::vector<std::string> Channels(IPropertyDB& description) {
    CStringArray keys;
    description.Enum("Channels", keys, FALSE, FALSE);
    std::vector<std::string> channels;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) channels.emplace_back(keys.GetAt(i).GetString());
    return channels;
}
}  // namespace

std::vector<__int64> OwnIntervals(IPropertyDB& description) {
    std::vector<__int64> intervals;
    for (const std::string& channel : Channels(description)) {
        const std::string at = "Channels." + channel;
        std::optional<__int64> interval = SpanAt(description, at + ".rInterval");
        if (!interval && description.Find((at + ".sGroup").c_str())) {
            CString group;
            description.GetValue((at + ".sGroup").c_str(), group);
            const std::string key = std::string("Groups.") + group.GetString();
            if (group.IsEmpty() || !description.Find(key.c_str()))
                throw Failure{kWrongUse, Say(Text::NoChannelGroup, {ToUtf8(at + ".sGroup"), ToUtf8(group.GetString())})};
            interval = SpanAt(description, key + ".rInterval");
        }
        intervals.push_back(interval.value_or(0));
    }
    return intervals;
}

std::vector<bool> HaveOwnIntervals(IPropertyDB& facts, size_t channels) {
    std::vector<bool> have(channels);
    facts.BeginUsing("Logger");
    try {
        const std::vector<__int64> own = OwnIntervals(facts);
        for (size_t i = 0; i < std::min(channels, own.size()); ++i) have[i] = own[i] != 0;
    } catch (const Failure&) {
        // Its lines are then drawn as those of channels that are always read.
    }
    facts.EndUsing();
    return have;
}

std::vector<DWORD> ChannelSteps(IPropertyDB& description, __int64 interval) {
    const std::vector<__int64> own = OwnIntervals(description);
    const std::vector<std::string> channels = Channels(description);
    std::vector<DWORD> steps(own.size(), 1);
    for (size_t i = 0; i < own.size(); ++i) {
        if (own[i] == 0) continue;
        const __int64 step = interval > 0 ? own[i] / interval : 0;
        if (step == 0 || own[i] % interval != 0 || step > std::numeric_limits<DWORD>::max())
            throw Failure{kWrongUse, Say(Text::NotAMultiple, {ToUtf8(channels[i]), Seconds(own[i]), Seconds(interval)})};
        steps[i] = static_cast<DWORD>(step);
    }
    if (std::all_of(steps.begin(), steps.end(), [](DWORD step) { return step == 1; })) steps.clear();
    return steps;
}

double NotDueValue() { return std::bit_cast<double>(kNotDueBits); }
bool IsNotDue(double value) { return std::bit_cast<unsigned __int64>(value) == kNotDueBits; }
