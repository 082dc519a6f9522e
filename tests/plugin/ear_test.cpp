// The choice between the detector's own ear and the refined one on top of it, by the vendor's own call.
#include "tests/support/linked_host.h"
#include "tests/support/music.h"
#include "vst2/vendor_call.h"

namespace {

class EarTest : public testing::Test {
protected:
    EarTest() { host.events.clear(); }
    std::intptr_t Set(std::intptr_t setting, float value) {
        return host.Call(effVendorSpecific, vendorCall, setting, nullptr, value);
    }
    std::intptr_t Choose(Ear ear) { return Set(vendorEar, static_cast<float>(ear)); }
    // Note ons less note offs since the last look.
    int TakeSounding() {
        const int sounding = host.Sounding();
        host.TakenEvents();
        return sounding;
    }

    LinkedHost host;
    const std::vector<float> tones = Tones({57, 69, 76}, 0.5);
};

TEST_F(EarTest, AChangeEndsTheNotesThatSoundAndClassicIsAsItWasBefore) {
    host.Play(tones);
    int sounds = host.Sounding();
    const std::vector<Host::Event> classic = host.TakenEvents();
    for (const Ear ear : {Ear::refinedLive, Ear::refinedFile, Ear::classic}) {
        EXPECT_GT(sounds, 0) << "before ear " << static_cast<int>(ear);
        EXPECT_EQ(Choose(ear), 1);
        EXPECT_EQ(sounds + TakeSounding(), 0);
        host.Play(tones);
        sounds = TakeSounding();
    }
    host.Play(std::vector<float>(64));
    EXPECT_EQ(sounds + TakeSounding(), 0);
    const std::int64_t begin = host.clock;
    host.Play(tones);
    EXPECT_EQ(host.TakenEvents(), Later(classic, begin));
}

// The refined ear decides late, so a pause of nothing does not cut its notes off; a second of it does, and
// all that was heard is forgotten.
TEST_F(EarTest, TheRefinedEarHearsTheSameHoweverTheAudioIsCutAndASilenceOut) {
    EXPECT_EQ(Choose(Ear::refinedLive), 1);
    std::vector<Host::Event> first;
    for (const std::size_t block : {512, 7, 64, 777}) {
        const std::int64_t begin = host.clock;
        host.Play(tones, block);
        EXPECT_GT(host.Sounding(), 0);
        host.Play(Silence(441));
        EXPECT_FALSE(host.plugin.stopped);
        host.Play(Silence(22050));
        EXPECT_EQ(host.Sounding(), 0);
        host.Play(Silence(44100));
        EXPECT_TRUE(host.plugin.stopped);
        const std::vector<Host::Event> events = host.TakenEvents();
        if (first.empty()) first = events;
        EXPECT_EQ(events, Later(first, begin)) << "blocks of " << block;
    }
    EXPECT_EQ(Set(vendorThreshold, 16), 1);  // out of reach
    host.Play(tones);
    EXPECT_EQ(Set(vendorThreshold, 0), 1);
    host.Set(1, 0);  // a floor of 0 dB
    host.Play(tones);
    EXPECT_TRUE(host.TakenEvents().empty());
}

TEST_F(EarTest, InputLevelMakesQuietSoundsAudibleAndZeroChangesNothing) {
    std::vector<float> quiet = tones;
    for (float& sample : quiet) sample *= 0.002F;
    host.Play(quiet);
    EXPECT_EQ(TakeSounding(), 0);
    EXPECT_EQ(Set(vendorInputLevel, 40), 1);
    host.Play(quiet);
    EXPECT_GT(TakeSounding(), 0);
    EXPECT_EQ(Set(vendorInputLevel, 0), 1);
    EXPECT_EQ(host.plugin.inputGain, 1.0F);
}

}  // namespace
