#pragma once
#include <cstddef>
#include <cstdint>

#include "harmony/chord.h"

// Names chords in an area of memory that it brings along: for up to mostTones notes nothing is allocated, and
// nothing is left behind from one call to the next.
//
// Threads: one at a time; a thread that must not allocate or wait has one of its own. The object is too large
// for a stack.
class TChordNamer {
public:
    // As the free function of that name.
    TChordForm chordOfPitches(std::uint32_t ignored, std::int32_t count, const std::uint32_t* pitches,
                              const std::uint32_t* velocities, const std::uint32_t* starts,
                              const std::uint32_t* durations);

private:
    static constexpr std::size_t areaSize = std::size_t{48}
                                            << 10;  // bytes; twelve notes with both retries take 28 KB

    // Zeroed at construction, so that its pages are there before the first call.
    alignas(std::max_align_t) std::byte area[areaSize] = {};
};
