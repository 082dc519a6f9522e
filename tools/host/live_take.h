#pragma once
#include <cmath>

#include "tools/host/take.h"

// A take of what is heard while the rate may change, as when another server comes in place of one that died:
// all of it is dated at the first rate.
//
// Threads: one at a time.
class LiveTake {
public:
    // From this sample of the instance's count on, samples come at `rate` Hz.
    void Begin(std::int32_t newRate, std::int64_t sample) {
        if (take.rate == 0) take.rate = newRate;
        end = Dated(sample);
        start = sample;
        rate = newRate;
    }
    void Add(TimedEvent event) {
        event.sample = Dated(event.sample);
        take.events.push_back(event);
    }
    void End(std::int64_t sample) { take.length = Dated(sample); }
    const Take& Whole() const { return take; }

private:
    std::int64_t Dated(std::int64_t sample) const {
        if (rate == 0) return sample;
        return end + std::llround(static_cast<double>(sample - start) * take.rate / rate);
    }

    Take take;
    std::int32_t rate = 0;   // Hz, of what comes now
    std::int64_t start = 0;  // the instance's sample at which it began
    std::int64_t end = 0;    // the take's sample at which it began
};
