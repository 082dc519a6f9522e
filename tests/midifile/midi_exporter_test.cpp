#include "midifile/midi_exporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <random>

#include "tests/midifile/exported.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::uint32_t second = 22050;

std::unique_ptr<TNotes> Score() {
    return std::make_unique<TNotes>();
}

TNote* Add(TNotes& score, std::uint32_t begin, std::uint32_t end, std::uint8_t layer = 1,
           std::uint8_t program = 255, std::uint8_t channel = 1) {
    return score.AddNote(begin, end, 45, VelocityToLevel(100), program, layer, channel);
}

// Bars of these lengths from 0 on, with a note of layer 1 at the start of each, and of the next one.
std::unique_ptr<TNotes> ScoreOfBars(const std::vector<std::uint32_t>& lengths) {
    auto score = Score();
    std::uint32_t time = 0;
    for (std::size_t bar = 0; bar <= lengths.size(); ++bar) {
        score->AddBar(time, 4);
        Add(*score, time, time + 1000);
        if (bar < lengths.size()) time += lengths[bar];
    }
    return score;
}

// The tempo events as (tick, microseconds per quarter note); the first one belongs to the header.
std::vector<std::pair<std::uint64_t, unsigned>> Tempos(const MidiTracks& tracks) {
    std::vector<std::pair<std::uint64_t, unsigned>> tempos;
    for (const MidiEvent& event : tracks.at(0))
        if (event.status == 0xFF && event.data[0] == 0x51)
            tempos.emplace_back(event.tick,
                                unsigned{event.data[1]} << 16 | unsigned{event.data[2]} << 8 | event.data[3]);
    return tempos;
}

std::vector<std::uint64_t> Onsets(const MidiTracks& tracks, std::size_t track) {
    std::vector<std::uint64_t> onsets;
    for (const MidiEvent& event : Voices(tracks, track))
        if (event.status >> 4 == 9) onsets.push_back(event.tick);
    return onsets;
}

MidiTracks TracksOf(const TNotes& score, bool fixFirstBar = true) {
    return MidiReader(Exported(score, fixFirstBar)).tracks;
}

}  // namespace

TEST(MidiExporter, ASecondAtTempo120IsTwoQuarterNotes) {
    const auto score = Score();
    Add(*score, second, 2 * second, 1, 5);
    const MidiTracks tracks = TracksOf(*score);
    EXPECT_THAT(Tempos(tracks), ElementsAre(Pair(0, 500000)));
    EXPECT_THAT(Voices(tracks, 1), ElementsAre(MidiEvent{240, 0xC0, {5}}, MidiEvent{240, 0x90, {69, 100}},
                                               MidiEvent{480, 0x80, {69, 0}}));
}

TEST(MidiExporter, LevelsOfAnySizeAreClamped) {
    const auto score = Score();
    Add(*score, 0, 10)->level = std::numeric_limits<std::int32_t>::max();
    Add(*score, 20, 30)->level = std::numeric_limits<std::int32_t>::min();
    const MidiTracks tracks = TracksOf(*score);
    EXPECT_EQ(Voices(tracks, 1)[0].data[1], 127);
    EXPECT_EQ(Voices(tracks, 1)[2].data[1], 0);
}

TEST(MidiExporter, NotesThatAreKeptOutLeaveNoTrace) {
    const auto score = Score();
    Add(*score, 0, 10, 1, 5, 0);
    Add(*score, 0, 10, 1, 5, 17);
    Add(*score, 0, 10, 1, 5)->SetFlag(nfExcludedA);
    Add(*score, 0, 10, 1, 5)->SetFlag(nfExcludedB);
    Add(*score, 0, 10, 1, 5)->ClearFlag(nfIncluded);
    EXPECT_EQ(TracksOf(*score).size(), 1U);
    EXPECT_THAT(Voices(TracksOf(*score), 0), IsEmpty());
}

TEST(MidiExporter, ProgramsAreSentOncePerChannelWhateverTheLayer) {
    const auto score = Score();
    Add(*score, 0, 100, 1, 5, 1);
    Add(*score, 1000, 1100, 2, 5, 1);    // the channel has it
    Add(*score, 2000, 2100, 2, 5, 2);    // this one has not
    Add(*score, 3000, 3100, 1, 128, 1);  // no program at all
    const MidiTracks tracks = TracksOf(*score);
    EXPECT_EQ(Voices(tracks, 1).size(), 1U + 2 + 2);
    EXPECT_EQ(Voices(tracks, 2).size(), 2U + 1 + 2);
    EXPECT_EQ(Voices(tracks, 2)[2], (MidiEvent{21, 0xC1, {5}}));  // 2000 * 240 / 22050 = 21.8
}

TEST(MidiExporter, NamesMeterAndKeyAreCopied) {
    const auto score = Score();
    Add(*score, 0, 100, 2);
    score->layers[1].name = "one";
    score->title = "title";
    score->meterNumerator = 3;
    score->meterDenominatorLog2 = 3;
    score->keySharps = -2;
    score->keyMinor = true;
    const MidiTracks tracks = TracksOf(*score);
    EXPECT_EQ(tracks[0][0].data, (Bytes{2, 't', 'i', 't', 'l', 'e'}));
    EXPECT_EQ(tracks[0][1].data, (Bytes{0x58, 3, 3, 0x18, 8}));
    EXPECT_EQ(tracks[0][2].data, (Bytes{0x59, 0xFE, 1}));
    EXPECT_EQ(tracks[1][0].data, (Bytes{3, 'o', 'n', 'e'}));
}

TEST(MidiExporter, EveryLayerHasItsTrack) {
    const auto score = Score();
    score->AddBar(0, 4);
    score->AddBar(2 * second, 4);
    score->AddBar(5 * second, 4);  // a change of tempo, so that every layer carries ticks
    for (unsigned layer = 0; layer < 256; ++layer)
        Add(*score, second * 3, second * 4, static_cast<std::uint8_t>(layer));
    TMidiFile file;
    const TMidiExporter exporter(*score, file, true);
    ASSERT_EQ(file.tracks.size(), 256U);
    EXPECT_EQ(file.tracks[255].data, file.tracks[127].data);
}

// A bar of 2 s is 500000 us a quarter note, one of 3 s is 750000. The fourth bar's event is written because
// equal bars went before the third one's; the fifth one's is not.
TEST(MidiExporter, TempoEventsStandOnTheBarsThatChange) {
    const auto score = ScoreOfBars({2 * second, 2 * second, 3 * second, 3 * second, 3 * second, 2 * second});
    const MidiTracks tracks = TracksOf(*score);
    EXPECT_THAT(Tempos(tracks),
                ElementsAre(Pair(0, 500000), Pair(960, 750000), Pair(1440, 750000), Pair(2400, 500000)));
    EXPECT_THAT(Onsets(tracks, 1), ElementsAre(0, 480, 960, 1440, 1920, 2400, 2880));
}

// 1.5 % stays unwritten; the next bar has two differences to make good, 3 %, and the one after it none.
TEST(MidiExporter, ATempoStaysUntilTheDriftLeavesTwoPercent) {
    const std::uint32_t bar = 4 * second, longer = bar + bar * 15 / 1000;
    const MidiTracks tracks = TracksOf(*ScoreOfBars({bar, longer, longer, longer}));
    const auto tempos = Tempos(tracks);
    ASSERT_GE(tempos.size(), 2U);
    EXPECT_EQ(tempos[0].second, 1000000U);
    EXPECT_EQ(tempos[1].first, 960U);
    EXPECT_NEAR(tempos[1].second, 1030000, 20);
}

// The music stops in the second bar; the bars behind it are walked all the same.
TEST(MidiExporter, BarsBehindTheLastNoteWriteTheirTempoToo) {
    const auto score = Score();
    Add(*score, 0, 1000);
    for (const std::uint32_t time : {0U, 2 * second, 4 * second, 7 * second, 9 * second})
        score->AddBar(time, 4);
    EXPECT_THAT(Tempos(TracksOf(*score)),
                ElementsAre(Pair(0, 500000), Pair(960, 750000), Pair(1440, 500000)));
}

// Each bar begins within 2 % of a bar of its place, which is up to twice as many of the next bar's ticks,
// since that may be half as long. Nothing adds up over the score.
TEST(MidiExporter, BarsOfTheFileFallOnBarsOfTheScore) {
    std::minstd_rand random(1);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::uint32_t> lengths;
        const auto spread = static_cast<std::uint32_t>(1 + random() % second);
        for (int bar = 0; bar < 200; ++bar)
            lengths.push_back(second + static_cast<std::uint32_t>(random()) % spread);
        const MidiTracks tracks = TracksOf(*ScoreOfBars(lengths));
        const auto onsets = Onsets(tracks, 1);
        ASSERT_EQ(onsets.size(), 201U);
        const double tolerance = 0.021 * 480 * 2;
        for (std::size_t bar = 0; bar < onsets.size(); ++bar)
            ASSERT_NEAR(static_cast<double>(onsets[bar]), 480.0 * static_cast<double>(bar), tolerance)
                << "round " << round << ", bar " << bar;
    }
}

// A bar 1.9 % shorter than its tempo says puts the file 838 ticks ahead of the score: 9 MIDI ticks at its
// tempo, but 18 at the next one's, which is twice as fast. A note that follows another at once then comes 9
// ticks late, and those 9 are made good by its end.
TEST(MidiExporter, ATrackThatIsAheadWaitsForTheMusic) {
    const auto score = ScoreOfBars({44100, 43262, 22050, 22050});
    Add(*score, 50000, 87361);  // up to a tick before the third bar
    const auto onsets = Onsets(TracksOf(*score), 1);
    ASSERT_EQ(onsets.size(), 6U);
    EXPECT_NEAR(static_cast<double>(onsets[3]), 960.0, 20.0);
    EXPECT_NEAR(static_cast<double>(onsets[4]), 1440.0, 20.0);
    EXPECT_NEAR(static_cast<double>(onsets[5]), 1920.0, 20.0);
}

// A stub of 5000 ticks before bars of 2 s. Moved by 44100 - 5000, the music begins a whole bar later; notes
// keep their ends, so one that is shorter than the way keeps a tick of itself.
TEST(MidiExporter, AStubOfAFirstBarBecomesAWholeOne) {
    const auto score = Score();
    for (std::uint32_t bar = 0; bar < 4; ++bar)
        score->AddBar(bar == 0 ? 0 : 5000 + (bar - 1) * 2 * second, 4);
    Add(*score, 5000, 100000);
    Add(*score, 0, 6000, 2);
    const MidiTracks tracks = TracksOf(*score, true);
    EXPECT_THAT(Tempos(tracks), ElementsAre(Pair(0, 500000)));
    EXPECT_THAT(Onsets(tracks, 1), ElementsAre(480));
    EXPECT_THAT(Onsets(tracks, 2), ElementsAre(65));  // 5999 * 240 / 22050 = 65.3
    EXPECT_EQ(score->bars.size(), 4U) << "what is written is a copy";
}

// At 3495 quarters a minute a gap is filled every 1514 ticks, the first bar of that so close to the second
// that the music has to move earlier, by 5000 - 1514; what would begin before the start begins at it.
TEST(MidiExporter, AStubLongerThanTheSecondBarMovesTheMusicEarlier) {
    const auto score = Score();
    score->tempo = 3495.0;
    for (const std::uint32_t time : {0U, 5000U, 5000 + 20 * second}) score->AddBar(time, 4);
    Add(*score, 1000, 90000);
    Add(*score, 5000, 90000, 2);
    const MidiTracks tracks = TracksOf(*score, true);
    EXPECT_EQ(Tempos(tracks).at(0).second, 17166U);  // 4 * 1514 / 22050 s / 16 = 0.0171655 s
    EXPECT_THAT(Onsets(tracks, 1), ElementsAre(0));
    EXPECT_THAT(Onsets(tracks, 2), ElementsAre(479));  // 479.99 ticks of that tempo, cut
}

TEST(MidiExporter, AStubOfAFirstBarIsDroppedWhereItIsNotToBeMended) {
    const auto score = Score();
    for (const std::uint32_t time : {0U, 5000U, 5000 + 2 * second, 5000 + 4 * second}) score->AddBar(time, 4);
    Add(*score, 0, 90000);
    // The first bar now lasts 49100 ticks: 4 * 49100 / 22050 s / 16 = 0.556689 s
    EXPECT_EQ(Tempos(TracksOf(*score, false)).at(0), std::make_pair(std::uint64_t{0}, 556689U));
    score->RemoveBar(5000 + 2 * second);
    score->RemoveBar(5000 + 4 * second);
    score->notes[0]->SetEnd(9000);  // no third bar, and none at the end: nothing to mend it by
    EXPECT_EQ(Tempos(TracksOf(*score, true)).at(0), std::make_pair(std::uint64_t{0}, 500000U));
}
