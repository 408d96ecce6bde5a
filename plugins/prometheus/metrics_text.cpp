#include "plugins/prometheus/metrics_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <map>

namespace prometheus {
namespace {
constexpr const char* kStates[] = {"starting", "reads", "partly", "silent", "no_file", "over"};

std::string Seconds(__int64 microseconds) {
    const unsigned __int64 size = microseconds < 0 ? 0 - static_cast<unsigned __int64>(microseconds) : static_cast<unsigned __int64>(microseconds);
    char text[40];
    std::snprintf(text, sizeof text, "%s%llu.%06llu", microseconds < 0 ? "-" : "", static_cast<unsigned long long>(size / 1'000'000),
                  static_cast<unsigned long long>(size % 1'000'000));
    return text;
}

// Its samples have to follow one another, whatever logger they are of.
class Metric {
public:
    Metric(std::string& page, const char* name, const char* type, const char* help) : m_page(page), m_name(name) {
        m_page.append("# HELP ").append(name).append(" ").append(help).append("\n# TYPE ").append(name).append(" ").append(type) += '\n';
    }
    void Add(const std::string& labels, const std::string& value) {
        m_page.append(m_name).append("{").append(labels).append("} ").append(value) += '\n';
    }

private:
    std::string& m_page;
    const char* const m_name;
};

std::string Label(const char* name, std::string_view value) { return std::string(name) + "=\"" + LabelText(value) + '"'; }

class Page {
public:
    Page(const CSinkStatus& status, std::string& page) : m_status(status), m_page(page), m_station(Label("station", status.station)) {}

    template <class ValueOf>
    void OfLoggers(const char* name, const char* type, const char* help, ValueOf valueOf) {
        Metric metric(m_page, name, type, help);
        for (const CSinkLogger& logger : m_status.loggers) metric.Add(Of(logger), valueOf(logger));
    }
    template <class ValueOf>
    void OfSinks(const char* name, const char* type, const char* help, ValueOf valueOf) {
        Metric metric(m_page, name, type, help);
        for (const CSinkStatus::Sink& sink : m_status.sinks)
            metric.Add(m_station + "," + Label("sink", sink.key) + "," + Label("family", sink.family), std::to_string(valueOf(sink)));
    }
    void States() {
        Metric metric(m_page, "orvik_logger_state", "gauge", "What the logger does: 1 for the state that it is in, 0 for the others.");
        for (const CSinkLogger& logger : m_status.loggers) {
            for (size_t i = 0; i < std::size(kStates); ++i)
                metric.Add(Of(logger) + "," + Label("state", kStates[i]), logger.state == i ? "1" : "0");
        }
    }
    void Causes() {
        Metric metric(m_page, "orvik_missing_cause_readings_total", "counter", "Readings with something missing, by the cause.");
        for (const CSinkLogger& logger : m_status.loggers) {
            // The same words may be said of several channels, and a series must not come twice.
            std::map<std::string, unsigned __int64> causes;
            for (const CSinkLogger::Cause& cause : logger.causes) causes[cause.text] += cause.missed;
            for (const auto& [text, missed] : causes) metric.Add(Of(logger) + "," + Label("cause", text), std::to_string(missed));
        }
    }
    void Values() {
        Metric metric(m_page, "orvik_value", "gauge", "The last value of a channel, while its logger gives values.");
        EachLast([&](const CSinkLogger& logger, const std::string& labels, const CSinkLogger::Last& last) {
            if (logger.state == SS_READS || logger.state == SS_PARTLY || logger.state == SS_NO_FILE) metric.Add(labels, NumberText(last.value));
        });
    }
    void Times() {
        Metric metric(m_page, "orvik_value_timestamp_seconds", "gauge", "When the last value of a channel was read.");
        EachLast([&](const CSinkLogger&, const std::string& labels, const CSinkLogger::Last& last) { metric.Add(labels, Seconds(last.time)); });
    }
    const std::string& Station() const { return m_station; }

private:
    std::string Of(const CSinkLogger& logger) const { return m_station + "," + Label("logger", logger.logger); }
    // Keys part channels of the same name.
    template <class Use>
    void EachLast(Use use) {
        for (const CSinkLogger& logger : m_status.loggers) {
            for (size_t i = 0; i < logger.channels.size() && i < logger.last.size(); ++i) {
                const CSinkChannel& channel = logger.channels[i];
                if (logger.last[i].time == 0) continue;
                use(logger,
                    Of(logger) + "," + Label("channel", channel.name) + "," + Label("key", channel.key) + "," + Label("unit", channel.unit),
                    logger.last[i]);
            }
        }
    }

    const CSinkStatus& m_status;
    std::string& m_page;
    const std::string m_station;
};
}  // namespace

std::string LabelText(std::string_view utf8) {
    std::string out;
    for (const char c : utf8) {
        if (c == '\n') {
            out += "\\n";
        } else {
            if (c == '\\' || c == '"') out += '\\';
            out += c;
        }
    }
    return out;
}

std::string NumberText(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "+Inf" : "-Inf";
    char digits[64];
    return {digits, std::to_chars(digits, std::end(digits), value).ptr};
}

std::string MetricsText(const CSinkStatus& status, bool lives) {
    std::string text;
    Page page(status, text);
    Metric(text, "orvik_up", "gauge", "1 while the station tells of itself; 0 when it has not for ten seconds, or has ended.")
        .Add(page.Station(), lives ? "1" : "0");
    if (!lives) return text;
    Metric(text, "orvik_start_time_seconds", "gauge", "When the station was started.").Add(page.Station(), Seconds(status.started));
    page.States();
    page.OfLoggers("orvik_logger_state_timestamp_seconds", "gauge", "Since when the logger is in its state.",
                   [](const CSinkLogger& logger) { return Seconds(logger.since); });
    page.OfLoggers("orvik_readings_total", "counter", "Readings with at least one value since the station was started.",
                   [](const CSinkLogger& logger) { return std::to_string(logger.made); });
    page.OfLoggers("orvik_missing_readings_total", "counter", "Readings with something missing since the station was started.",
                   [](const CSinkLogger& logger) { return std::to_string(logger.missing); });
    page.Causes();
    page.OfLoggers("orvik_waiting_readings", "gauge", "Readings that wait for a disk which takes nothing.",
                   [](const CSinkLogger& logger) { return std::to_string(logger.waiting); });
    const auto late = [](double microseconds) { return NumberText(microseconds / 1e6); };
    page.OfLoggers("orvik_lateness_median_seconds", "gauge", "How late half of the readings began at most.",
                   [&](const CSinkLogger& logger) { return late(logger.late); });
    page.OfLoggers("orvik_lateness_p99_seconds", "gauge", "How late 99 of 100 readings began at most.",
                   [&](const CSinkLogger& logger) { return late(logger.veryLate); });
    page.OfLoggers("orvik_lateness_max_seconds", "gauge", "How late the latest reading began.",
                   [](const CSinkLogger& logger) { return Seconds(logger.latest); });
    page.Values();
    page.Times();
    page.OfSinks("orvik_sink_up", "gauge", "1 while the far end of a sink is reached.", [](const auto& sink) { return sink.reached ? 1 : 0; });
    page.OfSinks("orvik_sink_behind_bytes", "gauge", "Bytes of recordings that a sink has still to send.",
                 [](const auto& sink) { return sink.behind; });
    page.OfSinks("orvik_sink_sent_readings_total", "counter", "Readings that a sink has sent since the station was started.",
                 [](const auto& sink) { return sink.sent; });
    return text;
}

}  // namespace prometheus
