#pragma once
#include "tests/support/test.h"

// Cases in child processes, whose crash, exception, hang or early exit is a failure of the test, and the two
// settings of a run:
//   ORVA_TEST_SEED   of all that is random; without it a new one for each program, printed
//   ORVA_TEST_SCALE  a factor on the number of cases, 1 unless set
// A failure prints what repeats it, ORVA_TEST_CASE included, with which that case runs alone.

std::uint64_t RunSeed();
std::uint64_t Scaled(std::uint64_t count);  // at least 1

// One numbered case: what it may use, and how it reports a failure. Assertions of GoogleTest work as well.
class Trial {
public:
    Trial(std::string_view test, std::uint64_t caseNumber);

    std::uint64_t Below(std::uint64_t count) { return random() % count; }  // in [0, count), count > 0
    bool OneIn(std::uint64_t count) { return Below(count) == 0; }
    double Within(double least, double most) {
        return least + (most - least) * static_cast<double>(Below(1U << 20)) / (1U << 20);
    }
    // For another thread, with random numbers of its own.
    Trial Fork() { return Trial(std::to_string(random()), number); }
    // Ends the case, and its process, as failed unless `passes`. The text says what was expected and seen.
    void Require(bool passes, std::string_view what) const {
        if (!passes) Fail(what);
    }
    [[noreturn]] void Fail(std::string_view what) const;
    [[noreturn]] static void Pass();  // ends the case, the last of its process

    const std::uint64_t number;  // of the case, from 0
    std::mt19937_64 random;      // from the run's seed, the test's name and the number
};

struct Trials {
    std::uint64_t cases = 1;  // multiplied by the scale, unless `fixed`
    std::uint64_t batch = 1;  // cases that one process runs, one after the other
    unsigned seconds = 60;    // limit for one case
    bool fixed = false;       // all cases there are, neither more nor fewer
};

// Runs the cases over all cores, stops at the first that fails, and prints how many were run.
void RunTrials(const Trials& trials, const std::function<void(Trial&)>& body);

// One piece of work in a process of its own: the same for a single case.
inline void InChild(const std::function<void(Trial&)>& body, unsigned seconds = 60) {
    RunTrials({1, 1, seconds, true}, body);
}
