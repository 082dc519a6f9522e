#include "lv2/midi_port.h"

#include <cstring>

#include <lv2/atom/util.h>

#include "devices/midi_backend.h"

void MidiPort::Begin() {
    if (port == nullptr) return;
    capacity = port->atom.size;
    port->atom.size = 0;
    if (capacity < sizeof port->body) return;
    port->atom = {sizeof port->body, sequenceType};
    port->body = {0, 0};  // times are in frames
}

bool MidiPort::Write(std::uint32_t frame, std::uint32_t message) {
    if (port == nullptr) return true;
    LV2_Atom_Event head;
    head.time.frames = frame;
    head.body = {static_cast<std::uint32_t>(ShortMessageLength(message & 0xFFU)), midiType};
    const std::uint32_t size = port->atom.size;
    const std::uint32_t added = lv2_atom_pad_size(static_cast<std::uint32_t>(sizeof head) + head.body.size);
    if (size < sizeof port->body || capacity - size < added) return false;
    auto* const bytes = reinterpret_cast<unsigned char*>(port) + sizeof port->atom + size;
    std::memset(bytes, 0, added);
    std::memcpy(bytes, &head, sizeof head);
    for (std::uint32_t byte = 0; byte < head.body.size; ++byte)
        bytes[sizeof head + byte] = static_cast<unsigned char>(message >> 8 * byte);
    port->atom.size = size + added;
    return true;
}
