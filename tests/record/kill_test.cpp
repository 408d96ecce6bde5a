// A program that records is killed at random moments: what it was told is written is there, nothing else is, and the file goes on.
// $ORVIK_KILLS says how often (200).
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <random>

#include "record/recorder.h"
#include "record/recording_reader.h"
#include "tests/support/time_limit.h"

namespace {
constexpr __int64 kBegun = 1'795'000'000'000'000;
constexpr int kChannels = 8;

__int64 TimeOf(uint64_t n) { return kBegun + static_cast<__int64>(n) * 1000; }
double ValueOf(uint64_t n, int channel) { return static_cast<double>(n) * 8 + channel; }

// Until it is killed; `told` is how many it was told are written.
[[noreturn]] void Record(const std::string& path, std::atomic<uint64_t>& told) {
    CRecorder recorder;
    if (recorder.Resume(path, 20) != ERROR_SUCCESS) _exit(1);
    for (uint64_t n = recorder.ReadingCount();; ++n) {
        double values[kChannels];
        for (int i = 0; i < kChannels; ++i) values[i] = ValueOf(n, i);
        if (recorder.AddReading(TimeOf(n), values) != ERROR_SUCCESS) _exit(2);
        told = n + 1;
        if (n % 1000 == 0) recorder.AddEvent({TimeOf(n), RE_TAG, 0, "a thousand more"});
    }
}
}  // namespace

TEST(Killed, LosesNothingThatItWasToldIsWritten) {
    const char* const setting = std::getenv("ORVIK_KILLS");
    const int kills = setting != nullptr ? std::atoi(setting) : 200;
    LimitTest(60 + static_cast<unsigned>(kills));
    const std::string path = testing::TempDir() + "orvik-killed-" + std::to_string(getpid()) + ".rec";
    auto* const told = new (mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<uint64_t>(0);
    std::mt19937 random(1);
    CPropertyDB facts;
    for (int i = 0; i < kChannels; ++i) facts.SetValue(("Channels." + std::to_string(i) + ".sName").c_str(), "x");
    uint64_t readings = 0, torn = 0;
    for (int kill = 0; kill < kills; ++kill) {
        // A file of its own now and then: it must not grow for ever, and its beginning counts too.
        if (kill % 20 == 0) {
            DeleteFileA(path.c_str());
            CRecorder recorder;
            ASSERT_EQ(recorder.Create(path, facts), 0u);
            *told = 0;
        }
        const uint64_t before = *told;
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) Record(path, *told);
        // From the moment at which it records.
        while (*told == before && waitpid(child, nullptr, WNOHANG) == 0) usleep(100);
        usleep(static_cast<useconds_t>(random() % 8000));
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it could not record: " << WEXITSTATUS(status);

        CRecordingReader reader;
        ASSERT_EQ(reader.Open(path), 0u);
        uint64_t n = 0;
        for (ERecordItem item; (item = reader.Next()) != RI_END;) {
            ASSERT_NE(item, RI_DAMAGE);
            ASSERT_NE(item, RI_FAILED);
            if (item != RI_READING) continue;
            ASSERT_EQ(reader.Time(), TimeOf(n));
            for (int i = 0; i < kChannels; ++i) ASSERT_EQ(reader.Values()[i], ValueOf(n, i));
            ++n;
        }
        ASSERT_GE(n, *told) << "kill " << kill;
        ASSERT_LE(n, *told + 1);
        *told = n;
        torn += reader.TornBytes() > 0;
        readings += n - before;
    }
    std::printf("%d kills, %llu readings, %llu torn ends\n", kills, static_cast<unsigned long long>(readings),
                static_cast<unsigned long long>(torn));
    EXPECT_GT(readings, static_cast<uint64_t>(kills) * 10);
    DeleteFileA(path.c_str());
    munmap(told, 4096);
}
