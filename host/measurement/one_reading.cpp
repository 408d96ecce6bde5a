#include "host/measurement/one_reading.h"

#include <algorithm>
#include <cmath>

#include "host/measurement/download.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "platform/letters.h"

namespace {
// Keeps the one reading, and what is missing of it.
class Keeper : public IMeasurementSink {
public:
    explicit Keeper(OneReading& reading) : m_reading(reading) {}
    Begin OnBegin(__int64) override { return {}; }
    void OnReading(__int64 when, const std::vector<double>& got, const std::vector<BYTE>&) override {
        m_reading.time = when;
        m_reading.values = got;
    }
    void OnGap(const CRecordedGap& gap) override { m_reading.gaps.push_back(gap); }
    void OnEvent(const CRecordedEvent&) override {}

private:
    OneReading& m_reading;
};
}  // namespace

std::string OneReading::WhyNot(size_t channel) const {
    for (const CRecordedGap& gap : gaps) {
        const bool all = gap.channels.empty();
        if (all || std::find(gap.channels.begin(), gap.channels.end(), channel) != gap.channels.end()) return ToUtf8(gap.text);
    }
    return {};
}

std::string OneReading::Lines(const Session& session) const {
    size_t names = 0, numbers = 0;
    std::vector<std::string> texts;
    for (size_t i = 0; i < session.Channels().size(); ++i) {
        texts.push_back(std::isnan(values[i]) ? "-" : WholeTextOf(values[i]));
        names = std::max(names, OrvikColumns(ToUtf8(session.Channels()[i].name)));
        if (WhyNot(i).empty()) numbers = std::max(numbers, OrvikColumns(texts[i]));
    }
    std::string lines = Isolated(TimeTextOf(time)) + "\n";
    for (size_t i = 0; i < texts.size(); ++i) {
        const std::string name = ToUtf8(session.Channels()[i].name), why = WhyNot(i);
        lines += Isolated(name) + std::string(names - OrvikColumns(name) + 2, ' ');
        if (!why.empty()) {
            lines += "- (" + Isolated(why) + ")\n";
            continue;
        }
        const std::string unit = ToUtf8(session.Channels()[i].unit);
        lines += std::string(numbers - std::min(numbers, OrvikColumns(texts[i])), ' ') + Isolated(texts[i]) +
                 (unit.empty() ? "" : " " + Isolated(unit)) + "\n";
    }
    return lines;
}

OneReading ReadOnce(ILogger& logger, const Session& session, MeasurementPlan plan) {
    plan.count = 1;
    plan.interval = 0;  // one attempt; the plug-in has its own
    OneReading reading;
    Keeper keeper(reading);
    SystemClock clock;
    Measurement measurement(logger, session.Channels().size(), keeper, clock, plan);
    while (!measurement.IsOver()) measurement.Run();
    reading.failure = ToUtf8(measurement.LastFailure());
    reading.whole = measurement.Missing() == 0;
    if (measurement.End() == Measurement::Ended::NeverConnected)
        throw Failure{kCommunicationFailed, WhyNotOpened(plan.port, measurement.LastCode(), reading.failure)};
    if (measurement.End() == Measurement::Ended::Stopped) throw Failure{kCommunicationFailed, Say(Text::Stopped, {"0"})};
    if (measurement.Made() == 0) throw Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(plan.port), reading.failure})};
    return reading;
}
