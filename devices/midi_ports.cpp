#include "devices/midi_ports.h"

#include <cassert>
#include <new>

#include "base/lasting.h"
#include "devices/midi_backend.h"
#include "devices/midi_device_list.h"

namespace {

// What a layer answers, or code 1 where it throws instead: its callers are a host's threads.
template <typename Call>
std::uint32_t Ask(Call call) noexcept {
    try {
        return call();
    } catch (...) {
        return MMSYSERR_ERROR;
    }
}

std::uint32_t Transmit(const TMidiPort& port, std::uint32_t message) {
    return Ask([&] { return MidiOut().midiOutShortMsg(port.handle, message); });
}

void CloseDevice(MidiOutHandle handle) {
    Ask([&] { return MidiOut().midiOutClose(handle); });
}

void Silence(TMidiPort& port) {
    for (std::uint32_t note = 0; note < 128; ++note)
        for (std::uint32_t channel = 0; channel < 16; ++channel)
            if (port.noteOn[channel][note] != 0) {
                Transmit(port, 0x80U | channel | note << 8);
                port.noteOn[channel][note] = 0;
            }
}

void Clear(TMidiPort& port) {
    for (auto& channel : port.noteOn)
        for (Relaxed<std::uint8_t>& note : channel) note = 0;
}

}  // namespace

MidiPortTable::~MidiPortTable() {
    Unload();
    for (const std::atomic<TMidiPort*>& port : ports) delete port.load();
}

TMidiPort* MidiPortTable::At(std::uint32_t port) const {
    return port < portCount.load(std::memory_order_acquire) ? ports[port].load(std::memory_order_relaxed)
                                                            : nullptr;
}

TMidiPort* MidiPortTable::Usable(std::uint32_t port) const {
    return tableClosed == 0 ? At(port) : nullptr;
}

// The number of a free port, or of one that is ready to stand behind the last.
std::uint32_t MidiPortTable::FindFree() {
    const std::uint32_t count = portCount.load();
    std::uint32_t number = 0;
    while (number < count && At(number)->isFree == 0) ++number;
    if (number == maxPorts) throw std::bad_alloc();
    if (number == count) {
        if (ports[number].load() == nullptr) ports[number] = new TMidiPort;
        Clear(*ports[number]);
    }
    return number;
}

std::uint32_t MidiPortTable::OpenPort(std::uint32_t& port, std::uint32_t index) try {
    const Locked hold(lock);
    if (tableClosed != 0) return MMSYSERR_ERROR;
    const std::uint32_t number = FindFree();
    const auto [found, isNew] = openDevices.try_emplace(index);
    OpenDevice& device = found->second;
    if (isNew) {
        const std::uint32_t result =
            Ask([&device, index] { return MidiOut().midiOutOpen(device.handle, MidiOutDeviceId(index)); });
        if (result != MMSYSERR_NOERROR) {
            openDevices.erase(found);
            return result;
        }
    }
    assert(device.handle != 0);
    ++device.useCount;
    TMidiPort& entry = *ports[number];
    entry.handle = device.handle;
    entry.deviceIndex = index;
    entry.isFree = 0;
    if (number == portCount.load()) portCount.store(number + 1, std::memory_order_release);
    port = number;
    return MMSYSERR_NOERROR;
} catch (const std::bad_alloc&) {
    return MMSYSERR_NOMEM;
}

// The notes are ended with the lock released: meanwhile the device may find another user, who may close it in
// turn, or the table end.
void MidiPortTable::ClosePort(std::uint32_t port) {
    std::uint32_t index = 0;
    {
        const Locked hold(lock);
        const TMidiPort* const entry = Usable(port);
        if (entry == nullptr || entry->isFree != 0) return;
        index = entry->deviceIndex;
        OpenDevice& device = openDevices[index];
        assert(device.useCount > 0);
        if (--device.useCount > 0) return FreePort(port);
        ++device.closing;
    }
    SilencePort(port);
    const Locked hold(lock);
    if (tableClosed != 0) return;
    OpenDevice& device = openDevices[index];
    if (--device.closing == 0 && device.useCount == 0) {
        CloseDevice(device.handle);
        openDevices.erase(index);
    }
    FreePort(port);
}

void MidiPortTable::FreePort(std::uint32_t port) {
    ports[port].load()->isFree = 1;
    if (port + 1 == portCount.load()) portCount.store(port);
}

std::uint32_t MidiPortTable::SendShort(std::uint32_t port, std::uint32_t message) {
    TMidiPort* const entry = Usable(port);
    if (entry == nullptr) return MMSYSERR_ERROR;
    if (entry->isFree != 0) return MMSYSERR_INVALHANDLE;
    const std::uint32_t kind = message & 0xF0U;
    if (ignoreProgramChange && kind == 0xC0U) return MMSYSERR_NOERROR;
    const std::uint32_t result = Transmit(*entry, message);
    if (result != MMSYSERR_NOERROR) return result;  // a note off that failed leaves its note for SilencePort
    if (kind == 0x90U || kind == 0x80U)
        entry->noteOn[message & 15U][message >> 8 & 127U] = kind == 0x90U ? 1 : 0;
    return MMSYSERR_NOERROR;
}

std::uint32_t MidiPortTable::SendLong(std::uint32_t port, const MidiLongMessage& message) {
    const TMidiPort* const entry = Usable(port);
    if (entry == nullptr) return MMSYSERR_ERROR;
    if (entry->isFree != 0) return MMSYSERR_INVALHANDLE;
    return Ask([&] { return MidiOut().midiOutLongMsg(entry->handle, message); });
}

void MidiPortTable::ResetPort(std::uint32_t port) {
    const TMidiPort* const entry = Usable(port);
    if (entry == nullptr || entry->isFree != 0) return;
    for (const std::uint32_t controller : {121U, 123U})  // all controllers to rest, all notes off
        for (std::uint32_t channel = 0; channel < 16; ++channel)
            Transmit(*entry, 0xB0U | channel | controller << 8);
    Ask([&] { return MidiOut().midiOutReset(entry->handle); });
}

void MidiPortTable::SilencePort(std::uint32_t port) {
    if (TMidiPort* const entry = At(port)) Silence(*entry);
}

// Once the flag is set nobody begins anything, and an open or close under way ends before the lock is free.
// Senders that looked at the flag before find the handle closed, and the layer refuses them.
void MidiPortTable::Unload() {
    {
        const Locked hold(lock);
        tableClosed = 1;
    }
    const std::uint32_t count = portCount.load();
    for (std::uint32_t port = 0; port < count; ++port) SilencePort(port);
    const Locked hold(lock);
    for (const auto& [index, device] : openDevices) CloseDevice(device.handle);
    openDevices.clear();
    portCount.store(0);
}

namespace {

Lasting<MidiPortTable> table;

// Closes the table when the program ends, where its devices are still ours to close.
struct ProgramEnd {
    ~ProgramEnd() {
        if (DevicesAreOurs()) table.value.Unload();
    }
} programEnd;

}  // namespace

std::uint32_t OpenPort(std::uint32_t& port, std::uint32_t index) {
    return table.value.OpenPort(port, index);
}
void ClosePort(std::uint32_t port) {
    table.value.ClosePort(port);
}
std::uint32_t SendShort(std::uint32_t port, std::uint32_t message) {
    return table.value.SendShort(port, message);
}
std::uint32_t SendLong(std::uint32_t port, const MidiLongMessage& message) {
    return table.value.SendLong(port, message);
}
void ResetPort(std::uint32_t port) {
    table.value.ResetPort(port);
}
void SilencePort(std::uint32_t port) {
    table.value.SilencePort(port);
}
bool IsPortValid(std::uint32_t port) {
    return table.value.IsPortValid(port);
}
