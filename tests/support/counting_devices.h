#pragma once
#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <set>

#include "desktop/message_box.h"
#include "devices/midi_out_devices.h"

// Devices that count. Judged by words of their own, relaxed where senders meet them, so that the layer puts
// no order between threads that the plug-in does not put there itself.
class CountingDevices : public MidiOutDevices {
public:
    static constexpr std::size_t deviceCount = 3;

    std::uint32_t midiOutGetNumDevs() override { return deviceCount; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override {
        if (id >= deviceCount) return MMSYSERR_BADDEVICEID;
        caps.name[0] = static_cast<char16_t>(u'A' + id);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        if (id >= deviceCount) return MMSYSERR_BADDEVICEID;
        if (state[id].exchange(1) != 0) ++faults;  // opened twice
        ++opened;
        handle = ++handles * deviceCount + id;
        current[id] = handle;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        const std::size_t id = handle % deviceCount;
        if (current[id].exchange(0) != handle) ++faults;  // not open, or another one
        state[id] = 0;
        ++closed;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override {
        const std::uint32_t kind = message & 0xF0U;
        if (kind != 0x80U && kind != 0x90U && kind != 0xC0U) ++faults;
        if (current[handle % deviceCount].load(std::memory_order_relaxed) != handle) ++stale;
        sent.fetch_add(1, std::memory_order_relaxed);
        if (judge != nullptr) judge(message);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutReset(MidiOutHandle) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW&) override {
        return MMSYSERR_BADERRNUM;
    }
    SystemVersion GetVersionExA() override { return {6, 2}; }

    std::atomic<long> opened{0}, closed{0}, sent{0};
    std::atomic<long> faults{0};  // opened twice, closed when not open, or no message of ours
    std::atomic<long> stale{0};   // sent to a device that was not open
    void (*judge)(std::uint32_t message) = nullptr;

private:
    std::array<std::atomic<int>, deviceCount> state{};
    std::array<std::atomic<MidiOutHandle>, deviceCount> current{};
    std::atomic<MidiOutHandle> handles{0};
};

// Messages that nobody reads.
class SilentMessages : public IMessageBox {
public:
    void Show(const std::string&, const std::string&) override { shown.fetch_add(1); }
    std::atomic<long> shown{0};
};

// For a process: its devices and messages are these. Never destroyed, since devices are closed at its end.
struct Substitutes {
    CountingDevices devices;
    SilentMessages messages;

    static Substitutes& InPlace() {
        static Substitutes& own = *[] {
            auto* const made = new Substitutes;
            SubstituteMidiOut(&made->devices);
            SubstituteSystemMessageBox(&made->messages);
            return made;
        }();
        return own;
    }
};
