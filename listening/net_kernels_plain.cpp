// The definitions of the net's loops: one output and one band after the other.
#include <algorithm>
#include <limits>

#include "listening/net_kernels.h"

namespace {

std::int32_t SumOf(const NetLayer& layer, const std::int16_t* const* rows, std::int32_t output,
                   std::int32_t band) {
    std::int32_t sum = layer.bias[layer.biasByBand ? output * paddedNetBands + band : output];
    const std::int16_t* const weights =
        layer.weights + std::ptrdiff_t{2} * (output / 4 * layer.inputs * 4 + output % 4);
    for (std::int32_t i = 0; i < layer.inputs; ++i)
        for (std::int32_t half = 0; half < 2; ++half) sum += weights[8 * i + half] * rows[i][2 * band + half];
    return sum;
}

void Sum(const NetLayer& layer, const std::int16_t* const* rows, std::int32_t* out) {
    for (std::int32_t output = 0; output < layer.outputs; ++output)
        for (std::int32_t band = 0; band < netBands; ++band)
            out[output * paddedNetBands + band] = SumOf(layer, rows, output, band);
}

void Apply(const NetLayer& layer, const std::int16_t* const* rows, std::int16_t* const* out) {
    constexpr std::int32_t highest = std::numeric_limits<std::int16_t>::max();
    for (std::int32_t output = 0; output < layer.outputs; ++output)
        for (std::int32_t band = 0; band < netBands; ++band) {
            const std::int32_t shifted = SumOf(layer, rows, output, band) >> layer.shift[output];
            const std::int32_t cut = std::clamp(shifted, layer.lowest, highest);
            out[output / 2][2 * band + output % 2] =
                static_cast<std::int16_t>((cut * layer.scale[output] + 0x4000) >> 15);
        }
    for (std::int32_t pair = 0; pair < layer.outputs / 2; ++pair)
        std::fill(out[pair] + std::ptrdiff_t{2} * netBands, out[pair] + std::ptrdiff_t{2} * paddedNetBands,
                  std::int16_t{0});
}

}  // namespace

const NetKernels& PlainNetKernels() {
    static constexpr NetKernels plain = {"PLAIN", Apply, Sum};
    return plain;
}
