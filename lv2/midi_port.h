#pragma once
#include <cstdint>

#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

// The port of the notes: writes one sequence a run into the host's buffer.
//
// Threads: Begin and Write [audio], Connect never beside them.
class MidiPort {
public:
    // The numbers that the host has given to these types.
    MidiPort(LV2_URID sequence, LV2_URID midiEvent) : sequenceType(sequence), midiType(midiEvent) {}

    void Connect(LV2_Atom_Sequence* place) { port = place; }  // null drops all events
    void Begin();  // an empty sequence; until here the atom's size is the capacity
    // False when the buffer has no space for it.
    bool Write(std::uint32_t frame, std::uint32_t message);

private:
    LV2_URID sequenceType;
    LV2_URID midiType;
    LV2_Atom_Sequence* port = nullptr;
    std::uint32_t capacity = 0;  // bytes of the sequence's body
};
