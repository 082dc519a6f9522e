// The description as LV2's own library reads it, and what LV2's tools say of the bundle.
#include <lilv/lilv.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <regex>
#include <sstream>

#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/temp_folder.h"

namespace {

using Texts = std::vector<std::string>;

struct NodeEnd {
    void operator()(LilvNode* node) const { lilv_node_free(node); }
};
using Node = std::unique_ptr<LilvNode, NodeEnd>;

class Description : public testing::Test {
protected:
    Description() : world(lilv_world_new()) {
        const Node bundle(lilv_new_file_uri(world, nullptr, ORVA_BUNDLE "/"));
        lilv_world_load_bundle(world, bundle.get());
        plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), Uri(pluginUri).get());
    }
    ~Description() override { lilv_world_free(world); }
    void SetUp() override {
        ASSERT_NE(plugin, nullptr);
        ASSERT_EQ(lilv_plugin_get_num_ports(plugin), portCount);
        for (const char* subject : {pluginUri, windowUri})
            lilv_world_load_resource(world, Uri(subject).get());
    }

    Node Uri(const std::string& uri) const { return Node(lilv_new_uri(world, uri.c_str())); }
    const LilvPort* Port(std::uint32_t index) const { return lilv_plugin_get_port_by_index(plugin, index); }
    const LilvPort* Control(std::int32_t parameter) const {
        return Port(portFirstControl + static_cast<std::uint32_t>(parameter));
    }
    bool Is(std::uint32_t index, const char* one, const char* other) const {
        return lilv_port_is_a(plugin, Port(index), Uri(one).get()) &&
               lilv_port_is_a(plugin, Port(index), Uri(other).get());
    }
    bool Has(std::int32_t parameter, const std::string& property) const {
        return lilv_port_has_property(plugin, Control(parameter), Uri(property).get());
    }
    std::map<float, std::string> Points(std::int32_t parameter) const {
        std::map<float, std::string> points;
        LilvScalePoints* const all = lilv_port_get_scale_points(plugin, Control(parameter));
        LILV_FOREACH(scale_points, i, all) {
            const LilvScalePoint* const point = lilv_scale_points_get(all, i);
            points[lilv_node_as_float(lilv_scale_point_get_value(point))] =
                lilv_node_as_string(lilv_scale_point_get_label(point));
        }
        lilv_scale_points_free(all);
        return points;
    }
    Texts Values(const std::string& subject, const std::string& predicate) const {  // sorted
        Texts values;
        LilvNodes* const nodes =
            lilv_world_find_nodes(world, Uri(subject).get(), Uri(predicate).get(), nullptr);
        LILV_FOREACH(nodes, i, nodes) values.emplace_back(lilv_node_as_string(lilv_nodes_get(nodes, i)));
        lilv_nodes_free(nodes);
        std::sort(values.begin(), values.end());
        return values;
    }

    LilvWorld* const world;
    const LilvPlugin* plugin = nullptr;
};

// Projects keep values by symbol: these stay, whatever else changes.
TEST_F(Description, KeepsItsSymbols) {
    Texts symbols, expected = {"in", "out", "midi", "polyphony", "sensitivity", "velocity"};
    for (std::uint32_t i = 0; i < portCount; ++i)
        symbols.emplace_back(lilv_node_as_string(lilv_port_get_symbol(plugin, Port(i))));
    for (int bar = 1; bar <= 84; ++bar) expected.push_back("equalizer_bar_" + std::to_string(bar));
    for (const char* last : {"midi_instrument", "midi_out_device", "midi_out_enabled", "midi_channel",
                             "output_to_host_enabled", "active_page", "chords_enabled", "chords_delay",
                             "send_program_change", "ear", "refined_threshold", "input_level"})
        expected.emplace_back(last);
    EXPECT_EQ(symbols, expected);
}

// A host hands a point's value back as the text says it: it must mean what its label says.
TEST_F(Description, EachPortIsNamedBoundedAndMarkedAsItsParameterAsks) {
    EXPECT_TRUE(Is(portAudioIn, LV2_CORE__AudioPort, LV2_CORE__InputPort));
    EXPECT_TRUE(Is(portAudioOut, LV2_CORE__AudioPort, LV2_CORE__OutputPort));
    EXPECT_TRUE(Is(portMidi, LV2_ATOM__AtomPort, LV2_CORE__OutputPort));
    EXPECT_TRUE(lilv_port_supports_event(plugin, Port(portMidi), Uri(LV2_MIDI__MidiEvent).get()));
    const Node bytes(
        lilv_port_get(plugin, Port(portMidi), Uri("http://lv2plug.in/ns/ext/resize-port#minimumSize").get()));
    EXPECT_EQ(lilv_node_as_int(bytes.get()), 16384);
    const std::string portProps = "http://lv2plug.in/ns/ext/port-props#";
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        SCOPED_TRACE(ParameterName(i));
        EXPECT_TRUE(
            Is(portFirstControl + static_cast<std::uint32_t>(i), LV2_CORE__ControlPort, LV2_CORE__InputPort));
        const Node name(lilv_port_get_name(plugin, Control(i)));
        EXPECT_EQ(lilv_node_as_string(name.get()), ParameterName(i));
        LilvNode *initial = nullptr, *least = nullptr, *most = nullptr;
        lilv_port_get_range(plugin, Control(i), &initial, &least, &most);
        const Node a(least), b(most), c(initial);
        EXPECT_EQ(lilv_node_as_float(least), 0.0F);
        EXPECT_EQ(lilv_node_as_float(most), i == 92 ? 5.0F : 1.0F);
        EXPECT_EQ(lilv_node_as_float(initial), ParameterInitialValue(i));
        EXPECT_EQ(Has(i, LV2_CORE__toggled), i == 89 || i == 91 || i == 93 || i == 95);
        EXPECT_EQ(Has(i, LV2_CORE__enumeration), i == 87 || i == 90);
        EXPECT_EQ(Has(i, portProps + "notAutomatic"), i >= 87);
        EXPECT_EQ(Has(i, portProps + "notOnGUI"), i == 92);
        const auto points = Points(i);
        EXPECT_EQ(points.size(), i == 87 ? 128U : i == 90 ? 16U : i == 92 ? 4U : 0U);
        for (const auto& [value, label] : points) {
            EXPECT_TRUE(i == 92 ? std::round(value) == value && value >= 2
                                : label == ParameterDisplay(i, value))
                << value;
        }
    }
}

TEST_F(Description, SaysWhatItNeedsAndWhatItCanDo) {
    const std::string need = LV2_CORE__requiredFeature, does = LV2_CORE__extensionData;
    const Node name(lilv_plugin_get_name(plugin));
    EXPECT_STREQ(lilv_node_as_string(name.get()), "ORVA Audio To MIDI (LV2)");
    EXPECT_EQ(Values(pluginUri, need), Texts{LV2_URID__map});
    EXPECT_EQ(Values(pluginUri, LV2_CORE__optionalFeature),
              (Texts{LV2_WORKER__schedule, LV2_CORE__hardRTCapable}));
    EXPECT_EQ(Values(pluginUri, does), Texts{LV2_WORKER__interface});
    EXPECT_EQ(Values(windowUri, need),
              (Texts{"http://lv2plug.in/ns/ext/instance-access", LV2_UI__idleInterface}));
    EXPECT_EQ(Values(windowUri, does), (Texts{LV2_UI__idleInterface, LV2_UI__showInterface}));
}

// In a folder of bundles with ours alone.
TEST(Lv2Tools, FindNoErrorRunThePlugInAndSeeItsTwoEntryPoints) {
    const TempFolder folder;
    std::filesystem::create_directory_symlink(ORVA_BUNDLE, folder / "orva.lv2");
    setenv("LV2_PATH", (folder.path.string() + ":/usr/lib/lv2").c_str(), 1);
    const auto output = [](const std::string& command) {  // and the exit code, if it is not 0
        FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
        std::string text;
        std::array<char, 4096> part{};
        while (std::fgets(part.data(), part.size(), pipe) != nullptr) text += part.data();
        const int code = pclose(pipe);
        return code == 0 ? text : text + "ended with " + std::to_string(code);
    };
    const std::string found = output("lv2_validate " ORVA_BUNDLE "/manifest.ttl " ORVA_BUNDLE "/orva.ttl");
    EXPECT_NE(found.find("Found 0 errors"), std::string::npos) << found;
#ifndef ORVA_SANITIZED  // an instrumented file does not load into a program that is not
    const std::string bench = output(std::string("lv2bench ") + pluginUri);  // seconds, and whose
    EXPECT_TRUE(std::regex_search(bench, std::regex("(^|\n)[0-9.]+ http"))) << bench;
#endif
    std::istringstream lines(output("nm -D --defined-only " ORVA_BUNDLE "/orva_lv2.so"));
    Texts names;
    for (std::string address, kind, name; lines >> address >> kind >> name;) names.push_back(name);
    EXPECT_EQ(names, (Texts{"lv2_descriptor", "lv2ui_descriptor"}));
    unsetenv("LV2_PATH");
}

}  // namespace
