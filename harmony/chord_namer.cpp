#include "harmony/chord_namer.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <memory_resource>
#include <utility>

namespace {

constexpr std::uint8_t chordProgram = 0;
constexpr std::uint8_t chordLayer = 1;
constexpr std::uint8_t chordChannel = 0;

// One namer waits here for whoever comes next, until the process ends.
std::atomic<TChordNamer*> spareNamer{nullptr};

struct GiveBack {
    void operator()(TChordNamer* namer) const { delete spareNamer.exchange(namer); }
};

}  // namespace

TChordForm TChordNamer::chordOfPitches(std::uint32_t, std::int32_t count, const std::uint32_t* pitches,
                                       const std::uint32_t* velocities, const std::uint32_t* starts,
                                       const std::uint32_t* durations) {
    std::pmr::monotonic_buffer_resource memory(area, areaSize, NoteMemory());
    TScorePtr score = makeScore(&memory);
    score->ReserveNotes(static_cast<std::size_t>(std::max(count, 0)));  // which keeps their order
    for (std::int32_t index = 0; index < count; ++index)
        score->AddNote(starts[index], starts[index] + durations[index],
                       static_cast<std::uint8_t>(pitches[index]),
                       static_cast<std::int32_t>(velocities[index]), chordProgram, chordLayer, chordChannel);
    TChord chord(std::move(score));
    chord.analyse();
    return chordFormOf(std::move(chord));
}

TChordForm chordOfPitches(std::uint32_t ignored, std::int32_t count, const std::uint32_t* pitches,
                          const std::uint32_t* velocities, const std::uint32_t* starts,
                          const std::uint32_t* durations) {
    TChordNamer* const waiting = spareNamer.exchange(nullptr);
    const std::unique_ptr<TChordNamer, GiveBack> namer(waiting != nullptr ? waiting : new TChordNamer);
    return namer->chordOfPitches(ignored, count, pitches, velocities, starts, durations);
}
