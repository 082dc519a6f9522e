#include "tools/host/score_output.h"

#include <cmath>

#include "midifile/midi_exporter.h"
#include "notes/memory_stream.h"
#include "notes/notes.h"
#include "tools/host/bar_time.h"
#include "tools/host/note_list.h"

namespace {

constexpr int lowestPitch = 24;  // MIDI note of a score's pitch 0

}  // namespace

void TakeToScore(const Take& take, TNotes& score) {
    constexpr double ticksPerSecond = 22050;
    constexpr double rounding = 1e-6;  // of a tick, by which a product may miss a whole number
    const std::vector<HeardNote> notes = PairNotes(take);
    const double before = static_cast<double>(BarsBeforeBarOne(take, notes)) * take.meter.BarQuarters();
    // Rounded up, for the way to a MIDI file cuts once more: what lies on a line must not come before it.
    const auto ticks = [&](std::int64_t sample) {
        const double seconds = (before + QuartersFromBarOne(take, sample)) * 60 / take.tempo;
        return static_cast<std::uint32_t>(std::ceil(seconds * ticksPerSecond - rounding));
    };
    score.title = "Created with ORVA Audio To MIDI VST";
    score.tempo = take.tempo;
    score.meterNumerator = static_cast<std::uint8_t>(take.meter.beats);
    score.meterDenominatorLog2 = static_cast<std::uint8_t>(take.meter.beatLog2);
    // Note by note and not by events: of a note that ends where the next of its pitch begins, both ends have
    // one date, and which is which would be lost.
    for (const HeardNote& note : notes) {
        const auto pitch = static_cast<std::uint8_t>(note.pitch - lowestPitch);
        score.AddNote(ticks(note.begin), ticks(note.end), pitch,
                      VelocityToLevel(static_cast<std::uint8_t>(note.velocity)),
                      static_cast<std::uint8_t>(note.program), 1,
                      static_cast<std::uint8_t>(note.channel + 1));
    }
}

std::string MidiFileBytes(const TNotes& score) {
    MemoryStream stream;
    SaveScore(score, stream, true);
    return std::move(stream.bytes);
}

std::string StoredScoreBytes(const TNotes& score) {
    MemoryStream stream;
    score.Write(stream);
    return std::move(stream.bytes);
}
