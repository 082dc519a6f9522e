#include "tests/model/side_by_side.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "tests/support/music.h"

namespace {

// How a difference is shown.
std::string Shown(std::int64_t value) {
    return std::to_string(value);
}
std::string Shown(const std::string& value) {
    return '"' + value.substr(0, 300) + '"';
}
std::string Shown(const ModelHostCall& call) {
    char message[80];
    std::snprintf(message, sizeof message, "call %d (%d, %06x) ", call.opcode, call.number, call.message);
    return message + call.text;
}
std::string Shown(const ModelTakeEvent& event) {
    char text[80];
    std::snprintf(text, sizeof text, "%06x at %lld, level %a", event.message,
                  static_cast<long long>(event.time), static_cast<double>(event.level));
    return text;
}
template <typename T>
std::string Shown(const std::vector<T>& list) {
    std::string text = std::to_string(list.size()) + ":";
    for (std::size_t i = 0; i < list.size() && i < 6; ++i) text += " [" + Shown(list[i]) + "]";
    return text;
}

ModelHostCall Event(const VstEvents& events) {
    const auto& event = *reinterpret_cast<const VstMidiEvent*>(events.events[0]);
    VstMidiEvent plain;  // what must be in an event besides its time and its message
    plain.deltaFrames = event.deltaFrames;
    std::copy_n(event.midiData, 3, plain.midiData);
    const bool proper = events.numEvents == 1 && events.reserved == 0 && plain.type == kVstMidiType &&
                        plain.byteSize == 24 && std::memcmp(&plain, &event, sizeof plain) == 0;
    std::uint32_t message = 0;
    std::memcpy(&message, event.midiData, 3);
    return {audioMasterProcessEvents, event.deltaFrames, message, proper ? "" : "malformed"};
}

}  // namespace

bool IsLegal(std::uint32_t message) {
    const std::uint32_t status = message & 0xF0;
    return message == 0 ||
           ((message & 0xFF808000) == 0 && (status == 0x80 || status == 0x90 || status == 0xC0));
}

ModelHostKind KindOfBatch(const Trial& trial, std::uint64_t batch) {
    constexpr float rates[] = {44100, 48000, 96000, 22050, 0};
    const std::uint64_t number = trial.number / batch;
    return {number % 3 != 1, number % 3 == 2, rates[number / 3 % 5]};
}

SideBySide::SideBySide(Trial& caseTrial, const ModelHostKind& hostKind)
    : model(hostKind), trial(caseTrial), kind(hostKind) {
    unsetenv("DISPLAY");  // NOLINT(concurrency-mt-unsafe): no window here, and one thread
    SubstituteMidiOut(&devices);
    host.answers = [this](const Host::Request& request, std::intptr_t& answer) {
        return Answer(request, answer);
    };
    trial.Require(host.Open(OpenPlugin), "the plug-in does not open");
    object = &host.Object<CORVAguivst>();
    CompareSaid("opening");
}

SideBySide::~SideBySide() {
    host.Close();
    model.Close();
    CompareSaid("closing");
    trial.Require(devices.OpenCount() == 0, "a device was left open");
    SubstituteMidiOut(nullptr);
}

template <typename T>
void SideBySide::Same(const T& seen, const T& expected, const std::string& what) const {
    if (!(seen == expected)) trial.Fail(what + ": " + Shown(seen) + ", the model says " + Shown(expected));
}

void SideBySide::CompareSaid(const std::string& after) {
    for (const ModelHostCall& call : calls) {
        if (call.opcode != audioMasterProcessEvents) continue;
        if (!IsLegal(call.message)) trial.Fail("no MIDI message after " + after + ": " + Shown(call));
        notes += (call.message & 0xF0) == 0x90;
    }
    Same(calls, model.calls, "said to the host after " + after);
    std::vector<std::string> lines = devices.Taken();
    std::erase(lines, "read");
    Same(lines, model.devices.lines, "said to devices after " + after);
    Same(messages.shown, model.boxes, "messages after " + after);
    calls.clear(), model.calls.clear(), model.devices.lines.clear();
    messages.shown.clear(), model.boxes.clear();
}

void SideBySide::Call(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                      const std::optional<std::string>& text, float opt) {
    const std::string what = "opcode " + std::to_string(opcode) + " (" + std::to_string(index) + ", " +
                             std::to_string(value) + ", " + text.value_or("null").substr(0, 80) + ", " +
                             std::to_string(opt) + ")";
    struct Buffer {
        alignas(8) char bytes[128];
    };
    Buffer seen, expected;
    std::memset(seen.bytes, 0x7F, sizeof seen.bytes);
    if (text) seen.bytes[text->copy(seen.bytes, 100)] = '\0';
    expected = seen;
    const std::intptr_t answer = host.Call(opcode, index, value, text ? seen.bytes : nullptr, opt);
    const std::intptr_t right = model.Dispatch(opcode, index, value, text ? expected.bytes : nullptr, opt);
    Same<std::int64_t>(answer, right, what);
    if (opcode == effEditGetRect && text) {
        const ERect& rect = **reinterpret_cast<ERect**>(seen.bytes);
        Same<std::int64_t>(rect.top | rect.left | rect.bottom << 16 | rect.right, 320 << 16 | 400,
                           "rectangle");
    } else {
        Same(std::string(seen.bytes, sizeof seen.bytes), std::string(expected.bytes, sizeof seen.bytes),
             what);
    }
    CompareSaid(what);
}

void SideBySide::Set(std::int32_t index, float value) {
    host.Set(index, value);
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
    const float seen = host.Get(index), expected = model.GetParameter(index);
    if (std::bit_cast<std::uint32_t>(seen) != std::bit_cast<std::uint32_t>(expected))
        trial.Fail("parameter " + std::to_string(index) + " is " + std::to_string(seen) +
                   ", the model says " + std::to_string(expected));
}

void SideBySide::Play(const std::vector<float>& block, Way way, bool inPlace) {
    const bool passes = host.Play(block, std::max<std::size_t>(block.size(), 1), way, inPlace);
    if (block.empty()) return;
    const auto frames = static_cast<std::int32_t>(block.size());
    if (way == Way::doubleReplacing)
        model.Process(std::vector<double>(block.begin(), block.end()).data(), frames);
    else
        model.Process(block.data(), frames);
    trial.Require(passes, "the audio is not as it came");
    CompareSaid("a block of " + std::to_string(frames));
}

void SideBySide::PlayFrames(std::int32_t frames) {
    host.effect->processReplacing(host.effect, nullptr, nullptr, frames);
    model.Process<float>(nullptr, frames);
    CompareSaid("silence of " + std::to_string(frames));
}

void SideBySide::Record(bool on) {
    on ? object->startRecording() : object->stopRecording();
    on ? model.StartRecording() : model.StopRecording();
    CompareSaid("recording");
}

void SideBySide::JumpTo(std::uint64_t samples) {
    PlayFrames(1);
    object->totalSamples = model.totalSamples = samples;
    PlayFrames(1);
}

void SideBySide::RefuseOpens(std::uint32_t device, std::uint32_t code) {
    for (auto* const refused : {&devices.refusedOpens, &model.devices.refusedOpens}) {
        refused->erase(device);
        if (code != 0) (*refused)[device] = code;
    }
}

void SideBySide::CompareState() {
    for (std::int32_t index = -2; index < 99; ++index) Get(index);
    const TNoteRecorder& recorder = object->noteRecorder;
    const auto same = [this](auto seen, auto expected, const char* what) {
        Same<std::int64_t>(static_cast<std::int64_t>(seen), static_cast<std::int64_t>(expected), what);
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
        const float seen = object->detector.bandLevel[band], expected = model.detector.bandLevel[band];
        if (!std::isnan(seen) || !std::isnan(expected))
            same(std::bit_cast<std::uint32_t>(seen), std::bit_cast<std::uint32_t>(expected), "bandLevel");
    }
    std::vector<ModelTakeEvent> take;
    recorder.outputs.ForEach([&](TNoteOut& output) {
        if (const auto* recording = dynamic_cast<const TRTRecording*>(&output))
            for (const TRecordEvent& event : recording->GetTake())
                take.push_back({event.time, event.message, event.level});
    });
    Same(take, model.recording.take, "take");
    Call(effGetProgramName, 0, 0, "");
}

bool SideBySide::Answer(const Host::Request& request, std::intptr_t& answer) {
    switch (request.opcode) {
        case audioMasterVersion: answer = kind.is24 ? 2400 : 2300; break;
        case audioMasterGetSampleRate: answer = static_cast<std::intptr_t>(kind.sampleRate); break;
        case audioMasterGetVendorString:
            std::strcpy(static_cast<char*>(request.ptr), kind.isAbleton ? "Ableton" : "Ableton AG");
            answer = 1;
            break;
        case audioMasterProcessEvents: calls.push_back(Event(*static_cast<VstEvents*>(request.ptr))); break;
        case audioMasterGetProductString:
        case audioMasterGetVendorVersion:
        case audioMasterCanDo: break;
        case audioMasterAutomate:
            calls.push_back({request.opcode, request.index, 0, {}});
            if (callsBack) host.Set(request.index, request.opt);
            break;
        default: calls.push_back({request.opcode, static_cast<std::int32_t>(request.value), 0, {}});
    }
    return true;
}

std::vector<float> SomeAudio(Trial& trial, std::size_t samples, float sampleRate) {
    switch (trial.Below(6)) {
        case 0: return Silence(samples);
        case 1: return Noise(trial.random, samples);
        default:
            std::vector<int> notes(1 + trial.Below(4));
            for (int& note : notes) note = 24 + static_cast<int>(trial.Below(60));
            return Chord(notes, samples, 0, static_cast<double>(sampleRate));
    }
}
