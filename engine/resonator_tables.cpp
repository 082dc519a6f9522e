// What the detector computes before the first sample, or when a setting changes: rates, tables, thresholds.
// All of it in the detector's own arithmetic, so that it is the same whatever rounding the host is in.
#include <algorithm>
#include <cmath>
#include <limits>

#include "base/float_environment.h"
#include "base/truncate.h"
#include "engine/real_time_detector.h"

namespace {

constexpr double lnSemitone = 0.057762265046662;     // ln 2 / 12
constexpr double coshSemitoneSq = 1.0033401916124;   // cosh(ln 2 / 12) squared
constexpr double omegaOf440 = 2764.601535159024;     // 2 pi x 440
constexpr double gainUnit = 6.103888176768602e-05;   // 1 / 16383
constexpr double sampleMagnitude = 32767;            // the weights are sized for samples up to this
constexpr double accumulatorMagnitude = 2147483647;  // and for sums up to this
constexpr float semitoneWidth = 0.059463F;           // 2^(1/12) - 1
constexpr float dBToExponent = 0.2302609F;  // near ln 10 / 10; the decision levels rest on this figure

}  // namespace

void TRealTimeTS107::SetSampleRate(std::int32_t rate) {
    sampleRate = rate;
    RateSetUp();
    Reset();
}

void TRealTimeTS107::RateSetUp() {
    const FlushToZero arithmetic;
    blockLength = std::max<std::int32_t>(sampleRate / 4000, 2);
    frameLength = sampleRate / 100;
    const auto rate = static_cast<float>(sampleRate);
    const auto block = static_cast<float>(blockLength);
    const auto frame = static_cast<float>(frameLength);
    blockDecay = 0.01F / (block / rate + 0.01F);
    frameDecay = 0.2F / (frame / rate + 0.2F);
    // A frame without samples, below 100 Hz, makes it infinite.
    tuneSeed = frameLength > 0 ? 1.0F / (1.0F - frameDecay) : std::numeric_limits<float>::infinity();
    refOmega = omegaOf440 / sampleRate;
    dipFactor = frame * 0.00013911664F * frame * static_cast<float>(refOmega);
    gainScale = std::sqrt(1.0 - static_cast<double>(blockDecay)) * gainUnit;
    for (std::int32_t i = 0; i < numBands; ++i) SetBandGain(i, 1.0F);
    const auto taps = static_cast<std::size_t>(blockLength - 1);
    const auto stride = static_cast<std::size_t>(bandStride);
    const std::size_t rows = (static_cast<std::size_t>(blockLength) + 1) / 2;
    for (TAutoArray<std::int32_t>* array : {&tapsRe, &tapsIm}) {
        array->Resize(taps * stride);
        std::fill_n(array->Data(), taps * stride, 0);
    }
    for (TAutoArray<std::int16_t>* array : {&pairsRe, &pairsIm}) {
        array->Resize(2 * rows * stride);
        std::fill_n(array->Data(), 2 * rows * stride, std::int16_t{0});
    }
    // A frame, or one block below 100 Hz, behind the rest of a block; and one sample for the vector form,
    // which reads pairs.
    keptCapacity = std::max(frameLength.load(), blockLength) + blockLength;
    kept.Resize(static_cast<std::size_t>(keptCapacity) + 1);
    std::fill_n(kept.Data(), keptCapacity + 1, short{0});
    tapPowersRe.Resize(taps);
    tapPowersIm.Resize(taps);
    BuildResonators();
    UpdatePeakRatio();
}

// The pole lies where the response one semitone above the band equals that one semitone below it; the gain
// makes a resonator read 2 x amplitude / 32767 for a sine on its centre.
void TRealTimeTS107::BuildResonators() {
    const FlushToZero arithmetic;
    const double r = bandwidth;
    const double q = bandwidth * bandwidth;  // squared in single precision
    const double m0 = 2 * std::sqrt(q + coshSemitoneSq) - (q + 1);
    const double w = std::sqrt(m0);  // the pole's angle as a multiple of the band's frequency
    const double m = m0 + q;
    const double g = std::sqrt(((m + 1) - 2 * w) * ((m + 1) + 2 * w)) * gainScale / w;
    const double ga = g * w / m;
    const double gb = r * g / m;
    for (std::int32_t i = 0; i < numBands; ++i) BuildBand(i, w, m, g, ga, gb);
    PackPairs();
}

// The weights once more in 16 bits, where all of them fit: from 22.05 kHz upward, as a rule.
void TRealTimeTS107::PackPairs() {
    pairsFit = true;
    const auto pack = [this](TAutoArray<std::int16_t>& pairs, std::int32_t position, std::int32_t band,
                             std::int32_t weight) {
        const std::ptrdiff_t row = position / 2;
        const auto narrow = static_cast<std::int16_t>(weight);
        pairsFit = pairsFit && narrow == weight;
        pairs[2 * (row * bandStride + band) + position % 2] = narrow;
    };
    for (std::int32_t band = 0; band < numBands; ++band) {
        for (std::int32_t position = 0; position < blockLength - 1; ++position) {
            const std::ptrdiff_t at =
                static_cast<std::ptrdiff_t>(blockLength - position - 2) * bandStride + band;
            pack(pairsRe, position, band, tapsRe[at]);
            pack(pairsIm, position, band, tapsIm[at]);
        }
        pack(pairsRe, blockLength - 1, band, tapZero[band]);
    }
}

void TRealTimeTS107::BuildBand(std::int32_t band, double w, double m, double g, double ga, double gb) {
    const std::int32_t i = band;
    const double r = bandwidth;
    const double omega = std::exp((band - referenceBand + static_cast<double>(tune)) * lnSemitone) * refOmega;
    dipScale[i] = static_cast<float>(omega) * dipFactor;

    const double rho = std::exp(-r * omega);
    const double P = rho * std::cos(omega * w);  // the pole, (P, Q)
    const double Q = rho * std::sin(omega * w);

    // The powers of the pole; at the end of the run the recursion stands at the power blockLength, (C, S).
    double C = P;
    double S = Q;
    double sumRe = 1;
    double sumIm = 0;
    const std::int32_t taps = blockLength - 1;
    for (std::int32_t k = 0; k < taps; ++k) {
        tapPowersRe[k] = C;
        tapPowersIm[k] = S;
        sumRe += std::abs(C);
        sumIm += std::abs(S);
        const double next = C * P - S * Q;
        S = C * Q + S * P;
        C = next;
    }

    // As large as may be while a block of samples of full magnitude cannot overflow an accumulator.
    const double scaleRe = accumulatorMagnitude / (sampleMagnitude * sumRe);
    const double scaleIm = accumulatorMagnitude / (sampleMagnitude * sumIm);
    tapZero[i] = TruncateToInt32(scaleRe);
    for (std::int32_t k = 0; k < taps; ++k) {
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(k) * bandStride + i;
        tapsRe[at] = TruncateToInt32(scaleRe * tapPowersRe[k]);
        tapsIm[at] = TruncateToInt32(scaleIm * tapPowersIm[k]);
    }

    const double s = S / w;
    feedAA[i] = static_cast<float>(C - r * s);
    feedAB[i] = static_cast<float>(-(s * m));
    feedBA[i] = static_cast<float>(s);
    feedBB[i] = static_cast<float>(C + r * s);

    const double u = 1 - P;
    inputAR[i] = static_cast<float>(Q * g / scaleRe);
    inputAI[i] = static_cast<float>(-(u * g / scaleIm));
    inputBR[i] = static_cast<float>((u * ga - Q * gb) / scaleRe);
    inputBI[i] = static_cast<float>((Q * ga + u * gb) / scaleIm);
}

// e is the amplitude that a resonator shows for a pure tone one semitone away from it.
void TRealTimeTS107::UpdatePeakRatio() {
    const FlushToZero arithmetic;
    const float detuning = semitoneWidth / bandwidth;
    const float e = 1.0F / std::sqrt(detuning * detuning + 1.0F);
    const float v = e + (1.0F - e) * peakSlack;
    peakRatio = 2.0F * v * v;
}

void TRealTimeTS107::SetBandwidth(float ratio) {
    SettleAccumulators();
    bandwidth = ratio;
    UpdatePeakRatio();
    BuildResonators();
}

void TRealTimeTS107::SetBandwidthAndTune(float ratio, float semitones) {
    SettleAccumulators();
    bandwidth = ratio;
    UpdatePeakRatio();
    tune = semitones;
    BuildResonators();
}

void TRealTimeTS107::SetFloorDb(float dB) {
    const FlushToZero arithmetic;
    floorDb = dB;
    const float power = std::exp(dB * dBToExponent);
    floorPower = power;
    floorAmp = std::sqrt(power);
}

void TRealTimeTS107::SetRelativeThreshold(float ratio) {
    const FlushToZero arithmetic;
    relativeThreshold = ratio;
    relativeThresholdSq = ratio * ratio;
}

// The picture of a tone exactly on a band.
void TRealTimeTS107::SeedTuning() {
    const FlushToZero arithmetic;
    tuneCentre = tuneSeed;
    tuneLeft = tuneRight = tuneSeed * 0.5F * peakRatio;
}

// Follows a player who is not at 440 Hz: a tone sharp of its band leans to the right, and the whole bank
// moves a little towards it. Past three quarters of a semitone the grid snaps a whole semitone back.
void TRealTimeTS107::TrackTuning() {
    float left = 0;
    float centre = 0;
    float right = 0;
    for (std::int32_t j = 1; j < numBands - 1; ++j) {
        if (!peakNow[j]) continue;
        left += energy[j - 1];
        centre += energy[j];
        right += energy[j + 1];
    }
    if (centre == 0.0F) return;
    tuneLeft = frameDecay * tuneLeft + left;
    tuneCentre = frameDecay * tuneCentre + centre;
    tuneRight = frameDecay * tuneRight + right;

    const float k = 1.0F / tuneCentre;
    const float lean = std::sqrt(tuneRight * k) - std::sqrt(tuneLeft * k);
    float moved = lean * 0.02F + tune;
    if (lean < -0.01F) {
        if (moved < -0.75F) moved += 1.0F;
    } else if (lean > 0.01F) {
        if (moved > 0.75F) moved -= 1.0F;
    } else {
        return;
    }
    tune = moved;
    SettleAccumulators();
    BuildResonators();
}
