#include "tests/model/plugin.h"

#include <cstdio>
#include <cstring>
#include <sstream>

#include "base/text.h"
#include "base/truncate.h"
#include "harmony/vocabulary.h"
#include "vst2/records.h"

namespace {

constexpr const char* pitchClasses[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "B", "H"};
constexpr const char* pages[] = {"Main frame", "Equa frame", "Options frame", "About frame"};
constexpr const char* deviceNames[] = {"one", "two", "three"};  // of the test's devices

template <typename... Values>
std::string Format(const char* format, Values... values) {
    char text[400];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

bool IsOn(float value) {
    return value > 0.5F;
}

float UsableRate(float answered) {
    return answered >= 100 && answered < 2147483648.0F ? answered : 44100;
}

// The velocity of a setting: a signed byte.
std::int32_t VelocityOf(float value) {
    return static_cast<signed char>(TruncateToInt32(value * 127));
}

}  // namespace

ModelPlugin::ModelPlugin(const ModelHostKind& host)
    : detector(static_cast<std::int32_t>(UsableRate(host.sampleRate)), 45, 84),
      sampleRate(UsableRate(host.sampleRate)),
      kind(host),
      hostOut(calls, totalSamples, host.isAbleton) {
    detector.kernels = PlainKernels();
    detector.SetMonoEnabled(false);
    detector.SetTuningEnabled(false);
    detector.SetBandwidth(0.02F);
    detector.equalizerEnabled = true;
    detector.handler = &handler;
    recorder.Attach(detector);
    recorder.AddOutput(hostOut);  // which sends the program, before that is switched off below
    for (int bar = 3; bar <= 86; ++bar) values[bar] = 1;
    values[91] = 1;
    SetParameter(2, 0.79F);
    SetParameter(1, 0.875F);
    SetParameter(0, 0.87F);
    recorder.AddOutput(recording);
    recorder.SetSendProgramChange(false);
}

void ModelPlugin::Close() {
    if (deviceOut) devices.Close(devicePort);  // its notes are the table's to end
}

// ---- what the host asks ----

std::intptr_t ModelPlugin::Dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
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

bool ModelPlugin::StringToParameter(std::int32_t index, const char* text) {
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
    if (!(typed >> number)) return false;
    if (index == 0) {
        if (number < 0 || number > 1) return false;
        SetParameter(0, 1 - number);
    } else {
        if (number < -40 || number > 0) return false;
        SetParameter(1, number * -0.025F);
    }
    return true;
}

// ---- parameters ----

float ModelPlugin::GetParameter(std::int32_t index) const {
    return index >= 0 && index < 96 ? values[index] : 0;
}

void ModelPlugin::SetParameterFromEditor(std::int32_t index, float value) {
    SetParameter(index, value);
    inEditorChange = true;
    SayToHost(audioMasterAutomate, index);
    inEditorChange = false;
}

void ModelPlugin::SetParameter(std::int32_t index, float value) {
    if (inEditorChange) return;
    if (index < 0 || index > 95) return;
    switch (index) {
        case 89:
            if (IsOn(value) == (values[89] != 0)) return;
            IsOn(value) ? static_cast<void>(OpenDevice(values[88])) : CloseDevice();
            return;
        case 88: ApplyDevice(value); return;
        case 90:
            if (TruncateToInt32(value * 15.99) >= 16) return;
            recorder.ChangeChannel(TruncateToInt32(value * 15.99));
            break;
        default: break;
    }
    const bool isSwitch = index == 91 || index == 93;
    values[index] = !isSwitch ? value : IsOn(value) ? 1.0F : 0.0F;
    if (index == 0) detector.SetRelativeThreshold(1 - value);
    if (index == 1) detector.SetFloorDb(value * -40);
    if (index == 2) recorder.ChangeVelocity(VelocityOf(value));
    if (index <= 2) SayToHost(audioMasterUpdateDisplay);
    if (index >= 3 && index <= 86) detector.SetBandGain(index - 3, value);
    if (index == 87) recorder.SetProgram(TruncateToInt32(value * 127));
    if (index == 91) IsOn(value) ? hostOut.Start() : hostOut.Stop();
    if (index == 95) recorder.SetSendProgramChange(IsOn(value));
}

void ModelPlugin::ApplyDevice(float value) {
    if (values[89] == 0) {
        values[88] = value;
        return;
    }
    const float before = values[88];
    CloseDevice();
    if (!OpenDevice(value)) OpenDevice(before);
}

bool ModelPlugin::OpenDevice(float value) {
    std::uint32_t port = 0;
    const std::uint32_t code = devices.Open(port, static_cast<std::uint32_t>(TruncateToInt32(value * 100)));
    if (code != 0) {
        boxes.push_back("Error opening MIDI device. It may be already opened by the host.: code " +
                        std::to_string(code));
        return false;
    }
    devicePort = port;
    deviceOut = std::make_unique<ModelDeviceOut>(devices, port);
    values[88] = value;
    recorder.AddOutput(*deviceOut);
    deviceOut->Start();
    values[89] = 1;
    SetParameter(87, values[87]);
    SetParameter(90, values[90]);
    return true;
}

void ModelPlugin::CloseDevice() {
    if (!deviceOut) return;
    deviceOut->Stop();
    recorder.RemoveOutput(*deviceOut);
    devices.Close(devicePort);
    deviceOut.reset();
    values[89] = 0;
}

// ---- blocks ----

template <typename Sample>
void ModelPlugin::Process(const Sample* in, std::int32_t frames) {
    if (firstBlock && !hostAsked && !kind.is24) SayToHost(audioMasterWantMidi, 1);
    firstBlock = false;
    const std::size_t count = frames > 0 ? static_cast<std::size_t>(frames) : 0;
    std::vector<short> block(in != nullptr ? count : 0);
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<short>(TruncateToInt32(in[i] * static_cast<Sample>(30000)));
    DeliverBlock(block, count);
}
template void ModelPlugin::Process(const float*, std::int32_t);
template void ModelPlugin::Process(const double*, std::int32_t);

// A block without samples is silence of that length.
void ModelPlugin::DeliverBlock(const std::vector<short>& block, std::size_t count) {
    const auto now = static_cast<std::int64_t>(totalSamples);
    if (!stopped && recorder.time + recorder.frameLength < now) recorder.time = now;
    std::int64_t sum = 0;
    for (const short sample : block) sum += sample;
    if (sum == 0) {
        silentSamples += count;
        StopDetection();
    } else {
        silentSamples = 0;
        StartDetection();
        detector.Process(block.data(), static_cast<unsigned>(block.size() * sizeof(short)));
    }
    totalSamples += count;
}

void ModelPlugin::StartDetection() {
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

void ModelPlugin::StopDetection() {
    recorder.time = static_cast<std::int64_t>(totalSamples);
    if (!stopped) StopSteps();
    if (!outputsIdle && silentSamples / static_cast<std::uint64_t>(sampleRate) >= 3) StopOutputs();
}

void ModelPlugin::StopSteps() {
    stopped = true;
    detector.Reset();
    hostOut.Stop();
    recorder.AllNotesOff();
}

void ModelPlugin::StopOutputs() {
    outputsIdle = true;
    if (deviceOut) deviceOut->Stop();
    if (recordingOn) recording.Stop();
}

void ModelPlugin::Suspend() {
    if (!stopped) StopSteps();
    StopOutputs();
}

void ModelPlugin::Resume() {
    if (!hostAsked && silentSamples + totalSamples != 0 && !kind.is24) SayToHost(audioMasterWantMidi, 1);
}

void ModelPlugin::SetSampleRate(float rate) {
    sampleRate = rate;
    detector.SetSampleRate(static_cast<std::int32_t>(rate));
}

void ModelPlugin::StartRecording() {
    recording.Clear();
    recording.Start();
    recordingOn = true;
}

void ModelPlugin::StopRecording() {
    recording.Stop();
    recordingOn = false;
}

// ---- names and displays ----

std::string ModelPlugin::Name(std::int32_t index) const {
    if (index >= 3 && index <= 86)
        return Format("Equalizer bar %s %d", pitchClasses[(index - 3) % 12], (index + 21) / 12);
    switch (index) {
        case 0: return "Polyphony";
        case 1: return "Sensitivity";
        case 2: return "Velocity";
        case 87: return "MIDI Instrument";
        case 88: return "MIDI Out Device";
        case 89: return "MIDI Out Enabled";
        case 90: return "MIDI Channel";
        case 91: return "Output to Host Enabled";
        case 92: return "Active Page";
        case 93: return "Chords Enabled";
        case 94: return "Chords Delay";
        case 95: return "Send Program Change";
        default: return "No name";
    }
}

std::string ModelPlugin::Display(float value, std::int32_t index) const {
    const auto within = [](std::int32_t number, std::int32_t count) { return number >= 0 && number < count; };
    switch (index) {
        case 0: return value <= 1.0F / 3.0F ? "low" : value <= 2.0F / 3.0F ? "med" : "high";
        case 1: return Format("%d dB", TruncateToInt32(value * -40));
        case 2: return Format("%d", static_cast<signed char>(TruncateToInt32(value * 127)));
        case 87: {
            const std::int32_t program = TruncateToInt32(value * 127);
            return within(program, 128) ? InstrumentNames[program] : "";
        }
        case 88: {
            const std::int32_t id = TruncateToInt32(value * 100);
            return within(id, 3) ? Format("(%d)%s", id + 1, deviceNames[id]) : Format("(%d) N/A", id);
        }
        case 89:
        case 93:
        case 95: return value > 0.5F ? "true" : "false";
        case 90: return Format("%d", TruncateToInt32(value * 15.99 + 1));
        case 92: {
            const std::int32_t page = TruncateToInt32(value * 3.99);
            return within(page, 4) ? pages[page] : "";
        }
        case 94: return Format("%.3f s", static_cast<double>(value * 2000) * 0.001);
        default: return Format("%.2f", static_cast<double>(value));
    }
}
