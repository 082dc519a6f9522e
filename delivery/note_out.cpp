#include "delivery/note_out.h"

#include <optional>

#include "delivery/note_recorder.h"

void TNoteOut::BeginNote(std::int32_t band) {
    NoteOn(band);
    soundingCount = soundingCount + 1;
}

void TNoteOut::EndNote(std::int32_t band) {
    NoteOff(band);
    soundingCount = soundingCount - 1;
}

// Starts from what the detector hears, so that an output which joins in the middle of a note has it at once.
void TNoteOut::StartSteps() {
    soundingCount = 0;
    const TNoteRecorder* const from = recorder;
    if (from != nullptr && from->active && !running)
        for (std::int32_t band = 0; band < from->numBands; ++band)
            if (from->BandSounds(band)) BeginNote(band);
    running = true;
}

void TNoteOut::StopSteps() {
    if (!running) return;
    Silence();
    running = false;
}

// Ends what the outputs were given, which is what was playing, and not what the detector hears by now.
void TNoteOut::Silence() {
    if (!running || silenced) return;
    if (const TNoteRecorder* const from = recorder)
        for (std::int32_t band = 0; band < from->numBands; ++band)
            if (from->playing[band]) EndNote(band);
    silenced = true;
}

void TNoteOut::Update() {
    const TNoteRecorder* const from = recorder;
    if (!running || from == nullptr) return;
    for (std::int32_t band = from->NextChange(0); band < from->numBands; band = from->NextChange(band + 1))
        from->BandSounds(band) ? BeginNote(band) : EndNote(band);
    silenced = false;
}

void TmtNoteOut::Start() {
    std::optional<TNoteRecorder::Hold> held;
    TNoteRecorder* const from = recorder;
    if (from != nullptr && from->active) held.emplace(*from);
    StartNow();
}

void TmtNoteOut::Stop() {
    std::optional<TNoteRecorder::Hold> held;
    TNoteRecorder* const from = recorder;
    if (from != nullptr && from->active) held.emplace(*from);
    StopNow();
}
