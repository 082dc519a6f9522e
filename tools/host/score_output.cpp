#include "tools/host/score_output.h"

#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tools/host/memory_stream.h"
#include "tools/host/note_list.h"

namespace {

constexpr int lowestPitch = 24;  // MIDI note of a score's pitch 0

}  // namespace

void TakeToScore(const Take& take, TNotes& score) {
    constexpr std::int64_t ticksPerSecond = 22050;
    const auto ticks = [&](std::int64_t sample) {
        return static_cast<std::uint32_t>(sample * ticksPerSecond / take.rate);
    };
    score.title = "Created with ORVA Audio To MIDI VST";
    score.tempo = take.tempo;
    // Note by note and not by events: of a note that ends where the next of its pitch begins, both ends have
    // one date, and which is which would be lost.
    for (const HeardNote& note : PairNotes(take)) {
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
