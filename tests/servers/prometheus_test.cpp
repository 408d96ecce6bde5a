// A station's status as a scraper gets it: the page by itself, over HTTP, and through a Prometheus that scrapes it.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "plugins/prometheus/metrics_text.h"
#include "plugins/prometheus/prometheus_sink.h"
#include "tests/servers/batch_maker.h"
#include "tests/servers/server_process.h"
#include "tests/support/test_folder.h"

namespace {
CSinkStatus Status() {
    CSinkStatus status;
    status.station = "Plant \"A\"\\\n1";
    status.started = 1'700'000'000'000'001;
    CSinkLogger meter{"meter", SS_PARTLY, 1'700'000'001'000'000, "", 10, 2, 3, 1500, 20'000, 1'000'000, {}, {}, {}};
    meter.causes = {{"no answer", 1}, {"no answer", 1}};
    meter.channels = {{"1", "R", "k\u03A9"}, {"2", "R", "k\u03A9"}, {"3", "Never", ""}};
    meter.last = {{0.1, 1'700'000'002'500'000}, {INFINITY, 1'700'000'002'500'000}, {0, 0}};
    CSinkLogger silent = meter;
    silent.logger = "silent";
    silent.state = SS_SILENT;
    status.loggers = {meter, silent};
    status.sinks = {{"db", "PostgreSQL", false, 123, 7}};
    return status;
}

}  // namespace

TEST(Prometheus, ThePageHasEachSeriesOnceAndNothingThatIsNotSo) {
    const std::string page = prometheus::MetricsText(Status(), true);
    const std::string station = R"(station="Plant \"A\"\\\n1")", meter = station + ",logger=\"meter\"", silent = station + ",logger=\"silent\"";
    for (const std::string& line :
         {"orvik_up{" + station + "} 1", "orvik_start_time_seconds{" + station + "} 1700000000.000001",
          "orvik_logger_state{" + meter + ",state=\"partly\"} 1", "orvik_logger_state{" + silent + ",state=\"partly\"} 0",
          "orvik_missing_cause_readings_total{" + meter + ",cause=\"no answer\"} 2", "orvik_lateness_p99_seconds{" + meter + "} 0.02",
          "orvik_value{" + meter + ",channel=\"R\",key=\"1\",unit=\"k\u03A9\"} 0.1",
          "orvik_value{" + meter + ",channel=\"R\",key=\"2\",unit=\"k\u03A9\"} +Inf",
          "orvik_value_timestamp_seconds{" + silent + ",channel=\"R\",key=\"1\",unit=\"k\u03A9\"} 1700000002.500000",
          "orvik_sink_behind_bytes{" + station + ",sink=\"db\",family=\"PostgreSQL\"} 123"})
        EXPECT_NE(page.find("\n" + line + "\n"), std::string::npos) << line << "\n" << page;
    EXPECT_EQ(page.find("Never"), std::string::npos);
    EXPECT_EQ(page.find("orvik_value{" + silent), std::string::npos) << "a graph ends where measuring did";
    EXPECT_EQ(prometheus::MetricsText(Status(), false).find("meter"), std::string::npos);
    const TestFolder folder;
    std::ofstream(folder.Path("page")) << page;
    EXPECT_EQ(OutputOf("promtool check metrics < " + folder.Path("page")), "");
}

TEST(Prometheus, AddressesAreReadAndRefused) {
    const struct {
        const char *text, *host;
        int port;
    } good[] = {{":9100", "", 9100}, {"9100", "", 9100}, {"127.0.0.1:1", "127.0.0.1", 1}, {"[::1]:65535", "::1", 65535}};
    for (const auto& one : good) {
        const auto address = prometheus::ListenAddress::Parse(one.text, "sAddress");
        EXPECT_EQ(address.host, one.host) << one.text;
        EXPECT_EQ(address.port, one.port) << one.text;
    }
    for (const char* bad : {"", ":", "host", "host:", ":x", ":65536", ":-1", ":91 ", "::1:9100"})
        EXPECT_EQ(FailureOf([&] { prometheus::ListenAddress::Parse(bad, "sAddress"); }).find("sAddress: "), 0u) << bad;
}

TEST(Prometheus, IsScrapedWhileTheStationLives) {
    const TestFolder folder;
    prometheus::Sink sink({"127.0.0.1", 0});
    sink.Connect();
    const std::string at = "http://127.0.0.1:" + std::to_string(sink.Port());
    const auto get = [&](const std::string& how) { return OutputOf("curl -s " + how); };
    EXPECT_EQ(get(at + "/metrics | grep -c '^orvik_up.* 0$'"), "1\n") << "nothing was told yet";
    sink.Tell(Status());
    for (const auto& [how, answer] : {std::pair<std::string, const char*>{"/metrics", "200"},
                                      {"/", "200"},
                                      {"/other", "404"},
                                      {"/metrics -I", "200"},
                                      {"/metrics -d x", "405"}})
        EXPECT_EQ(get("-o /dev/null -w '%{http_code}' " + at + how), answer) << how;
    EXPECT_NE(FailureOf([&] { prometheus::Sink({"127.0.0.1", sink.Port()}).Connect(); }).find("another program listens there"),
              std::string::npos);

    std::ofstream(folder.Path("prometheus.yml")) << "global: {scrape_interval: 1s}\nscrape_configs:\n- job_name: orvik\n"
                                                    "  static_configs:\n  - targets: ['127.0.0.1:"
                                                 << sink.Port() << "']\n";
    const std::string server = "127.0.0.1:" + std::to_string(FreePort());
    const ServerProcess scraper({"prometheus", "--config.file=" + folder.Path("prometheus.yml"),
                                 "--storage.tsdb.path=" + folder.Path("data"), "--web.listen-address=" + server},
                                folder.Path("log"));
    const auto query = [&](const std::string& what) {
        return get("-G http://" + server + "/api/v1/query --data-urlencode 'query=" + what + "'");
    };
    EXPECT_TRUE(Becomes([&] {
        sink.Tell(Status());
        return query("orvik_value{key=\"1\",unit=\"k\u03A9\"}").find("\"0.1\"]") != std::string::npos;
    })) << query("up");
    // It ends in order: what it told last is no state any more.
    CSinkStatus ended = Status();
    ended.ended = true;
    sink.Tell(ended);
    EXPECT_TRUE(Becomes([&] { return query("orvik_up").find("\"0\"]") != std::string::npos; }));
    EXPECT_EQ(query("orvik_value").find("\"0.1\"]"), std::string::npos);
    sink.Disconnect();
    sink.Disconnect();
    sink.Connect();
}
