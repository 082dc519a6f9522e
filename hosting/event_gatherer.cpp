#include "hosting/event_gatherer.h"

namespace {

bool EndsNote(std::uint32_t message) {
    constexpr std::uint32_t noteOff = 0x80, noteOn = 0x90;
    const std::uint32_t kind = message & 0xF0U;
    return kind == noteOff || (kind == noteOn && (message >> 16 & 0x7FU) == 0);
}

// A band beyond the MIDI notes sends three zero bytes, which are no message.
bool IsMessage(std::uint32_t message) {
    return (message & 0x80U) != 0;
}

}  // namespace

void EventGatherer::BeginRun(std::uint32_t newFrames) {
    runner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    frames = newFrames;
    blockStart = 0;
    for (; count < capacity && elsewhere.Ready(); elsewhere.Pop()) {
        events[count++] = {0, elsewhere.Front()};
        waiting.fetch_sub(1);
    }
}

void EventGatherer::Take(const VstEvents& sent) {
    for (std::int32_t i = 0; i < sent.numEvents; ++i) {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);  // if its type says so
        if (event.type != kVstMidiType) continue;
        std::uint32_t message = 0;
        for (int byte = 0; byte < 3; ++byte)
            message |= std::uint32_t{static_cast<unsigned char>(event.midiData[byte])} << 8 * byte;
        Take(event.deltaFrames, message);
    }
}

bool EventGatherer::Take(std::int64_t frame, std::uint32_t message) {
    if (!IsMessage(message)) return true;
    const bool ofTheRun = runner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    if (!ofTheRun || waiting.load() != 0 || count == capacity) return PushToRing(message);
    Insert(blockStart + frame, message);
    return true;
}

void EventGatherer::Insert(std::int64_t frame, std::uint32_t message) {
    assert(count < capacity);
    const std::int64_t last = std::max<std::int64_t>(1, frames) - 1;
    const Event added = {static_cast<std::uint32_t>(std::clamp<std::int64_t>(frame, 0, last)), message};
    std::size_t at = count++;  // nearly all come in order, so its place is near the end
    for (; at > 0 && events[at - 1].frame > added.frame; --at) events[at] = events[at - 1];
    events[at] = added;
}

bool EventGatherer::PushToRing(std::uint32_t message) {
    const std::size_t before = waiting.fetch_add(1);
    const bool fits = before < ringCapacity * 3 / 4 || EndsNote(message);
    if (fits && elsewhere.Push(message)) return true;
    waiting.fetch_sub(1);
    return false;
}

// What has not been written is first in the next run.
void EventGatherer::Keep(std::size_t from) {
    assert(from <= count);
    const auto begin = events.begin();
    std::copy(begin + static_cast<std::ptrdiff_t>(from), begin + static_cast<std::ptrdiff_t>(count), begin);
    count -= from;
    for (std::size_t i = 0; i < count; ++i) events[i].frame = 0;
    runner.store(std::thread::id(), std::memory_order_relaxed);
}
