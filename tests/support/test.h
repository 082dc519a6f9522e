#pragma once
#include <gtest/gtest.h>

#include "tests/support/standard.h"

// Waits for a condition that nobody signals; false after a long time.
template <typename Condition>
bool AwaitThat(Condition condition, std::chrono::seconds limit = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
