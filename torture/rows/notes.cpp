// From flags to messages: a substitute for the detector drives the handler and its outputs.
#include <algorithm>
#include <cstring>
#include <memory>

#include "delivery/note_recorder.h"
#include "delivery/rt_recording.h"
#include "delivery/vst_midi_out.h"
#include "torture/model/recorder.h"
#include "torture/row.h"

namespace {

std::string Told(const ModelTakeEvent& event) {
    char text[80];
    std::snprintf(text, sizeof text, "%06x at %lld, level %a", event.message,
                  static_cast<long long>(event.time), static_cast<double>(event.level));
    return text;
}

// The channel and the note of a message.
std::size_t Key(std::uint32_t message) {
    return (message & 15) << 7 | (message >> 8 & 127);
}

class InventedDetector : public INoteDetector {
public:
    explicit InventedDetector(Trial& trial) {
        numBands = trial.OneIn(3) ? 49 + static_cast<std::int32_t>(trial.Below(80)) : 84;
        sampleRate = static_cast<std::int32_t>(8000 + trial.Below(90000));
        frameLength = sampleRate / 100;
        referenceBand = 45;
        bandOn = on;
        bandLevel = level;
        for (float& ms : delay) ms = 40 + static_cast<float>(trial.Below(60000)) / 1000;
        change = 1 + trial.Below(60);
    }
    void Process(const short*, unsigned) override {}
    void Reset() override { std::fill(std::begin(on), std::end(on), false); }
    float GetBandDelay(std::int32_t band) override { return delay[band]; }

    // A new frame: each band changes once in `change` frames, on the average.
    void Next(Trial& trial) {
        for (std::uint64_t at = trial.Below(2 * change); at < static_cast<std::uint64_t>(numBands);
             at += 1 + trial.Below(2 * change)) {
            on[at] = !on[at];
            level[at] = trial.OneIn(9) ? 0 : static_cast<float>(trial.Below(4000000)) * 1e-6F;
        }
    }
    bool on[128] = {};
    float level[128] = {}, delay[128] = {};
    std::uint64_t change = 1;
};

class Effect : public IVSTMIDIEffect {
public:
    std::uint64_t GetTotalSamples() const override { return total; }
    bool HostIsAbleton() const override { return ableton; }
    void SendEvents(VstEvents& events) override {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(events.events[0]);
        VstMidiEvent plain;  // what must be in an event besides its time and its message
        plain.deltaFrames = event.deltaFrames;
        std::copy_n(event.midiData, 3, plain.midiData);
        proper = proper && events.numEvents == 1 && events.reserved == 0 && plain.type == 1 &&
                 plain.byteSize == 24 && std::memcmp(&plain, &event, sizeof plain) == 0;
        const auto byte = [&](int i) { return std::uint32_t{static_cast<unsigned char>(event.midiData[i])}; };
        sent.push_back(
            {audioMasterProcessEvents, event.deltaFrames, byte(0) | byte(1) << 8 | byte(2) << 16, {}});
    }
    std::uint64_t total = 0;
    bool ableton = false, proper = true;
    std::vector<ModelHostCall> sent;
};

// Handler, output to the host and recording, and the Model's.
class Road {
public:
    explicit Road(Trial& caseTrial) : trial(caseTrial), detector(caseTrial) {
        effect.ableton = trial.OneIn(3);
        effect.total = trial.random() >> (20 + trial.Below(40));
        out = new TVSTMIDIOut(&effect);  // both are the recorder's
        recording = new TRTRecording;
        modelOut = std::make_unique<ModelHostOut>(expected, effect.total, effect.ableton);
        recorder.Attach(&detector);
        model.Attach(detector);
        recorder.Activate(0);
        recorder.AddOutput(out), model.AddOutput(*modelOut);
        recorder.AddOutput(recording), model.AddOutput(modelRecording);
        const auto samples = [this](std::uint64_t below) {
            return trial.OneIn(2) ? 0 : static_cast<std::int64_t>(trial.Below(below));
        };
        recorder.minNoteGap = modelRecording.minNoteGap = samples(5000);
        recorder.minNoteLength = modelRecording.minNoteLength = samples(20000);
        SetTime();
        Compare();
    }
    void Frame() {
        detector.Next(trial);
        recorder.OnFrame();
        model.OnFrame();
        if (trial.OneIn(3))
            effect.total += trial.Below(2 * static_cast<std::uint64_t>(detector.frameLength.load()));
    }
    // The clock comes up to the samples delivered, as it does at the edges of a silence.
    void SetTime() {
        recorder.SetTime(static_cast<std::int64_t>(effect.total));
        model.time = static_cast<std::int64_t>(effect.total);
    }
    void Start() { out->Start(), modelOut->Start(); }
    void Stop() { out->Stop(), modelOut->Stop(); }
    void AllNotesOff() { recorder.AllNotesOff(), model.AllNotesOff(); }
    void Record() {
        switch (trial.Below(4)) {
            case 0: recording->Clear(), modelRecording.Clear(); [[fallthrough]];
            case 1: recording->Start(), modelRecording.Start(); break;
            default: recording->Stop(), modelRecording.Stop();
        }
    }
    void Change() {
        const auto some = [this](std::int32_t least, std::uint64_t count) {
            return least + static_cast<std::int32_t>(trial.Below(count));
        };
        const std::int32_t transpose = some(-60, 121), channel = some(0, 20), velocity = some(-5, 300);
        switch (trial.Below(8)) {
            case 0: recorder.ChangeTranspose(transpose), model.ChangeTranspose(transpose); break;
            case 1: recorder.ChangeChannel(channel), model.ChangeChannel(channel); break;
            case 2: recorder.ChangeVelocity(velocity), model.ChangeVelocity(velocity); break;
            case 3:
                recorder.ChangeMapping(transpose, channel, velocity);
                model.ChangeMapping(transpose, channel, velocity);
                break;
            case 4: recorder.SetProgram(channel), model.SetProgram(channel); break;
            case 5: {
                const bool on = trial.OneIn(2);
                recorder.SetSendProgramChange(on), model.SetSendProgramChange(on);
                break;
            }
            case 6: {
                const bool on = !trial.OneIn(3);
                const auto band = some(0, static_cast<std::uint64_t>(detector.numBands));
                recorder.enabled[band] = on, model.enabled[band] = on;
                break;
            }
            default: recorder.AddOutput(out), model.AddOutput(*modelOut);  // attached already: ignored
        }
    }
    void Compare() {
        trial.Require(effect.proper, "an event of another shape");
        if (effect.sent != expected) Differ();
        for (const ModelHostCall& call : expected) {
            const std::uint32_t status = call.message & 0xF0;
            const std::size_t key = Key(call.message);
            const bool isLegal =
                (call.message & 0xFF808000) == 0 && (status == 0x80 || status == 0x90 || status == 0xC0);
            trial.Require(isLegal || call.message == 0, "no MIDI message");
            if (status == 0x90) ++sounding[key];
            if (status == 0x80) --sounding[key];
            events += 1;
        }
        effect.sent.clear(), expected.clear();
    }
    void CompareRest() {
        for (int band = 0; band < detector.numBands; ++band)
            trial.Require(recorder.playing[band] == model.playing[band],
                          "playing of band " + std::to_string(band));
        trial.Require(out->soundingCount == modelOut->soundingCount, "the count of sounding notes");
        trial.Require(recorder.GetTime() == model.time, "the clock");
        const auto& take = recording->GetTake();
        trial.Require(take.size() == modelRecording.take.size(),
                      "events in the take: " + std::to_string(take.size()) + ", the Model says " +
                          std::to_string(modelRecording.take.size()));
        for (std::size_t i = 0; i < take.size(); ++i) {
            const ModelTakeEvent met{take[i].time, take[i].message, take[i].level};
            if (!(met == modelRecording.take[i]))
                trial.Fail("event " + std::to_string(i) + " of the take is " + Told(met) +
                           ", the Model says " + Told(modelRecording.take[i]));
        }
    }
    // Each note that plays has been switched on once more than off; others as often.
    void CheckBalance() {
        for (int band = 0; band < detector.numBands; ++band) {
            if (model.onMessage[band] == 0) continue;
            const int count = sounding[Key(model.onMessage[band])];
            if (count != (modelOut->running && model.playing[band] ? 1 : 0))
                trial.Fail("band " + std::to_string(band) + " was switched on " + std::to_string(count) +
                           " times more than off");
        }
    }
    bool PlaysOtherThanSounds() const {
        for (int band = 0; band < detector.numBands; ++band)
            if (model.Sounds(band) != model.playing[band]) return true;
        return false;
    }

    std::uint64_t events = 0;
    std::vector<int> sounding = std::vector<int>(2048);  // ons less offs, by Key
    Trial& trial;
    InventedDetector detector;
    Effect effect;
    std::vector<ModelHostCall> expected;
    TNoteRecorder recorder;
    TVSTMIDIOut* out = nullptr;
    TRTRecording* recording = nullptr;
    ModelRecorder model;
    std::unique_ptr<ModelHostOut> modelOut;
    ModelRecording modelRecording;

private:
    [[noreturn]] void Differ() const {
        std::string what = "events " + std::to_string(effect.sent.size()) + ", the Model says " +
                           std::to_string(expected.size());
        for (std::size_t i = 0; i < std::min(effect.sent.size(), expected.size()); ++i)
            if (!(effect.sent[i] == expected[i])) {
                what += "; event " + std::to_string(i) + " is " + std::to_string(effect.sent[i].message) +
                        " at " + std::to_string(effect.sent[i].number) + ", the Model says " +
                        std::to_string(expected[i].message) + " at " + std::to_string(expected[i].number);
                break;
            }
        trial.Fail(what);
    }
};

void TryFrames(Trial& trial) {
    const auto owner = std::make_unique<Road>(trial);
    Road& road = *owner;
    road.Change();
    road.Start();
    if (trial.OneIn(4)) road.Record();
    for (int frame = 0; frame < 10000; ++frame) {
        road.Frame();
        road.Compare();
        if (trial.OneIn(500)) road.Change();
    }
    road.recording->Stop(), road.modelRecording.Stop();
    road.CompareRest();
    Trial::Figure("events in a case", static_cast<double>(road.events));
}

const Registered frames({"MID-1", "frames of any flags send the events that the rules say",
                         inRelease | inAddress, 10000, 100, 60, TryFrames, 60});

// Three ways leave a count that is not of what plays: an output that starts while what plays is not what
// sounds (the handler has just forgotten it, and a note will be on twice), one that stops before its first
// frame (no off), and messages of bands that have no note. The first two are marked, and end at the next
// suspend.
void TryBalance(Trial& trial) {
    const auto owner = std::make_unique<Road>(trial);
    Road& road = *owner;
    bool disturbed = false;
    std::uint64_t checked = 0;
    for (int operation = 0; operation < 10000; ++operation) {
        const bool early = road.modelOut->running && road.modelOut->silenced;  // before its first frame
        switch (trial.Below(10)) {
            case 0:
                disturbed = disturbed || (!road.modelOut->running && road.PlaysOtherThanSounds());
                road.Start();
                break;
            case 1:
                disturbed = disturbed || early;
                road.Stop();
                break;
            case 2:
                disturbed = disturbed || early;
                road.AllNotesOff();
                break;
            case 3:
                disturbed = disturbed || early;
                road.Change();
                break;
            case 4: road.Record(); break;
            case 5:  // a suspend
                disturbed = disturbed || early;
                road.SetTime();
                road.detector.Reset();
                road.Stop();
                road.AllNotesOff();
                road.Compare();
                for (const int count : road.sounding)
                    trial.Require(disturbed || count == 0, "a note hangs after a suspend");
                road.sounding.assign(2048, 0);
                disturbed = false;
                break;
            default: road.Frame();
        }
        road.Compare();
        if (!disturbed) road.CheckBalance(), ++checked;
        if (operation % 100 == 99) road.CompareRest();
    }
    Trial::Figure("checked in a case", static_cast<double>(checked));
}

const Registered balance({"MID-2", "each note that plays was switched on once more than off",
                          inRelease | inAddress, 1000, 20, 60, TryBalance});

}  // namespace
