#include "tools/host/note_cleaning.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr std::int32_t takeRate = 44100;
constexpr int C = 60, E = 64;

HeardNote Note(int pitch, int begin, int end, int velocity = 100) {  // ms
    return {std::llround(begin * 44.1), std::llround(end * 44.1), 0, pitch, velocity};
}

// In milliseconds.
std::string Cleaned(const std::vector<HeardNote>& notes, const NoteCleaning& cleaning) {
    const auto ms = [](std::int64_t samples) {
        return std::to_string(std::lround(static_cast<double>(samples) / 44.1));
    };
    std::string text;
    for (const HeardNote& note : CleanNotes(notes, cleaning, takeRate))
        text += std::to_string(note.pitch) + " " + ms(note.begin) + "-" + ms(note.end) + " v" +
                std::to_string(note.velocity) + "; ";
    return text;
}

}  // namespace

TEST(NoteCleaning, ShortNotesAreLeftOutAndThoseOfTheLimitStay) {
    NoteCleaning cleaning;
    cleaning.shortestNote = 50;
    EXPECT_EQ(Cleaned({Note(C, 0, 49), Note(E, 0, 50), Note(C, 100, 100), Note(C, 200, 300)}, cleaning),
              "64 0-50 v100; 60 200-300 v100; ");
}

// Chained, too, and before short notes are looked for: three of 30 ms make one of 110.
TEST(NoteCleaning, ShortGapsJoinNotesOfOnePitch) {
    NoteCleaning cleaning;
    cleaning.shortestGap = 20;
    cleaning.shortestNote = 50;
    EXPECT_EQ(Cleaned({Note(C, 0, 30, 80), Note(E, 35, 100), Note(C, 40, 70, 90), Note(C, 80, 110, 70),
                       Note(C, 130, 200, 60)},
                      cleaning),
              "60 0-110 v80; 64 35-100 v100; 60 130-200 v60; ");
}

// At 120 quarters a minute a sixteenth is 125 ms.
TEST(NoteCleaning, TheGridTakesBothEndsAndNotesOfOnePitchNeverOverlapOnIt) {
    NoteCleaning cleaning;
    cleaning.gridParts = ParseGrid("1/16");
    EXPECT_EQ(Cleaned({Note(C, 60, 300), Note(E, 65, 70), Note(C, 370, 430)}, cleaning),
              "60 0-250 v100; 64 125-250 v100; 60 375-500 v100; ");
    EXPECT_EQ(Cleaned({Note(C, 0, 100, 50), Note(C, 30, 260, 90)}, cleaning), "60 0-250 v90; ");
    EXPECT_EQ(Cleaned({Note(C, 0, 60), Note(C, 70, 200)}, cleaning), "60 0-125 v100; 60 125-250 v100; ");
    EXPECT_EQ(Cleaned({Note(C, 0, 190), Note(C, 185, 400)}, cleaning), "60 0-125 v100; 60 125-375 v100; ");
    cleaning.tempo = 60;  // 250 ms
    EXPECT_EQ(Cleaned({Note(C, 130, 490)}, cleaning), "60 250-500 v100; ");
    cleaning.gridParts = ParseGrid("1/12");  // a third of a second
    EXPECT_EQ(Cleaned({Note(C, 300, 700)}, cleaning), "60 333-667 v100; ");
}

// The road to a file cuts samples to score ticks, and these to MIDI ticks, 120 a quarter. A sixteenth is 30
// of them, whatever the tempo and the rate.
TEST(NoteCleaning, TheGridIsMetInTheMidiFileToTheTick) {
    NoteCleaning cleaning;
    cleaning.gridParts = 16;
    for (const double tempo : {60.0, 96.0, 117.3})
        for (const std::int32_t hertz : {8000, 44100, 48000, 96000})
            for (int line = 0; line < 200; ++line) {
                cleaning.tempo = tempo;
                const std::int64_t near = std::llround(line * 15 / tempo * hertz);
                const auto notes = CleanNotes({{near, near + hertz / 100, 0, C, 100}}, cleaning, hertz);
                const std::int64_t scoreTick = notes.at(0).begin * 22050 / hertz;
                EXPECT_EQ(static_cast<int>(static_cast<double>(scoreTick) * tempo * 120 / 60 / 22050),
                          30 * line);
            }
}

TEST(NoteCleaning, AnUntouchedTakeStaysAsItIsAndOtherMessagesStayInIt) {
    const Take take = {takeRate, 1000, {{0, {0xC0, 5, 0}}, {100, {0x90, C, 80}}, {110, {0x80, C, 0}}}, 120};
    EXPECT_EQ(::Cleaned(take, {}).events, take.events);
    NoteCleaning cleaning;
    cleaning.shortestNote = 50;
    cleaning.tempo = 90;
    const Take cleaned = ::Cleaned(take, cleaning);
    EXPECT_EQ(cleaned.events, (std::vector<TimedEvent>{{0, {0xC0, 5, 0}}}));
    EXPECT_EQ(cleaned.tempo, 90);
}

TEST(NoteCleaning, AGridIsAPartOfAWholeNote) {
    EXPECT_EQ(ParseGrid("1/192"), 192);
    for (const char* text : {"", "16", "1/", "1/0", "1/-4", "1/193", "2/4", "1/8t"})
        EXPECT_THROW(ParseGrid(text), std::invalid_argument) << text;
}
