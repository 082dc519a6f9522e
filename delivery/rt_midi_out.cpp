#include "delivery/rt_midi_out.h"

#include <stdexcept>

#include "delivery/note_recorder.h"
#include "devices/midi_device_list.h"
#include "devices/midi_out_devices.h"
#include "devices/midi_ports.h"

TRTMidiOut::TRTMidiOut(std::uint32_t index) : deviceIndex(index) {
    const std::uint32_t result = OpenPort(port, index);
    if (result != MMSYSERR_NOERROR) throw std::runtime_error(MidiOutErrorText(result));
}

TRTMidiOut::~TRTMidiOut() {
    ClosePort(port);
}

void TRTMidiOut::NoteOn(std::int32_t band) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    if (const std::uint32_t message = from->messages[band].onMessage) Send(message);
}

void TRTMidiOut::NoteOff(std::int32_t band) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    if (const std::uint32_t message = from->messages[band].offMessage) Send(message);
}

void TRTMidiOut::Send(std::uint32_t message) {
    SendShort(port, message);
    if (TNoteRecorder* const from = recorder) from->CountSent();
}
