#pragma once
#include <cstdint>

#include "delivery/note_out.h"

// Sends notes to a MIDI device of the system, one short message a note, at once. A band without a MIDI note
// sends nothing. A device that is lost stays attached and silent: no result of a send is looked at.
//
// Threads: as TmtNoteOut; a send neither waits nor allocates. Construction and destruction may take some tens
// of ms, up to a second where a device's server stands still: [any] but [audio]. Ends of notes are the
// business of Stop, before the destruction; the last user of a device ends what is left on its port. Errors:
// construction raises std::runtime_error, whose text says for the user why the device does not open.
class TRTMidiOut : public TmtNoteOut {
public:
    explicit TRTMidiOut(std::uint32_t index);  // of the device list
    ~TRTMidiOut() override;

    void NoteOn(std::int32_t band) override;
    void NoteOff(std::int32_t band) override;
    void Send(std::uint32_t message) override;

    std::uint32_t port = 0;           // fixed after construction: its entry in the port table
    const std::uint32_t deviceIndex;  // as asked for
};
