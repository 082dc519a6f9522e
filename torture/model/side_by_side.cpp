#include "torture/model/side_by_side.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "tests/support/tones.h"

namespace {

SideBySide* current = nullptr;

// How a difference is told.
std::string Told(std::int64_t value) {
    return std::to_string(value);
}
std::string Told(const std::string& value) {
    return '"' + value.substr(0, 300) + '"';
}
std::string Told(const ModelHostCall& call) {
    char message[80];
    std::snprintf(message, sizeof message, "call %d (%d, %06x) ", call.opcode, call.number, call.message);
    return message + call.text;
}
std::string Told(const ModelTakeEvent& event) {
    char text[80];
    std::snprintf(text, sizeof text, "%06x at %lld, level %a", event.message,
                  static_cast<long long>(event.time), static_cast<double>(event.level));
    return text;
}
template <typename T>
std::string Told(const std::vector<T>& list) {
    std::string text = std::to_string(list.size()) + ":";
    for (std::size_t i = 0; i < list.size() && i < 6; ++i) text += " [" + Told(list[i]) + "]";
    return text;
}

ModelHostCall Event(const VstEvents& events) {
    const auto& event = *reinterpret_cast<const VstMidiEvent*>(events.events[0]);
    const auto byte = [&](int i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(event.midiData[i]));
    };
    const bool proper = events.numEvents == 1 && events.reserved == 0 && event.type == kVstMidiType &&
                        event.byteSize == 24 && event.flags == 0 && event.noteLength == 0 &&
                        event.noteOffset == 0 && event.midiData[3] == 0 && event.detune == 0 &&
                        event.noteOffVelocity == 0 && event.reserved1 == 0 && event.reserved2 == 0;
    return {audioMasterProcessEvents, event.deltaFrames, byte(0) | byte(1) << 8 | byte(2) << 16,
            proper ? "" : "malformed"};
}

// A message of three bytes that may stand on a wire, or none at all.
bool IsLegal(std::uint32_t message) {
    const std::uint32_t status = message & 0xF0;
    return message == 0 ||
           ((message & 0xFF808000) == 0 && (status == 0x80 || status == 0x90 || status == 0xC0));
}

}  // namespace

std::vector<std::string> InventedDevices::TakenLines() {
    std::vector<std::string> lines = Taken();
    std::erase(lines, "read");
    return lines;
}

ModelHostKind KindOfBatch(const Trial& trial, std::uint64_t batch) {
    constexpr float rates[] = {44100, 48000, 96000, 22050};
    const std::uint64_t number = trial.number / batch;
    return {number % 3 != 1, number % 3 == 2, rates[number / 3 % 4]};
}

SideBySide::SideBySide(Trial& caseTrial, const ModelHostKind& hostKind)
    : model(hostKind), trial(caseTrial), kind(hostKind) {
    unsetenv("DISPLAY");  // NOLINT(concurrency-mt-unsafe): no window here, and one thread
    current = this;
    SubstituteMidiOut(&layer);
    SubstituteSystemMessageBox(this);
    effect = OpenPlugin(Callback);
    trial.Require(effect != nullptr, "the plug-in does not open");
    object = dynamic_cast<CORVAguivst*>(static_cast<AudioEffect*>(effect->object));
    CompareSaid("opening");
}

SideBySide::~SideBySide() {
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    model.Close();
    CompareSaid("closing");
    trial.Require(layer.open.empty(), "a device was left open");
    SubstituteSystemMessageBox(nullptr);
    SubstituteMidiOut(nullptr);
    current = nullptr;
}

template <typename T>
void SideBySide::Same(const T& met, const T& expected, const std::string& what) const {
    if (!(met == expected)) trial.Fail(what + ": " + Told(met) + ", the Model says " + Told(expected));
}

void SideBySide::CompareSaid(const std::string& after) {
    for (const ModelHostCall& call : calls) {
        if (call.opcode != audioMasterProcessEvents) continue;
        if (!IsLegal(call.message)) trial.Fail("no MIDI message after " + after + ": " + Told(call));
        notes += (call.message & 0xF0) == 0x90;
    }
    Same(calls, model.calls, "said to the host after " + after);
    Same(layer.TakenLines(), model.devices.lines, "said to devices after " + after);
    Same(boxes, model.boxes, "messages after " + after);
    calls.clear(), model.calls.clear(), model.devices.lines.clear();
    boxes.clear(), model.boxes.clear();
}

std::intptr_t SideBySide::Call(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                               const std::optional<std::string>& text, float opt) {
    const std::string what = "opcode " + std::to_string(opcode) + " (" + std::to_string(index) + ", " +
                             std::to_string(value) + ", " + text.value_or("null").substr(0, 80) + ", " +
                             std::to_string(opt) + ")";
    struct Buffer {
        alignas(8) char bytes[128];
    };
    Buffer met, expected;
    std::memset(met.bytes, 0x7F, sizeof met.bytes);
    if (text) met.bytes[text->copy(met.bytes, 100)] = '\0';
    expected = met;
    const std::intptr_t answer =
        effect->dispatcher(effect, opcode, index, value, text ? met.bytes : nullptr, opt);
    const std::intptr_t right = model.Dispatch(opcode, index, value, text ? expected.bytes : nullptr, opt);
    Same<std::int64_t>(answer, right, what);
    if (opcode == effEditGetRect && text) {
        const ERect& rect = **reinterpret_cast<ERect**>(met.bytes);
        Same<std::int64_t>(rect.top | rect.left | rect.bottom << 16 | rect.right, 320 << 16 | 400,
                           "rectangle");
    } else {
        Same(std::string(met.bytes, sizeof met.bytes), std::string(expected.bytes, sizeof met.bytes), what);
    }
    CompareSaid(what);
    return answer;
}

std::string SideBySide::Text(std::int32_t opcode, std::int32_t index) {
    char text[128] = {};
    effect->dispatcher(effect, opcode, index, 0, text, 0);
    Call(opcode, index, 0, "");
    return text;
}

void SideBySide::Set(std::int32_t index, float value) {
    effect->setParameter(effect, index, value);
    model.SetParameter(index, value);
    CompareSaid("setting " + std::to_string(index) + " to " + std::to_string(value));
    Get(index);
}

void SideBySide::SetFromEditor(std::int32_t index, float value) {
    object->setParameterFromEditor(index, value);
    model.SetParameterFromEditor(index, value);
    CompareSaid("the editor's setting " + std::to_string(index) + " to " + std::to_string(value));
    Get(index);
}

void SideBySide::Get(std::int32_t index) {
    const float met = effect->getParameter(effect, index), expected = model.GetParameter(index);
    if (std::bit_cast<std::uint32_t>(met) != std::bit_cast<std::uint32_t>(expected))
        trial.Fail("parameter " + std::to_string(index) + " is " + std::to_string(met) + ", the Model says " +
                   std::to_string(expected));
}

void SideBySide::Play(const std::vector<float>& block, Door door) {
    std::vector<float> in = block, out(block.size(), 0.0F);
    const auto frames = static_cast<std::int32_t>(block.size());
    float* from = in.data();
    float* to = out.data();
    if (door == doubles) {
        std::vector<double> wideIn(block.begin(), block.end()), wideOut(block.size());
        double* wideFrom = wideIn.data();
        double* wideTo = wideOut.data();
        effect->processDoubleReplacing(effect, &wideFrom, &wideTo, frames);
        model.Process(wideIn.data(), frames);
        out.assign(wideOut.begin(), wideOut.end());
    } else {
        (door == adding ? effect->process : effect->processReplacing)(effect, &from, &to, frames);
        model.Process(block.data(), frames);
    }
    for (std::size_t i = 0; i < block.size(); ++i)
        trial.Require(out[i] == block[i] || std::isnan(block[i]), "the audio is not as it came");
    CompareSaid("a block of " + std::to_string(frames));
}

void SideBySide::PlayFrames(std::int32_t frames) {
    effect->processReplacing(effect, nullptr, nullptr, frames);
    model.Process<float>(nullptr, frames);
    CompareSaid("silence of " + std::to_string(frames));
}

void SideBySide::Record(bool on) {
    on ? object->startRecording() : object->stopRecording();
    on ? model.StartRecording() : model.StopRecording();
    CompareSaid("recording");
}

void SideBySide::RefuseOpens(std::uint32_t device, std::uint32_t code) {
    for (auto* const refused : {&layer.refusedOpens, &model.devices.refusedOpens}) {
        refused->erase(device);
        if (code != 0) (*refused)[device] = code;
    }
}

void SideBySide::CompareState() {
    for (std::int32_t index = -2; index < 99; ++index) Get(index);
    const TNoteRecorder& recorder = object->noteRecorder;
    const auto same = [this](auto met, auto expected, const char* what) {
        Same<std::int64_t>(static_cast<std::int64_t>(met), static_cast<std::int64_t>(expected), what);
    };
    same(object->stopped.load(), model.stopped, "stopped");
    same(object->outputsIdle.load(), model.outputsIdle, "outputsIdle");
    same(object->recordingOn.load(), model.recordingOn, "recordingOn");
    same(object->totalSamples.load(), model.totalSamples, "totalSamples");
    same(object->silentSamples.load(), model.silentSamples, "silentSamples");
    same(recorder.GetTime(), model.recorder.time, "time");
    same(recorder.ProgramMessage(), model.recorder.ProgramMessage(), "program message");
    same(recorder.sendProgramChange.load(), model.recorder.sendProgramChange, "sendProgramChange");
    for (int band = 0; band < 84; ++band) {
        same(recorder.messages[band].onMessage.load(), model.recorder.onMessage[band], "onMessage");
        same(recorder.messages[band].offMessage.load(), model.recorder.offMessage[band], "offMessage");
        same(recorder.playing[band].load(), model.recorder.playing[band], "playing");
        same(object->detector.bandOn[band], model.detector.bandOn[band], "bandOn");
        const float met = object->detector.bandLevel[band], expected = model.detector.bandLevel[band];
        if (!std::isnan(met) || !std::isnan(expected))
            same(std::bit_cast<std::uint32_t>(met), std::bit_cast<std::uint32_t>(expected), "bandLevel");
    }
    std::vector<ModelTakeEvent> take;
    recorder.outputs.ForEach([&](TNoteOut& output) {
        if (const auto* recording = dynamic_cast<const TRTRecording*>(&output))
            for (const TRecordEvent& event : recording->GetTake())
                take.push_back({event.time, event.message, event.level});
    });
    Same(take, model.recording.take, "take");
    Text(effGetProgramName);
}

std::intptr_t SideBySide::Callback(AEffect*, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                   void* ptr, float opt) {
    return current->Answer(opcode, index, value, ptr, opt);
}

std::intptr_t SideBySide::Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                 float opt) {
    switch (opcode) {
        case audioMasterVersion: return kind.is24 ? 2400 : 2300;
        case audioMasterGetSampleRate: return static_cast<std::intptr_t>(kind.sampleRate);
        case audioMasterGetVendorString:
            std::strcpy(static_cast<char*>(ptr), kind.isAbleton ? "Ableton" : "Ableton AG");
            return 1;
        case audioMasterProcessEvents: calls.push_back(Event(*static_cast<VstEvents*>(ptr))); return 0;
        case audioMasterCanDo: calls.push_back({opcode, 0, 0, static_cast<const char*>(ptr)}); return 0;
        case audioMasterAutomate:
            calls.push_back({opcode, index, 0, {}});
            if (callsBack) effect->setParameter(effect, index, opt);
            return 0;
        default: calls.push_back({opcode, static_cast<std::int32_t>(value), 0, {}}); return 0;
    }
}

void SideBySide::Show(const std::string& text, const std::string& caption) {
    boxes.push_back(caption + ": " + text);
}

std::vector<float> SomeAudio(Trial& trial, std::size_t samples, float sampleRate) {
    std::vector<float> audio(samples);
    if (trial.OneIn(6)) return audio;
    if (trial.OneIn(6)) {
        for (float& sample : audio) sample = static_cast<float>(trial.Below(2001)) / 1000.0F - 1;
        return audio;
    }
    std::vector<int> notes(1 + trial.Below(4));
    for (int& note : notes) note = 24 + static_cast<int>(trial.Below(60));
    return Chord(notes, samples, 0, static_cast<double>(sampleRate));
}
