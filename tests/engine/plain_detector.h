#pragma once
#include <complex>

#include "base/float_environment.h"
#include "tests/support/standard.h"

// The detector once more in its simplest form, to be compared with TRealTimeTS107 bit for bit: band-major
// tables, one sample at a time, one band at a time, each formula written out where it is used. Fields and
// operations bear the detector's names and mean the same.
//
// Threads: one at a time.
class PlainDetector {
public:
    template <typename Value>
    struct PerBand {
        Value& operator[](std::ptrdiff_t band) { return values[static_cast<std::size_t>(band)]; }
        const Value& operator[](std::ptrdiff_t band) const { return values[static_cast<std::size_t>(band)]; }
        std::vector<Value> values = std::vector<Value>(128);
    };
    using Floats = PerBand<float>;
    using Flags = PerBand<char>;  // 0 or 1
    using Words = PerBand<std::int32_t>;

    PlainDetector(std::int32_t rate, std::int32_t reference, std::int32_t bands)
        : numBands(bands < 49 ? 49 : bands), referenceBand(reference) {
        SetHarmonics(1000, 750, 500, 250);
        SetFloorDb(-1000);
        peakLevel = floorAmp;
        SetRelativeThreshold(0.2F);
        SetSampleRate(rate);
    }

    void Process(const short* samples, unsigned bytes) {
        const FlushToZero arithmetic;
        for (unsigned index = 0; index < bytes / 2; ++index) ProcessSample(samples[index]);
    }

    void Reset() {
        frameCountdown = frameLength;
        blockCountdown = blockLength;
        energyPrev1 = energyPrev2 = separated = eqAmplitude = amplitude = energy = stateA = stateB = {};
        accRe = accIm = {};
        peakNow = peakOld = peakOlder = noteOn = {};
        SeedTuning();
    }

    void SetSampleRate(std::int32_t sampleRate) {
        const auto rate = static_cast<float>(sampleRate);
        blockLength = sampleRate / 4000 < 2 ? 2 : sampleRate / 4000;
        frameLength = sampleRate / 100;
        const auto frame = static_cast<float>(frameLength);
        blockDecay = 0.01F / (static_cast<float>(blockLength) / rate + 0.01F);
        frameDecay = 0.2F / (frame / rate + 0.2F);
        refOmega = 2764.601535159024 / sampleRate;
        dipFactor = frame * 0.00013911664F * frame * static_cast<float>(refOmega);
        gainScale = std::sqrt(1.0 - static_cast<double>(blockDecay)) * 6.103888176768602e-05;
        for (std::int32_t i = 0; i < numBands; ++i) SetBandGain(i, 1);
        BuildResonators();
        UpdatePeakRatio();
        Reset();
    }

    void SetBandwidthAndTune(float ratio, float semitones) {
        bandwidth = ratio;
        UpdatePeakRatio();
        tune = semitones;
        BuildResonators();
    }

    void SetHarmonics(std::int32_t base, std::int32_t second, std::int32_t third, std::int32_t fourth) {
        const auto ratio = [base](std::int32_t h) {
            return static_cast<float>(h < 0 ? 0 : h) / static_cast<float>(base < 1 ? 1 : base);
        };
        h2 = ratio(second), h3 = ratio(third), h4 = ratio(fourth);
        a = h2 * h2, b = h3 * h3, c = h4 * h4;
        d2 = 1 / (1 + a * a), d3 = 1 / (1 + a * a + b * b), d4 = 1 / (1 + a * a + b * b + c * c);
        x5 = b * c, x7 = a * b, x12 = (1 + c) * a;
    }

    void SetFloorDb(float dB) {
        floorPower = std::exp(dB * 0.2302609F);
        floorAmp = std::sqrt(floorPower);
    }

    void SetRelativeThreshold(float ratio) { relativeThresholdSq = ratio * ratio; }

    void SetTuningEnabled(bool enabled) {
        if (enabled && !tuningEnabled) SeedTuning();
        tuningEnabled = enabled;
    }

    void SetMonoEnabled(bool enabled) {
        if (enabled) energyPrev1 = energyPrev2 = {};
        monoEnabled = enabled;
    }

    void SetEqualizerEnabled(bool enabled) { equalizerEnabled = enabled; }

    void SetBandGain(std::int32_t band, float gain) {
        eqGain[band] = gain;
        eqGainSq[band] = gain * gain;
    }

    // The sums of the running block, which the detector keeps as samples and folds later.
    void FoldedSoFar(std::int32_t* re, std::int32_t* im) const {
        std::copy_n(accRe.values.data(), numBands, re);
        std::copy_n(accIm.values.data(), numBands, im);
    }

    std::int32_t numBands, referenceBand, blockLength = 0, frameLength = 0;
    Floats stateA, stateB, feedAA, feedAB, feedBA, feedBB, inputAR, inputAI, inputBR, inputBI;
    Words accRe, accIm;
    PerBand<std::vector<std::int32_t>> tapsRe, tapsIm;  // [k]: of the sample k before the block's newest
    Flags rising, peakOlder, peakOld, peakNow, noteOn;
    Floats dipScale, energyPrev2, energyPrev1;
    float dipFactor = 0;
    bool tuningEnabled = true, harmonicsEnabled = true, equalizerEnabled = false, monoEnabled = false;
    bool retriggerEnabled = true;
    float peakSlack = 0.5F, relativeThresholdSq = 0, peakLevel = 0;
    float tuneLeft = 0, tuneCentre = 0, tuneRight = 0;
    float bandwidth = 0.02F, tune = 0;
    Floats energy, amplitude, eqAmplitude, separated;
    Floats eqGain, eqGainSq, levelCap, rhs;
    std::int32_t blockCountdown = 0, frameCountdown = 0;
    float blockDecay = 0, frameDecay = 0;
    double refOmega = 0, gainScale = 0;
    float peakRatio = 0, threshold = 0, floorAmp = 0, floorPower = 0;

private:
    float h2 = 0, h3 = 0, h4 = 0;   // amplitudes of a note's partials
    float a = 0, b = 0, c = 0;      // and their powers
    float d2 = 0, d3 = 0, d4 = 0;   // of the fit, by how many partials lie within the spectrum
    float x5 = 0, x7 = 0, x12 = 0;  // overlaps of two notes so many bands apart

    void BuildResonators() {
        const double r = bandwidth, t = tune, q = bandwidth * bandwidth;  // q: squared in single precision
        const double m0 = 2 * std::sqrt(q + 1.0033401916124) - (q + 1);
        const double w = std::sqrt(m0), m = m0 + q;
        const double g = std::sqrt(((m + 1) - 2 * w) * ((m + 1) + 2 * w)) * gainScale / w;
        const double ga = g * w / m, gb = r * g / m;
        for (std::int32_t i = 0; i < numBands; ++i) {
            const double omega = std::exp((i - referenceBand + t) * 0.057762265046662) * refOmega;
            dipScale[i] = static_cast<float>(omega) * dipFactor;
            const std::complex<double> pole = std::polar(std::exp(-r * omega), omega * w);
            std::vector<std::complex<double>> powers = {1};
            double sumRe = 0, sumIm = 0;
            for (std::int32_t k = 0; k < blockLength; ++k) {
                sumRe += std::fabs(powers.back().real());
                sumIm += std::fabs(powers.back().imag());
                powers.push_back(k == 0 ? pole : powers.back() * pole);
            }
            const double re = powers.back().real(), im = powers.back().imag();
            const double p = pole.real(), pIm = pole.imag();
            const double scaleRe = 2147483647 / (32767 * sumRe), scaleIm = 2147483647 / (32767 * sumIm);
            tapsRe[i].clear(), tapsIm[i].clear();
            for (const std::complex<double>& power : powers) {
                tapsRe[i].push_back(static_cast<std::int32_t>(scaleRe * power.real()));
                tapsIm[i].push_back(static_cast<std::int32_t>(scaleIm * power.imag()));
            }
            const double s = im / w, u = 1 - p;
            feedAA[i] = static_cast<float>(re - r * s);
            feedAB[i] = static_cast<float>(-(s * m));
            feedBA[i] = static_cast<float>(s);
            feedBB[i] = static_cast<float>(re + r * s);
            inputAR[i] = static_cast<float>(pIm * g / scaleRe);
            inputAI[i] = static_cast<float>(-(u * g / scaleIm));
            inputBR[i] = static_cast<float>((u * ga - pIm * gb) / scaleRe);
            inputBI[i] = static_cast<float>((pIm * ga + u * gb) / scaleIm);
        }
    }

    void UpdatePeakRatio() {
        const float semitone = 0.059463F / bandwidth;
        const float e = 1 / std::sqrt(semitone * semitone + 1);
        const float v = e + (1 - e) * peakSlack;
        peakRatio = 2 * v * v;
    }

    void SeedTuning() {
        tuneCentre = frameDecay < 1 ? 1 / (1 - frameDecay) : std::numeric_limits<float>::infinity();
        tuneLeft = tuneRight = tuneCentre * 0.5F * peakRatio;
    }

    static void AddProduct(std::int32_t& sum, std::int32_t weight, std::int32_t x) {  // wraps at 32 bits
        sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) +
                                        static_cast<std::uint32_t>(weight) * static_cast<std::uint32_t>(x));
    }

    void ProcessSample(std::int32_t x) {
        const auto tap = static_cast<std::size_t>(--blockCountdown);
        for (std::int32_t i = 0; i < numBands; ++i) {
            AddProduct(accRe[i], tapsRe[i][tap], x);
            AddProduct(accIm[i], tapsIm[i][tap], x);
        }
        if (tap == 0) {
            for (std::int32_t i = 0; i < numBands; ++i) {
                const auto re = static_cast<float>(accRe[i]), im = static_cast<float>(accIm[i]);
                const float oldA = stateA[i], oldB = stateB[i];
                stateA[i] = oldA * feedAA[i] + oldB * feedAB[i] + re * inputAR[i] + im * inputAI[i];
                stateB[i] = oldA * feedBA[i] + oldB * feedBB[i] + re * inputBR[i] + im * inputBI[i];
                accRe[i] = accIm[i] = 0;
                energy[i] = energy[i] * blockDecay + stateA[i] * stateA[i] + stateB[i] * stateB[i];
            }
            blockCountdown = blockLength;
        }
        if (--frameCountdown != 0) return;
        FindPeaks();
        if (tuningEnabled) TrackTuning();
        SeparateHarmonics();
        DecideNotes();
    }

    void FindPeaks() {
        rising[1] = energy[0] < energy[1];
        for (std::int32_t i = 2; i < numBands; ++i) {
            const std::int32_t j = i - 1;
            peakOlder[j] = peakOld[j];
            peakOld[j] = peakNow[j];
            rising[i] = energy[i - 1] < energy[i];
            peakNow[j] =
                !rising[i] && rising[i - 1] && (energy[j - 1] + energy[j + 1]) < energy[j] * peakRatio;
        }
    }

    void TrackTuning() {
        float left = 0, centre = 0, right = 0;
        for (std::int32_t j = 1; j < numBands - 1; ++j) {
            if (!peakNow[j]) continue;
            left += energy[j - 1];
            centre += energy[j];
            right += energy[j + 1];
        }
        if (centre == 0) return;
        tuneLeft = frameDecay * tuneLeft + left;
        tuneCentre = frameDecay * tuneCentre + centre;
        tuneRight = frameDecay * tuneRight + right;
        const float k = 1 / tuneCentre;
        const float d = std::sqrt(tuneRight * k) - std::sqrt(tuneLeft * k);
        float v = d * 0.02F + tune;
        if (d < -0.01F) {
            if (v < -0.75F) v += 1;
        } else if (d > 0.01F) {
            if (v > 0.75F) v -= 1;
        } else {
            return;
        }
        tune = v;
        BuildResonators();
    }

    float LimitOf(std::int32_t i) const {
        constexpr std::int32_t distances[] = {12, 19, 24};
        const float losses[] = {1 - h2, 1 - h3, 1 - h4};
        int partials = 0;
        while (partials < 3 && i + distances[partials] < numBands) ++partials;
        if (partials == 0) return energy[i];
        const float alone = amplitude[i];
        float least = alone;
        for (int partial = 0; partial < partials; ++partial) {
            const float t = alone * losses[partial] + amplitude[i + distances[partial]];
            if (t < 0) return 0;
            if (partials == 1 && t >= alone) return energy[i];
            if (t < least) least = t;
        }
        return least * least;
    }

    // The sum over a band and its partials, by how many of these lie within the spectrum.
    float RightHandSideOf(std::int32_t i) const {
        const Floats& l = levelCap;
        if (i + 24 < numBands)
            return d4 * l[i] + d4 * a * l[i + 12] + d4 * b * l[i + 19] + d4 * c * l[i + 24];
        if (i + 19 < numBands) return d3 * l[i] + d3 * a * l[i + 12] + d3 * b * l[i + 19];
        if (i + 12 < numBands) return d2 * l[i] + d2 * a * l[i + 12];
        return l[i];
    }

    // What the notes around a band already explain of its right-hand side, term by term.
    float CrossOf(std::int32_t i) const {
        const auto& x = separated;
        const auto below = [&](std::int32_t distance) { return i < distance ? 0.0F : x[i - distance]; };
        const auto both = [&](std::int32_t distance) { return below(distance) + x[i + distance]; };
        if (i + 24 < numBands)
            return d4 * x5 * both(5) + d4 * x7 * both(7) + d4 * x12 * both(12) + d4 * b * both(19) +
                   d4 * c * both(24);
        if (i + 19 < numBands)
            return d3 * x5 * below(5) + d3 * x7 * both(7) + d3 * x12 * below(12) + d3 * a * x[i + 12] +
                   d3 * b * both(19) + d3 * c * below(24);
        if (i + 12 < numBands)
            return d2 * x7 * below(7) + d2 * x12 * below(12) + d2 * a * x[i + 12] + d2 * b * below(19) +
                   d2 * c * below(24);
        return a * below(12) + b * below(19) + c * below(24);
    }

    void SeparateHarmonics() {
        if (!harmonicsEnabled) {
            separated = energy;
            return;
        }
        for (std::int32_t i = 0; i < numBands; ++i) amplitude[i] = std::sqrt(energy[i]);
        for (std::int32_t i = 0; i < numBands; ++i) separated[i] = levelCap[i] = LimitOf(i);
        for (std::int32_t i = 0; i < numBands; ++i) rhs[i] = RightHandSideOf(i);
        for (int sweep = 0; sweep < 10; ++sweep) {
            for (std::int32_t i = 0; i < numBands; ++i) {
                const float x = rhs[i] - CrossOf(i);
                separated[i] = x < 0 ? 0 : x > levelCap[i] ? levelCap[i] : x;
            }
        }
    }

    void DecideNotes() {
        float strongest = 0;
        for (std::int32_t i = 0; i < numBands; ++i) {
            if (equalizerEnabled) eqAmplitude[i] = eqGain[i] * amplitude[i];
            const float level = equalizerEnabled ? eqAmplitude[i] : amplitude[i];
            if (level > strongest) strongest = level;
        }
        peakLevel = floorAmp < strongest ? strongest : floorAmp;
        threshold = strongest * strongest * relativeThresholdSq;
        if (!(threshold > floorPower)) threshold = floorPower;
        for (std::int32_t j = 1; j < numBands - 1; ++j) {
            if (equalizerEnabled && (peakNow[j] || noteOn[j])) separated[j] = separated[j] * eqGainSq[j];
            if (peakNow[j] && separated[j] < threshold) peakNow[j] = false;
            if (!noteOn[j] && peakOlder[j] && peakOld[j] && peakNow[j])
                noteOn[j] = true;
            else if (noteOn[j] && !peakOlder[j] && !peakOld[j] && !peakNow[j])
                noteOn[j] = false;
        }
        if (monoEnabled) ApplyMonoRule();
        frameCountdown = frameLength;
    }

    void ApplyMonoRule() {
        std::int32_t i = 0;
        while (i < numBands && !noteOn[i]) ++i;
        if (i < numBands) {
            const float e0 = energyPrev1[i], e1 = energyPrev2[i], e = energy[i];
            if (retriggerEnabled && e0 < e1 && e0 < e &&
                (e + e1) - 2 * e0 > ((e + e1) + 2 * e0) * dipScale[i])
                noteOn[i] = false;
            for (std::int32_t above = i + 1; above < numBands; ++above) noteOn[above] = false;
        }
        for (std::int32_t j = 1; j < numBands - 1; ++j) {
            energyPrev2[j] = energyPrev1[j];
            energyPrev1[j] = energy[j];
        }
    }
};
