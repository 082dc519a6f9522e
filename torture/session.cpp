#include "torture/session.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <optional>

#include "torture/watch.h"

namespace {

Session* current = nullptr;  // a host callback carries no word of its own

class NoMessages : public IMessageBox {
    void Show(const std::string&, const std::string&) override {}
} noMessages;

}  // namespace

std::uint32_t SilentDevices::midiOutShortMsg(MidiOutHandle, std::uint32_t) {
    const LockHolds::Pause device;
    Called();
    ++sent;
    return MMSYSERR_NOERROR;
}

Session::Session(std::int32_t hostRate) : rate(hostRate) {
    current = this;
    SubstituteMidiOut(&devices);
    SubstituteSystemMessageBox(&noMessages);
}

Session::~Session() {
    if (effect != nullptr) Close();
    SubstituteMidiOut(nullptr);
    SubstituteSystemMessageBox(nullptr);
    current = nullptr;
}

bool Session::Open() {
    effect = OpenPlugin(Host);
    return effect != nullptr;
}

void Session::Close() {
    Call(effClose);
    effect = nullptr;
}

std::intptr_t Session::Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* ptr, float) {
    const LockHolds::Pause host;
    if (current->atHostCall != nullptr) current->atHostCall();
    if (opcode == audioMasterVersion) return 2400;
    if (opcode == audioMasterGetSampleRate) return current->rate;
    if (opcode != audioMasterProcessEvents) return 0;
    const VstEvents& sent = *static_cast<const VstEvents*>(ptr);
    for (std::int32_t i = 0; i < sent.numEvents; ++i) {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
        ++current->events;
        const auto at = static_cast<std::uint64_t>(current->clock - current->clockBegin + event.deltaFrames);
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, event.midiData, 3);
        for (const std::uint64_t word : {at, std::uint64_t{bytes}})  // FNV, by words
            current->eventHash = (current->eventHash ^ word) * 1099511628211U;
    }
    return 0;
}

TRTRecording& Session::Recording() const {
    TRTRecording* found = nullptr;
    Object().noteRecorder.outputs.ForEach([&found](TNoteOut& output) {
        if (auto* const recording = dynamic_cast<TRTRecording*>(&output)) found = recording;
    });
    return *found;
}

void Session::AllOutputsOn() {
    Set(paramOutputToHost, 1);
    Set(paramDevice, 0.01F);
    Set(paramDeviceEnabled, 1);
    Set(paramChordsEnabled, 1);
    Object().startRecording();
}

void Session::Process(Trial& trial, const float* audio, std::int32_t frames, std::uint64_t way) {
    const auto count = static_cast<std::size_t>(frames);
    float* in = const_cast<float*>(audio);  // the published interface has no const
    float* to = out.data();
    double* wide = wideIn.data();
    double* wideTo = wideOut.data();
    if (way == 0) std::fill_n(to, count, 0.0F);
    if (way == 2) std::copy_n(audio, count, wide);
    {
        std::optional<InsideCall> inside;
        if (watched) inside.emplace();
        if (way == 0)
            effect->process(effect, &in, &to, frames);
        else if (way == 1)
            effect->processReplacing(effect, &in, &to, frames);
        else
            effect->processDoubleReplacing(effect, &wide, &wideTo, frames);
    }
    clock += frames;
    const bool same = way == 2 ? std::memcmp(wide, wideTo, count * sizeof(double)) == 0
                               : std::equal(audio, audio + count, to);
    trial.Require(same, "the audio did not pass");
}

std::vector<float> BusyMusic(Trial& trial, std::int32_t rate, double seconds) {
    std::vector<float> audio(static_cast<std::size_t>(seconds * rate));
    for (float& sample : audio)
        sample =
            0.001F * static_cast<float>(1 + trial.Below(9));  // a constant too, so that no block sums to zero
    const auto step = static_cast<std::size_t>(rate / 10);
    for (std::size_t begin = 0; begin < audio.size(); begin += step) {
        const std::size_t length = std::min(audio.size() - begin, step * (1 + trial.Below(6)));
        const double hertz = 55 * std::exp2(static_cast<double>(trial.Below(60)) / 12);
        for (int partial = 1; partial <= 3; ++partial) {
            // A decaying rotation: x' = x d cos w - y d sin w, and likewise y.
            const double w = 2 * std::numbers::pi * hertz * partial / rate;
            const double decay = std::exp(-2.0 / static_cast<double>(length));
            const double c = decay * std::cos(w), s = decay * std::sin(w);
            double x = 0.15 / partial, y = 0;
            for (std::size_t i = begin; i < begin + length; ++i) {
                audio[i] += static_cast<float>(y);
                const double next = x * c - y * s;
                y = x * s + y * c;
                x = next;
            }
        }
    }
    return audio;
}
