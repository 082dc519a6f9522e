#pragma once
#include "devices/midi_backend.h"
#include "tests/support/test.h"

// A device of a layer, as the list of the system's devices has it.
inline std::unique_ptr<MidiDevice> OpenDevice(MidiBackend& backend, const std::string& name) {
    MidiOpening opening = backend.Open(name);
    EXPECT_EQ(opening.code, MMSYSERR_NOERROR) << opening.text;
    return std::move(opening.device);
}
inline std::uint32_t Send(MidiDevice& device, std::uint32_t message) {
    return device.Send(message, ShortMessageLength(message));
}
