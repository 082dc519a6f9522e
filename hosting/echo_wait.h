#pragma once
#include <cstdint>

// A value was changed from within and reported to the host. Until the host hands that value back, what it
// hands over is older than the change and does not count; a host that never hands it back is right again
// after a while.
//
// Threads: one. Times are in any unit, as long as it is the same one.
class EchoWait {
public:
    void Await(float value, std::int64_t until) {
        expected = value;
        deadline = until;
        waiting = true;
    }
    // Whether `value`, which the host hands over at `now`, counts.
    bool Counts(float value, std::int64_t now) {
        if (waiting && (value == expected || now >= deadline)) waiting = false;
        return !waiting;
    }

private:
    float expected = 0;
    std::int64_t deadline = 0;
    bool waiting = false;
};
