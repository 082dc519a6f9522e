#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// The MIDI messages of one period of a sound server, in the order in which they have to be written: by date,
// and those of one date in the order in which they came.
//
// Threads: one at a time. Memory: nothing is allocated after construction, which makes it fit for a process
// callback.
// Invariant: the events are sorted, and all dates lie inside the period.
class PeriodEvents {
public:
    // One frame of the detector, 10 ms, turns over 84 notes at most, which makes 168 messages; the longest
    // period, 8192 samples, has some 18 frames at 44.1 kHz.
    static constexpr std::size_t room = 4096;

    struct Event {
        std::uint32_t frame = 0;  // samples from the period's start
        std::array<std::uint8_t, 3> bytes{};
    };

    // A new period. What the last one had no room for comes at its start, before all else.
    void Begin(std::uint32_t newFrames) {
        frames = newFrames;
        for (std::size_t i = 0; i < count; ++i) events[i].frame = 0;
    }
    // A date before the period counts as its start, one behind it as its last frame. False if all room is
    // taken: the message is lost.
    bool Add(std::int64_t frame, const std::array<std::uint8_t, 3>& bytes) {
        if (count == room) return false;
        const std::int64_t last = std::max<std::int64_t>(1, frames) - 1;
        const Event added = {static_cast<std::uint32_t>(std::clamp<std::int64_t>(frame, 0, last)), bytes};
        std::size_t at = count++;  // nearly all come in order, so its place is near the end
        for (; at > 0 && events[at - 1].frame > added.frame; --at) events[at] = events[at - 1];
        events[at] = added;
        return true;
    }
    // Hands the events to `write` in order, until it answers that it has no room; the rest waits.
    template <typename Write>
    void Flush(Write write) {
        std::size_t written = 0;
        while (written < count && write(events[written])) ++written;
        std::copy(events.begin() + static_cast<std::ptrdiff_t>(written),
                  events.begin() + static_cast<std::ptrdiff_t>(count), events.begin());
        count -= written;
    }

private:
    std::array<Event, room> events;
    std::size_t count = 0;
    std::uint32_t frames = 0;
};
