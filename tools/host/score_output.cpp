#include "tools/host/score_output.h"

#include "delivery/rt_recording.h"
#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tools/host/memory_stream.h"

void TakeToScore(const Take& take, TNotes& score) {
    std::vector<TRecordEvent> events;
    events.reserve(take.events.size());
    for (const TimedEvent& event : take.events) {
        const std::uint32_t message = event.bytes[0] | static_cast<std::uint32_t>(event.bytes[1]) << 8 |
                                      static_cast<std::uint32_t>(event.bytes[2]) << 16;
        events.push_back({event.sample, message, 0.0F});
    }
    score.title = "Created with ORVA Audio To MIDI VST";
    score.tempo = take.tempo;
    TakeToNotes(events, score, 1, static_cast<std::uint32_t>(take.rate));
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
