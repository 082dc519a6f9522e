// The net of whole numbers: every instruction set against the plain definition, and the whole against the
// program that made its weights.
#include <gtest/gtest.h>

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
        inputs = 1 + Below(80);
        outputs = 4 * (1 + Below(6));
        byBand = Below(2) == 0;
        weights = Words<std::int16_t>(2 * inputs * outputs, -127, 127);
        bias = Words<std::int32_t>(outputs * (byBand ? paddedNetBands : 1), -1 << 26, 1 << 26);
        shift = Words<std::int32_t>(outputs, 1, 14);
        scale = Words<std::int16_t>(outputs, 16384, 32767);
        for (std::int32_t i = 0; i < inputs; ++i) {
            activations.push_back(Words<std::int16_t>(2 * paddedNetBands + 2, -32768, 32767));
            rows.push_back(activations.back().data() + 2 * Below(2));  // off the alignment, too
        }
    }
    NetLayer Layer() {
        return {weights.data(), bias.data(), shift.data(), scale.data(),
                inputs,         outputs,     byBand,       Below(2) == 0 ? 0 : -32768};
    }

    std::int32_t Below(std::uint32_t end) { return static_cast<std::int32_t>(random() % end); }
    // A quarter of them at one of the ends.
    template <typename Word>
    std::vector<Word> Words(std::int32_t count, std::int32_t least, std::int32_t most) {
        std::uniform_int_distribution<std::int32_t> any(least, most);
        std::vector<Word> words;
        for (std::int32_t i = 0; i < count; ++i) {
            const std::int32_t end = Below(8);
            words.push_back(static_cast<Word>(end == 0 ? least : end == 1 ? most : any(random)));
        }
        return words;
    }

    std::mt19937 random;
    std::int32_t inputs = 0, outputs = 0;
    bool byBand = false;
    std::vector<std::int16_t> weights, scale;
    std::vector<std::int32_t> bias, shift;
    std::vector<std::vector<std::int16_t>> activations;
    std::vector<const std::int16_t*> rows;
};

struct alignas(64) Results {
    std::int16_t rows[12][2 * paddedNetBands];
    std::int32_t sums[24 * paddedNetBands];
};

std::unique_ptr<Results> Apply(const NetKernels& kernels, const NetLayer& layer,
                               const std::int16_t* const* rows) {
    auto results = std::make_unique<Results>();
    std::int16_t* out[12];
    for (int i = 0; i < 12; ++i) out[i] = results->rows[i];
    kernels.apply(layer, rows, out);
    kernels.sum(layer, rows, results->sums);
    return results;
}

}  // namespace

TEST_P(EachSet, GivesTheBitsOfThePlainDefinition) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        RandomLayer made(seed);
        const NetLayer layer = made.Layer();
        const auto plain = Apply(PlainNetKernels(), layer, made.rows.data());
        const auto fast = Apply(GetParam(), layer, made.rows.data());
        ASSERT_EQ(std::memcmp(plain->rows, fast->rows, sizeof plain->rows), 0) << "seed " << seed;
        for (std::int32_t output = 0; output < layer.outputs; ++output)
            for (std::int32_t band = 0; band < netBands; ++band)
                ASSERT_EQ(plain->sums[output * paddedNetBands + band],
                          fast->sums[output * paddedNetBands + band])
                    << "seed " << seed << ", output " << output << ", band " << band;
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
