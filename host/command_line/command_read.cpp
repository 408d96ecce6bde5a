// read: one reading of a logger, shown and kept nowhere.
#include <algorithm>

#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/measurement/download.h"
#include "host/session/reading_writer.h"
#include "host/session/value_text.h"
#include "host/words/arguments.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "platform/letters.h"

namespace {
// Keeps the one reading, and what is missing of it.
class OneReading : public IMeasurementSink {
public:
    Begin OnBegin(__int64) override { return {}; }
    void OnReading(__int64 when, const std::vector<double>& got, const std::vector<BYTE>&) override {
        time = when;
        values = got;
    }
    void OnGap(const CRecordedGap& gap) override { gaps.push_back(gap); }
    void OnEvent(const CRecordedEvent&) override {}

    // Why a channel has no value; empty if it has.
    std::string WhyNot(size_t channel) const {
        for (const CRecordedGap& gap : gaps) {
            const bool all = gap.channels.empty();
            if (all || std::find(gap.channels.begin(), gap.channels.end(), channel) != gap.channels.end())
                return ToUtf8(gap.text);
        }
        return {};
    }

    __int64 time = 0;
    std::vector<double> values;
    std::vector<CRecordedGap> gaps;
};

// A line a channel: its name, its value, its unit; the reason where there is no value.
std::string Lines(const Session& session, const OneReading& reading) {
    size_t names = 0, numbers = 0;
    std::vector<std::string> texts;
    for (size_t i = 0; i < session.Channels().size(); ++i) {
        texts.push_back(WholeTextOf(reading.values[i]));
        names = std::max(names, OrvikColumns(ToUtf8(session.Channels()[i].name)));
        if (reading.WhyNot(i).empty()) numbers = std::max(numbers, OrvikColumns(texts[i]));
    }
    std::string lines = Isolated(TimeTextOf(reading.time)) + "\n";
    for (size_t i = 0; i < texts.size(); ++i) {
        const std::string name = ToUtf8(session.Channels()[i].name), why = reading.WhyNot(i);
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
}  // namespace

ExitCode RunRead(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--port", "--logger", "--timeout"}, {"--csv", "--json"}, 0);
    if (arguments.Has("--csv") && arguments.Has("--json"))
        throw Failure{kWrongUse, Say(Text::OptionsExclude, {"--csv", "--json"})};
    MeasurementPlan plan;
    plan.port = arguments.Require("--port");
    plan.timeout = arguments.Milliseconds("--timeout", 1, 600'000, plan.timeout);
    plan.count = 1;
    plan.interval = 0;  // one attempt; the plug-in has its own
    plan.stopAsked = [] { return StopRequest::Asked(); };
    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    const std::unique_ptr<ILogger> logger = MakeLogger(app, description);
    const Session session(description, plan.port);
    const StopRequest stop(logger.get());
    OneReading reading;
    SystemClock clock;
    Measurement measurement(*logger, session.Channels().size(), reading, clock, plan);
    while (!measurement.IsOver()) measurement.Run();
    const std::string failure = ToUtf8(measurement.LastFailure());
    if (measurement.End() == Measurement::Ended::NeverConnected)
        throw Failure{kCommunicationFailed, WhyNotOpened(plan.port, measurement.LastCode(), failure)};
    if (measurement.End() == Measurement::Ended::Stopped) throw Failure{kCommunicationFailed, Say(Text::Stopped, {"0"})};
    if (measurement.Made() == 0) throw Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(plan.port), failure})};

    std::string text;
    if (arguments.Has("--csv") || arguments.Has("--json")) {
        const auto writer = arguments.Has("--csv") ? MakeCsvWriter(session, ChannelsNamed(session, {}), {})
                                                   : MakeJsonWriter(session, ChannelsNamed(session, {}));
        writer->Heading(text);
        writer->Row(text, reading.time, reading.values.data());
    } else {
        text = Lines(session, reading);
        if (!arguments.Has("--logger")) text += Say(Text::ReadAsDefault) + "\n";
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (measurement.Missing() > 0) throw Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(plan.port), failure})};
    return kDone;
}
