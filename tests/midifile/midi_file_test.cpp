#include "midifile/midi_file.h"

#include <gtest/gtest.h>

#include "tests/notes/memory_stream.h"

namespace {

Bytes Delta(std::uint32_t ticks) {
    TMidiFile file;
    file.AddDelta(0, ticks);
    return file.tracks[0].data;
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes Header(std::uint8_t tracks) {
    return {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, tracks, 0, 120};
}
Bytes Chunk(unsigned length) {
    return {
        'M', 'T', 'r', 'k', 0, 0, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)};
}
// The meter, key and tempo of a file, with their deltas.
Bytes Conductor(std::uint8_t sharps = 0, std::uint8_t minor = 0, const Bytes& tempo = {0x07, 0xA1, 0x20}) {
    return Joined(
        {{0, 0xFF, 0x58, 4, 4, 2, 0x18, 8, 0, 0xFF, 0x59, 2, sharps, minor, 0, 0xFF, 0x51, 3}, tempo});
}
const Bytes endOfTrack{0, 0xFF, 0x2F, 0};

}  // namespace

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
    for (const auto& [ticks, bytes] : rows) EXPECT_EQ(Delta(ticks), bytes) << ticks;
}

TEST(MidiFile, EventsCarryTheirStatusAndTheirChannelFromOne) {
    TMidiFile file;
    file.AddNoteOn(0, 60, 100, 1);
    file.AddNoteOff(0, 60, 1);
    file.AddProgram(0, 5, 16);
    file.AddTempo(0x123456);
    EXPECT_EQ(file.tracks[0].data,
              (Bytes{0x90, 60, 100, 0x80, 60, 0, 0xCF, 5, 0xFF, 0x51, 3, 0x12, 0x34, 0x56}));
    file.AddNoteOn(3, 60, 100, 255);  // the track stands in for the channel
    EXPECT_EQ(file.tracks.at(3).data, (Bytes{0x92, 60, 100}));
}

TEST(MidiFile, AFileOfThreeTracksIsWrittenByteForByte) {
    TMidiFile file;
    file.title = "T";
    file.AddDelta(2, 240);
    file.AddNoteOn(2, 69, 100, 1);
    file.SetTrackName(2, "ab");
    file.SetTrackName(3, "");  // no track for a name that says nothing
    const Bytes titled = Joined({{0, 0xFF, 2, 1, 'T'}, Conductor(), endOfTrack});
    const Bytes named = Joined({{0, 0xFF, 3, 2, 'a', 'b'}, {0x81, 0x70, 0x90, 69, 100}, endOfTrack});
    EXPECT_EQ(Written(file), Joined({Header(3), Chunk(30), titled, Chunk(4), endOfTrack, Chunk(15), named}));
}

TEST(MidiFile, TheConductorStandsBeforeTheEventsOfTrackZero) {
    TMidiFile file;
    file.AddDelta(0, 1);
    file.AddProgram(0, 7, 1);
    file.keySharps = -3;
    file.keyMinor = 1;
    file.tempo = 0x01020304;  // three bytes of it
    const Bytes events = Joined({Conductor(0xFD, 1, {2, 3, 4}), {1, 0xC0, 7}, endOfTrack});
    EXPECT_EQ(Written(file), Joined({Header(1), Chunk(28), events}));
}

TEST(MidiFile, LongTextsKeepTheLowByteOfTheirLength) {
    TMidiFile file;
    file.title = std::string(256 + 2, 't');
    const std::string name(256 + 1, 'n');  // whole: such a file is bad, and is meant to be
    file.SetTrackName(0, name);
    const Bytes title{0, 0xFF, 2, 2, 't', 't'};
    EXPECT_EQ(Written(file), Joined({Header(1),
                                     Chunk(4 + 257 + 6 + 21 + 4),
                                     {0, 0xFF, 3, 1},
                                     Bytes(name.begin(), name.end()),
                                     title,
                                     Conductor(),
                                     endOfTrack}));
}
