// The choice between the detector's own ear and the refined one on top of it, by the vendor's own call.
#include <cmath>

#include "tests/plugin/plugin_test.h"
#include "vst2/vendor_call.h"

namespace {

class EarTest : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        host.events.clear();
    }
    std::intptr_t Set(std::intptr_t setting, float value) {
        return plug->Call(effVendorSpecific, vendorCall, setting, nullptr, value);
    }
    std::intptr_t Choose(Ear ear) { return Set(vendorEar, static_cast<float>(ear)); }

    const std::vector<float> tones = Sines({57, 69, 76}, 0.5);
};

TEST_F(EarTest, AChangeEndsTheNotesThatSoundAndClassicIsAsItWasBefore) {
    Play(tones);
    const std::vector<FakeHost::Event> classic = host.TakenEvents();
    int sounds = Sounding(classic);
    for (const Ear ear : {Ear::refinedLive, Ear::refinedFile, Ear::classic}) {
        EXPECT_GT(sounds, 0) << "before ear " << static_cast<int>(ear);
        EXPECT_EQ(Choose(ear), 1);
        EXPECT_EQ(sounds + Sounding(host.TakenEvents()), 0);
        Play(tones);
        sounds = Sounding(host.TakenEvents());
    }
    Play(Silence(64));
    EXPECT_EQ(sounds + Sounding(host.TakenEvents()), 0);
    const std::int64_t begin = host.clock;
    Play(tones);
    EXPECT_EQ(host.TakenEvents(), Later(classic, begin));
}

// The refined ear decides late, so a pause of nothing does not cut its notes off; a second of it does.
TEST_F(EarTest, TheRefinedEarHearsASilenceOut) {
    EXPECT_EQ(Choose(Ear::refinedLive), 1);
    Play(tones);
    EXPECT_GT(Sounding(host.events), 0);
    Play(Silence(441));
    EXPECT_FALSE(Object().stopped);
    Play(Silence(22050));
    EXPECT_EQ(Sounding(host.events), 0);
    Play(Silence(44100));
    EXPECT_TRUE(Object().stopped);
}

TEST_F(EarTest, InputLevelMakesQuietSoundsAudibleAndZeroChangesNothing) {
    std::vector<float> quiet = tones;
    for (float& sample : quiet) sample *= 0.002F;
    Play(quiet);
    EXPECT_EQ(Sounding(host.TakenEvents()), 0);
    EXPECT_EQ(Set(vendorInputLevel, 40), 1);
    Play(quiet);
    EXPECT_GT(Sounding(host.TakenEvents()), 0);
    EXPECT_EQ(Set(vendorInputLevel, 0), 1);
    EXPECT_EQ(Object().inputGain, 1.0F);
}

TEST_F(EarTest, OtherCallsOfOtherVendorsAreRefused) {
    EXPECT_EQ(plug->Call(effVendorSpecific, vendorCall + 1, vendorEar, nullptr, 1), 0);
    EXPECT_EQ(Set(17, 1), 0);
    for (const float wrong : {-1.0F, 0.5F, 3.0F, std::nanf("")}) EXPECT_EQ(Set(vendorEar, wrong), 0);
}

}  // namespace
