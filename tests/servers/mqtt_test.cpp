// The MQTT sink against a broker of its own, and a subscriber as the witness of what arrives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mosquitto.h>
#include <sparkplug.pb.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <future>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "plugins/mqtt/mqtt_broker.h"
#include "plugins/mqtt/mqtt_level.h"
#include "propdb/property_db.h"
#include "record/sink.h"
#include "tests/servers/server_process.h"
#include "tests/support/test_folder.h"

extern "C" ISinkFamily* OrvikPlugin_SinkFamily();

namespace {
using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();
constexpr __int64 kBegan = 1'795'416'312'345'678;  // 2026-11-23T06:45:12.345678Z

struct Heard {
    std::string topic, payload;
    bool retained;
};

// Subscribes, and keeps all that comes.
class Witness {
public:
    explicit Witness(int port, const std::string& topic = "#") : m_topic(topic), m_client(mosquitto_new(nullptr, true, this)) {
        mosquitto_connect_callback_set(m_client, [](mosquitto* client, void* self, int) {
            mosquitto_subscribe(client, nullptr, static_cast<Witness*>(self)->m_topic.c_str(), 1);
        });
        mosquitto_subscribe_callback_set(m_client, [](mosquitto*, void* self, int, int, const int*) {
            const std::lock_guard lock(static_cast<Witness*>(self)->m_lock);
            static_cast<Witness*>(self)->m_subscribed = true;
        });
        mosquitto_message_callback_set(m_client, [](mosquitto*, void* self, const mosquitto_message* message) {
            const std::lock_guard lock(static_cast<Witness*>(self)->m_lock);
            const std::string payload(static_cast<const char*>(message->payload), static_cast<size_t>(message->payloadlen));
            static_cast<Witness*>(self)->m_heard.push_back({message->topic, payload, message->retain});
        });
        EXPECT_EQ(mosquitto_connect(m_client, "127.0.0.1", port, 60), MOSQ_ERR_SUCCESS);
        mosquitto_loop_start(m_client);
        EXPECT_TRUE(Becomes([this] {
            const std::lock_guard lock(m_lock);
            return m_subscribed;
        }));
    }
    ~Witness() {
        mosquitto_disconnect(m_client);
        mosquitto_loop_stop(m_client, true);
        mosquitto_destroy(m_client);
    }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;

    void Say(const std::string& topic, const std::string& payload) {
        mosquitto_publish(m_client, nullptr, topic.c_str(), static_cast<int>(payload.size()), payload.data(), 1, false);
    }
    // Those whose topic ends so.
    std::vector<Heard> Of(const std::string& end) {
        const std::lock_guard lock(m_lock);
        std::vector<Heard> found;
        std::copy_if(m_heard.begin(), m_heard.end(), std::back_inserter(found),
                     [&](const Heard& one) { return one.topic.ends_with(end); });
        return found;
    }
    // The same, once there are so many.
    std::vector<Heard> Await(const std::string& end, size_t count) {
        EXPECT_TRUE(Becomes([&] { return Of(end).size() >= count; })) << end << ": " << Of(end).size();
        return Of(end);
    }
    std::vector<Heard> All() { return Of(""); }

private:
    const std::string m_topic;
    mosquitto* m_client;
    std::mutex m_lock;
    bool m_subscribed = false;
    std::vector<Heard> m_heard;
};

std::vector<std::string> Payloads(const std::vector<Heard>& heard) {
    std::vector<std::string> payloads;
    for (const Heard& one : heard) payloads.push_back(one.payload);
    return payloads;
}

CSinkSource Source() {
    return {"Pump house", "inlet", kBegan, "Flow meter", "Modbus", "/dev/ttyUSB0", {{"1", "Water", "°C"}, {"2", "Flow", "l/s"}}};
}

// `count` readings, a second apart; every value its own.
CSinkPart Part(const CSinkSource& source, size_t count, __int64 first = kBegan) {
    CSinkPart part;
    part.source = &source;
    for (size_t row = 0; row < count; ++row) {
        part.times.push_back(first + static_cast<__int64>(row) * 1'000'000);
        for (size_t channel = 0; channel < source.channels.size(); ++channel) {
            part.values.push_back(static_cast<double>(row) + static_cast<double>(channel) / 10);
            part.flags.push_back(RF_GOOD);
        }
    }
    return part;
}

CSinkStatus Status(ESinkState state = SS_READS, const std::string& station = "Pump house") {
    CSinkLogger logger;
    logger.logger = "inlet";
    logger.state = state;
    logger.since = kBegan;
    logger.channels = Source().channels;
    logger.last = {{20.75, kBegan}, {0, 0}};
    logger.causes = {{"silent", 2}};
    CSinkStatus status;
    status.station = station;
    status.loggers = {logger};
    return status;
}

std::string Sentence(const std::function<void()>& call) {
    try {
        call();
    } catch (const CSinkFailure& failure) {
        return failure.what();
    }
    return {};
}

class Mqtt : public testing::Test {
protected:
    static void SetUpTestSuite() { mosquitto_lib_init(); }
    static void TearDownTestSuite() { mosquitto_lib_cleanup(); }

    // `lines`: of its configuration, besides those for a listener without any secret.
    void StartBroker(const std::string& lines = {}) {
        m_folder.Write("broker.conf", "per_listener_settings true\nuser root\nlistener " + std::to_string(m_port) +
                                          " 127.0.0.1\nallow_anonymous true\nmax_queued_messages 0\n" + lines);
        m_broker = std::make_unique<ServerProcess>(std::vector<std::string>{"/usr/sbin/mosquitto", "-c", m_folder.Path("broker.conf")},
                                                   m_folder.Path("broker.log"));
        ASSERT_TRUE(Becomes([this] { return Listens(m_port); })) << m_folder.Read("broker.log");
    }

    using Keys = std::map<std::string, std::string>;
    std::unique_ptr<ISink> Make(const Keys& keys = {}) {
        CPropertyDB settings;
        settings.SetValue("sAddress", ("mqtt://127.0.0.1:" + std::to_string(m_port)).c_str());
        for (const auto& [key, value] : keys) settings.SetValue(key.c_str(), value.c_str());
        return std::unique_ptr<ISink>(OrvikPlugin_SinkFamily()->CreateSink(settings, (m_folder.Folder().string() + '/').c_str()));
    }
    std::string Complaint(const Keys& keys) {
        return Sentence([&] { Make(keys); });
    }
    // What Connect says to these settings.
    std::string Greeting(const Keys& keys) {
        const auto sink = Make(keys);
        const std::string sentence = Sentence([&] { sink->Connect(); });
        sink->Disconnect();
        return sentence;
    }

    const TestFolder m_folder;
    const int m_port = FreePort();
    std::unique_ptr<ServerProcess> m_broker;
};

TEST_F(Mqtt, SettingsAreRefusedByTheirKeys) {
    m_folder.Write("empty", "\n");
    m_folder.Write("word", "secret\r\nmore\n");
    const struct {
        Keys keys;
        const char* begin;
    } cases[] = {
        {{{"sAddress", "tcp://host"}}, "sAddress: tcp://host: not one of"},
        {{{"sAddress", "mqtt://"}}, "sAddress: mqtt://: no name"},
        {{{"sAddress", "mqtt://[::1"}}, "sAddress: mqtt://[::1: no name"},
        {{{"sAddress", "mqtt://host:70000"}}, "sAddress: mqtt://host:70000: the port"},
        {{{"sAddress", "mqtt://host:"}}, "sAddress: mqtt://host:: the port"},
        {{{"sPasswordFile", "word"}}, "sPasswordFile: needs sUser"},
        {{{"sUser", "a"}, {"sPasswordFile", "nowhere"}}, "sPasswordFile: "},
        {{{"sUser", "a"}, {"sPasswordFile", "."}}, "sPasswordFile: "},
        {{{"sUser", "a"}, {"sPasswordFile", "empty"}}, "sPasswordFile: the first line"},
        {{{"sCaFile", "word"}}, "sCaFile: means something with mqtts:// only"},
        {{{"sAddress", "mqtts://host"}, {"sKeyFile", "word"}}, "sKeyFile: needs sCertificateFile"},
        {{{"sTopic", "a/+/b"}}, "sTopic: "},
        {{{"sTopic", "a//b"}}, "sTopic: "},
        {{{"sTopic", ""}}, "sTopic: "},
        {{{"sForm", "xml"}}, "sForm: not one of: json sparkplug"},
        {{{"sNode", "a"}}, "sNode: means something with sForm sparkplug only"},
        {{{"sForm", "sparkplug"}}, "sNode: missing"},
        {{{"sForm", "sparkplug"}, {"sNode", "a/b"}}, "sNode: not one level"},
        {{{"sForm", "sparkplug"}, {"sNode", "a"}, {"sDiscovery", "b"}}, "sDiscovery: means something with sForm json only"},
    };
    for (const auto& one : cases) EXPECT_THAT(Complaint(one.keys), StartsWith(one.begin));
    EXPECT_EQ(Complaint({{"sAddress", "mqtts://[::1]"}, {"sUser", "a"}, {"sPasswordFile", "word"}}), "");
}

TEST_F(Mqtt, DifferentNamesAreDifferentLevels) {
    EXPECT_EQ(mqtt::Level("Pump house, mätvärde"), "Pump house, mätvärde");
    const std::string longOne(300, 'a');
    const char* const names[] = {"a_b", "a/b", "a+b", "a#b", "a\nb", "a\u0085b", "", "_"};
    std::set<std::string> levels, ids;
    for (const char* const name : names) {
        const std::string level = mqtt::Level(name);
        EXPECT_EQ(mosquitto_pub_topic_check(level.c_str()), MOSQ_ERR_SUCCESS) << name;
        EXPECT_EQ(level.find('/'), std::string::npos);
        levels.insert(level);
        ids.insert(mqtt::PlainId(name));
    }
    EXPECT_EQ(levels.size(), std::size(names));
    EXPECT_EQ(ids.size(), std::size(names));
    EXPECT_NE(mqtt::Level(longOne), mqtt::Level(longOne + 'b'));
    EXPECT_LT(mqtt::Level(longOne).size(), 250u);
    EXPECT_EQ(mosquitto_pub_topic_check(mqtt::Level(std::string(199, 'a') + "ä and more").c_str()), MOSQ_ERR_SUCCESS);
}

TEST_F(Mqtt, AllOfARecordingArrives) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    Witness witness(m_port);
    CSinkSource source = Source();
    CSinkPart part = Part(source, 5);
    part.values = {20.75, 0.1 + 0.2, kNan, -1e-300, kNan, 5, kInfinity, -kInfinity, kNan, 1};
    part.flags = {RF_GOOD, RF_GOOD, RF_NO_VALUE, RF_GOOD, RF_MISSING, RF_GOOD, RF_GOOD, RF_GOOD, RF_NOT_DUE, RF_GOOD};
    part.gaps = {{3, kBegan + 2'000'000, kBegan + 2'000'000, 1, 4, 8, {0}, "no \"answer\"\n"}};
    part.events = {{kBegan, RE_CLOCK_STEPPED, -5, "set"}, {kBegan, 99, 0, "to be passed over"}};
    part.commented = true;
    part.comments = {{kBegan, 20.75, "1", "here"}};
    CSinkSource alone = source;
    alone.station.clear();
    alone.logger = "a/b";

    const auto sink = Make();
    sink->Connect();
    sink->Deliver({{part, Part(alone, 1)}});
    sink->Disconnect();

    EXPECT_THAT(Payloads(witness.Await("orvik/Pump house/inlet/readings", 5)),
                ElementsAre(R"({"time":"2026-11-23T06:45:12.345678Z","values":{"1":20.75,"2":0.30000000000000004}})",
                            R"({"time":"2026-11-23T06:45:13.345678Z","values":{"1":null,"2":-1e-300}})",
                            R"({"time":"2026-11-23T06:45:14.345678Z","values":{"2":5}})",
                            R"({"time":"2026-11-23T06:45:15.345678Z","values":{"1":"Infinity","2":"-Infinity"}})",
                            R"({"time":"2026-11-23T06:45:16.345678Z","values":{"2":1}})"));
    EXPECT_THAT(Payloads(witness.Await("/gaps", 1)),
                ElementsAre(R"({"session":"2026-11-23T06:45:12.345678Z","number":3,"from":"2026-11-23T06:45:14.345678Z",)"
                            R"("until":"2026-11-23T06:45:14.345678Z","missed":1,"attempts":4,"cause":8,)"
                            R"("text":"no \"answer\"\u000a","channels":["1"]})"));
    EXPECT_THAT(Payloads(witness.Await("/events", 1)),
                ElementsAre(R"({"session":"2026-11-23T06:45:12.345678Z","time":"2026-11-23T06:45:12.345678Z",)"
                            R"("event":"clock stepped","amount":-5,"text":"set"})"));
    EXPECT_EQ(witness.Await("orvik/" + mqtt::Level("a/b") + "/readings", 1).size(), 1u);
    EXPECT_EQ(witness.Of("/state").size(), 0u);  // no station runs
    Witness late(m_port);
    EXPECT_THAT(late.Await("inlet/comments", 1)[0].payload, HasSubstr(R"("channel":"1","value":20.75,"text":"here")"));
    EXPECT_THAT(late.Await("inlet/channels", 1)[0].payload,
                HasSubstr(R"("channels":{"1":{"name":"Water","unit":"°C"},"2":{"name":"Flow","unit":"l/s"}})"));
    EXPECT_TRUE(late.Of("inlet/channels")[0].retained);
}

TEST_F(Mqtt, AStationIsToldOnlineAndOffline) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    const auto sink = Make({{"sTopic", "plant/one"}});
    sink->Connect();
    sink->Tell(Status());
    Witness witness(m_port);
    EXPECT_EQ(witness.Await("plant/one/Pump house/state", 1)[0].payload, "online");
    EXPECT_THAT(witness.Await("inlet/state", 1)[0].payload,
                AllOf(HasSubstr(R"("state":"reads","since":"2026-11-23T06:45:12.345678Z")"),
                      HasSubstr(R"("causes":[{"text":"silent","missed":2}])"),
                      HasSubstr(R"("last":{"1":{"time":"2026-11-23T06:45:12.345678Z","value":20.75}}})")));
    sink->Tell(Status());  // the same once more
    sink->Tell(Status(SS_SILENT));
    EXPECT_THAT(witness.Await("inlet/state", 2)[1].payload, HasSubstr(R"("state":"silent")"));
    sink->Disconnect();
    EXPECT_EQ(witness.Await("house/state", 2)[1].payload, "offline");
    // Known by now: the next connection is the station's from the beginning.
    sink->Connect();
    sink->Tell(Status());
    EXPECT_EQ(witness.Await("house/state", 3)[2].payload, "online");
    m_broker->Kill();
    EXPECT_NE(Sentence([&] {
                  for (int i = 0; i < 100; ++i) sink->Tell(Status(i % 2 == 0 ? SS_READS : SS_SILENT));
              }),
              "");
    sink->Disconnect();
}

TEST_F(Mqtt, TheWillOfAKilledProgram) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    const pid_t program = fork();
    if (program == 0) {
        const auto sink = Make();
        sink->Connect();
        sink->Tell(Status());
        pause();
        _exit(0);
    }
    Witness witness(m_port);
    EXPECT_EQ(witness.Await("house/state", 1)[0].payload, "online");
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    EXPECT_EQ(witness.Await("house/state", 2)[1].payload, "offline");
}

TEST_F(Mqtt, HubsAreToldOfChannels) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    CSinkSource source = Source();
    source.channels.push_back({"it's", "Energy", "kWh"});
    const auto sink = Make({{"sDiscovery", "homeassistant"}});
    sink->Connect();
    sink->Deliver({{Part(source, 1)}});  // nobody knows yet that the station runs
    sink->Tell(Status());
    sink->Deliver({{Part(source, 1), Part(source, 1)}});
    Witness witness(m_port);
    const auto configs = witness.Await("/config", 3);
    ASSERT_EQ(configs.size(), 3u);
    std::set<std::string> topics;
    std::string all;
    for (const Heard& config : configs) {
        EXPECT_TRUE(config.topic.starts_with("homeassistant/sensor/") && config.retained);
        EXPECT_THAT(config.payload, AllOf(HasSubstr(R"("state_topic":"orvik/Pump house/inlet/readings")"),
                                          HasSubstr(R"("availability_topic":"orvik/Pump house/state")"),
                                          HasSubstr(R"("name":"Pump house inlet","model":"Flow meter")")));
        topics.insert(config.topic);
        all += config.payload;
    }
    EXPECT_EQ(topics.size(), 3u);
    EXPECT_THAT(all, AllOf(HasSubstr(R"("unit_of_measurement":"°C","device_class":"temperature","state_class":"measurement")"),
                           HasSubstr(R"("unit_of_measurement":"l/s","state_class":"measurement")"),
                           HasSubstr(R"("unit_of_measurement":"kWh","device_class":"energy"})"), HasSubstr(R"(['it\\'s'])")));
    sink->Disconnect();
}

TEST_F(Mqtt, ABrokerKilledWithinABatch) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    const CSinkSource source = Source();
    const size_t count = 20'000;
    const auto sink = Make();
    sink->Connect();
    auto killed = std::async(std::launch::async, [&] {
        Witness watching(m_port);
        watching.Await("/readings", 100);
        m_broker->Kill();
    });
    std::this_thread::sleep_for(200ms);  // the witness is to be there first
    EXPECT_THAT(Sentence([&] { sink->Deliver({{Part(source, count)}}); }), StartsWith("127.0.0.1:"));
    killed.get();
    sink->Disconnect();
    EXPECT_THAT(Sentence([&] { sink->Connect(); }), HasSubstr("refused"));
    sink->Disconnect();

    ASSERT_NO_FATAL_FAILURE(StartBroker());
    Witness witness(m_port, "+/+/+/readings");
    sink->Connect();
    sink->Deliver({{Part(source, count)}});
    const auto heard = witness.Await("/readings", count);
    std::set<std::string> different;
    for (const Heard& one : heard) different.insert(one.payload);
    EXPECT_EQ(different.size(), count);
    EXPECT_EQ(heard.size(), count);  // and nothing of the first attempt behind anybody's back
    sink->Disconnect();
}

TEST_F(Mqtt, ABrokerThatStopsIsGivenUp) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    const CSinkSource source = Source();
    for (const bool connected : {true, false}) {
        const auto sink = Make();
        if (connected) sink->Connect();
        m_broker->Pause();
        auto said = std::async(std::launch::async, [&] {
            return Sentence([&] { connected ? sink->Deliver({{Part(source, 5000)}}) : sink->Connect(); });
        });
        EXPECT_EQ(said.wait_for(1s), std::future_status::timeout);
        const auto before = std::chrono::steady_clock::now();
        sink->Abort();
        EXPECT_THAT(said.get(), HasSubstr("given up"));
        sink->Disconnect();
        EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
        m_broker->Continue();
    }
    // Without anybody's doing.
    const auto sink = Make();
    sink->Connect();
    m_broker->Pause();
    EXPECT_THAT(Sentence([&] { sink->Deliver({{Part(source, 100)}}); }), HasSubstr("acknowledges nothing"));
    sink->Disconnect();
    m_broker->Continue();
}

TEST_F(Mqtt, UsersAndWhatTheyMayDo) {
    const int port = FreePort();
    m_folder.Write("passwords", "anna:secret\n");
    ASSERT_EQ(std::system(("mosquitto_passwd -U " + m_folder.Path("passwords")).c_str()), 0);
    m_folder.Write("rights", "user anna\ntopic write orvik/#\n");
    ASSERT_NO_FATAL_FAILURE(StartBroker("listener " + std::to_string(port) + " 127.0.0.1\nallow_anonymous false\npassword_file " +
                                        m_folder.Path("passwords") + "\nacl_file " + m_folder.Path("rights") + "\n"));
    m_folder.Write("right", "secret\n");
    m_folder.Write("wrong", "Secret\n");
    const std::string address = "mqtt://127.0.0.1:" + std::to_string(port);
    EXPECT_EQ(Greeting({{"sAddress", address}, {"sUser", "anna"}, {"sPasswordFile", "right"}}), "");
    EXPECT_THAT(Greeting({{"sAddress", address}, {"sUser", "anna"}, {"sPasswordFile", "wrong"}}),
                StartsWith("sUser: the broker refuses: "));
    EXPECT_THAT(Greeting({{"sAddress", address}}), StartsWith("sUser: the broker refuses: "));

    // What it may not publish is not counted as sent.
    const auto sink = Make({{"sAddress", address}, {"sUser", "anna"}, {"sPasswordFile", "right"}, {"sTopic", "other"}});
    sink->Connect();
    const CSinkSource source = Source();
    EXPECT_THAT(Sentence([&] { sink->Deliver({{Part(source, 3)}}); }),
                AllOf(HasSubstr("does not take other/Pump house/inlet/"), HasSubstr("uthorized")));
    sink->Disconnect();
}

TEST_F(Mqtt, EncryptedAndKnownByCertificates) {
    const auto run = [&](const std::string& words) {
        ASSERT_EQ(std::system(("cd " + m_folder.Folder().string() + " && openssl " + words + " >openssl.log 2>&1").c_str()), 0)
            << m_folder.Read("openssl.log");
    };
    for (const std::string name : {"ca", "other"})
        run("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + name + " -keyout " + name + ".key -out " + name + ".pem");
    m_folder.Write("names", "subjectAltName=DNS:localhost\n");
    for (const std::string name : {"server", "client"}) {
        run("req -newkey rsa:2048 -nodes -subj /CN=" + name + " -keyout " + name + ".key -out " + name + ".csr");
        run("x509 -req -days 2 -in " + name + ".csr -CA ca.pem -CAkey ca.key -CAcreateserial -extfile names -out " + name + ".pem");
    }
    const int port = FreePort();
    ASSERT_NO_FATAL_FAILURE(StartBroker("listener " + std::to_string(port) + " 127.0.0.1\nallow_anonymous true\ncafile " +
                                        m_folder.Path("ca.pem") + "\ncertfile " + m_folder.Path("server.pem") + "\nkeyfile " +
                                        m_folder.Path("server.key") + "\nrequire_certificate true\n"));
    const std::string address = "mqtts://localhost:" + std::to_string(port);
    Keys keys = {{"sAddress", address}, {"sCaFile", "ca.pem"}, {"sCertificateFile", "client.pem"}, {"sKeyFile", "client.key"}};
    const auto sink = Make(keys);
    Witness witness(m_port);
    const CSinkSource source = Source();
    sink->Connect();
    sink->Deliver({{Part(source, 2000)}});
    EXPECT_EQ(witness.Await("/readings", 2000).size(), 2000u);
    sink->Disconnect();

    keys["sAddress"] = "mqtts://127.0.0.1:" + std::to_string(port);  // not what the certificate is for
    EXPECT_THAT(Greeting(keys), HasSubstr("TLS: "));
    keys["sAddress"] = address;
    keys["sCaFile"] = "other.pem";
    EXPECT_EQ(Greeting(keys), "sCaFile: TLS: certificate verify failed");
    keys.erase("sCaFile");  // this system does not know it either
    EXPECT_EQ(Greeting(keys), "sCaFile: TLS: certificate verify failed");
    EXPECT_NE(Greeting({{"sAddress", address}, {"sCaFile", "ca.pem"}}), "");       // it wants a certificate
    EXPECT_NE(Greeting({{"sAddress", "mqtt://localhost:" + std::to_string(port)}}), "");  // and TLS
}

// A broker that knows MQTT 3.1.1 only: refuses anything else, and acknowledges whatever comes. How many messages came.
size_t ServeOldProtocol(int listener) {
    const auto take = [](int from, size_t size) {
        std::string bytes(size, 0);
        return recv(from, bytes.data(), size, MSG_WAITALL) == static_cast<ssize_t>(size) ? bytes : std::string();
    };
    size_t messages = 0;
    bool over = false;
    while (!over) {
        const int from = accept(listener, nullptr, nullptr);
        for (std::string head; !(head = take(from, 1)).empty();) {
            size_t size = 0, shift = 0;
            unsigned char byte = 0;
            do {
                byte = static_cast<unsigned char>(take(from, 1)[0]);
                size |= static_cast<size_t>(byte & 0x7F) << shift;
                shift += 7;
            } while (byte & 0x80);
            const std::string body = size == 0 ? std::string() : take(from, size);
            const int kind = static_cast<unsigned char>(head[0]) >> 4;
            if (kind == 1) {
                const bool known = body[6] == 4;
                send(from, known ? "\x20\x02\x00\x00" : "\x20\x02\x00\x01", 4, 0);
                if (!known) break;
            } else if (kind == 3) {
                const size_t topic = static_cast<unsigned char>(body[0]) * 256u + static_cast<unsigned char>(body[1]);
                send(from, ("\x40\x02" + body.substr(2 + topic, 2)).data(), 4, 0);
                ++messages;
            } else if (kind == 14) {
                over = true;
            }
        }
        close(from);
    }
    return messages;
}

TEST_F(Mqtt, ABrokerOfTheProtocolBefore) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(m_port));
    const int yes = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    listen(listener, 5);
    auto served = std::async(std::launch::async, ServeOldProtocol, listener);
    const CSinkSource source = Source();
    const auto sink = Make();
    sink->Connect();
    sink->Deliver({{Part(source, 3000)}});
    sink->Disconnect();
    EXPECT_EQ(served.get(), 3001u);
    close(listener);
}

TEST_F(Mqtt, SparkplugBirthsAndNumbers) {
    ASSERT_NO_FATAL_FAILURE(StartBroker());
    Witness witness(m_port, "spBv1.0/#");
    const auto decoded = [&](const std::string& type, size_t count) {
        std::vector<mqtt::sparkplug::Payload> payloads;
        Becomes([&] {
            payloads.clear();
            for (const Heard& heard : witness.All()) {
                if (heard.topic.find('/' + type + '/') == std::string::npos) continue;
                EXPECT_TRUE(payloads.emplace_back().ParseFromString(heard.payload));
            }
            return payloads.size() >= count;
        });
        EXPECT_EQ(payloads.size(), count) << type;
        payloads.resize(count);
        return payloads;
    };
    const CSinkSource source = Source();
    CSinkPart part = Part(source, 2);
    part.flags = {RF_MISSING, RF_NO_VALUE, RF_GOOD, RF_GOOD};
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const __int64 live = std::chrono::duration_cast<std::chrono::microseconds>(now).count();

    const auto sink = Make({{"sForm", "sparkplug"}, {"sGroup", "plant"}, {"sNode", "pump"}});
    sink->Connect();
    sink->Deliver({{part, Part(source, 1, live)}});
    const auto births = decoded("DBIRTH", 1), data = decoded("DDATA", 3);
    const auto node = decoded("NBIRTH", 1)[0];
    EXPECT_EQ(node.seq(), 0u);
    EXPECT_EQ(node.metrics(0).name(), "bdSeq");
    EXPECT_EQ(node.metrics(1).name(), "Node Control/Rebirth");
    EXPECT_EQ(births[0].seq(), 1u);
    ASSERT_EQ(births[0].metrics_size(), 2);
    EXPECT_TRUE(births[0].metrics(0).is_null());
    EXPECT_EQ(births[0].metrics(0).properties().values(0).string_value(), "°C");
    ASSERT_EQ(data[0].metrics_size(), 1);  // what is missing is left out
    EXPECT_TRUE(data[0].metrics(0).name() == "Flow" && data[0].metrics(0).is_null());
    EXPECT_EQ(data[1].metrics(0).double_value(), 1);
    EXPECT_EQ(data[1].metrics(0).timestamp(), static_cast<uint64_t>((kBegan + 1'000'000) / 1000));
    EXPECT_TRUE(data[1].metrics(0).is_historical());
    EXPECT_FALSE(data[2].metrics(0).is_historical());
    EXPECT_EQ(witness.Await("spBv1.0/plant/DDATA/pump/inlet", 3).size(), 3u);

    // Numbers go around, from 4 + 1 on.
    sink->Deliver({{Part(source, 300, live + 1'000'000)}});
    const auto more = decoded("DDATA", 303);
    for (size_t i = 3; i < more.size(); ++i) EXPECT_EQ(more[i].seq(), (i + 2) % 256);

    // Who missed the births asks for them; what is no such command is none.
    mqtt::sparkplug::Payload command;
    command.add_metrics()->set_name("Node Control/Rebirth");
    witness.Say("spBv1.0/plant/NCMD/pump", "no payload");
    witness.Say("spBv1.0/plant/NCMD/pump", command.SerializeAsString());
    std::this_thread::sleep_for(100ms);
    sink->Tell(Status());
    decoded("NBIRTH", 1);
    command.mutable_metrics(0)->set_boolean_value(true);
    witness.Say("spBv1.0/plant/NCMD/pump", command.SerializeAsString());
    EXPECT_TRUE(Becomes([&] {
        sink->Tell(Status());
        return witness.Of("NBIRTH/pump").size() == 2;
    }));
    EXPECT_EQ(decoded("NBIRTH", 2)[1].seq(), 0u);
    const auto again = decoded("DBIRTH", 2)[1];
    EXPECT_EQ(again.seq(), 1u);
    EXPECT_EQ(again.metrics(0).double_value(), 299);

    // A silent logger is dead until something of it comes.
    sink->Tell(Status(SS_SILENT));
    EXPECT_EQ(decoded("DDEATH", 1)[0].seq(), 2u);
    sink->Deliver({{Part(source, 1, live)}});
    EXPECT_EQ(decoded("DBIRTH", 3)[2].seq(), 3u);
    sink->Disconnect();
    const auto death = decoded("NDEATH", 1)[0];
    EXPECT_FALSE(death.has_seq());
    EXPECT_EQ(death.metrics(0).long_value(), node.metrics(0).long_value());

    // The next connection is another one, also where it ends by itself.
    sink->Connect();
    EXPECT_EQ(decoded("NBIRTH", 3)[2].metrics(0).long_value(), (node.metrics(0).long_value() + 1) % 256);
    sink->Abort();
    sink->Disconnect();
    EXPECT_EQ(decoded("NDEATH", 2)[1].metrics(0).long_value(), (node.metrics(0).long_value() + 1) % 256);
}

}  // namespace
