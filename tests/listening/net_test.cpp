// The net of whole numbers: every instruction set against the plain definition, and the whole against the
// program that made its weights.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>

#include "listening/net.h"

// A net as the weights' program has it, before any frame; a detector's own begins after a long silence.
class FreshNet {
public:
    static std::unique_ptr<EarNet> Make(const NetKernels& kernels) {
        return std::unique_ptr<EarNet>(new EarNet(EarNet::Fresh{}, kernels));
    }
};

namespace {

#include "tests/listening/net_answer.inc"

class EachSet : public testing::TestWithParam<NetKernels> {};

// A layer of any size, with the largest weights and activations among them.
struct RandomLayer {
    explicit RandomLayer(unsigned seed) : random(seed) {
        for (std::int32_t i = 0; i < inputs; ++i) {
            activations.push_back(Words<std::int16_t>(2 * paddedNetBands + 2, -32768, 32767));
            rows.push_back(activations.back().data() + 2 * Below(2));  // off the alignment, too
        }
    }
    std::int32_t Below(std::uint32_t end) { return static_cast<std::int32_t>(random() % end); }
    // A quarter of them at one of the ends.
    template <typename Word>
    std::vector<Word> Words(std::int32_t count, std::int32_t least, std::int32_t most) {
        std::vector<Word> words(static_cast<std::size_t>(count));
        std::uniform_int_distribution<std::int32_t> any(least, most);
        for (Word& word : words) {
            const std::int32_t end = Below(8);
            word = static_cast<Word>(end == 0 ? least : end == 1 ? most : any(random));
        }
        return words;
    }

    std::mt19937 random;
    const std::int32_t inputs = 1 + Below(80), outputs = 4 * (1 + Below(6));
    const bool byBand = Below(2) == 0;
    const std::vector<std::int16_t> weights = Words<std::int16_t>(2 * inputs * outputs, -127, 127);
    const std::vector<std::int32_t> bias =
        Words<std::int32_t>(outputs * (byBand ? paddedNetBands : 1), -1 << 26, 1 << 26);
    const std::vector<std::int32_t> shift = Words<std::int32_t>(outputs, 1, 14);
    const std::vector<std::int16_t> scale = Words<std::int16_t>(outputs, 16384, 32767);
    std::vector<std::vector<std::int16_t>> activations;
    std::vector<const std::int16_t*> rows;
    const NetLayer layer = {weights.data(), bias.data(), shift.data(), scale.data(),
                            inputs,         outputs,     byBand,       Below(2) == 0 ? 0 : -32768};
};

struct alignas(64) Results {
    std::int16_t rows[12][2 * paddedNetBands];
    std::int32_t sums[24 * paddedNetBands];
};

std::unique_ptr<Results> Apply(const NetKernels& kernels, const RandomLayer& made) {
    auto results = std::make_unique<Results>();
    std::int16_t* out[12];
    for (int i = 0; i < 12; ++i) out[i] = results->rows[i];
    kernels.apply(made.layer, made.rows.data(), out);
    kernels.sum(made.layer, made.rows.data(), results->sums);
    return results;
}

}  // namespace

TEST_P(EachSet, GivesTheBitsOfThePlainDefinition) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const RandomLayer made(seed);
        const auto plain = Apply(PlainNetKernels(), made);
        const auto fast = Apply(GetParam(), made);
        ASSERT_EQ(std::memcmp(plain->rows, fast->rows, sizeof plain->rows), 0) << "seed " << seed;
        for (std::int32_t output = 0; output < made.outputs; ++output)  // what pads the bands may differ
            ASSERT_TRUE(std::equal(&plain->sums[output * paddedNetBands],
                                   &plain->sums[output * paddedNetBands + netBands],
                                   &fast->sums[output * paddedNetBands]))
                << "seed " << seed << ", output " << output;
    }
}

TEST_P(EachSet, AnswersAsTheProgramThatMadeTheWeights) {
    const std::unique_ptr<EarNet> net = FreshNet::Make(GetParam());
    std::uint32_t word = 1, digest = 0x811C9DC5;
    const auto below = [&word](std::uint32_t end) {
        word = (word * 1103515245 + 12345) & 0x7FFFFFFF;
        return static_cast<std::int32_t>((word >> 8) % end);
    };
    for (int frame = 0; frame < answeredFrames; ++frame) {
        std::int16_t features[2 * netBands];
        for (int band = 0; band < netBands; ++band) {
            features[2 * band] = static_cast<std::int16_t>(below(14337) - 5120);
            features[2 * band + 1] = static_cast<std::int16_t>(below(19661) - 9830);
        }
        net->Step(features);
        for (int output = 0; output < EarNet::outputs; ++output)
            for (int band = 0; band < netBands; ++band)
                digest = (digest ^
                          static_cast<std::uint32_t>(net->Get(static_cast<EarNet::Output>(output))[band])) *
                         0x01000193;
    }
    EXPECT_EQ(digest, answerDigest);
}

INSTANTIATE_TEST_SUITE_P(Sets, EachSet, testing::ValuesIn(AllNetKernels()),
                         [](const auto& set) { return std::string(set.param.name); });
