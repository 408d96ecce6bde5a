#include "tests/support/time_limit.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>

namespace {
// Far beyond what most tests take under a sanitizer on a busy machine.
constexpr unsigned kSeconds = 60;

// Plain characters: they are read when memory may be locked.
char g_test[256], g_limit[32];
std::atomic<const char*> g_awaited{nullptr};

void TellExpired(void (*put)(const char*)) {
    const char* const awaited = g_awaited;
    put("\n[  FAILED  ] ");
    put(g_test);
    put(" did not end within ");
    put(g_limit);
    put(" s; it waits for ");
    put(awaited ? awaited : "something without a name");
    put("\n");
}

class Limit : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        std::snprintf(g_test, sizeof g_test, "%s.%s", test.test_suite_name(), test.name());
        LimitTest(kSeconds);
    }
    void OnTestEnd(const testing::TestInfo&) override { SetTestTimer(0, TellExpired); }
};
}  // namespace

Awaiting::Awaiting(const char* what) : m_before(g_awaited.exchange(what)) {}
Awaiting::~Awaiting() { g_awaited = m_before; }

void LimitTests() { testing::UnitTest::GetInstance()->listeners().Append(new Limit); }

void LimitTest(unsigned seconds) {
    std::snprintf(g_limit, sizeof g_limit, "%u", seconds);
    SetTestTimer(seconds, TellExpired);
}
