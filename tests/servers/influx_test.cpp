// Readings in the line protocol, and what an InfluxDB makes of them.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <optional>
#include <thread>

#include "plugins/influx/influx_lines.h"
#include "plugins/influx/influx_sink.h"
#include "propdb/property_db.h"
#include "record/line_protocol.h"
#include "tests/servers/batch_maker.h"
#include "tests/servers/server_process.h"
#include "tests/support/test_folder.h"

namespace {
class Influx : public testing::Test {
protected:
    Influx() {
        std::ofstream(folder.Path("influx.conf"))
            << "reporting-disabled = true\nbind-address = \"127.0.0.1:" << FreePort() << "\"\n[meta]\ndir = \"" << folder.Path("meta")
            << "\"\n[data]\ndir = \"" << folder.Path("data") << "\"\nwal-dir = \"" << folder.Path("wal")
            << "\"\n[http]\nbind-address = \"127.0.0.1:" << port << "\"\n";
        Start();
        Ask("CREATE DATABASE plant");
    }
    void Start() {
        server.emplace(std::vector<std::string>{"influxd", "-config", folder.Path("influx.conf")}, folder.Path("log"));
        EXPECT_TRUE(Becomes([&] { return Listens(port); }));
    }
    std::string Ask(const std::string& question) {
        return OutputOf("curl -s -X POST '" + address + "/query?db=plant&epoch=u' --data-urlencode \"q=" + question + "\"");
    }
    influx::Sink Make(const char* database = "plant") {
        CPropertyDB db;
        db.SetValue("sAddress", address.c_str());
        db.SetValue("sDatabase", database);
        return influx::Sink(influx::Settings::Read(db, ""));
    }
    const TestFolder folder;
    const int port = FreePort();
    const std::string address = "http://127.0.0.1:" + std::to_string(port);
    std::optional<ServerProcess> server;
};
}  // namespace

TEST(LineProtocol, EscapesWhatWouldEndAText) {
    using namespace orvik::line;
    const std::pair<const char*, const char*> table[] = {{"a b,c=d", R"(a\ b\,c\=d)"}, {"k\u03A9", "k\u03A9"}, {R"(a\b)", R"(a\b)"},
                                                         {R"(a\,b)", R"(a\\,b)"},      {R"(a\)", R"(a\\ )"},   {"a\nb", R"(a\ b)"}};
    for (const auto& [text, escaped] : table) EXPECT_EQ(Escaped(text), escaped) << text;
    EXPECT_EQ(Escaped("a=b", false), "a=b");
    EXPECT_EQ(Tag("unit", ""), "");
    EXPECT_EQ(Quoted("say \"a\\b\"\n"), "\"say \\\"a\\\\b\\\"\n\"");
}

TEST(InfluxSettings, SayWhereReadingsGoAndNameTheKeyToBlame) {
    const auto read = [](std::initializer_list<std::pair<const char*, const char*>> keys) {
        CPropertyDB db;
        for (const auto& [key, value] : keys) db.SetValue(key, value);
        return influx::Settings::Read(db, "");
    };
    EXPECT_EQ(read({{"sAddress", "http://h:1/"}, {"sDatabase", "a b"}}).path, "/write?db=a%20b&precision=u");
    EXPECT_EQ(read({{"sAddress", "https://h"}, {"sOrganisation", "o"}, {"sBucket", "b"}}).path,
              "/api/v2/write?org=o&bucket=b&precision=us");
    EXPECT_EQ(FailureOf([&] { read({{"sAddress", "h:1"}, {"sDatabase", "x"}}); }).find("sAddress: "), 0u);
    EXPECT_EQ(FailureOf([&] { read({{"sAddress", "http://h"}}); }).find("sDatabase"), 0u);
    EXPECT_EQ(FailureOf([&] { read({{"sAddress", "http://h"}, {"sBucket", "b"}}); }).find("sOrganisation"), 0u);
    EXPECT_EQ(FailureOf([&] { read({{"sAddress", "http://h"}, {"sPath", "x"}}); }).find("sPath"), 0u);
}

TEST_F(Influx, BringsOverEveryFiniteValueOnceHoweverOftenItIsSent) {
    MadeBatch made(0, 8);
    made.AddNotes();
    made.source.channels[0].name = R"(Flow, "in" = 1\)";
    influx::Sink sink = Make();
    sink.Connect();
    for (int time = 0; time < 2; ++time) sink.Deliver(made.batch);
    EXPECT_NE(Ask("SELECT count(value), last(value) FROM orvik WHERE id='1'").find(",8,7.1]"), std::string::npos);
    const std::string values = Ask("SELECT value FROM orvik WHERE channel='Resistance' AND unit='k\u03A9' AND station='Plant' AND logger='inlet'");
    EXPECT_NE(values.find("\"values\":[[1700000000123456,0],[1700000000373457,-1],[1700000000623458,-2],[1700000001873463,-7]]"),
              std::string::npos)
        << values;
    EXPECT_NE(Ask("SHOW TAG VALUES FROM orvik WITH KEY = channel").find(R"(Flow, \"in\" = 1\\)"), std::string::npos);
    EXPECT_NE(Ask("SELECT missed, text FROM orvik_gap WHERE channels='Resistance'").find(R"([1700000000873459,1,"no answer; \"none\" 'at all'"])"),
              std::string::npos);
    EXPECT_NE(Ask("SELECT event, text FROM orvik_event").find(R"(1700000000123456,"connected","COM5")"), std::string::npos);
    EXPECT_NE(Ask("SELECT text, value FROM orvik_comment").find("4 k\u03A9 \\\\ it's\\nhot\",2.5]"), std::string::npos);
}

TEST_F(Influx, FailuresAreToldAndNothingIsTakenForSent) {
    MadeBatch made(0, 20'000);
    influx::Sink other = Make("nowhere");
    other.Connect();
    EXPECT_NE(FailureOf([&] { other.Deliver(made.batch); }).find("answers 404: {\"error\":\"database not found"), std::string::npos);
    influx::Sink sink = Make();
    sink.Connect();
    // One that hangs: ended at once by who wants to end.
    server->Pause();
    std::thread ends([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        sink.Abort();
    });
    EXPECT_NE(FailureOf([&] { sink.Deliver(made.batch); }), "");
    ends.join();
    server->Continue();
    server->Kill();
    influx::Sink again = Make();
    EXPECT_NE(FailureOf([&] { again.Connect(); }).find(address), std::string::npos);
    again.Disconnect();
    Start();
    again.Connect();
    again.Deliver(made.batch);
    EXPECT_NE(Ask("SELECT count(value), sum(value) FROM orvik WHERE id='1'").find(",20000,"), std::string::npos);
}
