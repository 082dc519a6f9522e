#pragma once
#include <cstddef>
#include <cstdint>

#include "base/relaxed.h"
#include "engine/auto_array.h"
#include "engine/kernels.h"
#include "engine/note_detector.h"

// The note detector: a constant-Q bank of second-order resonators on the semitone grid, and the decision,
// once per frame, which of them sound as notes.
//
// Work is divided by rate. Each sample costs two 32-bit integer multiply-adds a band, which fold a block of
// about a quarter of a millisecond into one complex number. Each block, every resonator takes one exact
// step over the whole block. Each frame of 10 ms, peaks are found, the energies are separated from the
// partials of lower notes, and a hysteresis of three frames turns peaks into flags.
//
// Input: signed 16-bit samples at full scale 32767. `energy` of a steady sine on a band's centre reads
// 4 x (amplitude / 32767)^2.
// Memory: all of it is taken by the constructor and RateSetUp. Process allocates nothing.
// Threads: Process [audio]. Reset, SetSampleRate, SetBandwidth...: any thread while no Process runs.
// SetFloorDb, SetRelativeThreshold, SetBandGain [any], also during Process: the next frame picks them up.
// Errors: no ranges are checked. A failed allocation leaves the constructor and SetSampleRate by
// std::bad_alloc.
class TRealTimeTS107 : public INoteDetector {
public:
    static constexpr std::int32_t minBands = 49;  // the fewest for which each range of the separation exists

    // sampleRate in Hz, at least 100 for frames to come at their rate; below it none comes. Fewer than
    // minBands become minBands.
    TRealTimeTS107(std::int32_t sampleRate, std::int32_t referenceBand, std::int32_t numBands);

    // Takes bytes / 2 samples; an odd byte at the end is ignored. Calls handler->OnFrame at each frame, and
    // throws the last of what that threw once all samples are taken.
    void Process(const short* samples, unsigned bytes) override;
    // Forgets the running analysis and the tuning sums. Tables, gains, thresholds and `tune` stay.
    void Reset() override;
    float GetBandDelay(std::int32_t band) override;  // ms
    virtual float GetBaseDelay();                    // ms: three frames and 10 ms

    void SetSampleRate(std::int32_t rate);  // rebuilds the tables, resets, and sets all gains back to 1
    void SetBandwidth(float ratio);
    void SetBandwidthAndTune(float ratio, float semitones);
    void SetHarmonics(std::int32_t base, std::int32_t h2, std::int32_t h3, std::int32_t h4);
    void SetFloorDb(float dB);               // a ratio of powers
    void SetRelativeThreshold(float ratio);  // of amplitudes, to the frame's strongest band
    void SetTuningEnabled(bool enabled);
    void SetMonoEnabled(bool enabled);
    void SetEqualizerEnabled(bool enabled);
    void SetBandGain(std::int32_t band, float gain);  // linear

    // Steps the resonators by the blocks that are complete and wait for the end of their frame; not while
    // Process runs.
    void CatchUp();
    // CatchUp, and the accumulators as they would stand had each sample of the running block been folded as
    // it came: numBands elements each.
    void FoldedSoFar(std::int32_t* re, std::int32_t* im);

    // --- data; arrays without a stated length hold numBands elements ---

    // Resonators. Written by [audio]; tables by BuildResonators.
    TAutoArray<float> stateA, stateB;
    TAutoArray<float> feedAA, feedAB, feedBA, feedBB;      // state transition over one block
    TAutoArray<float> inputAR, inputAI, inputBR, inputBI;  // how the accumulators enter the state
    // Integer accumulators of the running block. Samples are kept and folded by whole blocks; these hold only
    // what was folded early. FoldedSoFar gives the whole.
    TAutoArray<std::int32_t> accRe, accIm;
    TAutoArray<std::int32_t> tapZero;  // weight of the newest sample of a block
    // Weights of the older samples: (blockLength - 1) rows of bandStride, so that bands run along memory.
    // Row k - 1 belongs to the sample that is k samples older than the block's newest.
    TAutoArray<std::int32_t> tapsRe, tapsIm;
    std::int32_t bandStride = 0;  // PaddedBands(numBands), the length of each array below in memory

    // Peaks, per frame.
    TAutoArray<bool> rising;                       // energy rises from the band below into this band
    TAutoArray<bool> peakOlder, peakOld, peakNow;  // two frames ago, one frame ago, this frame

    // Mono mode.
    TAutoArray<float> dipScale;                  // per-band limit of the retrigger test
    TAutoArray<float> energyPrev2, energyPrev1;  // energy two frames and one frame ago
    float dipFactor = 0;

    bool tuningEnabled = true;
    bool harmonicsEnabled = true;  // no operation changes it
    bool equalizerEnabled = false;
    bool monoEnabled = false;
    bool retriggerEnabled = true;  // no operation changes it
    // Blocks wait for the end of their frame, which costs less where audio comes in small buffers: states and
    // energies are fresh inside OnFrame. Otherwise they are so after each Process. Nothing else depends on
    // it.
    bool stepsByFrame = false;

    std::int32_t harmonicBase = 0, harmonic2 = 0, harmonic3 = 0, harmonic4 = 0;  // as passed to SetHarmonics
    float peakSlack = 0.5F;                                 // 0 to 1, how loose the peak test is
    Relaxed<float> floorDb;                                 // [any] writes
    Relaxed<float> relativeThreshold, relativeThresholdSq;  // [any] writes
    float peakLevel = 0;  // the frame's strongest amplitude, not below floorAmp

    float tuneLeft = 0, tuneCentre = 0, tuneRight = 0;  // smoothed sums of the tuning tracker
    float tuneSeed = 0;                                 // start value of tuneCentre
    TAutoArray<double> tapPowersRe, tapPowersIm;        // blockLength - 1; scratch of BuildResonators
    float bandwidth = 0.02F;                            // the resonators' damping ratio; Q is 1 / (2 x it)
    float tune = 0;                                     // semitones, added to every band

    TAutoArray<float> energy;       // smoothed power, 10 ms
    TAutoArray<float> amplitude;    // its square root, per frame
    TAutoArray<float> eqAmplitude;  // amplitude x eqGain
    TAutoArray<float> separated;    // power after the separation; bandLevel
    TAutoArray<bool> noteOn;        // the decision; bandOn. Changes are atomic stores (see BandIsOn)
    TAutoArray<Relaxed<float>> eqGain, eqGainSq;  // [any] writes
    TAutoArray<float> levelCap;                   // upper bound of each band in the separation
    TAutoArray<float> rhs;                        // right-hand side of the separation

    // The least-squares coefficients of the partial template, in groups as SetHarmonics computes them:
    // D4, D4 A, D4 B, D4 C | the same with D3 | with D2 | A, B, C | D4 X5, D4 X7, D4 X12 | the same with D3 |
    // D2 X7, D2 X12 | 1 - H2, 1 - H3, 1 - H4.
    float harmonicCoefficients[Harmonic::count] = {};

    std::int32_t blockCountdown = 0, frameCountdown = 0;  // samples left
    std::int32_t blockLength = 0;                         // samples between two resonator steps
    float blockDecay = 0, frameDecay = 0;                 // one-pole factors: 10 ms and 200 ms
    double refOmega = 0;                                  // radians per sample of 440 Hz
    double gainScale = 0;
    float peakRatio = 0;
    float threshold = 0;                  // the frame's power threshold
    Relaxed<float> floorAmp, floorPower;  // [any] writes

    DetectorKernels kernels;  // the inner loops in use; any set gives the same results

private:
    struct Bands {
        std::int32_t count;
        std::size_t padded = static_cast<std::size_t>(PaddedBands(count));
    };
    explicit TRealTimeTS107(Bands bands);  // allocates what depends on the number of bands only

    // Set-up.
    void RateSetUp();
    void BuildResonators();
    void BuildBand(std::int32_t band, double w, double m, double g, double ga, double gb);
    void UpdatePeakRatio();
    void SeedTuning();
    void ClearAnalysis();

    // The frame, in the order of its steps.
    std::int32_t SamplesToFrame(std::int32_t left) const;
    std::int32_t KeptSamples() const;
    void KeepSamples(const short* samples, std::int32_t count);
    void SettleAccumulators();
    void RunFrame();
    void FindPeaks();
    void TrackTuning();
    void SeparateHarmonics();
    void DecideNotes();

    float StrongestAmplitude();
    template <typename Visit>
    void ForEachCandidate(Visit visit);
    void ApplyHysteresis();
    void ApplyMonoRule();
    void SetNote(std::int32_t band, bool on);

    void PackPairs();
    ResonatorBank Bank();
    FitCoefficients Coefficients() const;

    TAutoArray<float> fitted;  // the bands while the fit works on them, between margins of zeros
    // Samples that are not folded yet, oldest first: keptBlocks whole blocks, then the running block.
    TAutoArray<short> kept;
    std::int32_t keptCapacity = 0;
    std::int32_t keptBlocks = 0;
    bool settled = false;   // accRe and accIm hold the first samples of `kept`, which are 0 there
    bool pairsFit = false;  // every weight fits 16 bits: pairsRe and pairsIm are in use
    TAutoArray<std::int16_t> pairsRe, pairsIm;  // see ResonatorBank
};
