#include "engine/real_time_detector.h"

#include <algorithm>
#include <exception>

#include "base/float_environment.h"

TRealTimeTS107::TRealTimeTS107(Bands bands)
    : stateA(bands.padded),
      stateB(bands.padded),
      feedAA(bands.padded),
      feedAB(bands.padded),
      feedBA(bands.padded),
      feedBB(bands.padded),
      inputAR(bands.padded),
      inputAI(bands.padded),
      inputBR(bands.padded),
      inputBI(bands.padded),
      accRe(bands.padded),
      accIm(bands.padded),
      tapZero(bands.padded),
      bandStride(static_cast<std::int32_t>(bands.padded)),
      rising(bands.padded + bandStep),
      peakOlder(bands.padded + bandStep),
      peakOld(bands.padded + bandStep),
      peakNow(bands.padded + bandStep),
      dipScale(bands.padded),
      energyPrev2(bands.padded),
      energyPrev1(bands.padded),
      energy(bands.padded + bandStep),
      amplitude(bands.padded + bandStep),
      eqAmplitude(bands.padded),
      separated(bands.padded),
      noteOn(bands.padded),
      eqGain(bands.padded),
      eqGainSq(bands.padded),
      levelCap(bands.padded + bandStep),
      rhs(bands.padded),
      kernels(BestKernels()),
      fitted(bands.padded + fitMargins) {
    numBands = bands.count;
    bandOn = noteOn.Data();
    bandLevel = separated.Data();
    // What lies past the last band stays zero, in the tables too: whole vectors are computed. The peak test
    // reads on from there by one band, and the limit by as far as a partial lies above the last full vector.
    for (TAutoArray<float>* array : {&energy, &amplitude, &levelCap})
        std::fill_n(array->Data() + bands.padded, bandStep, 0.0F);
    for (TAutoArray<float>* array : {&stateA, &stateB, &feedAA, &feedAB, &feedBA, &feedBB, &inputAR, &inputAI,
                                     &inputBR, &inputBI, &dipScale, &energyPrev2, &energyPrev1, &energy,
                                     &amplitude, &eqAmplitude, &separated, &levelCap, &rhs})
        std::fill_n(array->Data(), bands.padded, 0.0F);
    for (TAutoArray<std::int32_t>* array : {&accRe, &accIm, &tapZero})
        std::fill_n(array->Data(), bands.padded, 0);
    for (TAutoArray<bool>* array : {&rising, &peakOlder, &peakOld, &peakNow})
        std::fill_n(array->Data(), bands.padded + bandStep, false);
    std::fill_n(noteOn.Data(), bands.padded, false);
    std::fill_n(fitted.Data(), bands.padded + fitMargins, 0.0F);
}

TRealTimeTS107::TRealTimeTS107(std::int32_t rate, std::int32_t reference, std::int32_t bands)
    : TRealTimeTS107(Bands{std::max(bands, minBands)}) {
    referenceBand = reference;
    SetHarmonics(1000, 750, 500, 250);
    SetFloorDb(-1000);
    peakLevel = floorAmp;
    SetRelativeThreshold(0.2F);
    sampleRate = rate;
    RateSetUp();
    ClearAnalysis();
    SeedTuning();
}

// Samples are kept until the frame ends, and its blocks stepped together: at 64 samples a call, stepping them
// at each call would cost a third more. What the handler throws leaves once all samples are taken, since
// later frames would be dated wrongly otherwise.
void TRealTimeTS107::Process(const short* samples, unsigned bytes) {
    std::exception_ptr failure;
    for (std::int32_t left = static_cast<std::int32_t>(bytes / sizeof(short)); left > 0;) {
        const std::int32_t run = std::min(SamplesToFrame(left), keptCapacity - KeptSamples());
        KeepSamples(samples, run);
        samples += run;
        left -= run;
        if (KeptSamples() == keptCapacity) CatchUp();  // only below 100 Hz, where no frame comes
        if (frameCountdown != 0) continue;
        try {
            RunFrame();
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (!stepsByFrame) CatchUp();
    if (failure) std::rethrow_exception(failure);
}

// How many of the next samples come up to the end of a frame. Below 100 Hz a frame has no samples: its
// countdown starts at 0 and runs through all 32 bits.
std::int32_t TRealTimeTS107::SamplesToFrame(std::int32_t left) const {
    const std::uint32_t behindFirst = static_cast<std::uint32_t>(frameCountdown) - 1U;
    return static_cast<std::int32_t>(std::min(static_cast<std::uint32_t>(left - 1), behindFirst) + 1U);
}

std::int32_t TRealTimeTS107::KeptSamples() const {
    return keptBlocks * blockLength + (blockLength - blockCountdown);
}

void TRealTimeTS107::KeepSamples(const short* samples, std::int32_t count) {
    std::copy_n(samples, count, kept.Data() + KeptSamples());
    const std::int32_t begun = blockLength - blockCountdown + count;
    keptBlocks += begun / blockLength;
    blockCountdown = blockLength - begun % blockLength;
    frameCountdown = static_cast<std::int32_t>(static_cast<std::uint32_t>(frameCountdown) -
                                               static_cast<std::uint32_t>(count));
}

void TRealTimeTS107::CatchUp() {
    if (keptBlocks == 0) return;
    const FlushToZero arithmetic;
    const short* block = kept.Data();
    if (settled) {
        plain::StepBlocks(Bank(), block, 1);  // adds to what the accumulators hold
        settled = false;
        block += blockLength;
        --keptBlocks;
    }
    kernels.stepBlocks(Bank(), block, keptBlocks);
    block += static_cast<std::ptrdiff_t>(keptBlocks) * blockLength;
    std::copy_n(block, blockLength - blockCountdown, kept.Data());
    keptBlocks = 0;
}

void TRealTimeTS107::FoldedSoFar(std::int32_t* re, std::int32_t* im) {
    CatchUp();
    std::copy_n(accRe.Data(), numBands, re);
    std::copy_n(accIm.Data(), numBands, im);
    for (std::int32_t n = 0; n < blockLength - blockCountdown; ++n) {
        const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(blockLength - n - 2) * bandStride;
        plain::FoldSample(re, im, tapsRe.Data() + row, tapsIm.Data() + row, kept[n], numBands);
    }
}

// Before the weights change: the samples that have come keep the old ones.
void TRealTimeTS107::SettleAccumulators() {
    CatchUp();
    const std::int32_t come = blockLength - blockCountdown;
    if (come == 0) return;
    FoldedSoFar(accRe.Data(), accIm.Data());
    std::fill_n(kept.Data(), come, short{0});
    settled = true;
}

void TRealTimeTS107::RunFrame() {
    CatchUp();
    {
        const FlushToZero arithmetic;
        FindPeaks();
        if (tuningEnabled) TrackTuning();
        SeparateHarmonics();
        DecideNotes();
    }
    frameCountdown = frameLength;
    if (handler != nullptr) handler->OnFrame();  // leads out to the host, whose control word it must find
}

ResonatorBank TRealTimeTS107::Bank() {
    return {stateA.Data(),
            stateB.Data(),
            energy.Data(),
            accRe.Data(),
            accIm.Data(),
            tapsRe.Data(),
            tapsIm.Data(),
            tapZero.Data(),
            pairsFit ? pairsRe.Data() : nullptr,
            pairsFit ? pairsIm.Data() : nullptr,
            feedAA.Data(),
            feedAB.Data(),
            feedBA.Data(),
            feedBB.Data(),
            inputAR.Data(),
            inputAI.Data(),
            inputBR.Data(),
            inputBI.Data(),
            blockDecay,
            blockLength,
            numBands,
            bandStride};
}

// A peak is a band whose energy stands above both neighbours by more than one sine on the band would allow.
// Band 0 and the top band never become one.
void TRealTimeTS107::FindPeaks() {
    kernels.findPeaks({energy.Data(), rising.Data(), peakOlder.Data(), peakOld.Data(), peakNow.Data(),
                       peakRatio, numBands});
}

void TRealTimeTS107::Reset() {
    ClearAnalysis();
    SeedTuning();
}

void TRealTimeTS107::ClearAnalysis() {
    frameCountdown = frameLength;
    blockCountdown = blockLength;
    for (TAutoArray<float>* array :
         {&energyPrev1, &energyPrev2, &separated, &eqAmplitude, &amplitude, &energy, &stateA, &stateB})
        std::fill_n(array->Data(), numBands, 0.0F);
    for (TAutoArray<std::int32_t>* array : {&accRe, &accIm}) std::fill_n(array->Data(), numBands, 0);
    for (TAutoArray<bool>* array : {&peakNow, &peakOld, &peakOlder})
        std::fill_n(array->Data(), numBands, false);
    for (std::int32_t i = 0; i < numBands; ++i) SetNote(i, false);
    keptBlocks = 0;
    settled = false;
}

float TRealTimeTS107::GetBaseDelay() {
    return static_cast<float>(frameLength) * 1000.0F / static_cast<float>(sampleRate) * 3.0F + 10.0F;
}

float TRealTimeTS107::GetBandDelay(std::int32_t band) {
    const auto bands = static_cast<float>(numBands);
    return GetBaseDelay() + static_cast<float>(numBands - band - 1) * (1.11565F / bands) / bandwidth;
}

void TRealTimeTS107::SetTuningEnabled(bool enabled) {
    if (enabled && !tuningEnabled) SeedTuning();
    tuningEnabled = enabled;
}

void TRealTimeTS107::SetMonoEnabled(bool enabled) {
    if (enabled)
        for (TAutoArray<float>* array : {&energyPrev1, &energyPrev2})
            std::fill_n(array->Data(), numBands, 0.0F);
    monoEnabled = enabled;
}

void TRealTimeTS107::SetEqualizerEnabled(bool enabled) {
    equalizerEnabled = enabled;
}

void TRealTimeTS107::SetBandGain(std::int32_t band, float gain) {
    const FlushToZero arithmetic;
    eqGain[band] = gain;
    eqGainSq[band] = gain * gain;
}
