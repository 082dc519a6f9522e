#pragma once
#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "devices/message_ring.h"
#include "vst2/records.h"

// Gathers the events that a plug-in object sends, one call at a time and dated as it likes, into what hosts
// want: the events of one run at a time, sorted, each dated inside the run.
//
// What the thread of the run sends within the run belongs to that run. What comes from elsewhere (a suspend,
// the window, a device's worker) goes through a ring and out at the first frame of the next run. Nothing
// overtakes what was sent before it: while something from elsewhere waits, the run's own events go behind it
// into the ring, so that a note's end never comes before its begin. What the host has no space for waits,
// too, and is out at the first frame of the next run.
//
// Threads: Take and AllOut [any]; all others [audio]. Nobody waits, and nothing is allocated after
// construction.
// Capacity: `capacity` events wait for a host with a small buffer, and `ringCapacity` from elsewhere, the
// last quarter of them kept for the ends of notes. What comes on top of that is lost.
class EventGatherer {
public:
    static constexpr std::size_t capacity = 4096;
    static constexpr std::size_t ringCapacity = 1024;

    void BeginRun(std::uint32_t newFrames);
    // The object's next events count from this frame of the run.
    void BeginBlock(std::int64_t frame) { blockStart = frame; }
    void Take(const VstEvents& sent);
    // The same for one short MIDI message. False when it is lost.
    bool Take(std::int64_t frame, std::uint32_t message);
    // Hands frame and message of each event to `write` in order, until it returns false for want of space. A
    // run of 0 frames has no place for any: they wait.
    template <typename Write>
    void EndRun(Write write) {
        assert(std::is_sorted(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(count), Earlier));
        std::size_t done = 0;
        while (frames > 0 && done < count && write(events[done].frame, events[done].message)) ++done;
        Keep(done);
    }
    // Nothing from elsewhere waits for a run.
    bool AllOut() const { return waiting.load() == 0; }

private:
    struct Event {
        std::uint32_t frame;    // of the run
        std::uint32_t message;  // a short MIDI message
    };

    static bool Earlier(const Event& a, const Event& b) { return a.frame < b.frame; }
    void Insert(std::int64_t frame, std::uint32_t message);
    bool PushToRing(std::uint32_t message);
    void Keep(std::size_t from);

    std::atomic<std::thread::id> runner{std::thread::id()};  // the thread of the run in progress, else none
    std::uint32_t frames = 0;                                // of the run
    std::int64_t blockStart = 0;
    std::array<Event, capacity> events;  // sorted by frame, in the order of arrival where equal
    std::size_t count = 0;               // of `events`
    MessageRing<std::uint32_t, ringCapacity> elsewhere;  // out at the next run
    std::atomic<std::size_t> waiting{0};                 // in the ring, or on the way into it
};
