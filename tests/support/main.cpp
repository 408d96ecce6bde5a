// The entry of every test program.
#include <gtest/gtest.h>

#include "tests/support/time_limit.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    LimitTests();
    return RUN_ALL_TESTS();
}
