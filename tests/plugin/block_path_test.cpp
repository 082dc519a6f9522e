// What the detector gets of a block, and what the host gets back.
#include "tests/plugin/plugin_test.h"

namespace {

class BlockPath : public PluginTest {};

// 30000 a unit, cut towards zero. The last sample is too small to be a normal number: nothing to the
// detector, but not flushed from the sum that the host hears.
TEST_F(BlockPath, EachCallPassesTheAudioAndHandsTheSameSamplesOn) {
    AEffect* const effect = plug->effect;
    const std::vector<short> expected = {15000, -7500, 0};
    std::vector<float> in = {0.5F, -0.25F, 1e-40F}, out = {0.125F, 0.5F, 2e-40F};
    std::vector<double> wideIn = {0.5, -0.25, 1e-310}, wideOut(3);
    float *from = in.data(), *to = out.data();
    double *wideFrom = wideIn.data(), *wideTo = wideOut.data();
    effect->process(effect, &from, &to, 3);
    EXPECT_EQ(out, (std::vector<float>{0.625F, 0.25F, 1e-40F + 2e-40F}));
    EXPECT_EQ(Object().samples, expected);
    effect->processReplacing(effect, &from, &to, 3);
    EXPECT_EQ(out, in);
    EXPECT_EQ(Object().samples, expected);
    effect->processDoubleReplacing(effect, &wideFrom, &wideTo, 3);
    EXPECT_EQ(wideOut, wideIn);
    EXPECT_EQ(Object().samples, expected);
}

}  // namespace
