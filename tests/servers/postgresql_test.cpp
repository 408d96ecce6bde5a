// Readings in a PostgreSQL server of the test's own.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <csignal>
#include <optional>
#include <thread>

#include "plugins/postgresql/postgresql_connection.h"
#include "plugins/postgresql/postgresql_sink.h"
#include "tests/servers/batch_maker.h"
#include "tests/servers/server_process.h"
#include "tests/support/test_folder.h"

namespace {
// One for all cases: making it takes seconds.
class Server {
public:
    Server() {
        std::filesystem::permissions(m_folder.Folder(), std::filesystem::perms::all);
        Run("initdb -D " + Data() + " -U orvik -A scram-sha-256 --pwfile=" + Secret() + " -E UTF8 --locale=C -N > /dev/null");
        Start();
    }
    void Start() {
        std::vector<std::string> words = {Binaries() + "/postgres",   "-D", Data(),      "-p",
                                          std::to_string(port),       "-h", "127.0.0.1", "-k",
                                          m_folder.Folder().string(), "-c", "fsync=off"};
        if (geteuid() == 0)
            words.insert(words.begin(), {"setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups", "--"});
        process.emplace(words, m_folder.Path("log"));
        // It listens before it is ready.
        EXPECT_TRUE(Becomes([this] {
            try {
                postgresql::Connection().Open(Address(), password);
                return true;
            } catch (const CSinkFailure&) {
                return false;
            }
        }));
    }
    void Kill() {
        process->Kill();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));  // its children go by themselves
    }
    std::string Address(const std::string& user = "orvik") const {
        return "postgresql://" + user + "@127.0.0.1:" + std::to_string(port) + "/postgres";
    }
    const std::string password = "k\u03A9 'secret'";
    const int port = FreePort();
    std::optional<ServerProcess> process;

private:
    static std::string Binaries() { return "/usr/lib/postgresql/15/bin"; }
    std::string Data() const { return m_folder.Path("data"); }
    std::string Secret() {
        m_folder.Write("secret", password + "\n");
        chmod(m_folder.Path("secret").c_str(), 0644);
        return m_folder.Path("secret");
    }
    static void Run(const std::string& words) {
        const std::string as = geteuid() == 0 ? "cd / && setpriv --reuid=postgres --regid=postgres --clear-groups -- " : "";
        EXPECT_EQ(std::system((as + Binaries() + "/" + words).c_str()), 0);
    }
    const TestFolder m_folder;
};

Server& TheServer() {
    static Server server;
    return server;
}

class PostgreSql : public testing::Test {
protected:
    PostgreSql() {
        m_asked.Open(server.Address(), server.password);
        m_asked.Run("drop schema if exists orvik cascade");
    }
    std::unique_ptr<postgresql::Sink> Make() {
        return std::make_unique<postgresql::Sink>(postgresql::Sink::Settings{server.Address(), server.password, "orvik"});
    }
    // Rows as lines, their fields parted by "|".
    std::string Ask(const std::string& question) {
        const postgresql::Result rows = m_asked.Run(question);
        std::string text;
        for (int row = 0; row < PQntuples(rows.get()); ++row) {
            for (int field = 0; field < PQnfields(rows.get()); ++field)
                text += std::string(field > 0 ? "|" : "") +
                        (PQgetisnull(rows.get(), row, field) ? "null" : PQgetvalue(rows.get(), row, field));
            text += "\n";
        }
        return text;
    }
    Server& server = TheServer();
    postgresql::Connection m_asked;
};
}  // namespace

TEST_F(PostgreSql, BringsOverEveryKindOnceHoweverOftenItIsSent) {
    const auto sink = Make();
    sink->Connect();
    MadeBatch made(0, 8);
    made.AddNotes();
    for (int time = 0; time < 3; ++time) sink->Deliver(made.batch);
    EXPECT_EQ(Ask("select channel, count(*), count(value) from orvik.reading group by channel order by channel"),
              "1|8|8\n2|6|5\n");
    EXPECT_EQ(Ask("select extract(epoch from time) * 1000000 = 1700000000123456 + 250001 * 7, value from orvik.reading where "
                  "channel = 1 "
                  "order by time desc limit 1"),
              "t|7.1\n");
    EXPECT_EQ(Ask("select value from orvik.reading where channel = 2 order by time"), "0\n-1\n-2\nnull\nInfinity\n-7\n");
    EXPECT_EQ(Ask("select station, logger, channel, unit, metric from orvik.readings where channel = 'Resistance' limit 1"),
              "Plant|inlet|Resistance|k\u03A9|Plant/inlet Resistance\n");
    EXPECT_EQ(Ask("select number, missed, attempts, cause, text, channels from orvik.gap"),
              "7|1|3|8|no answer; \"none\" 'at all'|{2}\n");
    EXPECT_EQ(Ask("select missed, channels from orvik.gaps"), "1|Resistance\n");
    EXPECT_EQ(Ask("select logger, event, text from orvik.events"), "inlet|connected|COM5\n");
    EXPECT_EQ(Ask("select kind, amount, text from orvik.event"), "2|0|COM5\n");
    EXPECT_EQ(Ask("select channel, value, text from orvik.comments"), "Resistance|2.5|4 k\u03A9 \\ it's\nhot\n");
    // A gap goes on, names change, comments go; no byte of a text stops the rest.
    MadeBatch more(8, 9);
    more.source.channels[0].name = "Through\xFF\xC0put";
    more.Part().gaps = {{7, 1, 2, 4, 8, 8, {}, "x"}, {7, 1, 2, 5, 9, 8, {}, std::string("a\0b", 3)}};
    std::string endless;  // that nothing makes shorter
    for (unsigned n = 1; endless.size() < 100'000; n = n * 1'664'525 + 1'013'904'223) endless += std::to_string(n);
    more.Part().events = {{1, RE_LOST, 0, endless}, {1, RE_LOST, 0, endless}, {1, RE_LOST, 0, endless + "\\\""}};
    more.Part().commented = true;
    sink->Deliver(more.batch);
    EXPECT_EQ(Ask("select missed, text from orvik.gap"), "5|a?b\n");
    EXPECT_EQ(Ask("select name from orvik.channel where place = 1"), "Through??put\n");
    EXPECT_EQ(Ask("select count(*) from orvik.comment"), "0\n");
    EXPECT_EQ(Ask("select length(text) - " + std::to_string(endless.size()) + " from orvik.event where kind = 3 order by 1"),
              "0\n2\n");
    sink->Disconnect();
    // Another program finds the same tables.
    const auto other = Make();
    other->Connect();
    other->Deliver(made.batch);
    EXPECT_EQ(Ask("select count(*) from orvik.session"), "1\n");
    EXPECT_EQ(Ask("select count(*) from orvik.reading where channel = 1"), "9\n");
}

TEST_F(PostgreSql, TimesBeyondTheUsualComeOverToo) {
    const auto sink = Make();
    sink->Connect();
    MadeBatch made(0, 1);
    const struct {
        __int64 time;
        const char* text;
    } rows[] = {{0, "1970-01-01 00:00:00+00"},
                {-1, "1969-12-31 23:59:59.999999+00"},
                {951'782'400'000'000, "2000-02-29 00:00:00+00"},
                {4'107'542'400'000'001, "2100-03-01 00:00:00.000001+00"},
                {-63'000'000'000'000'000, nullptr}};  // before our era
    for (const auto& row : rows) {
        made.source.began = row.time;
        made.Part().times[0] = row.time;
        sink->Deliver(made.batch);
    }
    m_asked.Run("set time zone 'UTC'");
    // One goes there in binary form, the other as a text.
    for (const auto& row : rows) {
        const std::string is = row.text != nullptr ? "s.began = '" + std::string(row.text) + "'" : "s.began < '0001-01-01'";
        EXPECT_EQ(
            Ask("select count(*) from orvik.session s join orvik.reading r using (session) where s.began = r.time and " + is),
            "2\n")
            << is;
    }
}

// Somebody clears a session away while it is sent: what comes then makes it again.
TEST_F(PostgreSql, ASessionThatWasClearedAwayBeginsAnew) {
    const auto sink = Make();
    sink->Connect();
    MadeBatch made(0, 8);
    sink->Deliver(made.batch);
    m_asked.Run("delete from orvik.reading; delete from orvik.session");
    sink->Deliver(made.batch);
    EXPECT_EQ(Ask("select channel, count(*) from orvik.readings group by channel order by channel"), "Flow|8\nResistance|6\n");
}

TEST_F(PostgreSql, TakesAsManyChannelsAsARecordingHas) {
    constexpr size_t kChannels = 16'384;
    MadeBatch made(0, 1);
    made.source.channels.assign(kChannels, {"{a,\"b\\", "n'", ""});
    made.Part().values.assign(kChannels, 1.5);
    made.Part().flags.assign(kChannels, RF_GOOD);
    const auto sink = Make();
    sink->Connect();
    sink->Deliver(made.batch);
    EXPECT_EQ(Ask("select count(*), max(place), min(key), min(name) from orvik.channel"), "16384|16384|{a,\"b\\|n'\n");
    EXPECT_EQ(Ask("select sum(value) from orvik.readings"), "24576\n");
}

// What was committed stays, what was not goes as a whole, and sending it again brings all of it.
TEST_F(PostgreSql, AServerThatIsKilledHoldsEachReadingOnce) {
    int sent = 0;
    for (int life = 0; life < 4; ++life) {
        const auto sink = Make();
        sink->Connect();
        std::thread killer([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(40 + 60 * life));
            server.Kill();
        });
        const std::string why = FailureOf([&] {
            for (;;) {
                MadeBatch made(sent, sent + 500);
                sink->Deliver(made.batch);
                sent += 500;
            }
        });
        killer.join();
        EXPECT_NE(why, "");
        sink->Disconnect();
        server.Start();
        m_asked.Open(server.Address(), server.password);
    }
    const auto sink = Make();
    sink->Connect();
    MadeBatch made(sent, sent + 500);
    sink->Deliver(made.batch);
    sent += 500;
    EXPECT_EQ(Ask("select count(*), count(distinct time) from orvik.reading where channel = 1"),
              std::to_string(sent) + "|" + std::to_string(sent) + "\n");
}

TEST_F(PostgreSql, SaysWhatIsWrong) {
    using postgresql::Sink;
    const auto said = [&](const std::string& address, const std::string& password, const std::string& schema) {
        Sink sink({address, password, schema});
        const std::string why = FailureOf([&] { sink.Connect(); });
        sink.Disconnect();
        return why;
    };
    const auto has = [](const std::string& text, const char* part) { return text.find(part) != std::string::npos; };
    EXPECT_TRUE(has(said(server.Address(), "wrong", "orvik"), "password"));
    EXPECT_TRUE(has(said(server.Address() + "_not_there", server.password, "orvik"), "\"postgres_not_there\" does not exist"));
    EXPECT_TRUE(has(said(server.Address("nobody"), "x", "orvik"), "nobody"));
    EXPECT_TRUE(has(said("postgresql://127.0.0.1:" + std::to_string(FreePort()) + "/x", "", "orvik"), "refused"));
    m_asked.Run("create role reader login password 'r'");
    EXPECT_TRUE(has(said(server.Address("reader"), "r", "orvik"), "permission denied"));
    m_asked.Run("create schema orvik");
    EXPECT_TRUE(has(said(server.Address("reader"), "r", "orvik"), "sSchema: the user has not the right (usage) on \"orvik\""));
    m_asked.Run("grant usage on schema orvik to reader");
    EXPECT_TRUE(has(said(server.Address("reader"), "r", "orvik"), "(create)"));
    m_asked.Run("drop schema orvik; drop role reader");
    for (const char* const address : {"postgresql://u:very@[::1/x", "postgresql://u:ve%zzry@h/x", "host=x password=a very"}) {
        const std::string why = FailureOf([&] { postgresql::Connection::Check(address); });
        EXPECT_TRUE(why.starts_with("sAddress: ") && !has(why, "ry")) << why;
    }
    EXPECT_EQ(said(server.Address(), server.password, "orvik"), "");
    m_asked.Run("update orvik.layout set version = 99");
    EXPECT_TRUE(has(said(server.Address(), server.password, "orvik"), "99"));
    // A name of any kind is a name.
    EXPECT_EQ(said(server.Address(), server.password, "o\"; drop schema orvik; --"), "");
    EXPECT_EQ(Ask("select count(*) from pg_namespace where nspname like 'o%'"), "2\n");
    m_asked.Run("drop schema \"o\"\"; drop schema orvik; --\" cascade");
}

// In the middle of a batch, and before it has said a word.
TEST_F(PostgreSql, AServerThatStandsStillIsLeftSoon) {
    const auto leaves = [&](postgresql::Sink& sink, auto work) {
        std::chrono::steady_clock::time_point asked;
        std::thread ends([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            asked = std::chrono::steady_clock::now();
            sink.Abort();
        });
        EXPECT_EQ(FailureOf(work), "it was broken off");
        ends.join();
        sink.Disconnect();
        EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(1));
    };
    const auto sink = Make();
    sink->Connect();
    // The process that serves it is in no group of the server's.
    const pid_t serving =
        std::stoi(Ask("select pid from pg_stat_activity where application_name = 'orvikhost' and pid <> pg_backend_pid()"));
    MadeBatch made(0, 20'000);
    sink->Deliver(made.batch);
    ASSERT_EQ(kill(serving, SIGSTOP), 0);
    leaves(*sink, [&] { sink->Deliver(made.batch); });
    kill(serving, SIGCONT);
    server.process->Pause();
    const auto other = Make();
    leaves(*other, [&] { other->Connect(); });
    server.process->Continue();
    EXPECT_EQ(Ask("select count(*) from orvik.reading where channel = 1"), "20000\n");
}

// Two that make the tables at once.
TEST_F(PostgreSql, TwoMayBeginAtOnce) {
    std::vector<std::thread> threads;
    std::vector<std::string> why(4);
    for (std::string& said : why)
        threads.emplace_back([&] {
            const auto sink = Make();
            said = FailureOf([&] { sink->Connect(); });
            sink->Disconnect();
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(why, std::vector<std::string>(4));
}
