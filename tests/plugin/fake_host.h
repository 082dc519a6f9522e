#pragma once
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vst2/records.h"

// A host for tests: counts what it is asked, keeps the events it is sent, and answers as it is told to.
// One at a time, since a host callback carries no word of its own.
class FakeHost {
public:
    struct Event {
        std::int64_t at;   // on the sample clock
        std::string data;  // the three bytes of the message
        bool operator==(const Event& other) const { return at == other.at && data == other.data; }
    };

    explicit FakeHost(std::intptr_t hostVersion = 2400, const char* hostVendor = "Maker")
        : version(hostVersion), vendor(hostVendor) {
        current = this;
    }
    ~FakeHost() { current = nullptr; }
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    static std::intptr_t Callback(AEffect*, std::int32_t opcode, std::int32_t index, std::intptr_t, void* ptr,
                                  float opt) {
        return current->Answer(opcode, index, ptr, opt);
    }
    int Count(AudioMasterOpcodes opcode) const { return asked[static_cast<std::size_t>(opcode)]; }
    std::vector<Event> TakenEvents() { return std::exchange(events, {}); }

    std::intptr_t version;
    const char* vendor;  // null: the host fills in nothing
    std::intptr_t sampleRate = 44100;
    bool unterminated = false;  // the host writes 64 bytes of 'x' for its vendor and no terminator
    bool keepsEvents = true;    // not while two threads call: what is kept has no lock
    std::int64_t clock = 0;     // samples handed over before the block in progress

    std::function<void()> atNextEvent;  // what it does, once, from inside the plug-in's call

    std::array<std::atomic<int>, 64> asked{};
    std::atomic<int> calls{0};
    std::vector<Event> events;
    std::int32_t lastIndex = 0;  // of the last call
    float lastOpt = 0;

private:
    std::intptr_t Answer(std::int32_t opcode, std::int32_t index, void* ptr, float opt) {
        // Relaxed, so that the counting keeps no two threads apart.
        calls.fetch_add(1, std::memory_order_relaxed);
        if (opcode >= 0 && opcode < 64)
            asked[static_cast<std::size_t>(opcode)].fetch_add(1, std::memory_order_relaxed);
        if (!keepsEvents) return opcode == audioMasterVersion ? version : 0;
        lastIndex = index;
        lastOpt = opt;
        switch (opcode) {
            case audioMasterVersion: return version;
            case audioMasterGetSampleRate: return sampleRate;
            case audioMasterGetVendorString: return GiveVendor(static_cast<char*>(ptr));
            case audioMasterGetVendorVersion: return 1234;
            case audioMasterCanDo: {
                const std::string_view question(static_cast<const char*>(ptr));
                return question == "offline" ? -1 : question == "sizeWindow" ? 1 : 0;
            }
            case audioMasterProcessEvents:
                Keep(*static_cast<const VstEvents*>(ptr));
                if (const auto once = std::exchange(atNextEvent, nullptr)) once();
                return 0;
            default: return 0;
        }
    }
    std::intptr_t GiveVendor(char* text) const {
        if (unterminated) return std::memset(text, 'x', 64), 1;
        if (vendor == nullptr) return 0;
        std::strcpy(text, vendor);
        return 1;
    }
    void Keep(const VstEvents& sent) {
        for (int i = 0; i < sent.numEvents; ++i) {
            const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
            events.push_back({clock + event.deltaFrames, std::string(event.midiData, 3)});
        }
    }

    static inline FakeHost* current = nullptr;
};

// One instance of the plug-in as its host holds it.
class Plug {
public:
    explicit Plug(AEffect* opened) : effect(opened) {}
    ~Plug() {
        if (effect != nullptr) Call(effClose);
    }
    Plug(const Plug&) = delete;
    Plug& operator=(const Plug&) = delete;

    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    // What a text call leaves in the 64 bytes that hosts reserve, behind which nothing may change.
    std::string Text(std::int32_t opcode, std::int32_t index = 0) {
        char text[96];
        std::memset(text, '\x7F', sizeof text);
        Call(opcode, index, 0, text);
        for (int i = 64; i < 96; ++i)
            if (text[i] != '\x7F') return "written past its room";
        return std::string(text, strnlen(text, 64) == 64 ? 0 : std::strlen(text));
    }
    // Audio in blocks of `block` samples. What comes out must be what went in.
    bool Play(FakeHost& host, std::vector<float> audio, int block) {
        std::vector<float> out(audio.size());
        for (std::size_t at = 0; at < audio.size();) {
            const auto count =
                static_cast<std::int32_t>(std::min(audio.size() - at, static_cast<std::size_t>(block)));
            float* in = audio.data() + at;
            float* to = out.data() + at;
            effect->processReplacing(effect, &in, &to, count);
            at += static_cast<std::size_t>(count);
            host.clock += count;
        }
        return std::memcmp(audio.data(), out.data(), audio.size() * sizeof(float)) == 0;
    }

    AEffect* const effect;
};
