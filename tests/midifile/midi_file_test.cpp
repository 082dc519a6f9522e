#include "midifile/midi_file.h"

#include <gtest/gtest.h>

#include "tests/notes/memory_stream.h"

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

// The name stands there whole, so that such a file is bad, and is meant to be.
TEST(MidiFile, LongTextsKeepTheLowByteOfTheirLength) {
    TMidiFile file;
    file.title = std::string(256 + 2, 't');
    file.SetTrackName(0, std::string(256 + 1, 'n'));
    const std::string bytes = Text(Written(file));
    EXPECT_EQ(bytes.substr(18, 4), Text({0, 0, 1, 4 + 1 + 6 + 21 + 4}));
    EXPECT_EQ(bytes.substr(22, 4 + 257 + 7),
              Text({0, 0xFF, 3, 1}) + std::string(257, 'n') + Text({0, 0xFF, 2, 2, 't', 't', 0}));
}
