// What the host says when an act fails; empty when it does not. Its exit code is the expected one.
#pragma once

#include <gtest/gtest.h>

#include "host/words/console.h"

template <class Act>
std::string SentenceOf(Act act, int exitCode = kWrongUse) {
    try {
        act();
        return {};
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.exitCode, exitCode);
        return failure.sentence;
    }
}
