#include "tools/host/note_list.h"

#include <gtest/gtest.h>

#include "tools/host/take_output.h"

namespace {

// 1000 Hz, so that a sample is a millisecond; five seconds.
Take TakeOf(std::vector<TimedEvent> events) {
    return {1000, 5000, std::move(events)};
}

constexpr std::uint8_t on = 0x90, off = 0x80;

std::string Paired(std::vector<TimedEvent> events) {
    std::string text;
    for (const HeardNote& note : PairNotes(TakeOf(std::move(events))))
        text += std::to_string(note.channel) + ":" + std::to_string(note.pitch) + " " +
                std::to_string(note.begin) + "-" + std::to_string(note.end) + " v" +
                std::to_string(note.velocity) + "; ";
    return text;
}

}  // namespace

TEST(NoteList, EachNoteOnIsPairedWithTheNextNoteOffOfItsChannelAndPitch) {
    EXPECT_EQ(Paired({{100, {on, 60, 80}},
                      {150, {on, 64, 90}},
                      {160, {on | 1, 60, 70}},
                      {200, {off, 60, 0}},
                      {300, {off | 1, 60, 64}},
                      {250, {off, 64, 0}}}),
              "0:60 100-200 v80; 0:64 150-250 v90; 1:60 160-300 v70; ");
}

TEST(NoteList, NotesAreEndedByWhateverComesFirst) {
    // A note-on of velocity 0 is a note-off; a second note-on ends the first; the take's end ends the rest.
    EXPECT_EQ(Paired({{1, {on, 60, 80}}, {2, {on, 60, 0}}}), "0:60 1-2 v80; ");
    EXPECT_EQ(Paired({{1, {on, 60, 80}}, {5, {on, 60, 81}}}), "0:60 1-5 v80; 0:60 5-5000 v81; ");
    // Delays differ from band to band, and dates before the start are cut to 0: an end may be dated before
    // its begin, and a begin before that of a note that was sent earlier.
    EXPECT_EQ(Paired({{9, {on, 60, 80}}, {7, {off, 60, 0}}}), "0:60 9-9 v80; ");
    EXPECT_EQ(Paired({{30, {on, 40, 1}}, {20, {on, 67, 1}}, {20, {on, 60, 1}}}),
              "0:60 20-5000 v1; 0:67 20-5000 v1; 0:40 30-5000 v1; ");
    EXPECT_EQ(Paired({{1, {0, 0, 0}}, {2, {off, 60, 0}}, {3, {0xC0, 60, 0}}, {4, {0xB0, 123, 0}}}), "");
}

TEST(TakeOutput, TheTableHasARowForEachNote) {
    const Take take = TakeOf({{100, {on, 60, 80}}, {2500, {off, 60, 0}}, {2400, {on, 100, 127}}});
    EXPECT_EQ(NoteTable("a b.wav", take),
              "a b.wav: 5.000 s at 1000 Hz, 2 notes\n"
              "  start    end  note  MIDI  velocity\n"
              "  0.100  2.500  C4      60        80\n"
              "  2.400  5.000  E7     100       127\n"
              "\n"
              "  time  chord\n"
              "   0.1  C\n"
              "   2.5  E\n"
              "   5.0  -\n");
    EXPECT_EQ(NoteTable("x", TakeOf({})), "x: 5.000 s at 1000 Hz, 0 notes\n");
}

TEST(TakeOutput, JsonIsOneLineWhateverTheFileIsCalled) {
    const Take take = TakeOf({{100, {on | 3, 61, 80}}, {2500, {off | 3, 61, 0}}});
    EXPECT_EQ(NoteJson("a\n\"b\"\\\xC3\xA9\xFF", take),
              R"({"file":"a\n\"b\"\\)"
              "\xC3\xA9\xEF\xBF\xBD"
              R"(","rate":1000,"seconds":5.0,"notes":[{"start":0.1,"end":2.5,"name":"C#4","midi":61,)"
              R"("velocity":80,"channel":4}],"chords":[{"time":0.1,"name":"C#"},{"time":2.5,"name":""}]})"
              "\n");
}

TEST(TakeOutput, CsvHasEveryMessageByDateAndSaysWhatItIs) {
    const Take take = TakeOf({{0, {0xC0, 5, 0}},
                              {1500, {on, 60, 80}},
                              {1500, {on, 60, 0}},
                              {7, {0, 0, 0}},
                              {4999, {off, 60, 64}},
                              {4999, {0xB0, 123, 0}}});
    EXPECT_EQ(EventCsv(take),
              "time,sample,status,data1,data2,kind\n"
              "0.000000,0,192,5,0,program\n"
              "0.007000,7,0,0,0,none\n"
              "1.500000,1500,144,60,80,note on\n"
              "1.500000,1500,144,60,0,note off\n"
              "4.999000,4999,128,60,64,note off\n"
              "4.999000,4999,176,123,0,controller\n");
}
