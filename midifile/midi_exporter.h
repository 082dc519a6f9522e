#pragma once
#include <cstddef>
#include <cstdint>

#include "midifile/midi_file.h"

class TBaseStream;
class TNote;
class TNotes;
struct TNoteBoundary;

// Turns a score into a MIDI file, a layer a track. A score without bars has one tempo for all time; a score
// with bars gets a tempo from each bar's length, so that the file's bars fall on the score's. A score tick is
// 1/22050 s, a MIDI tick 1/120 of a quarter note.
//
// A note goes out if nfIncluded is set, nfExcludedA and nfExcludedB are clear, and its channel is 1 to 16.
// Hostile values (a tempo of 0 or not a number, a meter of 0) give a poor file and nothing worse.
// Threads: one at a time, no lock.
class TMidiExporter {
public:
    // The whole export. Where there are bars, they are put in order first, which changes the score. A first
    // bar of less than half a second is then either dropped or, with `firstBar`, made as long as the second
    // by moving the notes later.
    TMidiExporter(TNotes& source, TMidiFile& target, bool firstBar);

private:
    static constexpr std::size_t layerCount = 256;   // every layer that a note can name
    static constexpr std::size_t channelCount = 17;  // counted from 1
    static constexpr std::uint8_t noProgram = 255;

    struct TBarWalk;

    void CopyNames();
    void CopyMeter();
    void ExportFixedTempo();
    void PrepareBars();
    void ShiftScore(std::int64_t distance);
    void ExportWithBars();
    void EnterBar(TBarWalk& walk, bool carry);
    void CarryTicks(const TBarWalk& walk);
    std::uint32_t StepTo(std::uint32_t time, std::uint8_t layer, double perTick);
    void AddEvents(const TNoteBoundary& point, std::uint32_t delta);
    bool TakesProgram(const TNote& note);
    std::uint32_t FixedTempo() const;
    std::uint32_t BarTempo(std::int64_t length) const;

    TNotes* score;
    TMidiFile* file;
    bool fixFirstBar;
    double trackTime[layerCount] = {};            // score time (with one tempo: MIDI time) of the last event
    std::uint32_t carriedTicks[layerCount] = {};  // MIDI ticks owed from before a change of tempo
    std::uint8_t lastProgram[channelCount];       // the program last sent on the channel, or noProgram
};

// Writes a copy of `score` as a MIDI file; the score itself stays as it is. Whether the bytes arrived is the
// stream's to tell.
void SaveScore(const TNotes& score, TBaseStream& stream, bool fixFirstBar);
