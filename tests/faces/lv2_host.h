#pragma once
#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include "lv2/descriptors.h"
#include "lv2/port_table.h"
#include "lv2/uris.h"
#include "tests/faces/face.h"

// An LV2 host with one plug-in: its features, a buffer for each port, and the work that it was asked for.
class Lv2Host : public Face {
public:
    explicit Lv2Host(double rate = 44100, const LV2_Descriptor* plugin = PluginDescriptor())
        : descriptor(plugin) {
        const LV2_Feature mapFeature{LV2_URID__map, &map}, workFeature{LV2_WORKER__schedule, &schedule};
        const LV2_Feature nameless{};
        const LV2_Feature* const features[] = {&nameless, &mapFeature, &workFeature, nullptr};
        handle = descriptor->instantiate(descriptor, rate, ORVA_BUNDLE, features);
        for (std::int32_t i = 0; i < parameterCount; ++i) {
            control[i] = ParameterInitialValue(i);
            Connect(portFirstControl + static_cast<std::uint32_t>(i), &control[i]);
        }
        for (std::uint32_t port = portEar; port < portCount; ++port) Connect(port, &hearing[port - portEar]);
        midi.resize(midiPortBytes / 8 + 1);
        Connect(portMidi, midi.data());
    }
    ~Lv2Host() override {
        CloseWindow();
        EndInstance();
    }

    void SetActive(bool active) override { (active ? descriptor->activate : descriptor->deactivate)(handle); }
    void Set(std::int32_t index, float value) override { control[index] = value; }
    float Get(std::int32_t index) override { return control[index]; }
    std::string Save() override {  // an LV2 host saves the ports
        return {reinterpret_cast<const char*>(control), sizeof control};
    }
    bool Load(const std::string& state) override {
        if (state.size() == sizeof control) std::memcpy(control, state.data(), state.size());
        return state.size() == sizeof control;
    }
    bool OpenWindow(std::uint32_t parent) override {
        const LV2_Feature access{LV2_INSTANCE_ACCESS_URI, handle}, size{LV2_UI__resize, &resize},
            place{LV2_UI__parent, reinterpret_cast<void*>(std::uintptr_t{parent})};
        const auto number = static_cast<float>(scale);
        const LV2_Options_Option said[] = {{LV2_OPTIONS_INSTANCE, 0, Urid(LV2_UI__scaleFactor), sizeof number,
                                            scale != 0 ? Urid(LV2_ATOM__Float) : chunk, &number},
                                           {}};
        const LV2_Feature mapFeature{LV2_URID__map, &map},
            options{LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(said)};
        const LV2_Feature* const features[] = {&access, &size, &place, &mapFeature, &options, nullptr};
        const auto write = [](LV2UI_Controller to, std::uint32_t port, std::uint32_t, std::uint32_t,
                              const void* value) {
            EXPECT_EQ(port, std::uint32_t{portFirstControl});
            Of(to).written.push_back(*static_cast<const float*>(value));
        };
        LV2UI_Widget widget = nullptr;
        const auto made = ui->instantiate(ui, pluginUri, ORVA_BUNDLE, write, this, &widget, features);
        if (made != nullptr) window = made;
        return made != nullptr;
    }
    std::int32_t WindowWidth() override { return hostWidth; }  // announced at its opening, too
    void IdleWindow() override { Idle(); }
    void CloseWindow() override {
        if (window != nullptr) ui->cleanup(std::exchange(window, nullptr));
    }

    void Connect(std::uint32_t port, void* place) { descriptor->connect_port(handle, port, place); }
    void EndInstance() {
        if (handle != nullptr) descriptor->cleanup(std::exchange(handle, nullptr));
    }
    int Idle() {  // 1 where the window is gone
        return static_cast<const LV2UI_Idle_Interface*>(ui->extension_data(LV2_UI__idleInterface))
            ->idle(window);
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

    LV2_URID_Map map{this, [](void* self, const char* uri) { return Of(self).Urid(uri); }};
    const LV2_Descriptor* const descriptor;
    LV2_Handle handle = nullptr;
    const LV2UI_Descriptor* const ui = WindowDescriptor();
    LV2UI_Handle window = nullptr;
    float control[parameterCount] = {};
    float hearing[portCount - portEar] = {};  // classic, at its own level
    std::vector<float> written;               // to the first parameter, by the window
    bool worksAtOnce = true, refusesWork = false;

protected:
    void Run(const float* in, float* out, std::uint32_t frames) override {
        Connect(portAudioIn, const_cast<float*>(in));
        Connect(portAudioOut, out);
        auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(midi.data());
        // 8 bytes of body, and 24 for each event: 16 for its head, 2 or 3 for the message, padded to a
        // multiple of 8. 23 more are too few for another, and 7 for any body.
        const auto bytes = static_cast<std::uint32_t>(space == 0 ? 7 : 8 + 24 * space + 23);
        sequence.atom = {std::min(midiPortBytes, bytes), chunk};
        descriptor->run(handle, frames);
        if (space == 0) return;
        EXPECT_EQ(sequence.atom.type, sequenceType);
        LV2_ATOM_SEQUENCE_FOREACH(&sequence, event) {
            EXPECT_EQ(event->body.type, eventType);
            Keep(event->time.frames, {reinterpret_cast<const char*>(event + 1), event->body.size});
        }
        if (worksAtOnce) Work();
    }

private:
    static Lv2Host& Of(void* self) { return *static_cast<Lv2Host*>(self); }
    LV2_URID Urid(const std::string& uri) {
        return urids.emplace(uri, static_cast<LV2_URID>(urids.size() + 1)).first->second;
    }
    LV2_Worker_Status Asked() {
        if (refusesWork) return LV2_WORKER_ERR_NO_SPACE;
        ++asked;
        return LV2_WORKER_SUCCESS;
    }

    int asked = 0;
    std::map<std::string, LV2_URID> urids;
    const LV2_URID chunk = Urid("chunk"), sequenceType = Urid(LV2_ATOM__Sequence),
                   eventType = Urid(LV2_MIDI__MidiEvent);
    LV2_Worker_Schedule schedule{this,
                                 [](void* self, std::uint32_t, const void*) { return Of(self).Asked(); }};
    LV2UI_Resize resize{this, [](void* self, int width, int) { return Of(self).hostWidth = width, 0; }};
    std::vector<std::uint64_t> midi;  // eight bytes each, as atoms are aligned
};
