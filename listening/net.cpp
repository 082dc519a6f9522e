#include "listening/net.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "listening/features.h"

namespace {

#include "listening/net_weights.inc"

constexpr std::int32_t linear = -32768;

// clang-format off
constexpr std::int32_t inputsA = 15, inputsB = 6 * std::size(offsetsB), inputsC = 4 * 12, inputsD = 4 * 8,
                       inputsE = 6, inputsF = 2 * std::size(offsetsF) + 6, inputsG = 3 * 6, inputsO = 6;
constexpr NetLayer layerA = {weightsA, biasA, shiftA, scaleA, inputsA, 12, false, 0};
constexpr NetLayer layerB = {weightsB, biasB, shiftB, scaleB, inputsB, 24, true,  0};
constexpr NetLayer layerC = {weightsC, biasC, shiftC, scaleC, inputsC, 16, false, 0};
constexpr NetLayer layerD = {weightsD, biasD, shiftD, scaleD, inputsD, 12, true,  0};
constexpr NetLayer layerE = {weightsE, biasE, shiftE, scaleE, inputsE,  4, false, linear};
constexpr NetLayer layerF = {weightsF, biasF, shiftF, scaleF, inputsF, 12, false, 0};
constexpr NetLayer layerG = {weightsG, biasG, shiftG, scaleG, inputsG, 12, false, 0};
constexpr NetLayer layerO = {weightsO, biasO, nullptr, nullptr, inputsO, 4, false, linear};
// clang-format on
static_assert(std::size(weightsA) == std::size_t{2} * inputsA * 12 &&
              std::size(weightsB) == std::size_t{2} * inputsB * 24 &&
              std::size(weightsC) == std::size_t{2} * inputsC * 16 &&
              std::size(weightsD) == std::size_t{2} * inputsD * 12 &&
              std::size(weightsE) == std::size_t{2} * inputsE * 4 &&
              std::size(weightsF) == std::size_t{2} * inputsF * 12 &&
              std::size(weightsG) == std::size_t{2} * inputsG * 12 &&
              std::size(weightsO) == std::size_t{2} * inputsO * 4);

// The input rows of a layer, gathered one after the other.
struct Inputs {
    const std::int16_t* rows[std::max({inputsA, inputsB, inputsC, inputsD, inputsF, inputsG})];
    std::size_t count = 0;

    template <typename Rows>
    void Add(const Rows& all, std::int32_t offset = 0) {
        for (const auto& row : all) rows[count++] = row.At(offset);
    }
};

// Where a layer's results go.
template <std::size_t count>
struct Outputs {
    std::int16_t* rows[count];
    template <typename Rows>
    explicit Outputs(Rows& all) {
        for (std::size_t i = 0; i < count; ++i) rows[i] = all[i].At();
    }
};
template <typename Rows>
Outputs(Rows& all) -> Outputs<std::tuple_size_v<Rows>>;

}  // namespace

EarNet::EarNet(const NetKernels& newKernels) : kernels(newKernels) {
    Reset();
}

// A feature of silence is the same in every frame, and so is all that comes of it once it fills the rings.
const EarNet::History& EarNet::AfterSilence() {
    static const History settled = [] {
        constexpr int framesToSettle = 32;  // the net looks back over 22
        const std::unique_ptr<EarNet> net(new EarNet(Fresh{}, BestNetKernels()));  // too large for a stack
        EarFeatures features;
        const float silence[netBands] = {};
        for (int frame = 0; frame < framesToSettle; ++frame) net->Step(features.Step(silence));
        return net->past;
    }();
    return settled;
}

void EarNet::Reset() {
    past = AfterSilence();
    std::fill(std::begin(sums), std::end(sums), 0);
}

void EarNet::Step(const std::int16_t* features) {
    const std::uint32_t now = past.frame++;
    const auto in = [now](auto& ring, std::uint32_t framesAgo) -> auto& {
        return ring[(now - framesAgo) % ring.size()];
    };
    std::copy_n(features, 2 * netBands, in(past.x, 0).At());

    Inputs x;
    for (std::uint32_t ago = 5; ago-- > 0;)
        for (std::int32_t offset = -1; offset <= 1; ++offset) x.rows[x.count++] = in(past.x, ago).At(offset);
    kernels.apply(layerA, x.rows, Outputs(a).rows);

    Inputs partials;
    for (const std::int32_t offset : offsetsB) partials.Add(a, offset);
    kernels.apply(layerB, partials.rows, Outputs(in(past.b, 0)).rows);

    Inputs begins;
    for (std::uint32_t ago = 4; ago-- > 0;) begins.Add(in(past.b, ago));
    kernels.apply(layerC, begins.rows, Outputs(in(past.c, 0)).rows);

    Inputs course;
    for (std::uint32_t ago = 4; ago-- > 0;) course.Add(in(past.c, 4 * ago));
    kernels.apply(layerD, course.rows, Outputs(d).rows);

    Inputs pitch;
    pitch.Add(d);
    kernels.apply(layerE, pitch.rows, Outputs(e).rows);

    Inputs others;
    for (const std::int32_t offset : offsetsF) others.Add(e, offset);
    others.Add(d);
    kernels.apply(layerF, others.rows, Outputs(in(past.f, 0)).rows);

    Inputs recent;
    for (std::uint32_t ago = 3; ago-- > 0;) recent.Add(in(past.f, ago));
    kernels.apply(layerG, recent.rows, Outputs(g).rows);

    Inputs last;
    last.Add(g);
    kernels.sum(layerO, last.rows, sums);
}

std::int32_t EarNet::UnitsPerLogit(Output output) {
    return unitsPerLogit[output];
}
std::int32_t EarNet::Threshold(Output output) {
    return thresholdOf[output];
}
