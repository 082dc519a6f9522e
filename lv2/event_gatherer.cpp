#include "lv2/event_gatherer.h"

#include <algorithm>
#include <cstring>

#include <lv2/atom/util.h>

namespace {

constexpr std::uint32_t noteOff = 0x80, noteOn = 0x90, programChange = 0xC0, channelPressure = 0xD0;

std::uint32_t Kind(std::uint32_t message) {
    return message & 0xF0U;
}

// The object's records always carry three bytes; the stream of an LV2 host wants whole messages and no more.
std::uint32_t Length(std::uint32_t message) {
    return Kind(message) == programChange || Kind(message) == channelPressure ? 2 : 3;
}

bool EndsNote(std::uint32_t message) {
    return Kind(message) == noteOff || (Kind(message) == noteOn && (message >> 16 & 0x7FU) == 0);
}

// A band beyond the MIDI notes sends three zero bytes, which are no message.
bool IsMessage(std::uint32_t message) {
    return (message & 0x80U) != 0;
}

constexpr std::uint32_t Padded(std::uint32_t bytes) {
    return (bytes + 7U) & ~7U;
}

}  // namespace

void EventGatherer::BeginRun() {
    runner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    blockStart = 0;
    TakeFromElsewhere();
}

void EventGatherer::TakeFromElsewhere() {
    while (count < room && elsewhere.Ready()) {
        events[count++] = {0, 0, elsewhere.Front()};
        elsewhere.Pop();
        waiting.fetch_sub(1);
    }
}

void EventGatherer::Take(const VstEvents& sent) {
    const bool ofTheRun = runner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    for (std::int32_t i = 0; i < sent.numEvents; ++i) {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);  // if its type says so
        if (event.type != kVstMidiType) continue;
        std::uint32_t message = 0;
        for (int byte = 0; byte < 3; ++byte)
            message |= std::uint32_t{static_cast<unsigned char>(event.midiData[byte])} << 8 * byte;
        if (!IsMessage(message)) continue;
        if (ofTheRun && waiting.load() == 0 && count < room)
            events[count++] = {blockStart + event.deltaFrames, 0, message};
        else
            PushToRing(message);
    }
}

void EventGatherer::PushToRing(std::uint32_t message) {
    const std::size_t before = waiting.fetch_add(1);
    const bool fits = before < ringRoom * 3 / 4 || EndsNote(message);
    if (!fits || !elsewhere.Push(message)) waiting.fetch_sub(1);
}

void EventGatherer::EndRun(std::uint32_t frames, LV2_Atom_Sequence* port) {
    const std::int64_t last = frames > 0 ? std::int64_t{frames} - 1 : 0;
    for (std::size_t i = 0; i < count; ++i) {
        events[i].frame = std::clamp<std::int64_t>(events[i].frame, 0, last);
        events[i].order = static_cast<std::uint32_t>(i);
    }
    std::sort(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(count),
              [](const Event& a, const Event& b) {
                  return a.frame != b.frame ? a.frame < b.frame : a.order < b.order;
              });
    const std::size_t all = count;
    if (frames == 0) count = 0;  // so that an empty sequence is written
    const std::size_t done = port != nullptr ? Write(*port) : count;
    std::copy(events.begin() + static_cast<std::ptrdiff_t>(done),
              events.begin() + static_cast<std::ptrdiff_t>(all), events.begin());
    count = all - done;
    for (std::size_t i = 0; i < count; ++i) events[i].frame = 0;
    runner.store(std::thread::id(), std::memory_order_relaxed);
}

// How many of the events fitted.
std::size_t EventGatherer::Write(LV2_Atom_Sequence& port) const {
    const std::uint32_t capacity = port.atom.size;
    if (capacity < sizeof port.body) {
        port.atom.size = 0;
        return 0;
    }
    port.atom.type = sequenceType;
    port.body = {0, 0};  // times are in frames
    auto* const bytes = static_cast<unsigned char*>(LV2_ATOM_BODY(&port.atom));
    std::uint32_t size = sizeof port.body;
    std::size_t done = 0;
    for (; done < count; ++done) {
        LV2_Atom_Event head;
        head.time.frames = events[done].frame;
        head.body = {Length(events[done].message), midiType};
        const std::uint32_t whole = Padded(static_cast<std::uint32_t>(sizeof head) + head.body.size);
        if (capacity - size < whole) break;
        std::memset(bytes + size, 0, whole);
        std::memcpy(bytes + size, &head, sizeof head);
        for (std::uint32_t byte = 0; byte < head.body.size; ++byte)
            bytes[size + sizeof head + byte] = static_cast<unsigned char>(events[done].message >> 8 * byte);
        size += whole;
    }
    port.atom.size = size;
    return done;
}
