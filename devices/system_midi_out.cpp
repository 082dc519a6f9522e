#include "devices/system_midi_out.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <iterator>
#include <string_view>
#include <thread>
#include <utility>

#include "base/scoped.h"
#include "base/wide_text.h"
#include "devices/midi_device_list.h"

namespace {

// Of the codes that our layers and the table of ports give. A layer's own text comes before these.
constexpr std::pair<std::uint32_t, std::string_view> texts[] = {
    {MMSYSERR_NOERROR, "No error."},
    {MMSYSERR_ERROR, "The MIDI device does not take messages. Its server may have stopped."},
    {MMSYSERR_BADDEVICEID, "There is no such MIDI device, or it has been removed."},
    {MMSYSERR_ALLOCATED, "The MIDI device refuses the connection. It may be in use."},
    {MMSYSERR_INVALHANDLE, "The MIDI device is not open."},
    {MMSYSERR_NODRIVER, "No MIDI driver was found."},
    {MMSYSERR_NOMEM, "There is not enough memory, or there are too many open MIDI devices."},
    {MMSYSERR_NOTSUPPORTED, "The MIDI device does not support this."},
    {MMSYSERR_INVALPARAM, "This is not a MIDI message."},
};

void CopyWide(std::string_view text, char16_t* field, std::size_t units) {
    const std::u16string wide = WideText(text, units - 1);
    *std::copy(wide.begin(), wide.end(), field) = u'\0';
}

}  // namespace

SystemMidiOut::SystemMidiOut() : SystemMidiOut(SystemLayers()) {}

std::vector<SystemMidiOut::Known> SystemMidiOut::Find() {
    std::vector<Known> found;
    for (const auto& backend : backends)
        for (std::string& name : backend->DeviceNames())
            found.push_back({backend.get(), std::move(name), {}});
    return found;
}

void SystemMidiOut::Merge(std::vector<Known> found, bool fillGaps) {
    const Locked hold(listLock);
    UpdateList(std::move(found), fillGaps);
    for (Known& device : devices)
        if (!device.shown) device.shown = UniqueName(device.name);
}

// The name, or the name and the first number from 2 on that makes it unlike all in the list.
std::u16string SystemMidiOut::UniqueName(const std::string& name) const {
    constexpr std::size_t units = MidiOutCaps::nameUnits - 1;
    std::u16string unique = WideText(name, units);
    const auto same = [&unique](const Known& device) { return device.shown == unique; };
    for (int number = 2; std::any_of(devices.begin(), devices.end(), same); ++number) {
        const std::string suffix = " (" + std::to_string(number) + ")";
        unique = WideText(name, units - suffix.size()) + WideText(suffix, suffix.size());
    }
    return unique;
}

void SystemMidiOut::UpdateList(std::vector<Known> found, bool fillGaps) {
    const bool anyOpen =
        std::any_of(devices.begin(), devices.end(), [](const Known& d) { return d.opened > 0; });
    if (!wasRead || (fillGaps && !anyOpen)) {
        devices = std::move(found);
        wasRead = true;
        return;
    }
    for (Known& device : devices) device.there = false;
    const auto isGap = [](const Known& device) { return !device.there && device.opened == 0; };
    std::vector<Known> fresh;
    for (Known& candidate : found) {
        const auto same = std::find_if(devices.begin(), devices.end(), [&candidate](const Known& d) {
            return !d.there && d.backend == candidate.backend && d.name == candidate.name;
        });
        if (same != devices.end())
            same->there = true;
        else
            fresh.push_back(std::move(candidate));
    }
    for (Known& device : fresh) {
        const auto gap = fillGaps ? std::find_if(devices.begin(), devices.end(), isGap) : devices.end();
        if (gap != devices.end())
            *gap = std::move(device);
        else
            devices.push_back(std::move(device));
    }
    while (fillGaps && !devices.empty() && isGap(devices.back())) devices.pop_back();
}

void SystemMidiOut::ReadDevices() {
    const Locked one(reading);
    Merge(Find(), true);
}

void SystemMidiOut::ReadOnce() {
    {
        const Locked hold(listLock);
        if (wasRead) return;
    }
    const Locked one(reading);
    {
        const Locked hold(listLock);
        if (wasRead) return;
    }
    Merge(Find(), true);
}

std::uint32_t SystemMidiOut::midiOutGetNumDevs() {
    ReadOnce();
    const Locked hold(listLock);
    return static_cast<std::uint32_t>(devices.size());
}

std::uint32_t SystemMidiOut::midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) {
    ReadOnce();
    const Locked hold(listLock);
    if (id >= devices.size() || !devices[id].there) return MMSYSERR_BADDEVICEID;
    const std::u16string& name = *devices[id].shown;
    *std::copy(name.begin(), name.end(), caps.name) = u'\0';
    return MMSYSERR_NOERROR;
}

std::uint32_t SystemMidiOut::midiOutOpen(MidiOutHandle& handle, std::uint32_t id) {
    const Locked one(reading);
    Merge(Find(), false);
    Known wanted = {};
    std::size_t slot = 0;
    {
        const Locked hold(listLock);
        layerTexts.clear();
        const bool known = id < devices.size() && devices[id].there;
        if (!known && id != midiMapperId) return MMSYSERR_BADDEVICEID;
        while (slot < maxOpen && slots[slot].taken) ++slot;
        if (slot == maxOpen) return MMSYSERR_NOMEM;
        if (known) wanted = devices[id];
    }
    MidiOpening opening =
        wanted.backend != nullptr ? wanted.backend->Open(wanted.name) : backends.front()->OpenMapper();
    const Locked hold(listLock);
    if (opening.code != MMSYSERR_NOERROR) {
        layerTexts[opening.code] = std::move(opening.text);
        return opening.code;
    }
    if (id != midiMapperId) ++devices[id].opened;  // ids hold while `reading` does
    slots[slot].id = id;
    handle = Admit(std::move(opening.device), slot);
    return MMSYSERR_NOERROR;
}

MidiOutHandle SystemMidiOut::Admit(std::unique_ptr<MidiDevice> device, std::size_t slot) {
    assert(device != nullptr && slot < maxOpen && !slots[slot].taken && slots[slot].handle.load() == 0);
    const MidiOutHandle handle = ++generation * maxOpen + slot;
    slots[slot].taken = true;
    slots[slot].device = std::move(device);
    slots[slot].handle.store(handle);
    return handle;
}

// All accesses keep one total order: either the sender sees the handle gone, or the close sees the sender.
template <typename Use>
std::uint32_t SystemMidiOut::With(MidiOutHandle handle, Use use) {
    Slot& slot = slots[handle % maxOpen];
    const ScopedCount inside(slot.inside);
    if (handle == 0 || slot.handle.load() != handle) return MMSYSERR_INVALHANDLE;
    return use(*slot.device);
}

std::uint32_t SystemMidiOut::midiOutClose(MidiOutHandle handle) {
    Slot& slot = slots[handle % maxOpen];
    MidiOutHandle expected = handle;
    if (handle == 0 || !slot.handle.compare_exchange_strong(expected, 0)) return MMSYSERR_INVALHANDLE;
    for (int turn = 0; slot.inside.load() != 0; ++turn)  // a send takes some microseconds
        if (turn < 100)
            std::this_thread::yield();
        else
            std::this_thread::sleep_for(std::chrono::microseconds(50));
    slot.device.reset();
    const Locked hold(listLock);
    assert(slot.taken && (slot.id == midiMapperId || devices[slot.id].opened > 0));
    if (slot.id != midiMapperId) --devices[slot.id].opened;
    slot.taken = false;
    return MMSYSERR_NOERROR;
}

std::uint32_t SystemMidiOut::midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) {
    const std::size_t length = ShortMessageLength(message);
    return With(handle, [message, length](MidiDevice& device) {
        return length == 0 ? MMSYSERR_INVALPARAM : device.Send(message, length);
    });
}

std::uint32_t SystemMidiOut::midiOutReset(MidiOutHandle handle) {
    return With(handle, [](MidiDevice& device) {
        std::uint32_t result = MMSYSERR_NOERROR;
        for (std::uint32_t channel = 0; channel < 16; ++channel)
            for (const std::uint32_t controller : {64U, 123U}) {  // the sustain pedal up, all notes off
                const std::uint32_t code = device.Send(0xB0U | channel | controller << 8, 3);
                if (code != MMSYSERR_NOERROR) result = code;
            }
        return result;
    });
}

std::uint32_t SystemMidiOut::midiOutLongMsg(MidiOutHandle handle, const MidiLongMessage& message) {
    return With(handle, [&message](MidiDevice& device) {
        return message.data == nullptr || message.length == 0 ? MMSYSERR_INVALPARAM
                                                              : device.SendLong(message);
    });
}

std::uint32_t SystemMidiOut::midiOutGetErrorTextW(std::uint32_t code, MidiOutErrorTextW& text) {
    const Locked hold(listLock);
    const auto own = layerTexts.find(code);
    const bool layerHasOne = own != layerTexts.end() && !own->second.empty();
    const auto* const common = std::find_if(std::begin(texts), std::end(texts),
                                            [code](const auto& row) { return row.first == code; });
    if (!layerHasOne && common == std::end(texts)) return MMSYSERR_BADERRNUM;
    CopyWide(layerHasOne ? std::string_view(own->second) : common->second, text.text,
             MidiOutErrorTextW::units);
    return MMSYSERR_NOERROR;
}
