#pragma once
#include "base/text.h"
#include "engine/real_time_detector.h"
#include "harmony/vocabulary.h"
#include "tests/model/recorder.h"

// What matters of a host.
struct ModelHostKind {
    bool is24 = true;  // speaks version 2400 exactly
    bool isAbleton = false;
    float sampleRate = 44100;  // as it answers at construction
};

// The plug-in object once more, as its host sees it: every answer, every call to the host, to a device and to
// the user, the notes, and the take. The detector is the product's own with its plain loops: what is restated
// is the path behind it. No editor window, no chords.
class ModelPlugin {
public:
    explicit ModelPlugin(const ModelHostKind& host)
        : detector(host.sampleRate >= 100 ? static_cast<std::int32_t>(host.sampleRate) : 44100, 45, 84),
          sampleRate(static_cast<float>(detector.sampleRate)),
          kind(host),
          hostOut(calls, totalSamples, host.isAbleton) {
        detector.kernels = PlainKernels();
        detector.SetMonoEnabled(false);
        detector.SetTuningEnabled(false);
        detector.SetBandwidth(0.02F);
        detector.equalizerEnabled = true;
        detector.handler = &recorder;
        recorder.Attach(&detector);
        recorder.AddOutput(hostOut);  // which sends the program, before that is switched off below
        for (int bar = 3; bar <= 86; ++bar) values[bar] = 1;
        values[91] = 1;
        SetParameter(2, 0.79F);
        SetParameter(1, 0.875F);
        SetParameter(0, 0.87F);
        recorder.AddOutput(recording);
        recorder.SetSendProgramChange(false);
    }
    ModelPlugin(const ModelPlugin&) = delete;
    ModelPlugin& operator=(const ModelPlugin&) = delete;
    void Close() {                               // the end of the plug-in
        if (deviceOut) ports.Close(devicePort);  // its notes are the table's to end
    }

    // ---- what the host asks ----

    std::intptr_t Dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                           float opt) {
        char* const text = static_cast<char*>(ptr);
        const auto give = [text](const std::string& answer, std::size_t room = 64) {
            CopyText(text, room, answer);
            return text != nullptr;
        };
        switch (opcode) {
            case effSetProgramName:
                if (text != nullptr) programName = std::string(text, strnlen(text, 31));
                return 0;
            case effGetProgramName: give(programName, 32); return 0;
            case effGetParamLabel: give(index == 2 ? "MIDI Velocity" : Name(index)); return 0;
            case effGetParamDisplay: give(Display(GetParameter(index), index)); return 0;
            case effGetParamName: give(Name(index)); return 0;
            case effSetSampleRate: SetSampleRate(opt); return 0;
            case effMainsChanged: value != 0 ? Resume() : Suspend(); return 0;
            case effEditGetRect: return ptr != nullptr;
            case effIdentify: return FourCharacters('N', 'v', 'E', 'f');
            case effCanBeAutomated: return index < 87;
            case effString2Parameter: return StringToParameter(index, text);
            case effConnectInput:
            case effConnectOutput: return 1;
            case effGetPlugCategory: return 3;
            case effSetBlockSizeAndSampleRate: SetSampleRate(opt); return 1;
            case effGetEffectName: return give("ORVA Audio To MIDI", 32);
            case effGetVendorString: return give("ORVASOFT");
            case effGetProductString: return give("ORVA Audio To MIDI");
            case effGetVendorVersion: return 5632;
            case effCanDo:
                if (text == nullptr || std::strcmp(text, "sendVstMidiEvent") != 0) return 0;
                hostAsked = true;
                return 1;
            case effKeysRequired: return 1;  // means: no keys
            case effGetVstVersion: return 2400;
            case effSetTotalSampleToProcess: return value;
            case effSetProcessPrecision: return 1;
            default: return 0;  // not overridden, or unknown: no
        }
    }

    // ---- parameters ----

    float GetParameter(std::int32_t index) const { return index >= 0 && index < 96 ? values[index] : 0; }
    void SetParameterFromEditor(std::int32_t index, float value) {
        SetParameter(index, value);
        inEditorChange = true;
        calls.push_back({audioMasterAutomate, index, std::bit_cast<std::uint32_t>(value), {}});
        inEditorChange = false;
    }
    void SetParameter(std::int32_t index, float value) {
        if (inEditorChange || index < 0 || index > 95) return;
        const bool on = IsOn(value);
        if (index == 88) return ApplyDevice(value);
        if (index == 89) {
            if (on != (values[89] != 0)) on ? static_cast<void>(OpenDevice(values[88])) : CloseDevice();
            return;
        }
        if (index == 90) {
            if (TruncateToInt32(value * 15.99) >= 16) return;
            recorder.ChangeChannel(TruncateToInt32(value * 15.99));
        }
        values[index] = index != 91 && index != 93 ? value : on ? 1.0F : 0.0F;
        if (index == 0) detector.SetRelativeThreshold(1 - value);
        if (index == 1) detector.SetFloorDb(value * -40);
        if (index == 2) recorder.ChangeVelocity(static_cast<signed char>(TruncateToInt32(value * 127)));
        if (index <= 2) SayToHost(audioMasterUpdateDisplay);
        if (index >= 3 && index <= 86) detector.SetBandGain(index - 3, value);
        if (index == 87) recorder.SetProgram(TruncateToInt32(value * 127));
        if (index == 91) on ? hostOut.Start() : hostOut.Stop();
        if (index == 95) recorder.SetSendProgramChange(on);
    }

    // ---- blocks ----

    template <typename Sample>  // null is silence; below 0 is a block of length 0
    void Process(const Sample* in, std::int32_t frames) {
        if (firstBlock && !hostAsked && !kind.is24) SayToHost(audioMasterWantMidi, 1);
        firstBlock = false;
        const std::size_t count = frames > 0 ? static_cast<std::size_t>(frames) : 0;
        std::vector<short> block(in != nullptr ? count : 0);
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = static_cast<short>(TruncateToInt32(in[i] * static_cast<Sample>(30000)));
        DeliverBlock(block, count);
    }
    void StartRecording() {
        recording.Clear();
        recording.Start();
        recordingOn = true;
    }
    void StopRecording() {
        recording.Stop();
        recordingOn = false;
    }

    std::vector<ModelHostCall> calls;  // in their order; what only asks is left out
    std::vector<std::string> boxes;    // caption and text of each message to the user
    ModelPorts ports;

    TRealTimeTS107 detector;
    ModelRecorder recorder;
    ModelRecording recording;
    std::uint64_t totalSamples = 0, silentSamples = 0;
    bool stopped = true, outputsIdle = true, recordingOn = false;
    float sampleRate;
    std::string programName = "Default";

private:
    static bool IsOn(float value) { return value > 0.5F; }
    void SayToHost(std::int32_t opcode, std::int32_t number = 0) { calls.push_back({opcode, number, 0, {}}); }

    bool StringToParameter(std::int32_t index, const char* text) {
        if (text == nullptr || index < 0 || index > 2) return false;
        std::istringstream typed(text);
        if (index == 2) {
            int number = 0;
            const bool read = static_cast<bool>(typed >> number);
            const auto velocity = static_cast<signed char>(number);
            if (!read || velocity <= 0) return false;
            SetParameter(2, static_cast<float>(velocity) / 127.0F + 0.007F);
            return true;
        }
        float number = 0;
        const float least = index == 0 ? 0.0F : -40.0F;
        if (!(typed >> number) || number < least || number > least + (index == 0 ? 1 : 40)) return false;
        SetParameter(index, index == 0 ? 1 - number : number * -0.025F);
        return true;
    }

    void ApplyDevice(float value) {
        if (values[89] == 0) {
            values[88] = value;
            return;
        }
        const float before = values[88];
        CloseDevice();
        if (!OpenDevice(value)) OpenDevice(before);
    }
    bool OpenDevice(float value) {
        std::uint32_t port = 0;
        const auto code = ports.Open(port, static_cast<std::uint32_t>(TruncateToInt32(value * 100)));
        if (code != 0) {
            boxes.push_back("Error opening MIDI device. It may be already opened by the host.: code " +
                            std::to_string(code));
            return false;
        }
        devicePort = port;
        deviceOut = std::make_unique<ModelDeviceOut>(ports, port);
        values[88] = value;
        recorder.AddOutput(*deviceOut);
        deviceOut->Start();
        values[89] = 1;
        SetParameter(87, values[87]);
        SetParameter(90, values[90]);
        return true;
    }
    void CloseDevice() {
        if (!deviceOut) return;
        deviceOut->Stop();
        recorder.RemoveOutput(*deviceOut);
        ports.Close(devicePort);
        deviceOut.reset();
        values[89] = 0;
    }

    // A block without samples is silence of that length; and so is all at a rate that is none.
    void DeliverBlock(const std::vector<short>& block, std::size_t count) {
        const auto now = static_cast<std::int64_t>(totalSamples);
        if (!stopped && recorder.time + recorder.frameLength < now) recorder.time = now;
        std::int64_t sum = 0;
        for (const short sample : block) sum += sample;
        if (sum == 0 || !detects) {
            silentSamples += count;
            StopDetection();
        } else {
            silentSamples = 0;
            StartDetection();
            detector.Process(block.data(), static_cast<unsigned>(block.size() * sizeof(short)));
        }
        totalSamples += count;
    }
    void StartDetection() {
        if (outputsIdle) {
            outputsIdle = false;
            if (deviceOut) deviceOut->Start();
            if (recordingOn) recording.Start();
        }
        if (!stopped) return;
        stopped = false;
        recorder.time = static_cast<std::int64_t>(totalSamples);
        if (values[91] != 0) hostOut.Start();
    }
    void StopDetection() {
        recorder.time = static_cast<std::int64_t>(totalSamples);
        if (!stopped) StopSteps();
        const std::uint64_t rate = TruncateToUint32(sampleRate);
        if (!outputsIdle && rate != 0 && silentSamples / rate >= 3) StopOutputs();
    }
    void StopSteps() {
        stopped = true;
        detector.Reset();
        hostOut.Stop();
        recorder.AllNotesOff();
    }
    void StopOutputs() {
        outputsIdle = true;
        if (deviceOut) deviceOut->Stop();
        if (recordingOn) recording.Stop();
    }
    void Suspend() {
        if (!stopped) StopSteps();
        StopOutputs();
    }
    void Resume() {
        if (!hostAsked && silentSamples + totalSamples != 0 && !kind.is24) SayToHost(audioMasterWantMidi, 1);
    }
    void SetSampleRate(float rate) {
        sampleRate = rate;
        detects = rate >= 100 && rate <= 10'000'000;
        if (detects) detector.SetSampleRate(static_cast<std::int32_t>(rate));
    }

    // ---- names and displays ----

    template <typename... Values>
    static std::string Format(const char* format, Values... values) {
        char text[400];
        std::snprintf(text, sizeof text, format, values...);
        return text;
    }
    static std::string Name(std::int32_t index) {
        return index < 0 || index > 95 ? "No name" : ParameterName(index);
    }
    static std::string Display(float value, std::int32_t index) {
        constexpr const char* pages[] = {"Main frame", "Equa frame", "Options frame", "About frame"};
        constexpr const char* deviceNames[] = {"one", "two", "three"};  // of the test's devices
        const std::int32_t program = TruncateToInt32(value * 127), id = TruncateToInt32(value * 100),
                           page = TruncateToInt32(value * 3.99);
        switch (index) {
            case 0: return value <= 1.0F / 3.0F ? "low" : value <= 2.0F / 3.0F ? "med" : "high";
            case 1: return Format("%d dB", TruncateToInt32(value * -40));
            case 2: return Format("%d", static_cast<signed char>(program));
            case 87: return program >= 0 && program < 128 ? InstrumentNames[program] : "";
            case 88:
                return id >= 0 && id < 3 ? Format("(%d)%s", id + 1, deviceNames[id]) : Format("(%d) N/A", id);
            case 89:
            case 93:
            case 95: return IsOn(value) ? "true" : "false";
            case 90: return Format("%d", TruncateToInt32(value * 15.99 + 1));
            case 92: return page >= 0 && page < 4 ? pages[page] : "";
            case 94: return Format("%.3f s", static_cast<double>(value * 2000) * 0.001);
            default: return Format("%.2f", static_cast<double>(value));
        }
    }

    const ModelHostKind kind;
    ModelHostOut hostOut;
    std::unique_ptr<ModelDeviceOut> deviceOut;
    std::uint32_t devicePort = 0;
    float values[96] = {};  // 89, 91 and 93 hold 0 or 1
    bool firstBlock = true, hostAsked = false, inEditorChange = false, detects = true;
};
