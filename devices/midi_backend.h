#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "devices/midi_out_devices.h"

// The name under which other programs see us.
constexpr const char* midiClientName = "ORVA Audio To MIDI";

// The bytes of a short message (status in bits 0 to 7, data in bits 8 to 15 and 16 to 23): 1 to 3, or 0 where
// the word is none by itself: no status, a system-exclusive one, data above 127.
std::size_t ShortMessageLength(std::uint32_t message);

// One open device. Destruction waits until what was sent is on its way (some tens of ms) and gives the device
// back. Threads: Send [audio], of several instances at once, neither waits nor allocates; SendLong [any].
class MidiDevice {
public:
    MidiDevice() = default;
    virtual ~MidiDevice() = default;
    MidiDevice(const MidiDevice&) = delete;
    MidiDevice& operator=(const MidiDevice&) = delete;

    virtual std::uint32_t Send(std::uint32_t message, std::size_t length) = 0;  // a whole short message
    virtual std::uint32_t SendLong(const MidiLongMessage& message) = 0;
};

// What an attempt to open gave: a device, or a code with the text that its layer has for it (may be empty).
struct MidiOpening {
    std::unique_ptr<MidiDevice> device;
    std::uint32_t code = MMSYSERR_NOERROR;
    std::string text = {};
};

// One of the layers through which a system may have devices. Threads: one call at a time, never [audio].
class MidiBackend {
public:
    MidiBackend() = default;
    virtual ~MidiBackend() = default;
    MidiBackend(const MidiBackend&) = delete;
    MidiBackend& operator=(const MidiBackend&) = delete;

    // In the layer's order, each name once, as the layer spells it (any bytes). None where the layer is
    // absent.
    virtual std::vector<std::string> DeviceNames() = 0;
    virtual MidiOpening Open(const std::string& name) = 0;
    // The device that stands for the user's choice of one, on systems that have it.
    virtual MidiOpening OpenMapper() { return {nullptr, MMSYSERR_BADDEVICEID, {}}; }
};

// The layers of this operating system, in the order in which their devices are listed.
std::vector<std::unique_ptr<MidiBackend>> SystemLayers();
SystemVersion OperatingSystemVersion();
// Whether devices may still be closed while the process ends or the module is unloaded.
bool DevicesAreOurs();
