// Local time in every zone that the machine has data of.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "tests/support/regional_settings.h"
#include "tests/support/time_limit.h"
#include "tests/sweeps/zone_checks.h"
#include "time/local_zone.h"
#include "time/locale_cache.h"

namespace {

// The names that stand for themselves; others are the same data again.
std::vector<std::string> Zones() {
    std::vector<std::string> zones;
    std::ifstream source("/usr/share/zoneinfo/tzdata.zi");
    for (std::string line; std::getline(source, line);)
        if (line.starts_with("Z ")) zones.push_back(line.substr(2, line.find(' ', 2) - 2));
    return zones;
}

void Check(const std::string& zone) {
    SCOPED_TRACE(zone);
    setenv("TZ", zone.c_str(), 1);
    _tzset();
    orvik::detail::RefreshLocalZone();
    const ZoneChecks checks;
    checks.FieldsMeanTheTimeThatHasThem(ZoneChecks::Library::Ours);
    checks.TheTableHasTheLibrarysFields();
    checks.FileTimesAtEitherEndLeaveTheDateAlone();
    checks.SeeksGetOnAndEnd();
    checks.DatesLandOnTheirDay();
}

}  // namespace

// A process for some zones each, as many at a time as there are processors: the C library keeps the names of every zone that it
// has been in, and compares them all at each conversion.
TEST(AllZones, KeepTheRulesOfLocalTime) {
    constexpr size_t kZones = 12;
    LimitTest(240);
    const std::vector<std::string> zones = Zones();
    ASSERT_GT(zones.size(), 300u);
    RegionalSettings settings;
    settings.Swedish();
    NlsToolsUpdate();
    const auto end = [] {
        int status = 0;
        EXPECT_GT(wait(&status), 0);
        EXPECT_EQ(status, 0) << "what is wrong stands above";
    };
    size_t running = 0;
    for (size_t first = 0; first < zones.size(); first += kZones) {
        if (running == std::max(1u, std::thread::hardware_concurrency())) end(), --running;
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (size_t i = first; i < std::min(first + kZones, zones.size()) && !HasFailure(); ++i) Check(zones[i]);
            std::fflush(stdout);
            _exit(HasFailure());
        }
        ++running;
    }
    for (; running > 0; --running) end();
}
