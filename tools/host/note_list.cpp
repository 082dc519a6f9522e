#include "tools/host/note_list.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);
constexpr std::array<const char*, 12> pitchClasses = {"C",  "C#", "D",  "D#", "E",  "F",
                                                      "F#", "G",  "G#", "A",  "A#", "B"};

}  // namespace

bool BeginsBefore(const HeardNote& a, const HeardNote& b) {
    return std::tie(a.begin, a.pitch, a.channel) < std::tie(b.begin, b.pitch, b.channel);
}

std::vector<HeardNote> PairNotes(const Take& take) {
    std::vector<HeardNote> notes;
    // By channel and pitch: index into notes of what sounds there, or none.
    std::vector<std::size_t> sounding(std::size_t{16} * 128, none);

    const auto close = [&](std::size_t& open, std::int64_t sample) {
        if (open == none) return;
        notes[open].end = std::max(notes[open].begin, sample);
        open = none;
    };
    std::array<int, 16> programs{};
    for (const TimedEvent& event : take.events) {
        const int kind = event.bytes[0] & 0xF0;
        const int channel = event.bytes[0] & 0x0F;
        const int pitch = event.bytes[1] & 0x7F;
        int& program = programs[static_cast<std::size_t>(channel)];
        if (kind == 0xC0) program = pitch;  // its one data byte
        if (kind != 0x90 && kind != 0x80) continue;
        const int velocity = event.bytes[2] & 0x7F;
        std::size_t& open =
            sounding[static_cast<std::size_t>(channel) * 128 + static_cast<std::size_t>(pitch)];
        close(open, event.sample);
        if (kind == 0x80 || velocity == 0) continue;  // a note-on of velocity 0 is a note-off
        open = notes.size();
        notes.push_back({event.sample, event.sample, channel, pitch, velocity, program});
    }
    for (std::size_t& open : sounding) close(open, take.length);

    std::stable_sort(notes.begin(), notes.end(), BeginsBefore);
    return notes;
}

std::string NoteName(int pitch) {
    return pitchClasses[static_cast<std::size_t>(pitch % 12)] + std::to_string(pitch / 12 - 1);
}
