#pragma once
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/note_detector.h"
#include "tests/model/ports.h"

// The note handler and its outputs once more: one thread, no locks, nothing clever. It is the expected answer
// where the product is tested, and shares no code with it but the detector's interface.

// Something said to the host.
struct ModelHostCall {
    std::int32_t opcode = 0;
    std::int32_t number = 0;    // what it is about: an event's deltaFrames, a filter
    std::uint32_t message = 0;  // of an event
    std::string text;           // of a question
    bool operator==(const ModelHostCall&) const = default;
};

class ModelRecorder;

class ModelOut {
public:
    virtual ~ModelOut() = default;
    virtual void NoteOn(int band) = 0;
    virtual void NoteOff(int band) = 0;
    virtual void Send(std::uint32_t message) = 0;
    virtual void Start();
    virtual void Stop();
    virtual void Silence();
    virtual void Update();

    ModelRecorder* recorder = nullptr;
    bool running = false, silenced = true;
    int soundingCount = 0;
};

// What the outputs see of the detector, and the messages that they send.
class ModelRecorder {
public:
    void Attach(INoteDetector& detector);
    void OnFrame();
    bool Sounds(int band) const { return detector->bandOn[band] && enabled[band]; }
    std::int32_t DelaySamples(int band) const;
    std::uint32_t ProgramMessage() const;

    void AddOutput(ModelOut& output);
    void RemoveOutput(ModelOut& output);
    void AllNotesOff();
    void Broadcast(std::uint32_t message);
    void SetSendProgramChange(bool on);
    void SetProgram(std::int32_t value);
    void ChangeTranspose(std::int32_t value);
    void ChangeChannel(std::int32_t value);
    void ChangeVelocity(std::int32_t value);
    void ChangeMapping(std::int32_t newTranspose, std::int32_t newChannel, std::int32_t newVelocity);

    INoteDetector* detector = nullptr;
    int numBands = 0;
    std::int64_t frameLength = 0, time = 0;
    std::uint32_t sampleRate = 0;
    std::uint32_t onMessage[128] = {}, offMessage[128] = {};
    bool playing[128] = {}, enabled[128] = {};
    std::int32_t transpose = 0, channel = 0, velocity = 100, program = 0;
    bool sendProgramChange = true;

private:
    void BuildMessages();
    std::vector<ModelOut*> outputs;
};

// To the host, by way of `calls`.
class ModelHostOut : public ModelOut {
public:
    ModelHostOut(std::vector<ModelHostCall>& said, const std::uint64_t& delivered, bool hostIsAbleton)
        : calls(said), totalSamples(delivered), ableton(hostIsAbleton) {}
    void NoteOn(int band) override;
    void NoteOff(int band) override;
    void Send(std::uint32_t message) override;

private:
    std::int32_t Delta(int band) const;
    std::vector<ModelHostCall>& calls;
    const std::uint64_t& totalSamples;
    const bool ableton;
};

// To a device.
class ModelDeviceOut : public ModelOut {
public:
    ModelDeviceOut(ModelPorts& table, std::uint32_t number) : ports(table), port(number) {}
    void NoteOn(int band) override;
    void NoteOff(int band) override;
    void Send(std::uint32_t message) override;

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
};

// Into a take.
class ModelRecording : public ModelOut {
public:
    void NoteOn(int band) override;
    void NoteOff(int band) override;
    void Send(std::uint32_t message) override;
    void Start() override;
    void Stop() override;
    void Silence() override;
    void Update() override;
    void Clear();

    std::int64_t origin = 0, minNoteLength = 0, minNoteGap = 0;
    std::vector<ModelTakeEvent> take;

private:
    enum State { idle, on, released };
    struct Track {
        State state = idle;
        std::int64_t start = 0, end = 0;
        float peak = 0;
    };
    std::int64_t Now() const;
    std::int64_t TimeOf(int band) const;
    void Push(int band, std::int64_t end);
    Track& Of(int band) { return tracks[static_cast<std::size_t>(band)]; }
    std::vector<Track> tracks = std::vector<Track>(128);
    std::vector<ModelTakeEvent> pending;
};
