#pragma once
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "delivery/note_out.h"
#include "delivery/note_recorder.h"
#include "engine/note_detector.h"

// A detector whose flags a test sets by hand: 84 bands at 44100 Hz, band 45 at 440 Hz, so that band b is
// MIDI note b + 24.
class FakeDetector : public INoteDetector {
public:
    explicit FakeDetector(int bands = 84) {
        numBands = bands;
        sampleRate = 44100;
        frameLength = 441;
        referenceBand = 45;
        bandOn = on;
        bandLevel = level;
    }
    void Process(const short*, unsigned) override {}
    void Reset() override {}
    float GetBandDelay(std::int32_t) override { return delay; }
    void Set(int band, bool isOn) { std::atomic_ref<bool>(on[band]).store(isOn, std::memory_order_relaxed); }

    bool on[160] = {};
    float level[160] = {};
    float delay = 40.0F;  // ms
};

// What outputs were sent, in order: "a+45" note on of band 45 at output a, "a-45" its end, "a!192" a message.
using Log = std::vector<std::string>;

class FakeOut : public TmtNoteOut {
public:
    FakeOut(char outName, Log& outLog) : name(1, outName), log(outLog) {}
    ~FakeOut() override { FakeOut::Stop(); }  // by now the recorder must have nothing left to say
    void NoteOn(std::int32_t band) override { log.push_back(name + "+" + std::to_string(band)); }
    void NoteOff(std::int32_t band) override { log.push_back(name + "-" + std::to_string(band)); }
    void Send(std::uint32_t message) override { log.push_back(name + "!" + std::to_string(message)); }

private:
    std::string name;
    Log& log;
};

// A running recorder on a fake detector.
class RecorderTest : public testing::Test {
protected:
    RecorderTest() {
        recorder.Attach(&detector);
        recorder.Activate(0);
        recorder.sendProgramChange = false;  // most tests listen for notes only
    }
    FakeOut* Add(char name) {
        auto* const out = new FakeOut(name, log);  // the recorder's, once attached
        recorder.AddOutput(out);
        return out;
    }
    // One frame in which exactly these bands are on.
    void Frame(std::initializer_list<int> bandsOn) {
        for (int band = 0; band < 84; ++band) detector.Set(band, false);
        for (const int band : bandsOn) detector.Set(band, true);
        recorder.OnFrame();
    }
    Log Taken() { return std::exchange(log, {}); }

    Log log;
    FakeDetector detector;
    TNoteRecorder recorder;
};
