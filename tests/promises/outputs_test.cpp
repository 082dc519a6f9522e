// The note handler with a detector that switches bands at random, and the table of MIDI ports, each beside
// the plain model of it.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>

#include "delivery/note_recorder.h"
#include "delivery/rt_recording.h"
#include "delivery/vst_midi_out.h"
#include "devices/midi_ports.h"
#include "tests/model/recorder.h"
#include "tests/model/side_by_side.h"

namespace {

class RandomDetector : public INoteDetector {
public:
    explicit RandomDetector(Trial& trial) {
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
    bool RaisesEarlyDates() const override { return false; }
    void SendEvents(VstEvents& events) override {
        const auto& event = *reinterpret_cast<const VstMidiEvent*>(events.events[0]);
        std::uint32_t message = 0;
        std::memcpy(&message, event.midiData, 3);
        sent.push_back({audioMasterProcessEvents, event.deltaFrames, message, {}});
    }
    std::uint64_t total = 0;
    bool ableton = false;
    std::vector<ModelHostCall> sent;
};

// The handler with an output to the host and a recording, and the model's.
class Path {
public:
    explicit Path(Trial& caseTrial) : trial(caseTrial), detector(caseTrial) {
        effect.ableton = trial.OneIn(3);
        effect.total = trial.random() >> (20 + trial.Below(40));
        modelOut = std::make_unique<ModelHostOut>(expected, effect.total, effect.ableton);
        recorder.Attach(&detector), model.Attach(detector);
        recorder.Activate(0);
        recorder.AddOutput(out), model.AddOutput(*modelOut);
        recorder.AddOutput(recording), model.AddOutput(modelRecording);
        recorder.minNoteGap = modelRecording.minNoteGap = static_cast<std::int64_t>(trial.Below(5000));
        recorder.minNoteLength = modelRecording.minNoteLength = static_cast<std::int64_t>(trial.Below(20000));
        SetTime();
    }
    void Operate() {
        switch (trial.Below(40)) {
            case 0: out->Start(), modelOut->Start(); break;
            case 1: out->Stop(), modelOut->Stop(); break;
            case 2: recorder.AllNotesOff(), model.AllNotesOff(); break;
            case 3: recording->Start(), modelRecording.Start(); break;
            case 4: recording->Stop(), modelRecording.Stop(); break;
            case 5: recording->Clear(), modelRecording.Clear(); break;
            case 6: Suspend(); break;
            case 7:
            case 8: Change(); break;
            default:
                detector.Next(trial);
                recorder.OnFrame(), model.OnFrame();
                if (trial.OneIn(3))
                    effect.total += trial.Below(2U * static_cast<unsigned>(detector.frameLength));
        }
    }
    void Compare() {
        ASSERT_EQ(effect.sent.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(effect.sent[i].message, expected[i].message);
            ASSERT_EQ(effect.sent[i].number, expected[i].number) << "frames from the block's begin";
            ASSERT_TRUE(IsLegal(expected[i].message)) << std::hex << expected[i].message;
        }
        effect.sent.clear(), expected.clear();
    }
    void CompareRest() {
        for (int band = 0; band < detector.numBands; ++band)
            ASSERT_EQ(recorder.playing[band], model.playing[band]) << "band " << band;
        ASSERT_EQ(out->soundingCount, modelOut->soundingCount);
        ASSERT_EQ(recorder.GetTime(), model.time);
        const auto& take = recording->GetTake();
        ASSERT_EQ(take.size(), modelRecording.take.size());
        for (std::size_t i = 0; i < take.size(); ++i)
            ASSERT_TRUE(
                (ModelTakeEvent{take[i].time, take[i].message, take[i].level} == modelRecording.take[i]))
                << "event " << i << " of the take, at " << take[i].time << " and "
                << modelRecording.take[i].time << std::hex << ": " << take[i].message << " and "
                << modelRecording.take[i].message;
    }

private:
    void SetTime() {  // as it does at the edges of a silence
        recorder.SetTime(static_cast<std::int64_t>(effect.total));
        model.time = static_cast<std::int64_t>(effect.total);
    }
    void Suspend() {
        SetTime();
        detector.Reset();
        out->Stop(), modelOut->Stop();
        recorder.AllNotesOff(), model.AllNotesOff();
    }
    void Change() {
        const auto some = [this](std::int32_t least, std::uint64_t count) {
            return least + static_cast<std::int32_t>(trial.Below(count));
        };
        const std::int32_t transpose = some(-60, 121), channel = some(0, 20), velocity = some(-5, 300);
        const bool on = trial.OneIn(2);
        const std::int32_t band = some(0, static_cast<std::uint64_t>(detector.numBands));
        switch (trial.Below(8)) {
            case 0: recorder.ChangeTranspose(transpose), model.ChangeTranspose(transpose); break;
            case 1: recorder.ChangeChannel(channel), model.ChangeChannel(channel); break;
            case 2: recorder.ChangeVelocity(velocity), model.ChangeVelocity(velocity); break;
            case 3:
                recorder.ChangeMapping(transpose, channel, velocity);
                model.ChangeMapping(transpose, channel, velocity);
                break;
            case 4: recorder.SetProgram(channel), model.SetProgram(channel); break;
            case 5: recorder.SetSendProgramChange(on), model.SetSendProgramChange(on); break;
            case 6: recorder.enabled[band] = on, model.enabled[band] = on; break;
            default: recorder.AddOutput(out), model.AddOutput(*modelOut);  // attached already: ignored
        }
    }

    Trial& trial;
    RandomDetector detector;
    Effect effect;
    std::vector<ModelHostCall> expected;
    TNoteRecorder recorder;
    TVSTMIDIOut* const out = new TVSTMIDIOut(&effect);  // both are the recorder's
    TRTRecording* const recording = new TRTRecording;
    ModelRecorder model;
    std::unique_ptr<ModelHostOut> modelOut;
    ModelRecording modelRecording;
};

TEST(NoteHandler, AnyFramesAndChangesGiveTheEventsAndTheTakeOfTheModel) {
    RunTrials({1000, 50}, [](Trial& trial) {
        const auto path = std::make_unique<Path>(trial);
        for (int operation = 0; operation < 3000 && !testing::Test::HasFailure(); ++operation) {
            path->Operate();
            path->Compare();
            if (operation % 100 == 99) path->CompareRest();
        }
    });
}

class Tables {
public:
    explicit Tables(Trial& caseTrial) : trial(caseTrial) {
        model.mapper = trial.OneIn(4);
        if (model.mapper) devices.version = {6, 1};
        SubstituteMidiOut(&devices);
        table = std::make_unique<MidiPortTable>();
    }
    ~Tables() { SubstituteMidiOut(nullptr); }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    void Operate() {
        const std::uint32_t port = trial.OneIn(30) ? 0xFFFFFFFF : Small(highest + 2), message = Message();
        switch (trial.Below(30)) {
            case 0: Refuse(); break;
            case 1: table->SilencePort(port), model.Silence(port); break;
            case 2: table->ResetPort(port), model.Reset(port); break;
            case 3: {
                const std::uint8_t bytes[] = {0xF0, 0xF7};
                ASSERT_EQ(table->SendLong(port, {bytes, 2}), model.SendLong(port, 2));
                break;
            }
            case 4:
            case 5:
            case 6: Open(); break;
            case 7:
            case 8:
            case 9: table->ClosePort(port), model.Close(port); break;
            default: ASSERT_EQ(table->SendShort(port, message), model.Send(port, message));
        }
        ASSERT_EQ(table->IsPortValid(port), model.IsValid(port));
        std::vector<std::string> lines = devices.Taken();
        std::erase(lines, "read");
        ASSERT_EQ(lines, model.lines);
        model.lines.clear();
    }
    void Unload() { table->Unload(), model.Unload(); }

    FakeDevices devices;

private:
    void Open() {
        const std::uint32_t index = trial.OneIn(20) ? static_cast<std::uint32_t>(trial.random()) : Small(6);
        std::uint32_t seen = 77, expected = 77;
        ASSERT_EQ(table->OpenPort(seen, index), model.Open(expected, index));
        ASSERT_EQ(seen, expected) << "the port's number";
        if (seen != 77) highest = std::max(highest, seen + 1);
    }
    void Refuse() {
        const std::uint32_t device = Small(3), message = Message();
        const bool opens = trial.OneIn(2), passes = trial.OneIn(2);
        for (auto* const refused : {&devices.refusedOpens, &model.refusedOpens})
            opens ? void(refused->erase(device)) : void((*refused)[device] = 4);
        for (auto* const refused : {&devices.refusedMessages, &model.refusedMessages})
            passes ? refused->clear() : void((*refused)[message] = 1);
    }
    std::uint32_t Small(std::uint64_t count) { return static_cast<std::uint32_t>(trial.Below(count)); }
    std::uint32_t Message() {
        constexpr std::uint32_t kinds[] = {0x90, 0x90, 0x80, 0xC0, 0xB0, 0xF0};
        return kinds[Small(6)] | Small(3) | Small(6) << 8 | Small(2) * 100 << 16;
    }
    Trial& trial;
    ModelPorts model;
    std::unique_ptr<MidiPortTable> table;
    std::uint32_t highest = 0;
};

TEST(Ports, OpenedUsedAndClosedInAnyOrderReachDevicesAsTheModelSays) {
    RunTrials({200, 20}, [](Trial& trial) {
        Tables tables(trial);
        for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) tables.Operate();
        tables.Unload();
        for (int i = 0; i < 20; ++i) tables.Operate();
        EXPECT_EQ(tables.devices.OpenCount(), 0);
        EXPECT_EQ(tables.devices.faults, 0);
    });
}

}  // namespace
