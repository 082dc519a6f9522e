#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "delivery/note_recorder.h"
#include "harmony/chords_listener.h"
#include "tests/delivery/fakes.h"

// The plug-in object as the chord listener sees it.
class FakeOwner : public IChordOwner {
public:
    float GetSampleRate() const override { return rate; }
    void ChordChanged() override { ++changes; }

    std::atomic<float> rate{44100.0F};
    std::atomic<int> changes{0};
};

// A listener on a recorder whose clock and bands the test sets by hand.
class Listening : public testing::Test {
protected:
    Listening() {
        recorder.Attach(&detector);
        recorder.Activate(0);
        recorder.AddOutput(listener);
    }
    // One update in which exactly these bands are on.
    void Play(const std::vector<int>& bands) {
        for (int band = 0; band < detector.numBands; ++band) detector.Set(band, false);
        for (const int band : bands) detector.Set(band, true);
        const auto step = static_cast<std::int64_t>(listener->samplesPerUpdate.load());
        recorder.SetTime(listener->ringReady ? recorder.GetTime() + step : 0);
        listener->Update();
    }
    std::string Shown() { return std::string(listener->currentChord().view()); }
    std::string Copied() const { return std::string(listener->currentChordCopy().view()); }

    FakeOwner owner;
    FakeDetector detector;
    TNoteRecorder recorder;
    TChordsListener* const listener = new TChordsListener(&owner, 10);  // the recorder's, once attached
};
