#include "delivery/vst_midi_out.h"

#include "delivery/note_recorder.h"

void TVSTMIDIOut::NoteOn(std::int32_t band) {
    if (const TNoteRecorder* const from = recorder) SendDated(band, from->messages[band].onMessage);
}

void TVSTMIDIOut::NoteOff(std::int32_t band) {
    if (const TNoteRecorder* const from = recorder) SendDated(band, from->messages[band].offMessage);
}

void TVSTMIDIOut::Send(std::uint32_t message) {
    SendAt(0, message);
}

void TVSTMIDIOut::SendDated(std::int32_t band, std::uint32_t message) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    const bool insideBlock = effect->HostIsAbleton();
    const std::int32_t delay = insideBlock ? 0 : from->BandDelaySamples(band);
    // The low 32 bits of both clocks, in wrapping arithmetic: the difference is small, the clocks are not.
    const auto deltaFrames = static_cast<std::int32_t>(static_cast<std::uint32_t>(from->GetTime()) -
                                                       static_cast<std::uint32_t>(effect->GetTotalSamples()) -
                                                       static_cast<std::uint32_t>(delay));
    SendAt(insideBlock && deltaFrames < 0 ? 0 : deltaFrames, message);
}

void TVSTMIDIOut::SendAt(std::int32_t deltaFrames, std::uint32_t message) {
    VstMidiEvent event;
    event.deltaFrames = deltaFrames;
    for (int byte = 0; byte < 3; ++byte)
        event.midiData[byte] = static_cast<char>(message >> 8 * byte & 0xFFU);
    VstEvents events;
    events.numEvents = 1;
    events.events[0] = reinterpret_cast<VstEvent*>(&event);  // as the published records are laid out
    effect->SendEvents(events);
}
