#pragma once
#include "base/wide_text.h"
#include "devices/midi_out_devices.h"
#include "tests/support/test.h"

// MIDI devices that write down what they were asked: "open 2" (a device id), then by handle "send 1 90 3c
// 64", "close 1", "reset 1", "long 1 2" (bytes); "stale" is a send to a handle that is not open. What
// a test wants refused, it says in the maps.
//
// Threads: with `keepsLines` cleared, any; the counts are relaxed, so that the double does not order threads
// that the plug-in leaves unordered.
class FakeDevices : public MidiOutDevices {
public:
    using Calls = std::vector<std::string>;

    std::uint32_t midiOutGetNumDevs() override { return static_cast<std::uint32_t>(names.size()); }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override {
        if (id >= names.size()) return MMSYSERR_BADDEVICEID;
        names[id].copy(caps.name, MidiOutCaps::nameUnits);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        if (keepsLines) Note("open " + (id == mapper ? "mapper" : std::to_string(id)));
        if (const auto refused = refusedOpens.find(id); refused != refusedOpens.end()) return refused->second;
        if (id >= names.size() && id != mapper) return MMSYSERR_BADDEVICEID;
        handle = ++lastHandle;
        if (Of(id).exchange(handle) != 0) ++faults;
        ++opened;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        if (keepsLines) Note("close " + std::to_string(handle));
        for (std::atomic<MidiOutHandle>& each : current)
            if (MidiOutHandle open = handle; each.compare_exchange_strong(open, 0))
                return ++closed, MMSYSERR_NOERROR;
        return ++faults, MMSYSERR_INVALHANDLE;
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override {
        const bool open = IsOpen(handle);
        sent.fetch_add(1, std::memory_order_relaxed);
        if (!open) stale.fetch_add(1, std::memory_order_relaxed);
        if (judge != nullptr) judge(message);
        if (keepsLines) {
            char line[48];
            std::snprintf(line, sizeof line, "%s %llu %02x %02x %02x", open ? "send" : "stale",
                          static_cast<unsigned long long>(handle), message & 0xFF, message >> 8 & 0xFF,
                          message >> 16 & 0xFF);
            Note(line);
        }
        if (!open) return MMSYSERR_INVALHANDLE;
        const auto refused = refusedMessages.find(message);
        return refused != refusedMessages.end() ? refused->second : MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutReset(MidiOutHandle handle) override {
        if (keepsLines) Note("reset " + std::to_string(handle));
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutLongMsg(MidiOutHandle handle, const MidiLongMessage& message) override {
        if (keepsLines) Note("long " + std::to_string(handle) + " " + std::to_string(message.length));
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t code, MidiOutErrorTextW& text) override {
        (u"code " + WideText(std::to_string(code), 10)).copy(text.text, MidiOutErrorTextW::units);
        return MMSYSERR_NOERROR;
    }
    SystemVersion GetVersionExA() override { return version; }
    void ReadDevices() override {
        if (during) during("read");
    }

    Calls Taken() { return std::exchange(calls, {}); }
    bool IsOpen(MidiOutHandle handle) const {
        return handle != 0 && std::any_of(current.begin(), current.end(), [&](const auto& each) {
                   return each.load(std::memory_order_relaxed) == handle;
               });
    }
    long OpenCount() const { return opened - closed; }

    static constexpr std::uint32_t mapper = 0xFFFFFFFF;
    std::vector<std::u16string> names = {u"one", u"two", u"three"};  // 15 at most
    std::map<std::uint32_t, std::uint32_t> refusedOpens;             // device id to code
    std::map<std::uint32_t, std::uint32_t> refusedMessages;          // message to code
    // Inside each call that is written down, and at "read".
    std::function<void(const std::string&)> during;
    void (*judge)(std::uint32_t message) = nullptr;
    bool keepsLines = true;
    SystemVersion version = {6, 2};
    std::atomic<long> opened{0}, closed{0}, sent{0};
    std::atomic<long> faults{0};  // opened twice, or closed when not open
    std::atomic<long> stale{0};   // sent to a device that was not open

private:
    void Note(const std::string& call) {
        calls.push_back(call);
        if (during) during(call);
    }
    std::atomic<MidiOutHandle>& Of(std::uint32_t id) { return current[id == mapper ? 15 : id % 15]; }

    std::array<std::atomic<MidiOutHandle>, 16> current{};  // open handles by device; the last is the mapper's
    std::atomic<MidiOutHandle> lastHandle{0};
    Calls calls;
};

// In the place of the process's own for as long as it lives.
class InstalledDevices : public FakeDevices {
public:
    InstalledDevices() { SubstituteMidiOut(this); }
    ~InstalledDevices() override { SubstituteMidiOut(nullptr); }
};

class DeviceTest : public testing::Test {
protected:
    ~DeviceTest() override { EXPECT_EQ(layer.OpenCount(), 0) << "a device was left open"; }
    InstalledDevices layer;
};
