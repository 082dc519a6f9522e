// MIDI files byte for byte, and scores as events of a file.
#include "midifile/midi_exporter.h"

#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/midi_reader.h"
#include "tests/support/test.h"

namespace {

constexpr std::uint32_t second = 22050;

// A score, and the file that is made of it.
struct Score {
    explicit Score(std::initializer_list<std::uint32_t> bars = {}) {
        for (const std::uint32_t time : bars) notes->AddBar(time, 4);
    }
    TNote* Add(std::uint32_t begin, std::uint32_t end, int layer = 1, int program = 255, int channel = 1) {
        return notes->AddNote(begin, end, 45, VelocityToLevel(100), static_cast<std::uint8_t>(program),
                              static_cast<std::uint8_t>(layer), static_cast<std::uint8_t>(channel));
    }
    MidiTracks Tracks(bool fixFirstBar = true) const {
        MemoryStream stream;
        SaveScore(*notes, stream, fixFirstBar);
        return MidiReader(stream.bytes).tracks;
    }
    std::unique_ptr<TNotes> notes = std::make_unique<TNotes>();
};

// Bars of these lengths from 0 on, with a note of layer 1 at the start of each, and of the next one.
Score ScoreOfBars(const std::vector<std::uint32_t>& lengths) {
    Score score;
    std::uint32_t time = 0;
    for (std::size_t bar = 0; bar <= lengths.size(); ++bar) {
        score.notes->AddBar(time, 4);
        score.Add(time, time + 1000);
        if (bar < lengths.size()) time += lengths[bar];
    }
    return score;
}

// The tempo events as (tick, microseconds per quarter note); the first one belongs to the header.
using Tempo = std::vector<std::pair<std::uint64_t, unsigned>>;
Tempo Tempos(const MidiTracks& tracks) {
    Tempo tempos;
    for (const MidiEvent& event : tracks.at(0))
        if (event.status == 0xFF && event.data[0] == 0x51)
            tempos.emplace_back(event.tick,
                                unsigned{event.data[1]} << 16 | unsigned{event.data[2]} << 8 | event.data[3]);
    return tempos;
}

using Ticks = std::vector<std::uint64_t>;
Ticks Onsets(const MidiTracks& tracks, std::size_t track) {
    Ticks onsets;
    for (const MidiEvent& event : Voices(tracks, track))
        if (event.status >> 4 == 9) onsets.push_back(event.tick);
    return onsets;
}

}  // namespace

// At tempo 120 a second is two quarter notes: 240 ticks.
TEST(MidiExporter, NotesBecomeEventsOfTheirLayersTrack) {
    Score score;
    score.Add(second, 2 * second, 1, 5);
    score.Add(3 * second, 4 * second, 2, 5);  // the channel has the program
    score.Add(2 * second, 2 * second + 100, 2, 0, 2)->level = std::numeric_limits<std::int32_t>::max();
    score.Add(5 * second, 5 * second + 100, 1, 128, 16)->level = std::numeric_limits<std::int32_t>::min();
    for (const int channel : {0, 17}) score.Add(0, 10, 3, 5, channel);
    score.Add(0, 10, 3)->SetFlag(nfExcludedA);
    score.Add(0, 10, 3)->SetFlag(nfExcludedB);
    score.Add(0, 10, 3)->ClearFlag(nfIncluded);
    score.notes->layers[1].name = "one";
    score.notes->title = "title";
    score.notes->meterNumerator = score.notes->meterDenominatorLog2 = 3;
    score.notes->keySharps = -2;
    score.notes->keyMinor = true;
    const MidiTracks tracks = score.Tracks();
    EXPECT_EQ(Tempos(tracks), (Tempo{{0, 500000}}));
    ASSERT_EQ(tracks.size(), 3U);
    EXPECT_EQ(tracks[0][0].data, (Bytes{2, 't', 'i', 't', 'l', 'e'}));
    EXPECT_EQ(tracks[0][1].data, (Bytes{0x58, 3, 3, 0x18, 8}));
    EXPECT_EQ(tracks[0][2].data, (Bytes{0x59, 0xFE, 1}));
    EXPECT_EQ(tracks[1][0].data, (Bytes{3, 'o', 'n', 'e'}));
    EXPECT_EQ(Voices(tracks, 1), (std::vector<MidiEvent>{{240, 0xC0, {5}},
                                                         {240, 0x90, {69, 100}},
                                                         {480, 0x80, {69, 0}},
                                                         {1200, 0x9F, {69, 0}},
                                                         {1201, 0x8F, {69, 0}}}));
    EXPECT_EQ(Voices(tracks, 2), (std::vector<MidiEvent>{{480, 0xC1, {0}},
                                                         {480, 0x91, {69, 127}},
                                                         {481, 0x81, {69, 0}},
                                                         {720, 0x90, {69, 100}},
                                                         {960, 0x80, {69, 0}}}));
}

// A bar of 2 s is 500000 us a quarter note, one of 3 s is 750000. The fourth bar's event is written because
// equal bars went before the third one's; the fifth one's is not. Bars behind the last note are walked, too.
TEST(MidiExporter, TempoEventsStandOnTheBarsThatChange) {
    const MidiTracks tracks =
        ScoreOfBars({2 * second, 2 * second, 3 * second, 3 * second, 3 * second, 2 * second}).Tracks();
    EXPECT_EQ(Tempos(tracks), (Tempo{{0, 500000}, {960, 750000}, {1440, 750000}, {2400, 500000}}));
    EXPECT_EQ(Onsets(tracks, 1), (Ticks{0, 480, 960, 1440, 1920, 2400, 2880}));
    Score early({0U, 2 * second, 4 * second, 7 * second, 9 * second});
    early.Add(0, 1000);
    EXPECT_EQ(Tempos(early.Tracks()), (Tempo{{0, 500000}, {960, 750000}, {1440, 500000}}));
    // 1.5 % stays unwritten; the next bar has two differences to make good, 3 %, and the one after it none.
    const std::uint32_t bar = 4 * second, longer = bar + bar * 15 / 1000;
    const Tempo drift = Tempos(ScoreOfBars({bar, longer, longer, longer}).Tracks());
    ASSERT_GE(drift.size(), 2U);
    EXPECT_EQ(drift[0].second, 1000000U);
    EXPECT_EQ(drift[1].first, 960U);
    EXPECT_NEAR(drift[1].second, 1030000, 20);
}

// A bar 1.9 % shorter than its tempo says puts the file 838 ticks ahead of the score: 9 MIDI ticks at its
// tempo, but 18 at the next one's, which is twice as fast. A note that follows another at once then comes 9
// ticks late, and those 9 are made good by its end.
TEST(MidiExporter, ATrackThatIsAheadWaitsForTheMusic) {
    Score score = ScoreOfBars({44100, 43262, 22050, 22050});
    score.Add(50000, 87361);  // up to a tick before the third bar
    const Ticks onsets = Onsets(score.Tracks(), 1);
    ASSERT_EQ(onsets.size(), 6U);
    for (std::size_t bar = 2; bar < 5; ++bar)
        EXPECT_NEAR(static_cast<double>(onsets[bar + 1]), 480.0 * static_cast<double>(bar), 20.0);
}

// A stub of 5000 ticks before bars of 2 s. Moved by 44100 - 5000, the music begins a whole bar later; notes
// keep their ends, so one that is shorter than the way keeps a tick of itself. Where it is not to be mended
// it goes, and the first bar lasts 49100 ticks: 4 * 49100 / 22050 s / 16 = 0.556689 s.
TEST(MidiExporter, AStubOfAFirstBarBecomesAWholeOneOrGoes) {
    Score score({0, 5000, 5000 + 2 * second, 5000 + 4 * second});
    score.Add(5000, 100000);
    score.Add(0, 6000, 2);
    const MidiTracks tracks = score.Tracks(true);
    EXPECT_EQ(Tempos(tracks), (Tempo{{0, 500000}}));
    EXPECT_EQ(Onsets(tracks, 1), Ticks{480});
    EXPECT_EQ(Onsets(tracks, 2), Ticks{65});  // 5999 * 240 / 22050 = 65.3
    EXPECT_EQ(score.notes->bars.size(), 4U) << "what is written is a copy";
    EXPECT_EQ(Tempos(score.Tracks(false)).at(0).second, 556689U);
}

TEST(MidiFile, DeltasTakeSevenBitsAByteAndNoByteInVain) {
    const std::pair<std::uint32_t, Bytes> rows[] = {{0, {0x00}},
                                                    {127, {0x7F}},
                                                    {128, {0x81, 0x00}},
                                                    {16383, {0xFF, 0x7F}},
                                                    {16384, {0x81, 0x80, 0x00}},
                                                    {2097151, {0xFF, 0xFF, 0x7F}},
                                                    {2097152, {0x81, 0x80, 0x80, 0x00}},
                                                    {0xFFFFFFFF, {0xFF, 0xFF, 0xFF, 0x7F}},
                                                    {1U << 28, {0x80, 0x80, 0x80, 0x00}}};  // a bit is lost
    for (const auto& [ticks, bytes] : rows) {
        TMidiFile file;
        file.AddDelta(0, ticks);
        EXPECT_EQ(file.tracks[0].data, bytes) << ticks;
    }
}

// Title, meter, key and tempo stand before the events of track 0.
TEST(MidiFile, AFileOfThreeTracksIsWrittenByteForByte) {
    TMidiFile file;
    file.title = "T";
    file.keySharps = -3;
    file.keyMinor = 1;
    file.tempo = 0x01020304;  // three bytes of it
    file.AddDelta(0, 1);
    file.AddProgram(0, 7, 1);
    file.AddDelta(2, 240);
    file.AddNoteOn(2, 69, 100, 1);
    file.SetTrackName(2, "ab");
    file.SetTrackName(3, "");  // no track for a name that says nothing
    // clang-format off
    EXPECT_EQ(Written(file), (Bytes{
        'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 3, 0, 120,
        'M', 'T', 'r', 'k', 0, 0, 0, 33, 0, 0xFF, 2, 1, 'T', 0, 0xFF, 0x58, 4, 4, 2, 0x18, 8,
            0, 0xFF, 0x59, 2, 0xFD, 1, 0, 0xFF, 0x51, 3, 2, 3, 4, 1, 0xC0, 7, 0, 0xFF, 0x2F, 0,
        'M', 'T', 'r', 'k', 0, 0, 0, 4, 0, 0xFF, 0x2F, 0,
        'M', 'T', 'r', 'k', 0, 0, 0, 15, 0, 0xFF, 3, 2, 'a', 'b', 0x81, 0x70, 0x90, 69, 100, 0, 0xFF, 0x2F, 0}));
    // clang-format on
}
