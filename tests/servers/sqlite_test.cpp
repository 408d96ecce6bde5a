// Sessions in a SQLite file, there and back.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <csignal>
#include <thread>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "plugins/sqlite/sqlite_file.h"
#include "plugins/sqlite/sqlite_sessions.h"
#include "plugins/sqlite/sqlite_sink.h"
#include "propdb/property_db.h"
#include "tests/servers/batch_maker.h"
#include "tests/support/test_folder.h"

namespace {
class Sqlite : public testing::Test {
protected:
    // Rows as lines, their fields parted by "|".
    std::string Ask(const char* question, int fields) {
        sqlite::File file;
        file.OpenToRead(path);
        std::string text;
        for (sqlite::Statement rows(file, question); rows.Next();) {
            for (int i = 0; i < fields; ++i) text += (i > 0 ? "|" : "") + (rows.IsNull(i) ? "null" : rows.Text(i));
            text += "\n";
        }
        return text;
    }
    const TestFolder folder;
    const std::string path = folder.Path("plant.sqlite");
};
}  // namespace

TEST_F(Sqlite, BringsOverEveryKindOnceHoweverOftenItIsSent) {
    MadeBatch made(0, 8);
    made.AddNotes();
    for (int time = 0; time < 3; ++time) {
        sqlite::Sink sink(path);
        sink.Connect();
        sink.Deliver(made.batch);
        sink.Disconnect();
    }
    EXPECT_EQ(Ask("SELECT channel, count(*), count(value), max(time) FROM reading GROUP BY channel", 4),
              "1|8|8|1700000001873463\n2|6|5|1700000001873463\n");
    EXPECT_EQ(Ask("SELECT value FROM reading WHERE channel = 2 ORDER BY time", 1), "0.0\n-1.0\n-2.0\nnull\nInf\n-7.0\n");
    EXPECT_EQ(Ask("SELECT * FROM readings WHERE channel = 'Resistance' LIMIT 1", 8),
              "2023-11-14T22:13:20.123456Z|Plant|inlet|Resistance|k\u03A9|0.0|Plant/inlet Resistance|1700000000123456\n");
    EXPECT_EQ(Ask("SELECT from_time, station, missed, text, channels FROM gaps", 5),
              "2023-11-14T22:13:20.873459Z|Plant|1|no answer; \"none\" 'at all'|Resistance\n");
    // A stretch of time is found by the key.
    EXPECT_NE(Ask("EXPLAIN QUERY PLAN SELECT * FROM readings WHERE us BETWEEN 1 AND 2", 4)
                  .find("session=? AND channel=? AND time>? AND time<?"),
              std::string::npos);
    EXPECT_EQ(Ask("SELECT time, event, text FROM events", 3), "2023-11-14T22:13:20.123456Z|connected|COM5\n");
    EXPECT_EQ(Ask("SELECT channel, value, time FROM comments", 3), "Resistance|2.5|2023-11-14T22:13:20.373457Z\n");
    EXPECT_EQ(Ask("SELECT station, logger, began, device FROM sessions", 4), "Plant|inlet|2023-11-14T22:13:20.123456Z|Meter\n");
    EXPECT_EQ(Ask("SELECT number, missed, attempts, cause, text, channels FROM gap", 6),
              "7|1|3|8|no answer; \"none\" 'at all'|2\n");
    EXPECT_EQ(Ask("SELECT kind, text FROM event", 2), "2|COM5\n");
    EXPECT_EQ(Ask("SELECT channel, value, text FROM comment", 3), "2|2.5|4 k\u03A9 \\ it's\nhot\n");
}

TEST_F(Sqlite, GivesASessionBack) {
    MadeBatch made(0, 8);
    made.AddNotes();
    sqlite::Sink sink(path);
    sink.Connect();
    sink.Deliver(made.batch);
    sink.Disconnect();
    const std::vector<std::string> names = sqlite::SessionNames(path);
    ASSERT_EQ(names, std::vector<std::string>{"Plant/inlet 2023-11-14T22:13:20.123456Z"});
    CPropertyDB db;
    sqlite::LoadSession(path, names[0], db);
    CInt64Array times;
    CDoubleArray values;
    db.GetValue("Session.tTimes", times);
    ASSERT_EQ(times.GetSize(), 8);
    for (INT_PTR i = 0; i < 8; ++i) EXPECT_EQ(times.GetAt(i), MadeBatch::kFirst + i * MadeBatch::kStep);
    db.GetValue("Channels.2.rValues", values);
    ASSERT_EQ(values.GetSize(), 8);
    for (INT_PTR i = 0; i < 8; ++i) {
        const bool none = i == 3 || i == 4 || i == 6;
        EXPECT_EQ(std::isnan(values.GetAt(i)), none) << i;
        if (!none) {
            EXPECT_EQ(values.GetAt(i), i == 5 ? std::numeric_limits<double>::infinity() : -static_cast<double>(i));
        }
    }
    const auto text = [&](const char* key) {
        CString found;
        db.GetValue(key, found);
        return std::string(found.GetString());
    };
    EXPECT_EQ(text("Session.sLogger"), "Meter");
    EXPECT_EQ(text("Channels.2.sUnit"), "k\u03A9");
    EXPECT_EQ(text("Gaps.sCause"), "no answer, \"none\" 'at all'");
    EXPECT_EQ(text("Chart.Tags.Comment #0.sText"), "4 k\u03A9 \\ it's\nhot");
    EXPECT_NE(FailureOf([&] { sqlite::LoadSession(path, "Plant/outlet", db); }), "");
}

// To the last bit, with what is no number: missing, without a value, not to be read; and where a hole begins.
TEST_F(Sqlite, GivesBackWhatIsNoNumber) {
    MadeBatch made(0, 8);
    made.Part().values[0] = -0.0;
    made.Part().values[2] = 5e-324;
    const __int64 hole = MadeBatch::kFirst + 5 * MadeBatch::kStep + 1;
    const CRecordedGap one{1,  MadeBatch::kFirst + 3 * MadeBatch::kStep, MadeBatch::kFirst + 3 * MadeBatch::kStep, 1, 3, 8, {1},
                           "x"};
    // All channels: a hole, its second half for another reason, and a trouble that was over before it took anything with it.
    made.Part().gaps = {one,
                        {2, hole, hole + 5, 4, 4, 8, {}, "a"},
                        {3, hole + 6, hole + 9, 4, 4, 9, {}, "b"},
                        {4, hole - 9, hole - 9, 0, 1, 8, {}, "c"}};
    made.Part().commented = true;
    made.Part().comments = {{1, std::nan(""), "2", "nowhere"}};
    sqlite::Sink sink(path);
    sink.Connect();
    sink.Deliver(made.batch);
    CPropertyDB db;
    sqlite::LoadSession(path, sqlite::SessionNames(path)[0], db);
    CInt64Array times;
    CDoubleArray values, other, tags;
    db.GetValue("Session.tTimes", times);
    db.GetValue("Channels.1.rValues", values);
    db.GetValue("Channels.2.rValues", other);
    const auto bits = [](double value) { return std::bit_cast<unsigned __int64>(value); };
    ASSERT_EQ(times.GetSize(), 9);
    EXPECT_EQ(times.GetAt(6), hole);
    EXPECT_EQ(bits(values.GetAt(0)), bits(-0.0));
    EXPECT_EQ(values.GetAt(1), 5e-324);
    const auto isHole = [&](double value) { return std::isnan(value) && bits(value) != kNotDueBits; };
    EXPECT_TRUE(isHole(values.GetAt(6)) && isHole(other.GetAt(6)) && isHole(other.GetAt(3)) && isHole(other.GetAt(4)));
    EXPECT_EQ(bits(other.GetAt(7)), kNotDueBits);
    db.GetValue("Chart.rTagValues", tags);
    EXPECT_TRUE(tags.GetSize() == 1 && std::isnan(tags.GetAt(0)));
}

TEST_F(Sqlite, TakesOddTextsAndTimes) {
    MadeBatch made(0, 1);
    made.source.logger = "in\xFF\xC0let";
    made.source.began = 9'000'000'000'000'000'000;
    made.source.channels[0].name = std::string("a\0b\xED\xA0\x80", 6);
    sqlite::Sink sink(path);
    sink.Connect();
    for (int time = 0; time < 2; ++time) sink.Deliver(made.batch);
    EXPECT_EQ(sqlite::SessionNames(path), std::vector<std::string>{"Plant/in??let 9000000000000000000 us"});
    EXPECT_EQ(Ask("SELECT name FROM channel WHERE place = 1", 1), "a?b???\n");
    // Somebody clears the session away; what comes then makes it again.
    sqlite::File other;
    other.OpenToWrite(path);
    other.Run("DELETE FROM reading; DELETE FROM channel; DELETE FROM session");
    sink.Deliver(made.batch);
    EXPECT_EQ(Ask("SELECT count(*) FROM readings", 1), "2\n");
}

// Whenever the program is killed, what it had called delivered is there, and what it sends again is there once.
TEST_F(Sqlite, KilledInTheMiddleItHoldsEachReadingOnce) {
    constexpr int kReadings = 2000;
    int delivered = 0;
    for (int life = 0; life < 8; ++life) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            sqlite::Sink sink(path);
            sink.Connect();
            for (int from = delivered;; from += kReadings) {
                MadeBatch made(from, from + kReadings);
                sink.Deliver(made.batch);
                if (write(ends[1], "x", 1) != 1) _exit(1);
            }
        }
        close(ends[1]);
        std::this_thread::sleep_for(std::chrono::milliseconds(30 + 37 * life));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        for (char letter; read(ends[0], &letter, 1) == 1;) delivered += kReadings;
        close(ends[0]);
    }
    sqlite::Sink sink(path);
    sink.Connect();
    MadeBatch made(delivered, delivered + kReadings);
    sink.Deliver(made.batch);
    delivered += kReadings;
    // The last one may have been committed, but not told.
    EXPECT_EQ(Ask(("SELECT count(*) FROM reading WHERE channel = 1 AND time < " +
                   std::to_string(MadeBatch::kFirst + delivered * MadeBatch::kStep))
                      .c_str(),
                  1),
              std::to_string(delivered) + "\n");
    EXPECT_EQ(Ask("SELECT * FROM pragma_integrity_check", 1), "ok\n");
    EXPECT_GT(delivered, 2 * kReadings);
}

// On a medium that cannot be written, or in a folder of somebody else's.
TEST_F(Sqlite, IsReadWhereNothingMayBeWritten) {
    {
        MadeBatch made(0, 8);
        sqlite::Sink sink(path);
        sink.Connect();
        sink.Deliver(made.batch);
    }
    std::filesystem::permissions(folder.Folder(), std::filesystem::perms(0555));
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
        CPropertyDB db;
        const std::string why = FailureOf([&] { sqlite::LoadSession(path, sqlite::SessionNames(path).at(0), db); });
        sqlite::Sink sink(path);
        _exit(why.empty() && !FailureOf([&] {
                                  sink.Connect();
                                  sink.Deliver(MadeBatch(8, 9).batch);
                              }).empty()
                  ? 0
                  : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    std::filesystem::permissions(folder.Folder(), std::filesystem::perms(0755));
    EXPECT_EQ(status, 0);
}

TEST_F(Sqlite, LeavesFilesOfOthersAlone) {
    const auto refused = [&](const char* part) {
        const std::string before = folder.Read("plant.sqlite");
        sqlite::Sink sink(path);
        const std::string why = FailureOf([&] { sink.Connect(); });
        sink.Disconnect();
        EXPECT_NE(why.find(part), std::string::npos) << why;
        EXPECT_EQ(folder.Read("plant.sqlite"), before);
    };
    folder.Write("plant.sqlite", std::string(5000, 'x'));
    refused("not a database");
    std::filesystem::remove(path);
    sqlite3* other = nullptr;
    sqlite3_open(path.c_str(), &other);
    sqlite3_exec(other, "CREATE TABLE mine (x)", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    refused("something else");
    std::filesystem::remove(path);
    {
        sqlite::File file;
        file.OpenToWrite(path);
        file.Run("PRAGMA user_version=99; PRAGMA journal_mode=DELETE");
    }
    refused("later version");
    EXPECT_NE(FailureOf([&] { sqlite::SessionNames(folder.Path("none.sqlite")); }), "");
}

// A batch that finds no room goes as a whole, and comes whole once there is some.
TEST_F(Sqlite, AFullDiskLosesNothing) {
    sqlite::Sink sink(path);
    sink.Connect();
    MadeBatch first(0, 100), second(100, 20'000);
    sink.Deliver(first.batch);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{200'000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_NE(FailureOf([&] { sink.Deliver(second.batch); }), "");
    sink.Disconnect();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Ask("SELECT count(*) FROM reading WHERE channel = 1", 1), "100\n");
    sink.Connect();
    sink.Deliver(second.batch);
    EXPECT_EQ(Ask("SELECT count(*), (SELECT * FROM pragma_quick_check) FROM reading WHERE channel = 1", 2), "20000|ok\n");
}

// Somebody else writes for a long time: it is waited for, and left when the host wants to end.
TEST_F(Sqlite, WaitsForAnotherWriterUntilItIsToEnd) {
    sqlite::Sink sink(path);
    sink.Connect();
    sqlite::File other;
    other.OpenToWrite(path);
    other.Run("BEGIN IMMEDIATE");
    MadeBatch made(0, 10);
    std::thread commits([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        other.Run("COMMIT");
    });
    sink.Deliver(made.batch);
    commits.join();
    other.Run("BEGIN IMMEDIATE");
    std::thread ends([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sink.Abort();
    });
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_NE(FailureOf([&] { sink.Deliver(made.batch); }), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
    ends.join();
}
