#include "midifile/midi_file.h"

#include <gtest/gtest.h>

#include "tests/notes/memory_stream.h"

namespace {

Bytes Delta(std::uint32_t ticks) {
    TMidiFile file;
    file.AddDelta(0, ticks);
    return file.tracks[0].data;
}

// The meter, key and tempo of a new file, with their deltas.
const Bytes plainConductor{0, 0xFF, 0x58, 4, 4,    2,    0x18, 8,  // meter: 4/4
                           0, 0xFF, 0x59, 2, 0,    0,              // key: no sharps, major
                           0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20};    // tempo: 500000

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const Bytes endOfTrack{0, 0xFF, 0x2F, 0};

Bytes Header(std::uint8_t tracks) {
    return {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, tracks, 0, 120};
}

Bytes Chunk(std::uint32_t length) {
    MemoryStream stream;
    PutTag(stream, "MTrk");
    PutU32(stream, length);
    return stream.data;
}

}  // namespace

TEST(MidiFile, DeltasTakeSevenBitsAByteAndNoByteInVain) {
    EXPECT_EQ(Delta(0), (Bytes{0x00}));
    EXPECT_EQ(Delta(127), (Bytes{0x7F}));
    EXPECT_EQ(Delta(128), (Bytes{0x81, 0x00}));
    EXPECT_EQ(Delta(16383), (Bytes{0xFF, 0x7F}));
    EXPECT_EQ(Delta(16384), (Bytes{0x81, 0x80, 0x00}));
    EXPECT_EQ(Delta(2097151), (Bytes{0xFF, 0xFF, 0x7F}));
    EXPECT_EQ(Delta(2097152), (Bytes{0x81, 0x80, 0x80, 0x00}));
    EXPECT_EQ(Delta(0xFFFFFFFF), (Bytes{0xFF, 0xFF, 0xFF, 0x7F}));
    EXPECT_EQ(Delta(std::uint32_t{1} << 28), (Bytes{0x80, 0x80, 0x80, 0x00}));  // the 29th bit is lost
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

TEST(MidiFile, OnlyANameThatSaysSomethingMakesATrack) {
    TMidiFile file;
    file.SetTrackName(2, "");
    EXPECT_EQ(file.tracks.size(), 1U);
    file.SetTrackName(2, "x");
    file.SetTrackName(2, "");
    EXPECT_EQ(file.tracks.size(), 3U);
    EXPECT_EQ(file.tracks[2].name, "");
}

TEST(MidiFile, AFileOfThreeTracksIsWrittenByteForByte) {
    TMidiFile file;
    file.title = "T";
    file.AddDelta(2, 240);
    file.AddNoteOn(2, 69, 100, 1);
    file.SetTrackName(2, "ab");
    const Bytes title{0, 0xFF, 2, 1, 'T'};
    const Bytes note{0x81, 0x70, 0x90, 69, 100};
    EXPECT_EQ(Written(file), Joined({Header(3),  //
                                     Chunk(5 + 21 + 4),
                                     title,
                                     plainConductor,
                                     endOfTrack,  //
                                     Chunk(4),
                                     endOfTrack,  //
                                     Chunk(2 + 5 + 8),
                                     {0, 0xFF, 3, 2, 'a', 'b'},
                                     note,
                                     endOfTrack}));
}

TEST(MidiFile, TheConductorStandsBeforeTheEventsOfTrackZero) {
    TMidiFile file;
    file.AddDelta(0, 1);
    file.AddProgram(0, 7, 1);
    file.keySharps = -3;
    file.keyMinor = 1;
    file.tempo = 0x01020304;  // three bytes of it
    Bytes conductor = plainConductor;
    conductor[12] = 0xFD;
    conductor[13] = 1;
    std::copy_n(Bytes{2, 3, 4}.begin(), 3, conductor.begin() + 18);
    EXPECT_EQ(Written(file), Joined({Header(1), Chunk(21 + 3 + 4), conductor, {1, 0xC0, 7}, endOfTrack}));
}

TEST(MidiFile, LongTextsKeepTheLowByteOfTheirLength) {
    TMidiFile file;
    file.title = std::string(256 + 2, 't');
    file.SetTrackName(0, std::string(256 + 1, 'n'));  // whole: such a file is bad, and is meant to be
    const Bytes bytes = Written(file);
    const std::uint32_t data = 4 + 2 + 21;  // a title of two characters, and the rest
    EXPECT_EQ(bytes.size(), 14U + 8 + 257 + data + 8);
    EXPECT_EQ(Bytes(bytes.begin() + 14, bytes.begin() + 26),
              Joined({Chunk(257 + data + 8), {0, 0xFF, 3, 1}}));
    EXPECT_EQ(Bytes(bytes.begin() + 26 + 257, bytes.begin() + 26 + 257 + 6),
              (Bytes{0, 0xFF, 2, 2, 't', 't'}));
}
