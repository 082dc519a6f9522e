#include "delivery/rt_recording.h"
#include "notes/notes.h"
#include "tests/delivery/fakes.h"

namespace {

// A take states its program as it starts; one that is chosen at the same sample comes behind it.
TEST_F(RecorderTest, AProgramChosenAsATakeStartsIsThatOfAllItsNotes) {
    detector.delay = 0;
    auto* const recording = new TRTRecording;  // the recorder's, once attached
    recorder.AddOutput(recording);
    recorder.sendProgramChange = true;
    recording->Start();
    recorder.SetProgram(51);
    for (int band = 30; band < 50; ++band) Frame({band});
    Frame({});
    recording->Stop();
    const auto score = std::make_unique<TNotes>();
    TakeToNotes(recording->GetTake(), *score, 1, 44100);
    ASSERT_EQ(score->notes.size(), 20U);
    for (const TNote* note : score->notes) EXPECT_EQ(note->program, 51);
}

}  // namespace
