#include "harmony/chords_listener.h"

#include "tests/delivery/fakes.h"
#include "tests/harmony/naming.h"

namespace {

// A listener on a recorder whose clock and bands the test sets, in the place of the plug-in object.
class ChordsListener : public testing::Test, public IChordOwner, protected Bands {
protected:
    ChordsListener() { recorder.AddOutput(listener); }
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
    TChordsListener* const listener = new TChordsListener(this, 10);  // the recorder's, once attached
};

TEST_F(ChordsListener, OneUpdateForEachStepOfTheClock) {
    for (int frame = 0; frame < 100; ++frame) recorder.OnFrame();  // 441 to 44100 samples, 4410 a step
    EXPECT_EQ(changes, 11);                                        // numbers 0 to 10
    listener->Update();
    EXPECT_EQ(changes, 11);
    listener->Stop();
    EXPECT_EQ(changes, 12);
    TChordsListener(this, 10).Update();  // on no recorder
    EXPECT_EQ(changes, 12);
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

// What is shown is the name of so many updates ago, ten a second; a stop forgets them. A rate that is none
// counts as 0, and then each sample is an update.
TEST_F(ChordsListener, ShowsTheChordThatSoundedTheDelayAgo) {
    constexpr float noRate = std::numeric_limits<float>::quiet_NaN();
    std::minstd_rand random(1);
    for (const float given : {44100.0F, 11025.0F, 99.9F, 19.0F, 9.0F, 0.5F, 0.0F, -44100.0F, 1e30F, noRate})
        for (const std::uint64_t ms : {0U, 100U, 990U, 1000U, 2000U}) {
            rate = given;
            listener->Stop();
            listener->Start();
            listener->setDelay(ms);
            const auto hertz = given > 0 && given < 1e9F ? static_cast<std::uint64_t>(given) : 0;
            const std::size_t updates = hertz * ms / std::max<std::uint64_t>(hertz / 10, 1) / 1000;
            std::vector<std::string> played(updates);
            for (int update = 0; update < 50; ++update) {
                const int root = static_cast<int>(24 + random() % 12);
                Play({root, root + 4, root + 7});
                played.emplace_back(PitchNamesMixed[root % 12]);
                ASSERT_EQ(Copied(), played[played.size() - 1 - updates]) << rate << " Hz, " << ms << " ms";
                if (random() % 2 == 0) {  // which is not needed for copies to be right
                    ASSERT_EQ(Shown(), Copied());
                }
            }
        }
}

}  // namespace
