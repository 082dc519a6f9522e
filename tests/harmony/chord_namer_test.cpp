#include "harmony/chord_namer.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/harmony/allocation_count.h"
#include "tests/harmony/naming.h"

namespace {

// Eleven notes that are tried without the lowest, then without the highest, and stay without a type.
const Pitches hardest{19, 24, 27, 28, 30, 32, 55, 58, 61, 62, 69};

TEST(ChordNamer, ItsAreaIsEnoughForAsManyNotesAsHaveAName) {
    const Pitches most{19, 24, 27, 28, 30, 32, 55, 58, 61, 62, 68, 69};
    const Pitches alike(most.size(), 100);
    const auto namer = std::make_unique<TChordNamer>();
    const std::size_t before = AllocationsOfThisThread();
    for (std::int32_t count = 1; count <= TChord::mostTones; ++count)
        namer->chordOfPitches(150, count, most.data(), alike.data(), alike.data(), alike.data());
    EXPECT_EQ(AllocationsOfThisThread(), before);
}

TEST(ChordNamer, FreeFunctionAllocatesNothingOnceWarm) {
    const Pitches alike(hardest.size(), 100);
    const auto name = [&] {
        return chordOfPitches(150, static_cast<std::int32_t>(hardest.size()), hardest.data(), alike.data(),
                              alike.data(), alike.data());
    };
    name();
    const std::size_t before = AllocationsOfThisThread();
    for (int call = 0; call < 100; ++call) name();
    EXPECT_EQ(AllocationsOfThisThread(), before);
}

TEST(ChordNamer, MoreNotesThanItsAreaHoldsFailAsEver) {
    Pitches many(100);
    for (std::size_t index = 0; index < many.size(); ++index)
        many[index] = static_cast<std::uint32_t>(index % 128);
    EXPECT_THROW(FormOf(many), std::out_of_range);
    EXPECT_EQ(NameOf({60, 64, 67}), "C");
}

}  // namespace
