#pragma once
#include <cstdint>
#include <vector>

// The inner loops of the net of whole numbers, in the manner of engine/kernels.h: a plain definition, and
// vector forms beside it that give the same bits.
//
// Activations lie in rows of pairs: for each band two channels side by side, 16 bits each, so that one
// instruction multiplies both by their weights and adds the two products.
//
// Threads: pure functions of what they are given.

constexpr std::int32_t netBands = 84;
constexpr std::int32_t paddedNetBands =
    96;  // whole vectors of the widest kind; what lies past the bands is 0

// One layer: each output is a sum of products over all input rows, the same weights for every band.
struct NetLayer {
    const std::int16_t* weights;  // by four outputs, then input row, then output, then half of the pair
    const std::int32_t* bias;     // one an output, or paddedNetBands for each
    const std::int32_t* shift;    // of an output's sum, to the right, before it is cut to 16 bits
    const std::int16_t* scale;    // what it is multiplied by then, over 32768
    std::int32_t inputs;          // rows of pairs
    std::int32_t outputs;         // a multiple of 4
    bool biasByBand;
    std::int32_t lowest;  // what a result is cut to: 0, or the lowest number where the layer is linear
};

// One set of inner loops. rows[i] points at band 0 of input row i, and everything that an offset of the
// pointer reaches is readable.
struct NetKernels {
    const char* name;
    // Writes outputs / 2 rows of pairs, each aligned and paddedNetBands pairs long.
    void (*apply)(const NetLayer& layer, const std::int16_t* const* rows, std::int16_t* const* out);
    // The bare sums: outputs rows of paddedNetBands.
    void (*sum)(const NetLayer& layer, const std::int16_t* const* rows, std::int32_t* out);
};

const NetKernels& BestNetKernels();  // the fastest that this machine has
const NetKernels& PlainNetKernels();
// Every set that this machine has, the plain one among them, for tests and benchmarks. Not while another
// thread uses the best ones for the first time.
std::vector<NetKernels> AllNetKernels();
