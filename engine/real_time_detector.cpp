#include "engine/real_time_detector.h"

#include <algorithm>

#include "base/float_environment.h"

TRealTimeTS107::TRealTimeTS107(std::size_t bands)
    : stateA(bands),
      stateB(bands),
      feedAA(bands),
      feedAB(bands),
      feedBA(bands),
      feedBB(bands),
      inputAR(bands),
      inputAI(bands),
      inputBR(bands),
      inputBI(bands),
      accRe(bands),
      accIm(bands),
      tapZero(bands),
      rising(bands),
      peakOlder(bands),
      peakOld(bands),
      peakNow(bands),
      dipScale(bands),
      energyPrev2(bands),
      energyPrev1(bands),
      energy(bands),
      amplitude(bands),
      eqAmplitude(bands),
      separated(bands),
      noteOn(bands),
      eqGain(bands),
      eqGainSq(bands),
      levelCap(bands),
      rhs(bands),
      fitted(static_cast<std::size_t>(fitMargin) + bands) {
    numBands = static_cast<std::int32_t>(bands);
    bandOn = noteOn.Data();
    bandLevel = separated.Data();
    std::fill_n(rising.Data(), bands, false);
    std::fill_n(fitted.Data(), fitMargin, 0.0F);
}

TRealTimeTS107::TRealTimeTS107(std::int32_t rate, std::int32_t reference, std::int32_t bands)
    : TRealTimeTS107(static_cast<std::size_t>(std::max(bands, minBands))) {
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

void TRealTimeTS107::Process(const short* samples, unsigned bytes) {
    FlushToZero arithmetic;
    for (const short* const end = samples + bytes / sizeof(short); samples != end; ++samples)
        ProcessSample(*samples, arithmetic);
}

void TRealTimeTS107::ProcessSample(std::int32_t sample, FlushToZero& arithmetic) {
    if (--blockCountdown != 0) {
        const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(blockCountdown - 1) * numBands;
        plain::FoldSample(accRe.Data(), accIm.Data(), tapsRe.Data() + row, tapsIm.Data() + row, sample,
                          numBands);
    } else {
        plain::StepResonators(Bank(), sample);
        blockCountdown = blockLength;
    }
    if (--frameCountdown == 0) RunFrame(arithmetic);
}

void TRealTimeTS107::RunFrame(FlushToZero& arithmetic) {
    FindPeaks();
    if (tuningEnabled) TrackTuning();
    SeparateHarmonics();
    DecideNotes();
    if (handler != nullptr) {
        arithmetic.Suspend();  // the handler leads out to the host, whose control word it must find
        handler->OnFrame();
        arithmetic.Resume();
    }
    frameCountdown = frameLength;
}

ResonatorBank TRealTimeTS107::Bank() {
    return {stateA.Data(),  stateB.Data(),  energy.Data(), accRe.Data(),  accIm.Data(),   tapZero.Data(),
            feedAA.Data(),  feedAB.Data(),  feedBA.Data(), feedBB.Data(), inputAR.Data(), inputAI.Data(),
            inputBR.Data(), inputBI.Data(), blockDecay,    numBands};
}

// A peak is a band whose energy stands above both neighbours by more than one sine on the band would allow.
// Band 0 and the top band never become one.
void TRealTimeTS107::FindPeaks() {
    rising[1] = energy[0] < energy[1];
    for (std::int32_t i = 2; i < numBands; ++i) {
        const std::int32_t j = i - 1;
        peakOlder[j] = peakOld[j];
        peakOld[j] = peakNow[j];
        rising[i] = energy[j] < energy[i];
        peakNow[j] = !rising[i] && rising[j] && energy[j - 1] + energy[i] < energy[j] * peakRatio;
    }
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
    eqGain[band] = gain;
    eqGainSq[band] = gain * gain;
}
