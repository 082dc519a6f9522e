#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include "lv2/descriptors.h"
#include "lv2/port_table.h"

// The events of a run as the plug-in wrote them, each with its frame.
using Lv2Events = std::vector<std::pair<std::int64_t, std::string>>;

// All of a sequence, whose events are of that type.
inline Lv2Events EventsOf(const LV2_Atom_Sequence& sequence, LV2_URID type) {
    Lv2Events events;
    LV2_ATOM_SEQUENCE_FOREACH(&sequence, event) {
        EXPECT_EQ(event->body.type, type);
        const auto* bytes = reinterpret_cast<const char*>(event + 1);
        events.emplace_back(event->time.frames, std::string(bytes, event->body.size));
    }
    return events;
}

// An LV2 host with one plug-in: its features, a buffer for each port, and the work that it was asked for.
class Lv2Host {
public:
    explicit Lv2Host(const LV2_Descriptor* plugin = PluginDescriptor(), double rate = 44100)
        : descriptor(plugin) {
        map = {this, [](LV2_URID_Map_Handle self, const char* uri) {
                   return static_cast<Lv2Host*>(self)->Urid(uri);
               }};
        schedule = {this, [](LV2_Worker_Schedule_Handle self, std::uint32_t, const void*) {
                        return static_cast<Lv2Host*>(self)->Asked();
                    }};
        const LV2_Feature mapFeature{LV2_URID__map, &map}, workFeature{LV2_WORKER__schedule, &schedule};
        const LV2_Feature nameless{};
        const LV2_Feature* const features[] = {&nameless, &mapFeature, &workFeature, nullptr};
        handle = descriptor->instantiate(descriptor, rate, ORVA_BUNDLE, features);
        for (std::int32_t i = 0; i < parameterCount; ++i) {
            control[i] = ParameterInitialValue(i);
            descriptor->connect_port(handle, portFirstControl + static_cast<std::uint32_t>(i), &control[i]);
        }
        for (std::uint32_t port = portEar; port < portCount; ++port)
            descriptor->connect_port(handle, port, &hearing[port - portEar]);
        midi.resize(midiPortBytes / 8 + 1);
        descriptor->connect_port(handle, portMidi, midi.data());
    }
    ~Lv2Host() { descriptor->cleanup(handle); }
    Lv2Host(const Lv2Host&) = delete;
    Lv2Host& operator=(const Lv2Host&) = delete;

    void Activate() { descriptor->activate(handle); }
    void Deactivate() { descriptor->deactivate(handle); }

    // One run over `audio`; what comes out stands in `out`.
    Lv2Events Run(std::vector<float> audio) {
        out.assign(audio.size(), -7.0F);
        descriptor->connect_port(handle, portAudioIn, audio.data());
        descriptor->connect_port(handle, portAudioOut, out.data());
        return RunConnected(static_cast<std::uint32_t>(audio.size()));
    }
    Lv2Events RunConnected(std::uint32_t frames) {
        auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(midi.data());
        sequence.atom = {midiPortBytes, Urid("chunk")};
        descriptor->run(handle, frames);
        EXPECT_EQ(sequence.atom.type, Urid(LV2_ATOM__Sequence));
        return EventsOf(sequence, Urid(LV2_MIDI__MidiEvent));
    }
    // Does what was asked of its worker. How many times it was asked.
    int Work() {
        const int times = std::exchange(asked, 0);
        const auto* worker =
            static_cast<const LV2_Worker_Interface*>(descriptor->extension_data(LV2_WORKER__interface));
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(worker->work(handle, nullptr, nullptr, 0, nullptr), LV2_WORKER_SUCCESS);
        return times;
    }

    const LV2_Descriptor* const descriptor;
    LV2_Handle handle = nullptr;
    float control[parameterCount] = {};
    float hearing[portCount - portEar] = {};  // classic, at its own level
    std::vector<float> out;
    bool refusesWork = false;
    int asked = 0;

private:
    LV2_URID Urid(const std::string& uri) {
        return urids.emplace(uri, static_cast<LV2_URID>(urids.size() + 1)).first->second;
    }
    LV2_Worker_Status Asked() {
        if (refusesWork) return LV2_WORKER_ERR_NO_SPACE;
        ++asked;
        return LV2_WORKER_SUCCESS;
    }

    LV2_URID_Map map{};
    LV2_Worker_Schedule schedule{};
    std::map<std::string, LV2_URID> urids;
    std::vector<std::uint64_t> midi;  // eight bytes each, as atoms are aligned
};
