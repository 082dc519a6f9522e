#pragma once
#include "tests/model/plugin.h"
#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/trial.h"

// The plug-in and the model in the same host, called in the same way. Whatever the two answer, say to the
// host, to the devices or to the user, and at CompareState all that they hold, must be the same; otherwise
// the case fails with the first difference. One at a time in a process.
class SideBySide {
public:
    SideBySide(Trial& caseTrial, const ModelHostKind& hostKind)
        : model(hostKind), trial(caseTrial), kind(hostKind) {
        unsetenv("DISPLAY");  // NOLINT(concurrency-mt-unsafe): no window here, and one thread
        host.answers = [this](const Host::Request& request, std::intptr_t& answer) {
            return Answer(request, answer);
        };
        trial.Require(host.Open(OpenPlugin), "the plug-in does not open");
        object = &host.Object<CORVAguivst>();
        CompareSaid("opening");
    }
    ~SideBySide() {
        host.Close();
        model.Close();
        CompareSaid("closing");
        trial.Require(devices.OpenCount() == 0, "a device was left open");
    }
    SideBySide(const SideBySide&) = delete;
    SideBySide& operator=(const SideBySide&) = delete;

    // With a text, a buffer that begins with it is handed over, and compared as a whole afterwards.
    void Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
              const std::optional<std::string>& text = {}, float opt = 0) {
        const std::string what = "opcode " + std::to_string(opcode) + " (" + std::to_string(index) + ", " +
                                 std::to_string(value) + ", " + text.value_or("null").substr(0, 80) + ", " +
                                 std::to_string(opt) + ")";
        alignas(8) char seen[128], expected[128];
        std::memset(seen, 0x7F, sizeof seen);
        if (text) seen[text->copy(seen, 100)] = '\0';
        std::memcpy(expected, seen, sizeof seen);
        const std::intptr_t answer = host.Call(opcode, index, value, text ? seen : nullptr, opt);
        Same<std::int64_t>(answer, model.Dispatch(opcode, index, value, text ? expected : nullptr, opt),
                           what);
        if (opcode == effEditGetRect && text) {
            const ERect& rect = **reinterpret_cast<ERect**>(seen);
            Same(rect.top | rect.left | rect.bottom << 16 | rect.right, 320 << 16 | 400, "rectangle");
        } else {
            Same(std::string(seen, sizeof seen), std::string(expected, sizeof expected), what);
        }
        CompareSaid(what);
    }
    void Set(std::int32_t index, float value) {
        host.Set(index, value);
        model.SetParameter(index, value);
        CompareSaid("setting " + std::to_string(index) + " to " + std::to_string(value));
        Get(index);
    }
    void SetFromEditor(std::int32_t index, float value) {
        object->setParameterFromEditor(index, value);
        model.SetParameterFromEditor(index, value);
        CompareSaid("the editor's setting " + std::to_string(index) + " to " + std::to_string(value));
        Get(index);
    }
    void Get(std::int32_t index) {
        Same(std::bit_cast<std::uint32_t>(host.Get(index)),
             std::bit_cast<std::uint32_t>(model.GetParameter(index)), "value of " + std::to_string(index));
    }
    void Play(const std::vector<float>& block, Way way = Way::replacing, bool inPlace = false) {
        if (block.empty()) return;
        trial.Require(host.Play(block, block.size(), way, inPlace), "the audio is not as it came");
        const auto frames = static_cast<std::int32_t>(block.size());
        if (way == Way::doubleReplacing)
            model.Process(std::vector<double>(block.begin(), block.end()).data(), frames);
        else
            model.Process(block.data(), frames);
        CompareSaid("a block of " + std::to_string(frames));
    }
    // Of silence, by a null pointer; with an output, that must be silent, too.
    void PlayFrames(std::int32_t frames, bool output = false) {
        std::vector<float> out(output && frames > 0 ? static_cast<std::size_t>(frames) : 0, 1);
        if (output)
            host.Process<float>(Way::replacing, nullptr, out.empty() ? nullptr : out.data(), frames);
        else
            host.effect->processReplacing(host.effect, nullptr, nullptr, frames);
        model.Process<float>(nullptr, frames);
        trial.Require(out == std::vector<float>(out.size()), "null is not silence");
        CompareSaid("silence of " + std::to_string(frames));
    }
    void Record(bool on) {
        on ? object->startRecording() : object->stopRecording();
        on ? model.StartRecording() : model.StopRecording();
        CompareSaid("recording");
    }
    void JumpTo(std::uint64_t samples) {  // as if so many had been played
        PlayFrames(1);
        object->totalSamples = model.totalSamples = samples;
        PlayFrames(1);
    }
    // The same to both note handlers, beneath the parameters, which reach few of their states.
    template <typename Act>
    void Recorders(Act act) {
        act(object->noteRecorder), act(model.recorder);
        CompareSaid("a change of the note handler");
    }
    // A frame in which one band in `change`, on the average, is another, as no music has it.
    void Frame(std::uint64_t change) {
        for (std::uint64_t band = trial.Below(2 * change); band < 84; band += 1 + trial.Below(2 * change)) {
            const float level = trial.OneIn(9) ? 0 : static_cast<float>(trial.Within(0, 4));
            for (INoteDetector* const each : {static_cast<INoteDetector*>(&object->detector),
                                              static_cast<INoteDetector*>(&model.detector)})
                each->bandOn[band] = !each->bandOn[band], each->bandLevel[band] = level;
        }
        Recorders([](auto& recorder) { recorder.OnFrame(); });
    }
    void RefuseOpens(std::uint32_t device, std::uint32_t code) {  // 0: opens again
        for (auto* const refused : {&devices.refusedOpens, &model.ports.devices.refusedOpens}) {
            refused->erase(device);
            if (code != 0) (*refused)[device] = code;
        }
    }
    void CompareState() {
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
        for (const TRecordEvent& event : RecordingOf(*object).GetTake())
            take.push_back({event.time, event.message, event.level});
        Same(take, model.recording.take, "take");
        Call(effGetProgramName, 0, 0, "");
    }

    ModelPlugin model;
    Host host;
    CORVAguivst* object = nullptr;
    std::uint64_t notes = 0;  // note ons that both sent
    bool callsBack = false;   // the host answers a change in the editor by setting that parameter

private:
    template <typename T>
    void Same(const T& seen, const T& expected, const std::string& what) const {
        if (!(seen == expected))
            trial.Fail(what + ": " + testing::PrintToString(seen) + ", the model says " +
                       testing::PrintToString(expected));
    }
    void CompareSaid(const std::string& after) {
        for (const ModelHostCall& call : calls)
            notes += call.opcode == audioMasterProcessEvents && (call.message & 0xF0) == 0x90;
        Same(calls, model.calls, "said to the host after " + after);
        Same(devices.Taken(), model.ports.devices.Taken(), "said to devices after " + after);
        Same(messages.shown, model.boxes, "messages after " + after);
        calls.clear(), model.calls.clear();
        messages.shown.clear(), model.boxes.clear();
    }
    bool Answer(const Host::Request& request, std::intptr_t& answer) {
        switch (request.opcode) {
            case audioMasterVersion: answer = kind.is24 ? 2400 : 2300; break;
            case audioMasterGetSampleRate: answer = static_cast<std::intptr_t>(kind.sampleRate); break;
            case audioMasterGetVendorString:
                std::strcpy(static_cast<char*>(request.ptr), kind.isAbleton ? "Ableton" : "Ableton AG");
                answer = 1;
                break;
            case audioMasterProcessEvents:
                calls.push_back(Event(*static_cast<VstEvents*>(request.ptr)));
                break;
            case audioMasterGetProductString:
            case audioMasterGetVendorVersion:
            case audioMasterCanDo: break;
            case audioMasterAutomate:
                calls.push_back(
                    {request.opcode, request.index, std::bit_cast<std::uint32_t>(request.opt), {}});
                if (callsBack) host.Set(request.index, request.opt);
                break;
            default: calls.push_back({request.opcode, static_cast<std::int32_t>(request.value), 0, {}});
        }
        return true;
    }
    static ModelHostCall Event(const VstEvents& events) {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(events.events[0]);
        VstMidiEvent plain;  // what must be in an event besides its time and its message
        plain.deltaFrames = event.deltaFrames;
        std::copy_n(event.midiData, 3, plain.midiData);
        std::uint32_t message = 0;
        std::memcpy(&message, event.midiData, 3);
        const std::uint32_t status = message & 0xF0;
        const bool legal = message == 0 || ((message & 0x808000) == 0 &&
                                            (status == 0x80 || status == 0x90 || status == 0xC0));
        const bool proper = events.numEvents == 1 && events.reserved == 0 && plain.type == kVstMidiType &&
                            plain.byteSize == 24 && std::memcmp(&plain, &event, sizeof plain) == 0;
        return {audioMasterProcessEvents, event.deltaFrames, message, proper && legal ? "" : "malformed"};
    }

    Trial& trial;
    const ModelHostKind kind;
    InstalledDevices devices;
    Messages messages;
    std::vector<ModelHostCall> calls;
};
