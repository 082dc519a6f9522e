#include "devices/midi_device_list.h"

#include "base/wide_text.h"
#include "devices/midi_out_devices.h"

bool MapperIsGone() {
    const SystemVersion version = MidiOut().Version();
    return version.major > 6 || (version.major == 6 && version.minor >= 2);
}

std::uint32_t MidiOutDeviceCount() {
    return MidiOut().midiOutGetNumDevs() + (MapperIsGone() ? 0 : 1);
}

// With a mapper, index 0 becomes 0 - 1, which is the mapper's id.
std::uint32_t MidiOutDeviceId(std::uint32_t index) {
    static_assert(std::uint32_t{0} - 1 == midiMapperId);
    return MapperIsGone() ? index : index - 1;
}

std::string MidiOutDeviceName(std::uint32_t index) {
    if (!MapperIsGone() && index == 0) return "MIDI Mapper";
    MidiOutCaps caps;
    if (MidiOut().midiOutGetDevCapsW(MidiOutDeviceId(index), caps) != MMSYSERR_NOERROR) return {};
    return WideCharToMultiByte({caps.name, MidiOutCaps::nameUnits - 1});
}

std::uint32_t FindMidiOutDevice(std::string_view name) {
    const std::uint32_t count = MidiOutDeviceCount();
    for (std::uint32_t index = 0; index < count; ++index)
        if (MidiOutDeviceName(index) == name) return index;
    return 0;
}

std::string MidiOutErrorText(std::uint32_t code) {
    const bool onlyTheMapper = !MapperIsGone() && MidiOutDeviceCount() == 1;
    if (code == MMSYSERR_BADDEVICEID && onlyTheMapper) code = MMSYSERR_NODRIVER;
    MidiOutErrorTextW text;
    if (MidiOut().midiOutGetErrorTextW(code, text) != MMSYSERR_NOERROR) return {};
    return WideCharToMultiByte({text.text, MidiOutErrorTextW::units});
}

void ReadMidiOutDevices() {
    MidiOut().ReadDevices();
}
