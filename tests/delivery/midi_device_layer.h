#pragma once
#include <atomic>
#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/wide_text.h"
#include "devices/midi_out_devices.h"
#include "gmock/gmock.h"

// A layer of devices that writes down what it was asked: "open 2" (a device id), then by handle "send 1 90 3c
// 64", "close 1", "reset 1", "long 1 2" (bytes). What a test wants refused, it says in the maps.
class FakeLayer : public MidiOutDevices {
public:
    using Calls = std::vector<std::string>;

    std::uint32_t midiOutGetNumDevs() override { return static_cast<std::uint32_t>(names.size()); }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override {
        if (id >= names.size()) return MMSYSERR_BADDEVICEID;
        names[id].copy(caps.name, MidiOutCaps::nameUnits);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        Note("open " + (id == 0xFFFFFFFF ? "mapper" : std::to_string(id)));
        if (refusedOpens.count(id) != 0) return refusedOpens[id];
        handle = ++lastHandle;
        open[handle] = id;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        Note("close " + std::to_string(handle));
        return open.erase(handle) != 0 ? MMSYSERR_NOERROR : MMSYSERR_INVALHANDLE;
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override {
        char bytes[16];
        std::snprintf(bytes, sizeof bytes, " %02x %02x %02x", message & 0xFF, message >> 8 & 0xFF,
                      message >> 16 & 0xFF);
        Note((open.count(handle) != 0 ? "send " : "stale ") + std::to_string(handle) + bytes);
        if (open.count(handle) == 0) return MMSYSERR_INVALHANDLE;
        return refusedMessages.count(message) != 0 ? refusedMessages[message] : MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutReset(MidiOutHandle handle) override {
        Note("reset " + std::to_string(handle));
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutLongMsg(MidiOutHandle handle, const MidiLongMessage& message) override {
        Note("long " + std::to_string(handle) + " " + std::to_string(message.length));
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t code, MidiOutErrorTextW& text) override {
        errorText(code).copy(text.text, MidiOutErrorTextW::units);
        return MMSYSERR_NOERROR;
    }
    SystemVersion GetVersionExA() override {
        ++versionsAsked;
        return version;
    }
    void ReadDevices() override { Note("read"); }

    Calls Taken() { return std::exchange(calls, {}); }

    std::vector<std::u16string> names = {u"one", u"two", u"three"};
    std::map<std::uint32_t, std::uint32_t> refusedOpens;     // device id to code
    std::map<std::uint32_t, std::uint32_t> refusedMessages;  // message to code
    std::function<std::u16string(std::uint32_t)> errorText = [](std::uint32_t code) {
        return u"code " + WideText(std::to_string(code), 10);
    };
    std::function<void(const std::string&)> during = [](const std::string&) {};  // inside each call
    SystemVersion version = {6, 2};
    int versionsAsked = 0;
    std::map<MidiOutHandle, std::uint32_t> open;  // to device ids

private:
    void Note(const std::string& call) {
        calls.push_back(call);
        during(call);
    }
    Calls calls;
    MidiOutHandle lastHandle = 0;
};

// The process uses the fake in the place of its devices, and all is given back at the end of a test.
class DeviceTest : public testing::Test {
protected:
    DeviceTest() { SubstituteMidiOut(&layer); }
    ~DeviceTest() override {
        EXPECT_TRUE(layer.open.empty()) << "a device was left open";
        SubstituteMidiOut(nullptr);
    }
    FakeLayer layer;
};
