#include "plugin/plugin_object.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
#include <thread>

#include "base/text.h"
#include "base/truncate.h"
#include "parameters/parameters.h"
#include "plugin/host_facts.h"
#include "plugin/mem_log.h"
#include "plugin/sample_conversion.h"

namespace {

constexpr float resonatorBandwidth = 0.02F;

// Hz. Below, a frame of 10 ms has no sample; above, no host runs, and the tables would grow without bound.
constexpr float slowestRate = 100;
constexpr float fastestRate = 10'000'000;

// How long a suspend or a new rate waits for a block in flight before it leaves the rest to that block's end.
// Longer than any block lasts; bounded, since a host may hold a lock of its own that the block waits for.
constexpr auto timeout = std::chrono::milliseconds(100);

bool CanDetectAt(float rate) {
    return rate >= slowestRate && rate <= fastestRate;
}

// The rate to build the detector for: an odd one of a host must not make the tables grow without bound.
std::int32_t DetectorRate(float rate) {
    return CanDetectAt(rate) ? TruncateToInt32(rate) : 44100;
}

// The first channel, or null.
template <typename Sample>
Sample* FirstChannel(Sample** channels) {
    return channels != nullptr ? channels[0] : nullptr;
}

// out += in, as if the input had been read whole first: the buffers may overlap in either direction, and lie
// at any address.
void Accumulate(const float* in, float* out, std::size_t count) {
    const auto add = [&](std::size_t i) {
        float sum;
        float term;
        std::memcpy(&sum, out + i, sizeof sum);
        std::memcpy(&term, in + i, sizeof term);
        sum += term;
        std::memcpy(out + i, &sum, sizeof sum);
    };
    if (std::less<const void*>()(in, out))
        for (std::size_t i = count; i-- > 0;) add(i);
    else
        for (std::size_t i = 0; i < count; ++i) add(i);
}

}  // namespace

CORVA_vst::CORVA_vst(audioMasterCallback host, std::int32_t numParams)
    : AudioEffectX(host, 1, numParams), detector(DetectorRate(getSampleRate()), bandOf440, bandCount) {
    setNumInputs(1);
    setNumOutputs(1);
    setUniqueID(FourCharacters('O', 'R', 'V', '1'));
    canProcessReplacing(true);
    canDoubleReplacing(true);
    if (!hostIsVst24(*this)) canMono(true);
    CopyText(programName, sizeof programName, "Default");
    hostIsAbletonCopy = hostIsAbleton(*this);
    hostDropsEarlyDates = hostDropsEarlyEvents(*this);

    auto output = std::make_unique<TVSTMIDIOut>(this);
    vstMidiOut = output.get();
    detector.stepsByFrame = true;  // nobody reads between two frames
    detector.SetMonoEnabled(false);
    detector.equalizerEnabled = false;
    detector.SetTuningEnabled(false);
    detector.SetBandwidth(resonatorBandwidth);
    detector.handler = &noteRecorder;
    noteRecorder.Attach(&detector);
    noteRecorder.Activate(0);
    noteRecorder.AddOutput(vstMidiOut);
    static_cast<void>(output.release());  // the recorder owns it from here on

    getMasterVersion();  // some hosts set themselves up by these two questions; the answers are not used
    canHostDo("receiveVstMidiEvent");

    for (const auto index : {paramVelocity, paramSensitivity, paramPolyphony})
        CORVA_vst::setParameter(index, ParameterInitialValue(index));
    detects = CanDetectAt(getSampleRate());
}

CORVA_vst::~CORVA_vst() {
    detector.handler = nullptr;
    delete refined.load();
}

void CORVA_vst::processSamples(const short*, std::size_t) {}

// --- the path of a block ---

template <typename Sample>
void CORVA_vst::FeedBlock(const Sample* in, std::size_t count) {
    if (firstBlock) {
        firstBlock = false;  // before the question: a host may answer it with a block
        requestHostEvents();
    }
    inputMeter.Measure(in, count);
    if (!gate.TryEnter()) {
        totalSamples = totalSamples + count;
        return;
    }
    {
        const BlockGate::Leaving leaves(gate);
        try {
            if (count > samples.capacity())
                samples.reserve(std::max(count, samples.capacity() + samples.capacity() / 2));
            samples.resize(count);
            if (const float gain = inputGain; gain == 1.0F)
                ConvertSamples(in, samples.data(), count);
            else
                ConvertSamples(in, samples.data(), count, gain);
            deliverBlock();
        } catch (...) {  // recognition may fail where memory runs out; the clock goes on all the same
        }
        totalSamples = totalSamples + count;
        if (stoppedWithin) {
            stoppedWithin = false;
            ResetDetector();
            noteRecorder.AllNotesOff();
        }
    }
    if (leftToBlock.load() && leftToBlock.exchange(false)) ServeRequests();  // a load costs a tenth
}

void CORVA_vst::deliverBlock() {
    assert(gate.IsMine());
    // The recorder's clock stands still where the detector has not been stepping it.
    const auto delivered = static_cast<std::int64_t>(totalSamples.load());
    if (!stopped && noteRecorder.GetTime() + noteRecorder.GetFrameLength() < delivered)
        noteRecorder.SetTime(delivered);
    processSamples(samples.data(), samples.size());
}

template <typename Sample>
void CORVA_vst::PassThrough(Sample** inputs, Sample** outputs, std::int32_t frames, bool accumulate) {
    const std::size_t count = frames > 0 ? static_cast<std::size_t>(frames) : 0;
    const Sample* const in = FirstChannel(inputs);
    Sample* const out = FirstChannel(outputs);
    try {
        FeedBlock(in, count);
    } catch (...) {  // from a host's callback; the audio passes all the same
    }
    if (out == nullptr || count == 0) return;
    if constexpr (sizeof(Sample) == sizeof(float)) {
        if (accumulate) {
            if (in != nullptr) Accumulate(in, out, count);
            return;
        }
    }
    if (in != nullptr)
        std::memmove(out, in, count * sizeof(Sample));
    else
        std::memset(out, 0, count * sizeof(Sample));
}

void CORVA_vst::process(float** inputs, float** outputs, std::int32_t frames) {
    PassThrough(inputs, outputs, frames, true);
}

void CORVA_vst::processReplacing(float** inputs, float** outputs, std::int32_t frames) {
    PassThrough(inputs, outputs, frames, false);
}

void CORVA_vst::processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) {
    PassThrough(inputs, outputs, frames, false);
}

// --- start and stop ---

void CORVA_vst::startDetection() {
    if (!stopped) return;
    stopped = false;
    noteRecorder.SetTime(static_cast<std::int64_t>(totalSamples.load()));
    const TNoteRecorder::Hold held(noteRecorder);  // parameter 91 must not change in between
    if (outputToHost) vstMidiOut->Start();
}

void CORVA_vst::stopDetection() {
    noteRecorder.SetTime(static_cast<std::int64_t>(totalSamples.load()));
    StopSteps();
}

void CORVA_vst::StopSteps() {
    if (stopped) return;
    stopped = true;
    ResetDetector();
    vstMidiOut->Stop();
    noteRecorder.AllNotesOff();
}

void CORVA_vst::ResetDetector() {
    heard->Reset();
    noteRecorder.CopyBands();
}

void CORVA_vst::suspend() {
    Ask(requestStop);
}

void CORVA_vst::resume() {
    if (!hostAskedMidiOut && silentSamples + totalSamples != 0 && !hostIsVst24(*this)) wantEvents(1);
}

void CORVA_vst::requestHostEvents() {
    if (!hostAskedMidiOut && !hostIsVst24(*this)) wantEvents(1);
}

void CORVA_vst::setSampleRate(float rate) {
    AudioEffectX::setSampleRate(rate);
    Ask(requestRate);
}

// --- what other threads want done to the detector ---

// Done at once where the gate is free or this thread's own (hosts call back from within a block). Otherwise
// the block in flight ends first; should it last too long, the work is left to it for when it leaves.
void CORVA_vst::Ask(Request request) {
    if (gate.IsMine()) {
        Serve(request);
        if (request == requestStop) stoppedWithin = true;
        return;
    }
    requests.fetch_or(request);
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (!ServeRequests()) {
        if (std::chrono::steady_clock::now() >= until) {
            leftToBlock = true;
            ServeRequests();  // the block may have left just before it could see that
            return;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

// False when another thread is inside; it looks for requests again once it has left.
bool CORVA_vst::ServeRequests() {
    do {
        if (!gate.TryEnter()) return false;
        const BlockGate::Leaving leaves(gate);
        Serve(requests.exchange(0));
    } while (requests.load() != 0);
    return true;
}

void CORVA_vst::Serve(unsigned wanted) {
    assert(gate.IsMine());
    if ((wanted & requestStop) != 0) suspendSteps();
    if ((wanted & requestEar) != 0) ChangeEar();
    if ((wanted & requestRate) != 0) {
        const float rate = getSampleRate();
        detects = false;
        if (!CanDetectAt(rate)) return;
        detector.SetSampleRate(DetectorRate(rate));
        if (TRefinedDetector* const made = refined) made->RateChanged();
        noteRecorder.CopyBands();
        detects = true;
    }
}

// Without a wait, unlike Ask: served at once where the gate is free, else by whoever leaves it.
void CORVA_vst::Leave(Request request) {
    requests.fetch_or(request);
    if (!gate.IsMine() && ServeRequests()) return;
    leftToBlock = true;
    if (!gate.IsMine()) ServeRequests();
}

// --- the ear ---

std::intptr_t CORVA_vst::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                    float opt) {
    if (opcode != effVendorSpecific || index != vendorCall)
        return AudioEffectX::dispatcher(opcode, index, value, ptr, opt);
    switch (value) {
        case vendorEar:
            if (opt != 0.0F && opt != 1.0F && opt != 2.0F) return 0;
            setEar(static_cast<Ear>(TruncateToInt32(opt)));
            return 1;
        case vendorThreshold: setEarThreshold(opt); return 1;
        case vendorInputLevel: setInputLevel(opt); return 1;
        case vendorNoteDates:
            if (opt != 0.0F && opt != 1.0F && opt != 2.0F) return 0;
            setNoteDates(static_cast<NoteDates>(TruncateToInt32(opt)));
            return 1;
        case vendorPeakLevel:
            if (ptr == nullptr || !(opt >= 0.0F && opt <= 127.0F)) return 0;
            *static_cast<float*>(ptr) = noteRecorder.GetPeakLevel(TruncateToUint32(opt));
            return 1;
        default: return 0;
    }
}

void CORVA_vst::prepareEar() {
    if (refined.load() != nullptr) return;
    auto made = std::make_unique<TRefinedDetector>(detector, TRefinedDetector::Look::live);
    made->extraThreshold = earThreshold.load();
    made->handler = &noteRecorder;
    TRefinedDetector* none = nullptr;
    if (refined.compare_exchange_strong(none, made.get())) static_cast<void>(made.release());
}

void CORVA_vst::setEar(Ear wanted) {
    if (wanted == ear) return;
    if (wanted != Ear::classic) prepareEar();
    ear = wanted;
    Leave(requestEar);
}

void CORVA_vst::ChangeEar() {
    const Ear wanted = ear;
    TRefinedDetector* const made = refined;
    heard->Reset();
    if (wanted == Ear::classic || made == nullptr) {
        detector.handler = &noteRecorder;
        heard = &detector;
    } else {
        made->RateChanged();
        made->SetLook(wanted == Ear::refinedLive ? TRefinedDetector::Look::live
                                                 : TRefinedDetector::Look::file);
        detector.handler = made;
        heard = made;
    }
    noteRecorder.Follow(*heard);
    noteRecorder.CopyBands();
}

void CORVA_vst::setEarThreshold(float logits) {
    earThreshold = logits;
    if (TRefinedDetector* const made = refined) made->extraThreshold = logits;
}

void CORVA_vst::setInputLevel(float dB) {
    constexpr float furthest = 60;  // dB
    inputLevel = std::clamp(dB, -furthest, furthest);
    inputGain = std::pow(10.0F, inputLevel / 20.0F);  // 0 gives exactly 1
}

void CORVA_vst::setHearing(const Hearing& wanted) {
    setEarThreshold(wanted.threshold);
    setInputLevel(wanted.level);
    setEar(wanted.ear);
}

void CORVA_vst::setNoteDates(NoteDates wanted) {
    chosenDates = wanted;
}

bool CORVA_vst::HearsThroughSilence() const {
    return heard != &detector && !stopped && static_cast<float>(silentSamples) < getSampleRate();
}

// --- identity ---

void CORVA_vst::open() {
    logHostInfo();
}

void CORVA_vst::logHostInfo() {
    getMemLog().append(HostFacts(*this));
}

bool CORVA_vst::getEffectName(char* text) {
    CopyText(text, kVstMaxEffectNameLen, "ORVA Audio To MIDI");
    return true;
}

bool CORVA_vst::getProductString(char* text) {
    CopyText(text, kVstMaxProductStrLen, "ORVA Audio To MIDI");
    return true;
}

bool CORVA_vst::getVendorString(char* text) {
    CopyText(text, kVstMaxVendorStrLen, "ORVASOFT");
    return true;
}

std::int32_t CORVA_vst::canDo(const char* text) {
    if (std::strcmp(text, "sendVstMidiEvent") != 0) return 0;
    hostAskedMidiOut = true;
    return 1;
}
