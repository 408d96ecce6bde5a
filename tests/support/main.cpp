// The entry of every test program.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

#include "platform/house_text.h"
#include "platform/screen.h"
#include "tests/support/time_limit.h"

int main(int argc, char** argv) {
    const char* const text = std::getenv("ORVIK_TEST_TEXT");
    if (text != nullptr && text == std::string_view("utf8")) OrvikChooseUtf8();
    OrvikKeepWindowsInMemory();
    testing::InitGoogleTest(&argc, argv);
    LimitTests();
    return RUN_ALL_TESTS();
}
