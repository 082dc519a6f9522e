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
