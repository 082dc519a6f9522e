#pragma once
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

// Where each thread of a case is. One that makes no step for longer than the limit is taken for locked up,
// and its process ends.
class Watchdog {
public:
    // What a thread says before each call; `doing` is a constant text.
    void Step(std::size_t thread, const char* doing) {
        places[thread].doing.store(doing, std::memory_order_relaxed);
        places[thread].steps.fetch_add(1, std::memory_order_relaxed);
    }
    void Ended(std::size_t thread) { places[thread].ended.store(true); }

    void Await(std::size_t threads, std::chrono::seconds limit = std::chrono::seconds(20)) {
        using Clock = std::chrono::steady_clock;
        std::array<long, mostThreads> seen{};
        std::array<Clock::time_point, mostThreads> since;
        since.fill(Clock::now());
        for (bool busy = true; busy;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            busy = false;
            for (std::size_t i = 0; i < threads; ++i) {
                if (places[i].ended.load()) continue;
                busy = true;
                const long now = places[i].steps.load(std::memory_order_relaxed);
                if (now != seen[i]) seen[i] = now, since[i] = Clock::now();
                if (Clock::now() - since[i] < limit) continue;
                std::fprintf(stderr, "thread %zu is locked up in %s\n", i, places[i].doing.load());
                std::abort();
            }
        }
    }

private:
    static constexpr std::size_t mostThreads = 8;
    struct Place {
        std::atomic<long> steps{0};
        std::atomic<const char*> doing{"start"};
        std::atomic<bool> ended{false};
    };
    std::array<Place, mostThreads> places;
};
