#pragma once
#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/mutex.h"
#include "devices/midi_backend.h"
#include "devices/midi_out_devices.h"

// The system's MIDI outputs: on Linux the ALSA sequencer's devices, then a JACK server's; on Windows those of
// its multimedia layer. A layer that is absent has no devices, which is no error.
//
// The list is read at its first use, when a device is opened, and by ReadDevices, and kept in between. An id
// stands for the device that the list showed under it last: while devices come and go between showing and
// opening, opening gives that device or none. ReadDevices takes the layers' own order where no device is
// open; while one is, each device keeps its id, those that have gone leave a gap without a name, and new ones
// fill the gaps. Names are kept whole; where two devices have the same one, the later is numbered.
//
// Threads: as the interface says. A send counts itself in at its slot and looks whether the slot still has
// its handle; a close takes the handle away and waits until nobody is counted in. So no send waits, and none
// reaches a device that was closed.
class SystemMidiOut : public MidiOutDevices {
public:
    SystemMidiOut();
    explicit SystemMidiOut(std::vector<std::unique_ptr<MidiBackend>> layers) : backends(std::move(layers)) {}

    std::uint32_t midiOutGetNumDevs() override;
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override;
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override;
    std::uint32_t midiOutClose(MidiOutHandle handle) override;
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override;
    std::uint32_t midiOutReset(MidiOutHandle handle) override;
    std::uint32_t midiOutLongMsg(MidiOutHandle handle, const MidiLongMessage& message) override;
    std::uint32_t midiOutGetErrorTextW(std::uint32_t code, MidiOutErrorTextW& text) override;
    SystemVersion GetVersionExA() override { return OperatingSystemVersion(); }
    void ReadDevices() override;

    static constexpr std::size_t maxOpen = 128;  // devices at once; a parameter can name 101

private:
    struct Known {
        MidiBackend* backend;                 // not owned
        std::string name;                     // as the layer spells it
        std::optional<std::u16string> shown;  // the same, made unique once it is in the list
        bool there = true;                    // when the list was read last
        unsigned opened = 0;
    };
    struct Slot {
        std::atomic<MidiOutHandle> handle{0};  // 0: nothing to send to
        std::atomic<std::uint32_t> inside{0};  // senders that are looking at handle and device
        std::unique_ptr<MidiDevice> device;    // changes only while handle is 0 and nobody is inside
        bool taken = false;                    // under listLock
        std::uint32_t id = 0;                  // under listLock
    };

    std::vector<Known> Find() REQUIRES(reading);  // asks the layers
    void Merge(std::vector<Known> found, bool fillGaps) REQUIRES(reading);
    void UpdateList(std::vector<Known> found, bool fillGaps) REQUIRES(listLock);
    std::u16string UniqueName(const std::string& name) const REQUIRES(listLock);
    void ReadOnce();
    MidiOutHandle Admit(std::unique_ptr<MidiDevice> device, std::size_t slot) REQUIRES(listLock);
    template <typename Use>
    std::uint32_t With(MidiOutHandle handle, Use use);

    const std::vector<std::unique_ptr<MidiBackend>> backends;
    Mutex reading;   // whoever asks the layers for names or a device; taken before listLock
    Mutex listLock;  // held for a short time
    bool wasRead GUARDED_BY(listLock) = false;
    std::vector<Known> devices GUARDED_BY(listLock);  // by id
    MidiOutHandle generation GUARDED_BY(listLock) = 0;
    // By code: of the last opening, if it failed.
    std::map<std::uint32_t, std::string> layerTexts GUARDED_BY(listLock);
    std::array<Slot, maxOpen> slots;
};
