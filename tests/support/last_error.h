// Calls of the system that must fail, and why they do.
#pragma once

#include <gtest/gtest.h>

#include "platform/win32.h"

// The system's error after a call that has failed, which its result tells: 0, null, or all bits set; 0 after any other.
template <class Result>
DWORD ErrorAfter(Result result) {
    return result == Result{} || result == (Result)(INT_PTR{-1}) ? GetLastError() : 0;
}

#define EXPECT_FAILS(call, error) EXPECT_EQ(ErrorAfter(call), static_cast<DWORD>(error))
