// Wine takes 29 February of any year for a date; Windows and this home do not.
#include <gtest/gtest.h>

#include "platform/win32.h"

TEST(FileTimes, LeapDaysNeedALeapYear) {
    const struct {
        WORD year;
        BOOL good;
    } cases[] = {{2024, TRUE}, {2023, FALSE}, {2000, TRUE}, {1900, FALSE}};
    for (const auto& c : cases) {
        const SYSTEMTIME system = {c.year, 2, 0, 29, 0, 0, 0, 0};
        FILETIME file{};
        EXPECT_EQ(SystemTimeToFileTime(&system, &file), c.good) << c.year;
    }
}
