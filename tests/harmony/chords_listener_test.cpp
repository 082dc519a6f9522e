#include "harmony/chords_listener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "delivery/note_recorder.h"
#include "tests/delivery/fakes.h"
#include "tests/harmony/naming.h"

namespace {

// A listener on a recorder whose clock and bands the test sets by hand, which also stands in for the plug-in
// object.
class ChordsListener : public testing::Test, public IChordOwner {
protected:
    ChordsListener() {
        recorder.Attach(&detector);
        recorder.Activate(0);
        recorder.AddOutput(listener);
    }
    float GetSampleRate() const override { return rate; }
    void ChordChanged() override { ++changes; }
    // One update in which exactly these bands are on.
    void Play(const std::vector<int>& bands) {
        for (int band = 0; band < detector.numBands; ++band) detector.Set(band, false);
        for (const int band : bands) detector.Set(band, true);
        const auto step = static_cast<std::int64_t>(listener->samplesPerUpdate.load());
        recorder.SetTime(listener->ringReady ? recorder.GetTime() + step : 0);
        listener->Update();
    }
    std::string Shown() { return std::string(listener->currentChord().view()); }
    std::string Copied() const { return std::string(listener->currentChordCopy().view()); }

    float rate = 44100;
    int changes = 0;
    FakeDetector detector;
    TNoteRecorder recorder;
    TChordsListener* const listener = new TChordsListener(this, 10);  // the recorder's, once attached
};

TEST_F(ChordsListener, OneUpdateForEachStepOfTheClock) {
    for (int frame = 0; frame < 100; ++frame) recorder.OnFrame();  // 441 to 44100 samples, 4410 a step
    EXPECT_EQ(changes, 11);                                        // numbers 0 to 10
    listener->Update();
    EXPECT_EQ(changes, 11);
    recorder.SetTime(0);  // whatever the direction
    listener->Update();
    EXPECT_EQ(changes, 12);
    listener->Stop();
    EXPECT_EQ(changes, 13);
    TChordsListener(this, 10).Update();  // on no recorder
    EXPECT_EQ(changes, 13);
}

TEST_F(ChordsListener, TheElevenLowestBandsAreNamedAsTheySoundAndNotAsTheyAreSent) {
    listener->setDelay(0);
    recorder.SetTranspose(1);
    recorder.enabled[41] = false;
    std::vector<int> many;
    for (int band = 20; band < 84; band += 5) many.push_back(band);
    const std::pair<std::vector<int>, std::string> rows[] = {
        {{36, 40, 41, 43}, "C"},
        {{2, 6, 9}, "D"},
        {{}, ""},
        {many, NameOf({20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70})}};
    for (const auto& [bands, name] : rows) {
        Play(bands);
        EXPECT_EQ(Shown(), name);
    }
}

// The ring as a plain list, of two seconds and one entry at least: what is shown is wiped, the newest is
// written, all by index modulo the size. A rate that is none counts as 0.
struct PlainRing {
    std::vector<std::string> entries;
    std::uint64_t write = 0, offset = 0, rate = 0, step = 1, ms = 1000;

    void Start(float newRate) {
        rate = newRate > 0 && newRate < 1e9F ? static_cast<std::uint64_t>(newRate) : 0;
        step = std::max<std::uint64_t>(rate / 10, 1);
        entries.resize(rate * 2000 / step / 1000 + 1);
        write %= entries.size();
        Delay(ms);
    }
    void Delay(std::uint64_t newMs) {
        ms = newMs;
        offset = entries.size() - rate * ms / step / 1000 - 1;
    }
    std::string& Shown() { return entries[(offset + write) % entries.size()]; }
    void Push(const std::string& name) {
        Shown().clear();
        entries[write] = name;
        write = (write + 1) % entries.size();
    }
};

TEST_F(ChordsListener, RingFollowsDelaysStopsAndRates) {
    constexpr float noRate = std::numeric_limits<float>::quiet_NaN();
    constexpr float rates[] = {44100, 48000, 11025, 99.9F, 29, 19, 11, 10, 9, 0.5F, 0, -44100, 1e30F, noRate};
    std::minstd_rand random(1);
    PlainRing plain;
    plain.Start(44100);
    for (int step = 0; step < 5000; ++step) {
        const auto choice = random() % 100;
        if (choice < 3) {
            rate = rates[random() % std::size(rates)];
            listener->Start();
            plain.Start(rate);
            ASSERT_EQ(listener->samplesPerUpdate, plain.step) << rate << " Hz";
            ASSERT_EQ(listener->delayRing.size(), plain.entries.size()) << rate << " Hz";
        } else if (choice < 5) {
            listener->Stop();
            for (std::string& entry : plain.entries) entry.clear();
        } else if (choice < 20) {
            const std::uint64_t ms = random() % 4001;  // past 2000, some entry of the ring
            listener->setDelay(ms);
            plain.Delay(ms);
        } else {
            const int root = static_cast<int>(24 + random() % 12);
            Play({root, root + 4, root + 7});
            plain.Push(PitchNamesMixed[root % 12]);
        }
        ASSERT_EQ(Copied(), plain.Shown()) << "step " << step;
        if (random() % 2 == 0) {  // which is not needed for copies to be right
            ASSERT_EQ(Shown(), plain.Shown()) << "step " << step;
        }
        ASSERT_EQ(listener->writeIndex, plain.write);
    }
}

}  // namespace
