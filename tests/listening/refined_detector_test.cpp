// The net of whole numbers against its plain definition and the program that made its weights; levels; and
// the picker, frame by frame, against a simpler model that sees all of a band's outputs at once.
#include "listening/refined_detector.h"

#include "tests/support/test.h"

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

using Frames = std::vector<int>;
using Notes = std::vector<std::pair<int, int>>;  // begin and end, in frames; what ends later ends here:
constexpr int lastEnd = 380;

// The notes of one band from all of its outputs at once: an onset where the output rises through 0, five
// frames apart at least; an end at the first two frames without sound, or a frame before the next onset.
Notes PickWhole(const Frames& onset, const Frames& sounding, int onsetBack, int soundingBack) {
    Frames begins;
    for (std::size_t t = 1; t < onset.size(); ++t)
        if (onset[t] >= 0 && onset[t - 1] < 0 && (begins.empty() || static_cast<int>(t) - begins.back() >= 5))
            begins.push_back(static_cast<int>(t));
    Notes notes;
    for (std::size_t i = 0; i < begins.size(); ++i) {
        const int last = i + 1 < begins.size() ? begins[i + 1] - 1 - onsetBack : lastEnd;
        int t = std::max(begins[i], begins[i] - onsetBack + soundingBack + 4), without = 0;
        for (; t < static_cast<int>(sounding.size()) && without < 2; ++t)
            without = sounding[static_cast<std::size_t>(t)] >= 0 ? 0 : without + 1;
        const int end = without == 2 ? t - 2 - soundingBack : lastEnd;
        notes.emplace_back(begins[i] - onsetBack, std::min({end, last, lastEnd}));
    }
    return notes;
}

Notes PickByFrames(const Frames& onset, const Frames& sounding, int onsetBack, int soundingBack) {
    constexpr int band = 40;
    NotePicker picker(onsetBack, soundingBack);
    std::vector<std::int32_t> onsets(netBands, -1), sounds(netBands, -1), thresholds(netBands, 0);
    Notes notes;
    bool on = false;
    for (std::size_t t = 0; t < onset.size(); ++t) {
        onsets[band] = onset[t], sounds[band] = sounding[t];
        picker.Step(onsets.data(), thresholds.data(), sounds.data(), 0);
        if (picker.IsOn(band) == on) continue;
        const int frame = static_cast<int>(t) - picker.FramesBack(band);
        if (on = !on; on)
            notes.emplace_back(frame, lastEnd);
        else
            notes.back().second = std::min(frame, lastEnd);
    }
    return notes;
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

TEST(RefinedEar, LevelsAreLogarithmsToAThousandthOfADecibel) {
    for (int step = 0; step < 15900; ++step) {
        const float power = std::pow(10.0F, static_cast<float>(step) / 1000 - 13.95F);
        ASSERT_NEAR(LevelOf(power) / stepsPerDb, 10 * std::log10(static_cast<double>(power)), 0.001);
    }
    for (const float silent : {0.0F, 1e-30F, std::nanf("")})
        EXPECT_NEAR(LevelOf(silent) / stepsPerDb, -140, 0.001);
}

TEST(RefinedEar, PickingByFramesFindsTheNotesOfPickingInTheWhole) {
    std::mt19937 random(1);
    for (const int back : {5, 8})
        for (int run = 0; run < 300; ++run) {
            Frames onset, sounding;
            int o = -1, s = -1;
            for (int t = 0; t < 400; ++t) {
                if (t < 390 && random() % 7 == 0) o = -1 - o;
                if (random() % (1 + static_cast<unsigned>(run) % 40) == 0) s = -1 - s;
                onset.push_back(t == 0 ? -1 : o);
                sounding.push_back(s);
            }
            ASSERT_EQ(PickByFrames(onset, sounding, back, 4), PickWhole(onset, sounding, back, 4)) << run;
        }
}
