#include "tests/model/recorder.h"

#include <algorithm>

#include "base/truncate.h"
#include "vst2/records.h"

// ---- any output ----

void ModelOut::Start() {
    soundingCount = 0;
    if (recorder != nullptr && !running)
        for (int band = 0; band < recorder->numBands; ++band)
            if (recorder->Sounds(band)) NoteOn(band), ++soundingCount;
    running = true;
}

void ModelOut::Stop() {
    if (!running) return;
    Silence();
    running = false;
}

void ModelOut::Silence() {
    if (!running || silenced) return;
    for (int band = 0; band < recorder->numBands; ++band)
        if (recorder->playing[band]) NoteOff(band), --soundingCount;
    silenced = true;
}

void ModelOut::Update() {
    if (!running) return;
    for (int band = 0; band < recorder->numBands; ++band) {
        const bool now = recorder->Sounds(band), before = recorder->playing[band];
        if (before && !now) NoteOff(band), --soundingCount;
        if (now && !before) NoteOn(band), ++soundingCount;
    }
    silenced = false;
}

// ---- the recorder ----

void ModelRecorder::Attach(INoteDetector& attached) {
    AllNotesOff();
    detector = &attached;
    numBands = attached.numBands;
    frameLength = attached.frameLength;
    sampleRate = static_cast<std::uint32_t>(attached.sampleRate.load());
    time = 0;
    std::fill_n(enabled, numBands, true);
    BuildMessages();
}

void ModelRecorder::BuildMessages() {
    for (int band = 0; band < numBands; ++band) {
        const int note = transpose - detector->referenceBand + 69 + band;
        const bool isNote = note >= 0 && note <= 127;
        const auto low = static_cast<std::uint32_t>(channel & 15) | static_cast<std::uint32_t>(note) << 8;
        onMessage[band] = isNote ? 0x90 | low | static_cast<std::uint32_t>(velocity & 127) << 16 : 0;
        offMessage[band] = isNote ? 0x80 | low : 0;
    }
}

void ModelRecorder::OnFrame() {
    time += frameLength;
    for (ModelOut* output : outputs) output->Update();
    for (int band = 0; band < numBands; ++band) playing[band] = Sounds(band);
}

std::int32_t ModelRecorder::DelaySamples(int band) const {
    const float seconds = detector->GetBandDelay(band) * 0.001F;
    return TruncateToInt32(seconds * static_cast<float>(sampleRate));
}

std::uint32_t ModelRecorder::ProgramMessage() const {
    return static_cast<std::uint32_t>((program & 127) << 8 | 0xC0 | (channel & 15));
}

void ModelRecorder::AddOutput(ModelOut& output) {
    if (std::find(outputs.begin(), outputs.end(), &output) != outputs.end()) return;
    output.recorder = this;
    if (sendProgramChange) output.Send(ProgramMessage());
    outputs.push_back(&output);
}

void ModelRecorder::RemoveOutput(ModelOut& output) {
    const auto at = std::find(outputs.begin(), outputs.end(), &output);
    if (at != outputs.end()) outputs.erase(at);
    output.recorder = nullptr;
}

void ModelRecorder::AllNotesOff() {
    for (ModelOut* output : outputs) output->Silence();
    std::fill_n(playing, numBands, false);
}

void ModelRecorder::Broadcast(std::uint32_t message) {
    for (ModelOut* output : outputs) output->Send(message);
}

void ModelRecorder::SetSendProgramChange(bool on) {
    sendProgramChange = on;
    if (on) Broadcast(ProgramMessage());
}

void ModelRecorder::SetProgram(std::int32_t value) {
    if (value == program) return;
    program = value;
    if (sendProgramChange) Broadcast(ProgramMessage());
}

void ModelRecorder::ChangeTranspose(std::int32_t value) {
    ChangeMapping(value, channel, velocity);
}

void ModelRecorder::ChangeVelocity(std::int32_t value) {
    ChangeMapping(transpose, channel, value);
}

void ModelRecorder::ChangeChannel(std::int32_t value) {
    if (value == channel) return;
    ChangeMapping(transpose, value, velocity);
    Broadcast(ProgramMessage());  // whether or not program changes are wanted
}

void ModelRecorder::ChangeMapping(std::int32_t newTranspose, std::int32_t newChannel,
                                  std::int32_t newVelocity) {
    if (newTranspose == transpose && newChannel == channel && newVelocity == velocity) return;
    AllNotesOff();
    transpose = newTranspose, channel = newChannel, velocity = newVelocity;
    BuildMessages();
}

// ---- to the host ----

std::int32_t ModelHostOut::Delta(int band) const {
    const auto delay = static_cast<std::uint32_t>(ableton ? 0 : recorder->DelaySamples(band));
    const auto wrapped =
        static_cast<std::uint32_t>(recorder->time) - static_cast<std::uint32_t>(totalSamples) - delay;
    const auto delta = static_cast<std::int32_t>(wrapped);
    return ableton && delta < 0 ? 0 : delta;
}

void ModelHostOut::NoteOn(int band) {
    calls.push_back({audioMasterProcessEvents, Delta(band), recorder->onMessage[band], {}});
}

void ModelHostOut::NoteOff(int band) {
    calls.push_back({audioMasterProcessEvents, Delta(band), recorder->offMessage[band], {}});
}

void ModelHostOut::Send(std::uint32_t message) {
    calls.push_back({audioMasterProcessEvents, 0, message, {}});
}

// ---- to a device ----

void ModelDeviceOut::NoteOn(int band) {
    if (recorder->onMessage[band] != 0) ports.Send(port, recorder->onMessage[band]);
}

void ModelDeviceOut::NoteOff(int band) {
    if (recorder->offMessage[band] != 0) ports.Send(port, recorder->offMessage[band]);
}

void ModelDeviceOut::Send(std::uint32_t message) {
    ports.Send(port, message);
}

// ---- into a take ----

// No time is negative, although the clock may be set back to before the origin.
std::int64_t ModelRecording::Now() const {
    return std::max<std::int64_t>(0, recorder->time - origin);
}

std::int64_t ModelRecording::TimeOf(int band) const {
    return std::max<std::int64_t>(0, recorder->time - origin - recorder->DelaySamples(band));
}

// A note that is finished, if it is long enough.
void ModelRecording::Push(int band, std::int64_t end) {
    const Track& track = Of(band);
    if (end - track.start <= minNoteLength) return;
    pending.push_back({track.start, recorder->onMessage[band], track.peak});
    pending.push_back({end, recorder->offMessage[band], track.peak});
}

void ModelRecording::NoteOn(int band) {
    if (recorder->onMessage[band] == 0) return;
    Track& track = Of(band);
    const std::int64_t now = TimeOf(band);
    const bool resumes = track.state == on || (track.state == released && now - track.end <= minNoteGap);
    if (track.state == released && !resumes) Push(band, track.end);
    if (!resumes) track.start = now;
    track.peak = recorder->detector->bandLevel[band];
    track.state = on;
}

void ModelRecording::NoteOff(int band) {
    Track& track = Of(band);
    if (recorder->offMessage[band] == 0 || track.state != on) return;
    track.state = released;
    track.end = TimeOf(band);
}

void ModelRecording::Send(std::uint32_t message) {
    if (running) take.push_back({Now(), message, 0});
}

void ModelRecording::Start() {
    if (!running) {
        if (origin == 0) origin = recorder->time;
        for (Track& track : tracks) track = {};
        take.push_back({Now(), recorder->ProgramMessage(), 0});
    }
    ModelOut::Start();
}

void ModelRecording::Stop() {
    if (!running) return;
    running = false;
    Silence();
}

void ModelRecording::Update() {
    if (!running) return;
    ModelOut::Update();
    for (int band = 0; band < recorder->numBands; ++band)
        if (recorder->Sounds(band))
            Of(band).peak = std::max(Of(band).peak, recorder->detector->bandLevel[band]);
}

// Velocities go with the fourth root of the level; the loudest note of a flush has the setting itself.
void ModelRecording::Silence() {
    for (int band = 0; band < recorder->numBands; ++band) {
        if (recorder->onMessage[band] != 0) {
            if (Of(band).state == on) Push(band, recorder->time - origin);
            if (Of(band).state == released) Push(band, Of(band).end);
        }
        Of(band).state = idle;
    }
    const auto isNoteOn = [](const ModelTakeEvent& event) { return (event.message & 0xF0) == 0x90; };
    const auto root = [](float level) { return std::sqrt(std::sqrt(level)); };
    float highest = 1e-30F;
    for (const ModelTakeEvent& event : pending)
        if (isNoteOn(event)) highest = std::max(highest, event.level);
    const std::int32_t setting = recorder->velocity & 127;
    const float scale = static_cast<float>(setting) / root(highest);
    for (ModelTakeEvent event : pending) {
        if (isNoteOn(event)) {
            const std::int32_t scaled = TruncateToInt32(scale * root(event.level));
            const std::int32_t own = event.level == highest ? setting : std::clamp(scaled, 0, 127);
            event.message = (event.message & 0xFFFF) | static_cast<std::uint32_t>(own) << 16;
        }
        take.push_back(event);
    }
    pending.clear();
}

void ModelRecording::Clear() {
    origin = 0;
    take.clear();
}
