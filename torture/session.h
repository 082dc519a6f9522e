#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "platform/midi_out_devices.h"
#include "plugin/gui_plugin.h"
#include "torture/row.h"

// MIDI devices that take everything and keep nothing.
class SilentDevices : public MidiOutDevices {
public:
    std::uint32_t midiOutGetNumDevs() override { return Called(), 3; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override {
        Called();
        caps.name[0] = static_cast<char16_t>(u'a' + id);
        caps.name[1] = 0;
        return id < 3 ? MMSYSERR_NOERROR : MMSYSERR_BADDEVICEID;
    }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        Called();
        if (id >= 3) return MMSYSERR_BADDEVICEID;
        handle = ++opened;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle) override { return ++closed, Called(), MMSYSERR_NOERROR; }
    std::uint32_t midiOutShortMsg(MidiOutHandle, std::uint32_t message) override;
    std::uint32_t midiOutReset(MidiOutHandle) override { return Called(), MMSYSERR_NOERROR; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override {
        return Called(), MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW& text) override {
        Called();
        text.text[0] = u'e';
        text.text[1] = 0;
        return MMSYSERR_NOERROR;
    }
    SystemVersion GetVersionExA() override { return Called(), SystemVersion{10, 0}; }
    void ReadDevices() override { Called(); }

    std::uint64_t opened = 0, closed = 0;
    std::uint64_t sent = 0;
    void (*atCall)() = nullptr;  // at the begin of each call

private:
    void Called() const {
        if (atCall != nullptr) atCall();
    }
};

// An instance of the plug-in, linked into this program, in the hands of its one host. Its MIDI devices are
// substitutes, and messages go nowhere.
class Session {
public:
    explicit Session(std::int32_t hostRate);  // Hz
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool Open();   // false: the entry gave null
    void Close();  // effClose
    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    void Set(std::int32_t index, float value) { effect->setParameter(effect, index, value); }
    void AllOutputsOn();  // to the host, to a device, into a recording, chords
    CORVAguivst& Object() const {
        return dynamic_cast<CORVAguivst&>(*static_cast<AudioEffect*>(effect->object));
    }
    TRTRecording& Recording() const;
    // In one of the three ways to process, 0 to 2; the audio must come out as it went in.
    void Process(Trial& trial, const float* audio, std::int32_t frames, std::uint64_t way = 1);

    AEffect* effect = nullptr;
    SilentDevices devices;
    std::uint64_t events = 0;     // sent to the host
    std::uint64_t eventHash = 0;  // of their times on the sample clock, from `clockBegin` on, and their bytes
    std::int64_t clock = 0;       // samples processed
    std::int64_t clockBegin = 0;
    void (*atHostCall)() = nullptr;  // at the begin of each call to the host
    bool watched = false;            // process calls are InsideCalls

    static constexpr std::int32_t largestBlock = 4096;

private:
    static std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* ptr, float);

    const std::int32_t rate;
    std::vector<float> out = std::vector<float>(largestBlock);
    std::vector<double> wideIn = std::vector<double>(largestBlock), wideOut = wideIn;
};

// Ten notes a second, chords of up to four struck voices with three partials each, some noise, and no zero.
std::vector<float> BusyMusic(Trial& trial, std::int32_t rate, double seconds);
