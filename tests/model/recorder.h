#pragma once
#include "base/truncate.h"
#include "engine/note_detector.h"
#include "tests/model/ports.h"
#include "vst2/records.h"

// The note handler and its outputs once more: one thread, no locks, nothing clever. It is the expected answer
// where the product is tested, and shares no code with it but the detector's interface.

// Something said to the host.
struct ModelHostCall {
    std::int32_t opcode = 0;
    std::int32_t number = 0;    // what it is about: an event's deltaFrames, a filter
    std::uint32_t message = 0;  // of an event; of a parameter, the bits of its value
    std::string text;           // what is wrong with an event, if anything is
    bool operator==(const ModelHostCall&) const = default;
    friend void PrintTo(const ModelHostCall& call, std::ostream* out) {
        *out << call.opcode << " (" << call.number << ", 0x" << std::hex << call.message << ") " << call.text;
    }
};

class ModelRecorder;

class ModelOut {
public:
    virtual ~ModelOut() = default;
    virtual void NoteOn(int band) = 0;
    virtual void NoteOff(int band) = 0;
    virtual void Send(std::uint32_t message) = 0;
    virtual void Start();
    virtual void Stop() {
        if (!running) return;
        Silence();
        running = false;
    }
    virtual void Silence();
    virtual void Update();

    ModelRecorder* recorder = nullptr;
    bool running = false, silenced = true;
};

// What the outputs see of the detector, and the messages that they send.
class ModelRecorder : public INoteHandler {
public:
    void Attach(INoteDetector* attached) override {
        AllNotesOff();
        detector = attached;
        numBands = attached->numBands;
        frameLength = attached->frameLength;
        sampleRate = static_cast<std::uint32_t>(attached->sampleRate.load());
        time = 0;
        std::fill_n(enabled, numBands, true);
        BuildMessages();
    }
    void OnFrame() override {
        time += frameLength;
        for (ModelOut* output : outputs) output->Update();
        for (int band = 0; band < numBands; ++band) playing[band] = Sounds(band);
    }
    bool Sounds(int band) const { return detector->bandOn[band] && enabled[band]; }
    std::int32_t DelaySamples(int band) const {
        const float seconds = detector->GetBandDelay(band) * 0.001F;
        return TruncateToInt32(seconds * static_cast<float>(sampleRate));
    }
    std::uint32_t ProgramMessage() const {
        return static_cast<std::uint32_t>((program & 127) << 8 | 0xC0 | (channel & 15));
    }
    void AddOutput(ModelOut& output) {
        if (std::find(outputs.begin(), outputs.end(), &output) != outputs.end()) return;
        output.recorder = this;
        if (sendProgramChange) output.Send(ProgramMessage());
        outputs.push_back(&output);
    }
    void RemoveOutput(ModelOut& output) {
        std::erase(outputs, &output);
        output.recorder = nullptr;
    }
    void AllNotesOff() {
        for (ModelOut* output : outputs) output->Silence();
        std::fill_n(playing, numBands, false);
    }
    void Broadcast(std::uint32_t message) {
        for (ModelOut* output : outputs) output->Send(message);
    }

    void SetSendProgramChange(bool on) {
        sendProgramChange = on;
        if (on) Broadcast(ProgramMessage());
    }
    void SetProgram(std::int32_t value) {
        if (value == program) return;
        program = value;
        if (sendProgramChange) Broadcast(ProgramMessage());
    }
    void ChangeTranspose(std::int32_t value) { ChangeMapping(value, channel, velocity); }
    void ChangeVelocity(std::int32_t value) { ChangeMapping(transpose, channel, value); }
    void ChangeChannel(std::int32_t value) {
        if (value == channel) return;
        ChangeMapping(transpose, value, velocity);
        Broadcast(ProgramMessage());  // whether or not program changes are wanted
    }
    void ChangeMapping(std::int32_t newTranspose, std::int32_t newChannel, std::int32_t newVelocity) {
        if (newTranspose == transpose && newChannel == channel && newVelocity == velocity) return;
        AllNotesOff();
        transpose = newTranspose, channel = newChannel, velocity = newVelocity;
        BuildMessages();
    }

    INoteDetector* detector = nullptr;
    int numBands = 0;
    std::int64_t frameLength = 0, time = 0;
    std::uint32_t sampleRate = 0;
    std::uint32_t onMessage[128] = {}, offMessage[128] = {};
    bool playing[128] = {}, enabled[128] = {};
    std::int32_t transpose = 0, channel = 0, velocity = 100, program = 0;
    bool sendProgramChange = true;
    std::int64_t minNoteLength = 0, minNoteGap = 0;  // of a recording; samples

private:
    void BuildMessages() {
        for (int band = 0; band < numBands; ++band) {
            const int note = transpose - detector->referenceBand + 69 + band;
            const bool isNote = note >= 0 && note <= 127;
            const auto low = static_cast<std::uint32_t>(channel & 15) | static_cast<std::uint32_t>(note) << 8;
            onMessage[band] = isNote ? 0x90 | low | static_cast<std::uint32_t>(velocity & 127) << 16 : 0;
            offMessage[band] = isNote ? 0x80 | low : 0;
        }
    }

    std::vector<ModelOut*> outputs;
};

inline void ModelOut::Start() {
    if (recorder != nullptr && !running)
        for (int band = 0; band < recorder->numBands; ++band)
            if (recorder->Sounds(band)) NoteOn(band);
    running = true;
}

inline void ModelOut::Silence() {
    if (!running || silenced) return;
    for (int band = 0; band < recorder->numBands; ++band)
        if (recorder->playing[band]) NoteOff(band);
    silenced = true;
}

inline void ModelOut::Update() {
    if (!running) return;
    for (int band = 0; band < recorder->numBands; ++band) {
        const bool now = recorder->Sounds(band), before = recorder->playing[band];
        if (before && !now) NoteOff(band);
        if (now && !before) NoteOn(band);
    }
    silenced = false;
}

// To the host, by way of `calls`.
class ModelHostOut : public ModelOut {
public:
    ModelHostOut(std::vector<ModelHostCall>& said, const std::uint64_t& delivered, bool hostIsAbleton)
        : calls(said), totalSamples(delivered), ableton(hostIsAbleton) {}
    void NoteOn(int band) override { Say(recorder->onMessage[band], Delta(band)); }
    void NoteOff(int band) override { Say(recorder->offMessage[band], Delta(band)); }
    void Send(std::uint32_t message) override { Say(message, 0); }

private:
    void Say(std::uint32_t message, std::int32_t delta) {
        calls.push_back({audioMasterProcessEvents, delta, message, {}});
    }
    std::int32_t Delta(int band) const {  // modulo 2^32
        const auto delay = static_cast<std::uint32_t>(ableton ? 0 : recorder->DelaySamples(band));
        const auto delta = static_cast<std::int32_t>(static_cast<std::uint32_t>(recorder->time) -
                                                     static_cast<std::uint32_t>(totalSamples) - delay);
        return ableton && delta < 0 ? 0 : delta;
    }
    std::vector<ModelHostCall>& calls;
    const std::uint64_t& totalSamples;
    const bool ableton;
};

// To a device.
class ModelDeviceOut : public ModelOut {
public:
    ModelDeviceOut(ModelPorts& table, std::uint32_t number) : ports(table), port(number) {}
    void NoteOn(int band) override {
        if (recorder->onMessage[band] != 0) ports.Send(port, recorder->onMessage[band]);
    }
    void NoteOff(int band) override {
        if (recorder->offMessage[band] != 0) ports.Send(port, recorder->offMessage[band]);
    }
    void Send(std::uint32_t message) override { ports.Send(port, message); }

private:
    ModelPorts& ports;
    const std::uint32_t port;
};

struct ModelTakeEvent {
    std::int64_t time;
    std::uint32_t message;
    float level;  // of notes; 0 on other messages; a NaN is like any other
    bool operator==(const ModelTakeEvent& other) const {
        const bool sameLevel = level == other.level || (std::isnan(level) && std::isnan(other.level));
        return time == other.time && message == other.message && sameLevel;
    }
    friend void PrintTo(const ModelTakeEvent& event, std::ostream* out) {
        *out << std::hex << event.message << std::dec << " at " << event.time << ", level " << event.level;
    }
};

// Into a take.
class ModelRecording : public ModelOut {
public:
    void NoteOn(int band) override {
        if (recorder->onMessage[band] == 0) return;
        Track& track = tracks[band];
        const std::int64_t now = TimeOf(band);
        const bool resumes =
            track.state == on || (track.state == released && now - track.end <= recorder->minNoteGap);
        if (track.state == released && !resumes) Push(band, track.end);
        if (!resumes) track.start = now;
        track.peak = recorder->detector->bandLevel[band];
        track.state = on;
    }
    void NoteOff(int band) override {
        if (recorder->offMessage[band] == 0 || tracks[band].state != on) return;
        tracks[band].state = released;
        tracks[band].end = TimeOf(band);
    }
    void Send(std::uint32_t message) override {
        if (running) take.push_back({Now(), message, 0});
    }
    void Start() override {
        if (!running) {
            if (origin == 0) origin = recorder->time;
            std::fill(std::begin(tracks), std::end(tracks), Track());
            take.push_back({Now(), recorder->ProgramMessage(), 0});
        }
        ModelOut::Start();
    }
    void Stop() override {
        if (!running) return;
        running = false;
        Silence();
    }
    void Update() override {
        if (!running) return;
        ModelOut::Update();
        for (int band = 0; band < recorder->numBands; ++band)
            if (recorder->Sounds(band))
                tracks[band].peak = std::max(tracks[band].peak, recorder->detector->bandLevel[band]);
    }
    // Velocities go with the fourth root of the level; the loudest note of a flush has the setting itself.
    void Silence() override {
        for (int band = 0; band < recorder->numBands; ++band) {
            if (recorder->onMessage[band] != 0) {
                if (tracks[band].state == on) Push(band, recorder->time - origin);
                if (tracks[band].state == released) Push(band, tracks[band].end);
            }
            tracks[band].state = idle;
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
    void Clear() {
        origin = 0;
        take.clear();
    }

    std::int64_t origin = 0;
    std::vector<ModelTakeEvent> take;

private:
    enum State { idle, on, released };
    struct Track {
        State state = idle;
        std::int64_t start = 0, end = 0;
        float peak = 0;
    };
    // No time is negative, although the clock may be set back to before the origin.
    std::int64_t Now() const { return std::max<std::int64_t>(0, recorder->time - origin); }
    std::int64_t TimeOf(int band) const {
        return std::max<std::int64_t>(0, recorder->time - origin - recorder->DelaySamples(band));
    }
    // A note that is finished, if it is long enough.
    void Push(int band, std::int64_t end) {
        const Track& track = tracks[band];
        if (end - track.start <= recorder->minNoteLength) return;
        pending.push_back({track.start, recorder->onMessage[band], track.peak});
        pending.push_back({end, recorder->offMessage[band], track.peak});
    }
    Track tracks[128];
    std::vector<ModelTakeEvent> pending;
};
