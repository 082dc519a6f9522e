#include "plugin/gui_plugin.h"

#include <algorithm>
#include <cmath>

#include "base/scoped.h"
#include "base/text.h"
#include "base/truncate.h"
#include "delivery/rt_recording.h"
#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "notes/stream.h"

std::atomic<bool> editorCreationFailed{false};

namespace {

constexpr std::int32_t chordsPerSecond = 10;
constexpr std::uint64_t secondsToIdle = 3;  // of silence, before the further outputs stop
constexpr char takeTitle[] = "Created with ORVA Audio To MIDI VST";

std::uint32_t WholeRate(float rate) {
    return TruncateToUint32(rate);
}

}  // namespace

CORVAguivst::CORVAguivst(audioMasterCallback host, EditorFactory makeEditor)
    : CORVA_vst(host, parameterCount), device(noteRecorder, messages, *this) {
    if (makeEditor != nullptr) {
        try {
            editorObject = makeEditor(*this);
        } catch (...) {  // the flag reports it; the entry point refuses the object
        }
        if (editorObject == nullptr) editorCreationFailed = true;
        setEditor(editorObject.get());
    }
    // No setter is called for the bars: the detector keeps its own gains until one is first changed.
    for (Relaxed<float>& bar : equalizerBars) bar = ParameterInitialValue(paramFirstBar);
    detector.equalizerEnabled = true;  // for good

    auto take = std::make_unique<TRTRecording>();
    recording = take.get();
    noteRecorder.AddOutput(recording);
    static_cast<void>(take.release());  // the recorder owns it from here on
    applySendProgramChange(ParameterInitialValue(paramSendProgramChange));

    auto chords = std::make_unique<TChordsListener>(static_cast<IChordOwner*>(this), chordsPerSecond);
    chordsListener = chords.get();
    applyChordsDelay(ParameterInitialValue(paramChordsDelay));
    noteRecorder.AddOutput(chordsListener);
    static_cast<void>(chords.release());
}

CORVAguivst::~CORVAguivst() {
    setEditor(nullptr);
    editorObject.reset();
}

// --- parameters ---

void CORVAguivst::setParameter(std::int32_t index, float value) {
    if (inEditorChange == std::this_thread::get_id()) return;  // the host's echo of what is applied already
    applyParameter(index, value);
    notifyEditor(index, value);
}

void CORVAguivst::setParameterFromEditor(std::int32_t index, float value) {
    applyParameter(index, value);
    const ScopedValue change(inEditorChange, std::this_thread::get_id());
    setParameterAutomated(index, value);
}

void CORVAguivst::notifyEditor(std::int32_t index, float value) {
    if (editorObject != nullptr) editorObject->parameterChanged(index, value);
}

void CORVAguivst::applyParameter(std::int32_t index, float value) {
    if (index < paramFirstBar) return CORVA_vst::setParameter(index, value);
    if (index <= paramLastBar) {
        equalizerBars[index - paramFirstBar] = value;
        detector.SetBandGain(index - paramFirstBar, value);
        return;
    }
    switch (index) {
        case paramInstrument:
            instrumentValue = value;
            noteRecorder.SetProgram(ProgramOf(value));
            break;
        case paramDevice: device.SetDevice(value); break;
        case paramDeviceEnabled: device.SetEnabled(IsOn(value)); break;
        case paramChannel: applyChannel(value); break;
        case paramOutputToHost: applyOutputToHost(IsOn(value)); break;
        case paramActivePage: activePageValue = value; break;
        case paramChordsEnabled: chordsEnabled = IsOn(value); break;
        case paramChordsDelay: applyChordsDelay(value); break;
        case paramSendProgramChange: applySendProgramChange(value); break;
        default: break;
    }
}

// A value above 1 would be channel 17; the editor's menu goes back to the one in force.
void CORVAguivst::applyChannel(float value) {
    const std::int32_t channel = ChannelOf(value);
    if (channel >= 16) return notifyEditor(paramChannel, channelValue);
    noteRecorder.ChangeChannel(channel);
    channelValue = value;
}

void CORVAguivst::applyOutputToHost(bool on) {
    const TNoteRecorder::Hold held(noteRecorder);  // a block that starts must not come in between
    outputToHost = on;
    on ? vstMidiOut->Start() : vstMidiOut->Stop();
}

void CORVAguivst::applyChordsDelay(float value) {
    chordsDelayValue = value;
    chordsListener->setDelay(TruncateToUint32(DelayOf(value)));
}

void CORVAguivst::applySendProgramChange(float value) {
    noteRecorder.SetSendProgramChange(IsOn(value));
    sendProgramChangeValue = value;
}

float CORVAguivst::getParameter(std::int32_t index) {
    if (index >= paramFirstBar && index <= paramLastBar) return equalizerBars[index - paramFirstBar];
    switch (index) {
        case paramInstrument: return instrumentValue;
        case paramDevice: return device.midiDeviceValue;
        case paramDeviceEnabled: return device.midiDeviceEnabled ? 1.0F : 0.0F;
        case paramChannel: return channelValue;
        case paramOutputToHost: return outputToHost ? 1.0F : 0.0F;
        case paramActivePage: return activePageValue;
        case paramChordsEnabled: return chordsEnabled ? 1.0F : 0.0F;
        case paramChordsDelay: return chordsDelayValue;
        case paramSendProgramChange: return sendProgramChangeValue;
        default: return CORVA_vst::getParameter(index);
    }
}

void CORVAguivst::getParameterValueDisplay(float value, std::int32_t index, char* text) {
    if (index < paramFirstBar || index >= parameterCount)
        return CORVA_vst::getParameterValueDisplay(value, index, text);
    CopyText(text, textSize, ParameterDisplay(index, value));
}

// --- start and stop ---

void CORVAguivst::startDetection() {
    if (outputsIdle) {
        outputsIdle = false;
        device.Start();
        const TNoteRecorder::Hold held(noteRecorder);  // stopRecording must not come in between
        if (recordingOn) recording->Start();
    }
    CORVA_vst::startDetection();
}

void CORVAguivst::stopDetection() {
    CORVA_vst::stopDetection();
    chordsListener->Update();  // so that chords keep being judged through silence
    const std::uint64_t rate = WholeRate(getSampleRate());
    if (!outputsIdle && rate != 0 && silentSamples / rate >= secondsToIdle) stopOutputs();
}

void CORVAguivst::suspendSteps() {
    CORVA_vst::suspendSteps();
    stopOutputs();
}

void CORVAguivst::stopOutputs() {
    outputsIdle = true;
    device.Stop();
    if (recordingOn) recording->Stop();
    chordsListener->Stop();
}

std::intptr_t CORVAguivst::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                      float opt) {
    if (opcode == effVendorSpecific && index == vendorCall && value == vendorWindowScale)
        return editorObject != nullptr && editorObject->setScale(opt);
    if (opcode == effVendorSpecific && index == vendorCall && value == vendorWindowDark)
        return editorObject != nullptr && editorObject->setDark(opt != 0);
    const std::intptr_t answer = CORVA_vst::dispatcher(opcode, index, value, ptr, opt);
    if (!InsideBlock()) topUpRecording();
    return answer;
}

void CORVAguivst::topUpRecording() {
    recording->TopUp();
    device.DeleteRetired();
}

void CORVAguivst::DeviceOpened() {
    applyParameter(paramInstrument, instrumentValue);
    applyParameter(paramChannel, channelValue);
}

void CORVAguivst::ChordChanged() {
    if (chordsEnabled) notifyEditor(codeChordText, 0.0F);
}

// --- for the editor ---

void CORVAguivst::usePreferredHearing() {
    setHearing(ReadPreferredHearing());
    hearingIsPreferred = true;
}

void CORVAguivst::usePreferredNoteDates() {
    setNoteDates(ReadPreferredNoteDates());
    datesArePreferred = true;
}

void CORVAguivst::startRecording() {
    recording->Clear();
    recording->Prepare();
    const TNoteRecorder::Hold held(noteRecorder);
    recording->Start();
    recordingOn = true;
}

void CORVAguivst::stopRecording() {
    {
        const TNoteRecorder::Hold held(noteRecorder);
        recordingOn = false;  // first, so that the audio thread does not start it once more behind the stop
    }
    recording->Stop();
}

double CORVAguivst::takeSeconds() const {
    const auto elapsed = static_cast<double>(std::max<std::int64_t>(recording->GetElapsed(), 0));
    const auto rate = static_cast<double>(getSampleRate());
    return rate > 0 ? elapsed / rate : 0;
}

std::uint32_t CORVAguivst::takeNotes() const {
    return recording->notesBegun;
}

bool CORVAguivst::nothingRecorded() {
    if (recording->GetTake().empty()) return true;
    const auto score = std::make_unique<TNotes>();
    TakeToNotes(recording->GetTake(), *score, 1, WholeRate(getSampleRate()));
    return score->notes.empty();
}

bool CORVAguivst::saveRecording(const std::string& path) {
    if (recording->GetTake().empty()) return true;
    const auto score = std::make_unique<TNotes>();
    score->title = takeTitle;
    TakeToNotes(recording->GetTake(), *score, 1, WholeRate(getSampleRate()));
    if (score->notes.empty()) return true;
    TFStream stream(path, std::ios::out | std::ios::binary | std::ios::trunc, TFStream::defaultBuffer);
    if (!stream.IsOpen()) return false;
    SaveScore(*score, stream, true);
    return stream.Finish();
}

// The picture's contrast follows the loudness with a lag of some 14 calls.
void CORVAguivst::buildLevels(std::vector<unsigned char>& levels) {
    const auto bands = static_cast<std::size_t>(noteRecorder.GetBandCount());
    levels.resize(bands);
    float peak = 0.000001F;
    for (std::size_t band = 0; band < bands; ++band)
        peak = std::max(peak, noteRecorder.GetBandLevel(static_cast<std::int32_t>(band)));
    levelAverage = 0.93F * levelAverage + 0.07F * std::log(peak);
    for (std::size_t band = 0; band < bands; ++band) {
        const float level = noteRecorder.GetBandLevel(static_cast<std::int32_t>(band));
        const float height = level > 0.0F ? (std::log(level) - levelAverage) * 70.0F + 254.0F : 0.0F;
        levels[band] = static_cast<unsigned char>(TruncateToInt32(std::clamp(height, 0.0F, 254.0F)));
        if (noteRecorder.GetBandOn(static_cast<std::int32_t>(band))) levels[band] = 255;
    }
}

std::string CORVAguivst::currentChordText() {
    return std::string(chordsListener->currentChordCopy().view());
}
