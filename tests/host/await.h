#pragma once
#include <chrono>
#include <thread>

// Waits for a condition that nobody signals; false after a long time.
template <typename Condition>
bool AwaitThat(Condition met) {
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!met()) {
        if (std::chrono::steady_clock::now() > patience) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
