#pragma once
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>

#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

#include "devices/message_ring.h"
#include "vst2/records.h"

// Gathers the events that the plug-in object sends, one call at a time and dated as it likes, into what an
// LV2 host wants: one sequence a run, sorted, each event inside the run.
//
// What the thread of the run sends within the run belongs to that run. What comes from elsewhere (a suspend,
// the window, a device's worker) goes through a ring and out at the first frame of the next run. Nothing
// overtakes what was sent before it: while something from elsewhere waits, the run's own events go behind it
// into the ring, so that a note's end never comes before its begin. What the host's buffer has no room for
// waits, too, and is out at the first frame of the next run.
//
// Threads: Take [any]; all others [audio]. Nobody waits, and nothing is allocated after construction.
// Room: `room` events wait for a host with a small buffer, and `ringRoom` from elsewhere, the last quarter of
// them kept for the ends of notes. What comes on top of that is lost.
class EventGatherer {
public:
    static constexpr std::size_t room = 4096;
    static constexpr std::size_t ringRoom = 1024;

    // The numbers that the host has given to these types.
    EventGatherer(LV2_URID sequence, LV2_URID midiEvent) : sequenceType(sequence), midiType(midiEvent) {}

    void BeginRun();
    // The object's next events count from this frame of the run.
    void BeginBlock(std::int64_t frame) { blockStart = frame; }
    void Take(const VstEvents& sent);
    // Writes the sequence to `port`, whose atom has the capacity as its size; null drops the events. A run of
    // 0 frames has no place for any: they wait.
    void EndRun(std::uint32_t frames, LV2_Atom_Sequence* port);

private:
    struct Event {
        std::int64_t frame;     // of the run
        std::uint32_t order;    // of arrival, to keep the sort stable
        std::uint32_t message;  // a short MIDI message
    };

    void TakeFromElsewhere();
    void PushToRing(std::uint32_t message);
    std::size_t Write(LV2_Atom_Sequence& port) const;

    const LV2_URID sequenceType;
    const LV2_URID midiType;
    std::atomic<std::thread::id> runner{std::thread::id()};  // the thread of the run in progress, else none
    std::int64_t blockStart = 0;
    std::array<Event, room> events;
    std::size_t count = 0;                           // of `events`
    MessageRing<std::uint32_t, ringRoom> elsewhere;  // out at the next run
    std::atomic<std::size_t> waiting{0};             // in the ring, or on the way into it
};
