#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// The MIDI output devices as a user sees them: numbered names, in UTF-8.
//
// An index counts the list; a device id counts the layer's devices. They differ where the system puts a
// "MIDI Mapper" in front of its devices, as systems up to version 6.1 do: it is index 0 there.
//
// Threads: [any] but [audio]; the first call of all may take some tens of ms while the layers are asked.

constexpr std::uint32_t midiMapperId = 0xFFFFFFFF;

bool MapperIsGone();                 // the system is of version 6.2 or above
std::uint32_t MidiOutDeviceCount();  // with the mapper, where there is one
std::uint32_t MidiOutDeviceId(std::uint32_t index);
std::string MidiOutDeviceName(std::uint32_t index);  // empty where there is no such device
// The first index with exactly this name. 0 where there is none, so that an unknown name means the first
// device.
std::uint32_t FindMidiOutDevice(std::string_view name);
// What went wrong, for the user. With only the mapper in the list, "no such device" means that there is no
// driver.
std::string MidiOutErrorText(std::uint32_t code);
// Reads the list again; for an editor that is about to show it.
void ReadMidiOutDevices();
