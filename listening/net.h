#pragma once
#include <array>
#include <cstdint>

#include "listening/net_kernels.h"

// The trained net, frame by frame: from two features a band to four outputs a band, in whole numbers alone.
//
//   layer  looks at                                        outputs
//   A      features of 5 frames, 3 neighbouring bands      12
//   B      A at the partials above and below the band      24
//   C      B in 4 frames                                   16
//   D      C in 4 frames, 4 apart                          12
//   E      D                                               4
//   F      E at related pitches, and D                     12
//   G      F in 3 frames                                   12
//   O      G                                               the outputs below
//
// Weights are shared by all nets and read only. Memory: all of it in the object, about 100 KiB.
// Threads: as its owner; no operation allocates.
class EarNet {
public:
    // Outputs are logits in units of their own; see UnitsPerLogit.
    enum Output { onset30, onset50, onset80, sounding40, outputs };  // ms that each looks back
    static constexpr std::int32_t framesBack[outputs] = {3, 5, 8, 4};

    explicit EarNet(const NetKernels& newKernels = BestNetKernels());
    void Reset();  // as after a long silence

    // One frame. features: netBands pairs, from EarFeatures.
    void Step(const std::int16_t* features);
    const std::int32_t* Get(Output output) const { return sums + output * paddedNetBands; }

    static std::int32_t UnitsPerLogit(Output output);
    static std::int32_t Threshold(Output output);  // in the output's units, as found with the weights

private:
    static constexpr std::size_t channelsA = 12, channelsB = 24, channelsC = 16, channelsD = 12,
                                 channelsE = 4, channelsF = 12, channelsG = 12;
    // Rows of pairs. A wide one has zeros on both sides, as far as an offset reaches.
    static constexpr std::int32_t margin = 48;
    struct alignas(64) Row {
        std::int16_t v[2 * paddedNetBands] = {};
        std::int16_t* At() { return v; }
        const std::int16_t* At(std::int32_t band) const { return v + 2 * band; }
    };
    struct alignas(64) WideRow {
        std::int16_t v[2 * (margin + paddedNetBands + margin)] = {};
        std::int16_t* At() { return v + std::ptrdiff_t{2} * margin; }
        const std::int16_t* At(std::int32_t band) const { return v + 2 * (margin + band); }
    };
    // What earlier frames left, in rings; powers of two at least as long as a layer looks back.
    struct History {
        std::array<WideRow, 8> x;
        std::array<std::array<Row, channelsB / 2>, 4> b;
        std::array<std::array<Row, channelsC / 2>, 16> c;
        std::array<std::array<Row, channelsF / 2>, 4> f;
        std::uint32_t frame = 0;
    };
    static const History& AfterSilence();
    struct Fresh {};
    EarNet(Fresh, const NetKernels& newKernels) : kernels(newKernels) {}  // nothing heard, not even silence

    const NetKernels kernels;
    History past;
    std::array<WideRow, channelsA / 2> a;
    std::array<Row, channelsD / 2> d;
    std::array<WideRow, channelsE / 2> e;
    std::array<Row, channelsG / 2> g;
    alignas(64) std::int32_t sums[outputs * paddedNetBands] = {};

    friend class FreshNet;  // of the tests
};
