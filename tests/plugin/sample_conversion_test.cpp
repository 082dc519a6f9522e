#include "plugin/sample_conversion.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

template <typename Sample>
class SampleConversion : public testing::Test {
protected:
    static short One(Sample sample) {
        short out = 1;
        ConvertSamples(&sample, &out, 1);
        return out;
    }
};
using SampleTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(SampleConversion, SampleTypes);

TYPED_TEST(SampleConversion, ScalesBy30000CutsTowardsZeroAndWraps) {
    EXPECT_EQ(this->One(TypeParam(1.0)), 30000);
    EXPECT_EQ(this->One(TypeParam(-1.0)), -30000);
    EXPECT_EQ(this->One(TypeParam(1.5)), 45000 - 65536);
    EXPECT_EQ(this->One(TypeParam(-1.5)), 65536 - 45000);
    EXPECT_EQ(this->One(TypeParam(0.999 / 30000)), 0);
    EXPECT_EQ(this->One(TypeParam(-1.9 / 30000)), -1);
    // 71568 x 30000 = 2147040000 = 32761 x 65536 + 15104: just within 32 bits, and exact as a float
    EXPECT_EQ(this->One(TypeParam(71568)), 15104);
    EXPECT_EQ(this->One(TypeParam(71583)), 0);  // just beyond
    EXPECT_EQ(this->One(std::numeric_limits<TypeParam>::quiet_NaN()), 0);
}

// Any length, any alignment of input and output, with bad samples in between: the vector form is the plain
// form, bit for bit, and touches nothing behind its end.
TYPED_TEST(SampleConversion, TheVectorFormIsThePlainForm) {
    std::minstd_rand random(1);
    std::vector<TypeParam> samples(300);
    for (TypeParam& sample : samples) sample = TypeParam(static_cast<double>(random()) / 4e8 - 2.6);
    for (std::size_t i = 0; i < samples.size(); i += 13)
        samples[i] = i % 2 == 0 ? std::numeric_limits<TypeParam>::quiet_NaN() : TypeParam(3e9);
    std::vector<unsigned char> bytes(301 * sizeof(TypeParam));
    for (std::size_t shift = 0; shift <= sizeof(TypeParam); ++shift) {  // bytes
        std::memcpy(bytes.data() + shift, samples.data(), samples.size() * sizeof(TypeParam));
        const auto* const in = reinterpret_cast<const TypeParam*>(bytes.data() + shift);
        for (const std::size_t count :
             {0U, 1U, 2U, 3U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 31U, 33U, 63U, 65U, 127U, 255U, 299U}) {
            std::vector<short> vector(310, 77), scalar(310, 77);
            ConvertSamples(in, vector.data() + count % 5, count);
            plain::ConvertSamples(samples.data(), scalar.data() + count % 5, count);
            ASSERT_EQ(vector, scalar) << count << " samples, shifted by " << shift;
        }
    }
}

// A host's rounding mode may not decide what is heard.
TYPED_TEST(SampleConversion, TheHostsRoundingMakesNoDifference) {
    std::vector<TypeParam> steps;
    for (int k = -30000; k <= 30000; ++k) steps.push_back(TypeParam(k) / TypeParam(30000));
    std::vector<short> expected(steps.size()), out(steps.size());
    ConvertSamples(steps.data(), expected.data(), steps.size());
    for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(rounding);
        ConvertSamples(steps.data(), out.data(), steps.size());
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(out, expected);
    }
}

TEST(SilenceTest, AddsIn64Bits) {
    EXPECT_TRUE(SumIsZero(nullptr, 0));
    // 2^17 x -32768 = -2^32, which 32 bits would take for zero
    std::vector<short> samples(1 << 17, -32768);
    EXPECT_FALSE(SumIsZero(samples.data(), samples.size()));
    samples.resize(1001);
    for (int i = 0; i < 1001; ++i) samples[static_cast<std::size_t>(i)] = static_cast<short>(60 * (i - 500));
    EXPECT_TRUE(SumIsZero(samples.data(), 1001));  // from -30000 to 30000
    EXPECT_FALSE(SumIsZero(samples.data() + 1, 1000));
}

}  // namespace
