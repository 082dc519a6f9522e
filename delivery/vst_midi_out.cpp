#include "delivery/vst_midi_out.h"

#include <algorithm>

void TVSTMIDIOut::NoteOn(std::int32_t band) {
    if (const TNoteRecorder* const from = recorder)
        SendDated(band, from->messages[band].onMessage, Kind::begin);
}

void TVSTMIDIOut::NoteOff(std::int32_t band) {
    if (const TNoteRecorder* const from = recorder)
        SendDated(band, from->messages[band].offMessage, Kind::end);
}

void TVSTMIDIOut::Send(std::uint32_t message) {
    SendAt(0, message);
}

void TVSTMIDIOut::SendDated(std::int32_t band, std::uint32_t message, Kind kind) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    const bool insideBlock = effect->HostIsAbleton();
    const std::int32_t delay = insideBlock ? 0 : from->BandDelaySamples(band);
    // The low 32 bits of both clocks, in wrapping arithmetic: the difference is small, the clocks are not.
    auto deltaFrames = static_cast<std::int32_t>(static_cast<std::uint32_t>(from->GetTime()) -
                                                 static_cast<std::uint32_t>(effect->GetTotalSamples()) -
                                                 static_cast<std::uint32_t>(delay));
    if (insideBlock)
        deltaFrames = std::max(deltaFrames, 0);
    else if (effect->RaisesEarlyDates())
        deltaFrames = Raised(band, deltaFrames, kind);
    SendAt(deltaFrames, message);
}

std::int32_t TVSTMIDIOut::Raised(std::int32_t band, std::int32_t deltaFrames, Kind kind) {
    const auto block = static_cast<std::int64_t>(effect->GetTotalSamples());
    const std::int64_t inOrder = lastDate[band] - block + (kind == Kind::end ? 1 : 0);
    const std::int64_t date = std::max({std::int64_t{0}, inOrder, std::int64_t{deltaFrames}});
    lastDate[band] = block + date;
    return static_cast<std::int32_t>(date);
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
    if (TNoteRecorder* const from = recorder) from->CountSent();
}
