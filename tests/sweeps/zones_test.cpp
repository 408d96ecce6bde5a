// Local time in the zone that this run is in: the one that Windows has here, and one of those that Linux has.
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/regional_settings.h"
#include "tests/sweeps/zone_checks.h"
#include "time/locale_cache.h"
#include "time/time_point.h"

namespace {

class OwnZone : public testing::Test {
protected:
    OwnZone() {
        m_settings.Swedish();
        NlsToolsUpdate();
    }
    RegionalSettings m_settings;
    ZoneChecks m_checks;
};

}  // namespace

TEST_F(OwnZone, FieldsMeanTheTimeThatHasThem) {
    EXPECT_GT(m_checks.Changes(), 80u);
    m_checks.FieldsMeanTheTimeThatHasThem();
}
TEST_F(OwnZone, TheTableHasTheLibrarysFields) { m_checks.TheTableHasTheLibrarysFields(); }
TEST_F(OwnZone, SeeksGetOnAndEnd) { m_checks.SeeksGetOnAndEnd(); }
TEST_F(OwnZone, DatesLandOnTheirDay) { m_checks.DatesLandOnTheirDay(); }

TEST_F(OwnZone, OtherThreadsChangeNothing) {
    std::thread other([this] { m_checks.FieldsMeanTheTimeThatHasThem(); });
    m_checks.FieldsMeanTheTimeThatHasThem();
    other.join();
}
