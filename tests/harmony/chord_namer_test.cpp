#include "harmony/chord_namer.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <thread>

#include "tests/harmony/allocation_count.h"
#include "tests/harmony/naming.h"

namespace {

// Up to as many notes as have a name; of eleven, both retries are made, in vain.
TEST(ChordNamer, NamingAllocatesNothingOnceWarm) {
    const Pitches most{19, 24, 27, 28, 30, 32, 55, 58, 61, 62, 69, 68};
    const Pitches alike(most.size(), 100);
    const auto nameAll = [&] {
        for (std::int32_t count = 1; count <= TChord::mostTones; ++count)
            chordOfPitches(150, count, most.data(), alike.data(), alike.data(), alike.data());
    };
    nameAll();
    const std::size_t before = AllocationsOfThisThread();
    nameAll();
    EXPECT_EQ(AllocationsOfThisThread(), before);
}

TEST(ChordNamer, MoreNotesThanItsAreaHoldsFailAsEver) {
    Pitches many(100);
    for (std::size_t index = 0; index < many.size(); ++index)
        many[index] = static_cast<std::uint32_t>(index % 128);
    EXPECT_THROW(FormOf(many), std::out_of_range);
    EXPECT_EQ(NameOf({60, 64, 67}), "C");
}

// Retries run on both threads all the time; none may keep the other's from running.
TEST(ChordNamer, AnalysesOnTwoThreadsDoNotDisturbEachOther) {
    std::minstd_rand random(3);
    std::vector<Pitches> sets;
    while (sets.size() < 300) {
        Pitches pitches;
        for (std::uint32_t pitch = 12; pitches.size() < 4 + sets.size() % 8;)
            pitches.push_back(pitch += 1 + static_cast<std::uint32_t>(random() % 6));
        sets.push_back(pitches);
    }
    std::vector<std::string> names;
    for (const Pitches& pitches : sets) names.push_back(NameOf(pitches));
    const auto check = [&] {
        int wrong = 0;
        for (int round = 0; round < 10; ++round)
            for (std::size_t index = 0; index < sets.size(); ++index)
                if (NameOf(sets[index]) != names[index]) ++wrong;
        EXPECT_EQ(wrong, 0);
    };
    std::thread other(check);
    check();
    other.join();
}

}  // namespace
