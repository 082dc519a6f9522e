// What blocks of any samples do not show of the way from the host's samples to the detector's.
#include "plugin/sample_conversion.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <vector>

// A host's rounding mode may not decide what is heard.
TEST(SampleConversion, TheHostsRoundingMakesNoDifference) {
    const auto convert = [](auto unit, int rounding) {
        std::vector<decltype(unit)> steps;
        for (int k = -30000; k <= 30000; ++k) steps.push_back(static_cast<decltype(unit)>(k) / 30000);
        std::vector<short> out(steps.size());
        std::fesetround(rounding);
        ConvertSamples(steps.data(), out.data(), steps.size());
        std::fesetround(FE_TONEAREST);
        return out;
    };
    for (const int rounding : {FE_UPWARD, FE_DOWNWARD}) {
        EXPECT_EQ(convert(1.0F, rounding), convert(1.0F, FE_TONEAREST));
        EXPECT_EQ(convert(1.0, rounding), convert(1.0, FE_TONEAREST));
    }
}
