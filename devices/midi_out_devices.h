#pragma once
#include <cstddef>
#include <cstdint>
#include <mutex>

// An open device, as the layer that opened it names it. A number is never given twice, so that one whose
// device was closed is refused and does not reach a later device. 0 is no device.
using MidiOutHandle = std::uint64_t;

// Result codes of a layer. Others may come from one, with a text of its own.
constexpr std::uint32_t MMSYSERR_NOERROR = 0;
constexpr std::uint32_t MMSYSERR_ERROR = 1;         // not taken: the way is full or the server gone
constexpr std::uint32_t MMSYSERR_BADDEVICEID = 2;   // no such device, or not any more
constexpr std::uint32_t MMSYSERR_ALLOCATED = 4;     // the device is there and refuses us
constexpr std::uint32_t MMSYSERR_INVALHANDLE = 5;   // not open, or closed since
constexpr std::uint32_t MMSYSERR_NODRIVER = 6;      // no device layer
constexpr std::uint32_t MMSYSERR_NOMEM = 7;         // no memory, or too many devices open
constexpr std::uint32_t MMSYSERR_NOTSUPPORTED = 8;  // the layer cannot do that
constexpr std::uint32_t MMSYSERR_BADERRNUM = 9;     // a code without a text
constexpr std::uint32_t MMSYSERR_INVALPARAM = 11;   // no MIDI message

struct MidiOutCaps {
    static constexpr std::size_t nameUnits = 320;  // with the terminator; the longest name that JACK gives
    char16_t name[nameUnits] = {};                 // UTF-16
};

struct MidiOutErrorTextW {
    static constexpr std::size_t units = 256;
    char16_t text[units] = {};  // UTF-16; ends at a zero unit or at its full length
};

// A whole message of any length, such as a system-exclusive one.
struct MidiLongMessage {
    const std::uint8_t* data = nullptr;  // not owned; free again when midiOutLongMsg returns
    std::size_t length = 0;              // bytes
};

struct SystemVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
};

// A layer of MIDI output devices, with the operations and names that Windows has for it. A device id is an
// index into the layer's list; the layer decides what the list shows while devices come and go.
//
// Threads: [any], several at once, also on one handle: midiOutShortMsg comes from the audio threads of
// several instances and neither waits nor allocates; all others may take long (tens of ms) and are never
// called there. Errors: result codes. A layer may throw where it must; its callers take that for code 1.
class MidiOutDevices {
public:
    MidiOutDevices() = default;
    virtual ~MidiOutDevices() = default;
    MidiOutDevices(const MidiOutDevices&) = delete;
    MidiOutDevices& operator=(const MidiOutDevices&) = delete;

    virtual std::uint32_t midiOutGetNumDevs() = 0;
    virtual std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) = 0;
    virtual std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) = 0;
    virtual std::uint32_t midiOutClose(MidiOutHandle handle) = 0;  // sends before it are delivered
    virtual std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) = 0;  // [audio]
    virtual std::uint32_t midiOutReset(MidiOutHandle handle) = 0;  // all notes off, pedals up
    virtual std::uint32_t midiOutLongMsg(MidiOutHandle handle, const MidiLongMessage& message) = 0;
    virtual std::uint32_t midiOutGetErrorTextW(std::uint32_t code, MidiOutErrorTextW& text) = 0;
    virtual SystemVersion GetVersionExA() = 0;
    // Reads the list again; for when a user is about to see it.
    virtual void ReadDevices() {}

    SystemVersion Version();  // GetVersionExA, asked once and kept

private:
    std::once_flag versionAsked;
    SystemVersion version;
};

// The layer that the process uses: the system's own, unless a substitute took its place.
MidiOutDevices& MidiOut();  // [any], no wait

// Puts another layer in its place, or with null the system's own again. Only while no device is open and
// nobody is calling; the layer is not owned and must live until it is replaced.
void SubstituteMidiOut(MidiOutDevices* layer);
