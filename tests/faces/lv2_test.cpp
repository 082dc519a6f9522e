// LV2's own: the bundle as its library reads it, the host's worker, and a window beside its ports.
#include <dlfcn.h>
#include <lilv/lilv.h>

#include "lv2/instance.h"
#include "lv2/uris.h"
#include "parameters/starting_points.h"
#include "tests/faces/lv2_host.h"
#include "tests/support/devices.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"
#include "tests/support/temp_folder.h"

namespace {

// Golden file: each port's symbol, name, initial value and range. Projects keep values by symbol, so these
// stay whatever else changes.
TEST(Lv2, ItsDescriptionIsTheOneThatWasReviewed) {
    LilvWorld* const world = lilv_world_new();
    LilvNode* const bundle = lilv_new_file_uri(world, nullptr, ORVA_BUNDLE "/");
    lilv_world_load_bundle(world, bundle);
    const LilvPlugins* const plugins = lilv_world_get_all_plugins(world);
    const LilvPlugin* const plugin = lilv_plugins_get(plugins, lilv_plugins_begin(plugins));
    ASSERT_NE(plugin, nullptr);
    std::vector<float> least(portCount), most(portCount), initial(portCount);  // NaN: none
    lilv_plugin_get_port_ranges_float(plugin, least.data(), most.data(), initial.data());
    std::ostringstream rows;
    for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports(plugin); ++i) {
        const LilvPort* const port = lilv_plugin_get_port_by_index(plugin, i);
        LilvNode* const name = lilv_port_get_name(plugin, port);
        rows << lilv_node_as_string(lilv_port_get_symbol(plugin, port)) << " \"" << lilv_node_as_string(name)
             << '"';
        if (i >= portFirstControl) rows << ' ' << initial[i] << ' ' << least[i] << ' ' << most[i];
        rows << '\n';
        lilv_node_free(name);
    }
    EXPECT_EQ(rows.str(), ReadAll(ORVA_GOLDEN "/description.txt"));
    lilv_node_free(bundle);
    lilv_world_free(world);

    const std::string found = Output("cd " ORVA_BUNDLE " && lv2_validate manifest.ttl orva.ttl presets.ttl");
    EXPECT_NE(found.find("Found 0 errors"), std::string::npos) << found;
}

TEST(Lv2, ItsPresetsAreTheSettingsToBeginWith) {
    LilvWorld* const world = lilv_world_new();
    LilvNode* const bundle = lilv_new_file_uri(world, nullptr, ORVA_BUNDLE "/");
    lilv_world_load_bundle(world, bundle);
    Lv2Host host;
    for (const Beginning& point : Beginnings()) {
        LilvNode* const name = lilv_new_uri(world, (pluginUri + ("#preset-" + point.title)).c_str());
        lilv_world_load_resource(world, name);
        LilvState* const state = lilv_state_new_from_world(world, &host.map, name);
        ASSERT_NE(state, nullptr) << point.title;
        EXPECT_EQ(lilv_state_get_label(state), point.title);
        std::map<std::string, float> values, wanted;
        lilv_state_emit_port_values(
            state,
            [](const char* symbol, void* to, const void* value, std::uint32_t, std::uint32_t) {
                (*static_cast<std::map<std::string, float>*>(to))[symbol] = *static_cast<const float*>(value);
            },
            &values);
        for (const auto& [index, value] : point.settings) wanted[ParameterSymbol(index)] = value;
        EXPECT_EQ(values, wanted);
        lilv_state_free(state);
        lilv_node_free(name);
    }
    lilv_node_free(bundle);
    lilv_world_free(world);
}

TEST(Lv2, TheFileHasOnePlugInAndItsWindow) {
    void* const file = dlopen(ORVA_BUNDLE "/orva_lv2.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr) << dlerror();
    const auto plugin = reinterpret_cast<LV2_Descriptor_Function>(dlsym(file, "lv2_descriptor"));
    Lv2Host host(44100, plugin(0));
    host.SetActive(true);
    EXPECT_TRUE(host.Play(Tones({69}, 0.5), 512));
    EXPECT_EQ(host.events.size(), 2U);  // the program and the note
    EXPECT_EQ(plugin(1), nullptr);
    const auto window = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(file, "lv2ui_descriptor"));
    EXPECT_STREQ(window(0)->URI, windowUri);
    for (std::uint32_t port = 0; port < portCount + 1; ++port) host.Connect(port, nullptr);
    host.descriptor->run(host.handle, 512);  // and needs no port
}

// MIDI devices are never opened by the thread of a run.
using Lv2Device = DeviceTest;

TEST_F(Lv2Device, TheHostsWorkerOpensItAndTheNewestRequestWins) {
    Lv2Host host;
    host.worksAtOnce = false;
    const auto run = [&](float device, float enabled) {
        host.control[paramDevice] = device;
        host.control[paramDeviceEnabled] = enabled;
        host.Play(Silence(64), 64);
        return layer.Taken();
    };
    using Calls = FakeDevices::Calls;
    host.refusesWork = true;  // such a host is asked again
    EXPECT_EQ(run(0.01F, 1), Calls());
    host.refusesWork = false;
    EXPECT_EQ(run(0.01F, 1), Calls());
    EXPECT_EQ(run(0.02F, 1), Calls());
    EXPECT_EQ(host.Work(), 2);
    EXPECT_EQ(run(0.02F, 0), Calls{"open 2"});
    host.Work();
    EXPECT_EQ(layer.Taken(), Calls{"close 1"});
}

class Lv2Window : public testing::Test {
protected:
    bool Open() { return host.OpenWindow(desktop.parent); }
    // Gives idle time until the condition holds; false if it never does.
    bool Await(const std::function<bool()>& condition) {
        return AwaitThat([&] { return host.Idle() == 0 && condition(); });
    }
    // The first slider, as it is drawn.
    std::vector<std::uint8_t> Slider() const { return desktop.Pixels(22, 67, 22, 216); }
    // The flags of the size hints that a host's toolkit reads.
    std::uint32_t SizeHints() const {
        const auto asked = xcb_get_property(desktop.connection, 0, desktop.Children().at(0),
                                            XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_ANY, 0, 1);
        const Owned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(desktop.connection, asked, nullptr));
        return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    }
    // Moves it by the mouse; the value that the host was sent.
    float MoveSlider(int y) {
        host.written.clear();
        EXPECT_EQ(::Run({"xdotool", "mousemove", "33", std::to_string(y), "click", "1"}), 0);
        EXPECT_TRUE(Await([&] { return !host.written.empty(); }));
        return host.written.empty() ? -1 : host.written.back();
    }
    float Object() const { return Instance::Find(host.handle)->Object().Parameter(0); }
    // In hundredths of a second; the host has a value for the first parameter. What the object has in the
    // end.
    float RunWith(float value, std::size_t hundredths) {
        host.control[0] = value;
        host.Play(Silence(441 * hundredths), 441);
        return Object();
    }

    HostWindow desktop;
    Lv2Host host;
    const float initial = ParameterInitialValue(0);
};

TEST_F(Lv2Window, WhatIsMovedReachesTheHostWhoseOlderValueDoesNotCountUntilItsEcho) {
    ASSERT_TRUE(Open());
    const float value = MoveSlider(200);
    EXPECT_LT(value, 0.6F);  // the slider's range is 67 to 283, the top being 1
    EXPECT_EQ(Object(), value);
    for (const float older : {initial, 0.5F * value})  // on its way while the mouse moved on
        EXPECT_EQ(RunWith(older, 10), value);
    for (const float newer : {value, 0.125F})  // the echo, and the host's own from there on
        EXPECT_EQ(RunWith(newer, 1), newer);
    // A host that echoes nothing is right again after half a second, window or not: the change is noticed by
    // the first run, and 50 x 441 = 22050 frames are over after it.
    const float moved = MoveSlider(150);
    host.CloseWindow();
    EXPECT_EQ(RunWith(0.125F, 50), moved);
    EXPECT_EQ(RunWith(0.125F, 1), 0.125F);
}

TEST_F(Lv2Window, ShowsWhatTheHostSendsWhileNothingRuns) {
    ASSERT_TRUE(Open());
    EXPECT_EQ(host.hostWidth, 400);
    EXPECT_EQ(SizeHints(), 1U << 5);  // a largest size; a smallest would keep GTK 2 from giving more later
    const auto before = AtRest(15, [&] { return host.Idle(), Slider(); });
    for (float sent : {0.2F, initial}) {
        host.ui->port_event(host.window, portFirstControl, sizeof sent, 0, &sent);
        EXPECT_TRUE(Await([&] { return (Slider() == before) == (sent == initial); }));
        EXPECT_EQ(Object(), initial);  // only a run applies it
    }
    EXPECT_TRUE(host.written.empty());
    RunWith(0.2F, 1);
    EXPECT_TRUE(Await([&] { return Slider() != before; }));
}

TEST_F(Lv2Window, OpensOnceAndMayOutliveWhatItStandsIn) {
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Open());
    xcb_destroy_window(desktop.connection, desktop.parent);  // the host's window may go first,
    desktop.Sync();
    EXPECT_TRUE(AwaitThat([this] { return host.Idle() == 1; }));
    host.CloseWindow();
    desktop.MakeParent();
    ASSERT_TRUE(Open());
    host.EndInstance();  // and so may the instance
    EXPECT_EQ(host.Idle(), 1);
    EXPECT_TRUE(desktop.Children().empty());
    host.CloseWindow();
    EXPECT_FALSE(Open());
}

}  // namespace
