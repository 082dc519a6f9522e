// Where an event lands, worked out by hand. Its form and its bytes are compared with the rules by the promise
// MID-1.
#include "delivery/vst_midi_out.h"

#include <limits>

#include "tests/delivery/fakes.h"

namespace {

// An output to a fake host. At 44100 Hz the fake detector's 40 ms are 1764 samples.
class VstMidiOut : public RecorderTest {
protected:
    VstMidiOut() : out(new TVSTMIDIOut(&effect)) { recorder.AddOutput(out); }
    // Where a note of band 45 lands with these clocks.
    std::int32_t NoteAt(std::int64_t time, std::uint64_t total) {
        recorder.SetTime(time);
        effect.total = total;
        out->NoteOn(45);
        out->NoteOff(45);
        const std::vector<VstMidiEvent> sent = effect.Taken();
        EXPECT_EQ(sent.size(), 2U);
        EXPECT_EQ(sent[0].deltaFrames, sent[1].deltaFrames);
        return sent[0].deltaFrames;
    }

    FakeEffect effect;
    TVSTMIDIOut* out;  // the recorder's
};

TEST_F(VstMidiOut, ANoteIsDatedBackToWhereItBeganInTheSound) {
    EXPECT_EQ(NoteAt(441, 0), 441 - 1764);  // the first frame of a block: before the block
    EXPECT_EQ(NoteAt(50000, 48000), 2000 - 1764);
    detector.delay = 0;
    EXPECT_EQ(NoteAt(441, 441), 0);
}

TEST_F(VstMidiOut, TheDateIsRightPastTheEdgesOf32BitsAndWrapsItself) {
    for (const std::int64_t edge : {std::int64_t{1} << 31, std::int64_t{1} << 32, std::int64_t{1} << 33}) {
        const auto total = static_cast<std::uint64_t>(edge);
        EXPECT_EQ(NoteAt(edge + 300, total - 200), 500 - 1764);
        EXPECT_EQ(NoteAt(edge - 300, total + 200), -500 - 1764);
    }
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(NoteAt((std::int64_t{1} << 31) + 1764, 0), lowest);
    EXPECT_EQ(NoteAt(lowest + 1763, 0), std::numeric_limits<std::int32_t>::max());  // one below the lowest
}

TEST_F(VstMidiOut, TheHostThatNeedsItGetsOffsetsInsideTheBlock) {
    effect.ableton = true;
    EXPECT_EQ(NoteAt(441, 0), 441);
    EXPECT_EQ(NoteAt(441, 500), 0);
    EXPECT_EQ(NoteAt(0, std::uint64_t{1} << 31), 0);  // the lowest of all
}

}  // namespace
