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

// What a look finds once it has found the same `times` times more, or after a long time.
template <typename Look>
auto AtRest(int times, Look look) {
    auto last = look();
    int same = 0;
    AwaitThat([&] {
        auto now = look();
        same = now == last ? same + 1 : 0;
        last = std::move(now);
        return same == times;
    });
    return last;
}
