#include <atomic>
#include <cstddef>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "harmony/name_ring.h"
#include "tests/harmony/listening.h"
#include "tests/harmony/naming.h"

namespace {

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

// An audio thread that plays, a host thread that stops and moves the delay, and a display that reads: each
// text read is one that was written, whole. The names are longer than a word.
TEST_F(Listening, NoReaderSeesATornName) {
    const std::vector<std::vector<int>> played{{23, 30, 37, 40}, {20, 22, 27, 37, 44}, {18, 20, 37, 47}};
    ASSERT_EQ(NameOf({23, 30, 37, 40}), "F#7sus/C#");
    ASSERT_EQ(NameOf({20, 22, 27, 37, 44}), "Eb7sus/Bb");
    ASSERT_EQ(NameOf({18, 20, 37, 47}), "C#7sus/Ab");
    std::atomic<bool> done{false}, seen{false};
    std::atomic<std::size_t> updates{0};
    int torn = 0;
    std::thread display([&] {
        while (!done) {
            const std::string text(listener->currentChordCopy().view());
            if (text == "F#7sus/C#" || text == "Eb7sus/Bb" || text == "C#7sus/Ab")
                seen = true;
            else if (!text.empty())
                ++torn;
        }
    });
    std::thread host([&] {
        std::size_t last = 0;
        while (!done) {
            const std::size_t now = updates;
            if (now == last) continue;
            last = now;
            listener->setDelay(now * 70 % 2001);
            if (now % 50 == 0) listener->Stop();
        }
    });
    while (updates < 10000 || !seen) {
        Play(played[updates % played.size()]);
        listener->currentChord();
        ++updates;
    }
    done = true;
    display.join();
    host.join();
    EXPECT_EQ(torn, 0);
}

// Two entries are always changed together, to the same name of one letter over all its words.
TEST(NameRing, ReadersSeeEachChangeWholeOrNotAtAll) {
    NameRing ring(2);
    const auto write = [&ring](char letter) {
        const TChordName name(std::string(31, letter));
        const NameRing::Change change(ring);
        ring.Resize(2);
        ring.Set(0, name);
        ring.Set(1, name);
    };
    write('a');
    std::atomic<bool> done{false}, moved{false};
    int wrong = 0;
    std::thread reader([&] {
        while (!done) {
            const auto names = ring.Read([&ring] { return std::pair(ring.Get(0), ring.Get(1)); });
            const std::string_view text = names.first.view();
            if (!(names.first == names.second) || text != std::string(31, text[0])) ++wrong;
            if (text[0] != 'a') moved = true;
        }
    });
    for (int change = 0; change < 200000 || !moved; ++change) write(static_cast<char>('b' + change % 20));
    done = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
