#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string_view>
#include <vector>

#include "module/plugin_entry.h"
#include "plugin/plugin_object.h"
#include "tests/plugin/fake_host.h"
#include "tests/support/tones.h"

// One instance of the plug-in in a fake host.
//
// Whether the host is the one with special needs is asked once per process and kept. Under ctest each test
// has a process of its own; where many run in one, those whose host is not like the first one met are
// skipped.
class PluginTest : public testing::Test {
protected:
    explicit PluginTest(const char* vendor = "Maker") : host(2400, vendor) {}
    void SetUp() override {
        const bool isAbleton = host.vendor != nullptr && std::string_view(host.vendor) == "Ableton";
        static const bool first = isAbleton;
        if (isAbleton != first) GTEST_SKIP() << "this host needs a process of its own";
        plug.emplace(OpenPlugin(FakeHost::Callback));
        ASSERT_NE(plug->effect, nullptr);
    }
    CORVA_vst& Object() const {
        return dynamic_cast<CORVA_vst&>(*static_cast<AudioEffect*>(plug->effect->object));
    }
    bool Play(const std::vector<float>& audio, int block = 512) { return plug->Play(host, audio, block); }

    FakeHost host;
    std::optional<Plug> plug;
};

inline std::vector<float> Sines(const std::vector<int>& notes, double seconds, double rate = 44100) {
    return Chord(notes, static_cast<std::size_t>(seconds * rate), 0, rate);
}

inline std::vector<float> Silence(std::size_t samples) {
    return std::vector<float>(samples);
}

// Note ons less note offs.
inline int Sounding(const std::vector<FakeHost::Event>& events) {
    int count = 0;
    for (const auto& event : events) count += event.data[0] == '\x90' ? 1 : event.data[0] == '\x80' ? -1 : 0;
    return count;
}

// The same events, `samples` later.
inline std::vector<FakeHost::Event> Later(std::vector<FakeHost::Event> events, std::int64_t samples) {
    for (auto& event : events) event.at += samples;
    return events;
}
