#include "devices/midi_ports.h"

#include <algorithm>
#include <bit>
#include <new>

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

// Segment s begins at place 8 << s of a sequence in which port p has place p + 8.
struct MidiPortTable::Place {
    explicit Place(std::uint32_t port) {
        const std::uint64_t place = std::uint64_t{port} + firstSegment;
        segment =
            static_cast<std::size_t>(std::countl_zero(std::uint64_t{firstSegment}) - std::countl_zero(place));
        offset = place - Length(segment);
    }
    static std::size_t Length(std::size_t segment) { return std::size_t{firstSegment} << segment; }

    std::size_t segment = 0;
    std::size_t offset = 0;
};

MidiPortTable::~MidiPortTable() {
    Unload();
    for (std::atomic<TMidiPort*>& segment : ports) delete[] segment.load();
}

TMidiPort* MidiPortTable::At(std::uint32_t port) const {
    if (port >= portCount.load(std::memory_order_acquire)) return nullptr;
    const Place place(port);
    return &ports[place.segment].load(std::memory_order_acquire)[place.offset];
}

TMidiPort* MidiPortTable::Usable(std::uint32_t port) const {
    return tableClosed == 0 ? At(port) : nullptr;
}

bool MidiPortTable::MakeRoom() {
    const Place place(portCount.load());
    if (place.segment >= segmentCount) return false;
    std::atomic<TMidiPort*>& segment = ports[place.segment];
    if (segment.load() == nullptr) segment.store(new (std::nothrow) TMidiPort[Place::Length(place.segment)]);
    return segment.load() != nullptr;
}

// The device's handle, with one user more. The lock is released while the layer opens it.
std::uint32_t MidiPortTable::Acquire(std::unique_lock<std::mutex>& hold, std::uint32_t index,
                                     MidiOutHandle& handle) {
    auto found = openDevices.find(index);
    while (found != openDevices.end() && found->second.busy) {
        busyEnded.wait(hold);
        found = openDevices.find(index);
    }
    if (tableClosed != 0) return MMSYSERR_ERROR;
    if (found == openDevices.end()) {
        found = openDevices.try_emplace(index).first;
        found->second.busy = true;
        hold.unlock();
        const std::uint32_t result =
            Ask([&] { return MidiOut().midiOutOpen(handle, MidiOutDeviceId(index)); });
        hold.lock();
        busyEnded.notify_all();
        if (result != MMSYSERR_NOERROR) {
            openDevices.erase(found);
            return result;
        }
        found->second.busy = false;
        found->second.handle = handle;
    }
    ++found->second.useCount;
    handle = found->second.handle;
    return MMSYSERR_NOERROR;
}

std::uint32_t MidiPortTable::OpenPort(std::uint32_t& port, std::uint32_t index) try {
    std::unique_lock<std::mutex> hold(lock);
    if (tableClosed != 0) return MMSYSERR_ERROR;
    MidiOutHandle handle = 0;
    const std::uint32_t result = Acquire(hold, index, handle);
    if (result != MMSYSERR_NOERROR) return result;

    const std::uint32_t count = portCount.load();
    std::uint32_t number = 0;
    while (number < count && At(number)->isFree == 0) ++number;
    if (number == count) {
        if (!MakeRoom()) {
            Release(hold, count, index);
            return MMSYSERR_NOMEM;
        }
        portCount.store(count + 1, std::memory_order_release);
        Clear(*At(number));
    }
    TMidiPort& entry = *At(number);
    entry.handle = handle;
    entry.deviceIndex = index;
    entry.isFree = 0;
    port = number;
    return MMSYSERR_NOERROR;
} catch (const std::bad_alloc&) {
    return MMSYSERR_NOMEM;
}

// One user less. The last one's notes are ended and the device is closed, with the lock released meanwhile.
// False where that is under way already.
bool MidiPortTable::Release(std::unique_lock<std::mutex>& hold, std::uint32_t port, std::uint32_t index) {
    const auto found = openDevices.find(index);
    if (found == openDevices.end() || found->second.busy) return false;
    if (--found->second.useCount > 0) return true;
    found->second.busy = true;
    hold.unlock();
    SilencePort(port);
    CloseDevice(found->second.handle);
    hold.lock();
    openDevices.erase(found);
    busyEnded.notify_all();
    return true;
}

void MidiPortTable::ClosePort(std::uint32_t port) {
    std::unique_lock<std::mutex> hold(lock);
    TMidiPort* const entry = Usable(port);
    if (entry == nullptr || entry->isFree != 0 || !Release(hold, port, entry->deviceIndex)) return;
    if (port + 1 == portCount.load())
        portCount.store(port);
    else
        entry->isFree = 1;
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

bool MidiPortTable::AnyBusy() const {
    return std::any_of(openDevices.begin(), openDevices.end(), [](const auto& d) { return d.second.busy; });
}

// Once the flag is set nobody begins anything, and who has begun is awaited: after that the table is ours
// alone, but for senders that looked at the flag before. Those find the handle closed, and the layer refuses
// them.
void MidiPortTable::Unload() {
    {
        std::unique_lock<std::mutex> hold(lock);
        tableClosed = 1;
        busyEnded.wait(hold, [this] { return !AnyBusy(); });
    }
    const std::uint32_t count = portCount.load();
    for (std::uint32_t port = 0; port < count; ++port) SilencePort(port);
    for (const auto& [index, device] : openDevices) CloseDevice(device.handle);
    openDevices.clear();
    portCount.store(0);
}

namespace {

MidiPortTable& table = *new MidiPortTable;

// Closes the table when the program ends, where its devices are still ours to close.
struct ProgramEnd {
    ~ProgramEnd() {
        if (DevicesAreOurs()) table.Unload();
    }
} programEnd;

}  // namespace

std::uint32_t OpenPort(std::uint32_t& port, std::uint32_t index) {
    return table.OpenPort(port, index);
}
void ClosePort(std::uint32_t port) {
    table.ClosePort(port);
}
std::uint32_t SendShort(std::uint32_t port, std::uint32_t message) {
    return table.SendShort(port, message);
}
std::uint32_t SendLong(std::uint32_t port, const MidiLongMessage& message) {
    return table.SendLong(port, message);
}
void ResetPort(std::uint32_t port) {
    table.ResetPort(port);
}
void SilencePort(std::uint32_t port) {
    table.SilencePort(port);
}
bool IsPortValid(std::uint32_t port) {
    return table.IsPortValid(port);
}
