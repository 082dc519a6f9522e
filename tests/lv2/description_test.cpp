// The description as LV2's own library reads it, and what LV2's tools say of the bundle.
#include <lilv/lilv.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "lv2/uris.h"
#include "plugin/parameter_display.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

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
        for (const char* subject : {pluginUri, windowUri})
            lilv_world_load_resource(world, Uri(subject).get());
    }

    Node Uri(const std::string& uri) const { return Node(lilv_new_uri(world, uri.c_str())); }
    Node Lv2(const std::string& name) const { return Uri(LV2_CORE_PREFIX + name); }
    const LilvPort* Port(std::int32_t parameter) const {
        return lilv_plugin_get_port_by_index(plugin,
                                             portFirstControl + static_cast<std::uint32_t>(parameter));
    }
    bool Has(std::int32_t parameter, const std::string& property) const {
        return lilv_port_has_property(plugin, Port(parameter), Uri(property).get());
    }
    // Minimum, maximum, default.
    std::array<float, 3> Range(std::int32_t parameter) const {
        LilvNode *initial = nullptr, *least = nullptr, *most = nullptr;
        lilv_port_get_range(plugin, Port(parameter), &initial, &least, &most);
        const Node a(least), b(most), c(initial);
        return {lilv_node_as_float(least), lilv_node_as_float(most), lilv_node_as_float(initial)};
    }
    std::map<float, std::string> Points(std::int32_t parameter) const {
        std::map<float, std::string> points;
        LilvScalePoints* all = lilv_port_get_scale_points(plugin, Port(parameter));
        LILV_FOREACH(scale_points, i, all) {
            const LilvScalePoint* point = lilv_scale_points_get(all, i);
            points[lilv_node_as_float(lilv_scale_point_get_value(point))] =
                lilv_node_as_string(lilv_scale_point_get_label(point));
        }
        lilv_scale_points_free(all);
        return points;
    }
    std::vector<std::string> Values(const std::string& subject, const std::string& predicate) const {
        std::vector<std::string> values;
        LilvNodes* nodes = lilv_world_find_nodes(world, Uri(subject).get(), Uri(predicate).get(), nullptr);
        LILV_FOREACH(nodes, i, nodes) values.emplace_back(lilv_node_as_string(lilv_nodes_get(nodes, i)));
        lilv_nodes_free(nodes);
        return values;
    }

    LilvWorld* world;
    const LilvPlugin* plugin = nullptr;
};

const std::string portProps = "http://lv2plug.in/ns/ext/port-props#";

TEST_F(Description, HasAudioInAndOutNotesAndAControlForEachParameter) {
    const Node name(lilv_plugin_get_name(plugin));
    EXPECT_STREQ(lilv_node_as_string(name.get()), "ORVA Audio To MIDI (LV2)");
    ASSERT_EQ(lilv_plugin_get_num_ports(plugin), 3U + 96U);
    const auto is = [&](std::uint32_t index, const char* one, const char* other) {
        const LilvPort* port = lilv_plugin_get_port_by_index(plugin, index);
        return lilv_port_is_a(plugin, port, Uri(one).get()) && lilv_port_is_a(plugin, port, Uri(other).get());
    };
    EXPECT_TRUE(is(0, LV2_CORE__AudioPort, LV2_CORE__InputPort));
    EXPECT_TRUE(is(1, LV2_CORE__AudioPort, LV2_CORE__OutputPort));
    EXPECT_TRUE(is(2, LV2_ATOM__AtomPort, LV2_CORE__OutputPort));
    for (std::uint32_t i = 3; i < 99; ++i)
        EXPECT_TRUE(is(i, LV2_CORE__ControlPort, LV2_CORE__InputPort)) << i;

    const LilvPort* midi = lilv_plugin_get_port_by_index(plugin, portMidi);
    EXPECT_TRUE(lilv_port_supports_event(plugin, midi, Uri(LV2_MIDI__MidiEvent).get()));
    const Node bytes(
        lilv_port_get(plugin, midi, Uri("http://lv2plug.in/ns/ext/resize-port#minimumSize").get()));
    EXPECT_EQ(lilv_node_as_int(bytes.get()), 16384);
}

// Projects keep values by symbol: these stay, whatever else changes.
TEST_F(Description, KeepsItsSymbols) {
    std::vector<std::string> symbols;
    for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports(plugin); ++i)
        symbols.emplace_back(
            lilv_node_as_string(lilv_port_get_symbol(plugin, lilv_plugin_get_port_by_index(plugin, i))));
    std::vector<std::string> expected = {"in", "out", "midi", "polyphony", "sensitivity", "velocity"};
    for (int bar = 1; bar <= 84; ++bar) expected.push_back("equalizer_bar_" + std::to_string(bar));
    for (const char* last :
         {"midi_instrument", "midi_out_device", "midi_out_enabled", "midi_channel", "output_to_host_enabled",
          "active_page", "chords_enabled", "chords_delay", "send_program_change"})
        expected.emplace_back(last);
    EXPECT_EQ(symbols, expected);
}

TEST_F(Description, EachControlIsNamedBoundedAndMarkedAsItsParameterAsks) {
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        SCOPED_TRACE(ParameterName(i));
        const Node name(lilv_port_get_name(plugin, Port(i)));
        EXPECT_EQ(lilv_node_as_string(name.get()), ParameterName(i));
        const float most = i == paramActivePage ? 5.0F : 1.0F;
        EXPECT_THAT(Range(i), ElementsAre(0.0F, most, ParameterInitialValue(i)));
        EXPECT_EQ(Has(i, LV2_CORE__toggled), i == 89 || i == 91 || i == 93 || i == 95);
        EXPECT_EQ(Has(i, LV2_CORE__enumeration), i == 87 || i == 90);
        EXPECT_EQ(Has(i, portProps + "notAutomatic"), i >= 87);
        EXPECT_EQ(Has(i, portProps + "notOnGUI"), i == 92);
        EXPECT_EQ(Points(i).empty(), i != 87 && i != 90 && i != 92);
    }
}

// A host hands a point's value back as the text says it: it must mean what its label says.
TEST_F(Description, EachPointMeansWhatItsLabelSays) {
    for (const std::int32_t parameter : {paramInstrument, paramChannel}) {
        const auto points = Points(parameter);
        EXPECT_EQ(points.size(), parameter == paramInstrument ? 128U : 16U);
        for (const auto& [value, label] : points) {
            char text[64];
            ParameterDisplay(value, parameter, text);
            EXPECT_EQ(label, text) << value;
        }
    }
    std::vector<float> pages;
    for (const auto& [value, label] : Points(paramActivePage)) pages.push_back(value);
    EXPECT_THAT(pages, ElementsAre(2.0F, 3.0F, 4.0F, 5.0F));
}

TEST_F(Description, SaysWhatItNeedsAndWhatItCanDo) {
    const std::string need = LV2_CORE__requiredFeature, like = LV2_CORE__optionalFeature,
                      does = LV2_CORE__extensionData;
    EXPECT_THAT(Values(pluginUri, need), ElementsAre(LV2_URID__map));
    EXPECT_THAT(Values(pluginUri, like),
                testing::UnorderedElementsAre(LV2_CORE__hardRTCapable, LV2_WORKER__schedule));
    EXPECT_THAT(Values(pluginUri, does), ElementsAre(LV2_WORKER__interface));
    EXPECT_THAT(
        Values(windowUri, need),
        testing::UnorderedElementsAre("http://lv2plug.in/ns/ext/instance-access", LV2_UI__idleInterface));
    EXPECT_THAT(Values(windowUri, does),
                testing::UnorderedElementsAre(LV2_UI__idleInterface, LV2_UI__showInterface));
}

// A folder of bundles with ours alone.
class Tools : public testing::Test {
protected:
    Tools() { fs::create_directory_symlink(ORVA_BUNDLE, folder / "orva.lv2"); }

    // What a program says, and its exit code.
    std::pair<std::string, int> Told(const std::string& command) const {
        FILE* pipe =
            popen(("LV2_PATH=" + folder.path.string() + ":/usr/lib/lv2 " + command + " 2>&1").c_str(), "r");
        std::string text;
        std::array<char, 4096> part{};
        while (pipe != nullptr && std::fgets(part.data(), part.size(), pipe) != nullptr) text += part.data();
        return {text, pipe != nullptr ? pclose(pipe) : -1};
    }
    const TempFolder folder;
};

TEST_F(Tools, ValidateFindsNoError) {
    const auto [text, code] = Told("lv2_validate " ORVA_BUNDLE "/manifest.ttl " ORVA_BUNDLE "/orva.ttl");
    EXPECT_EQ(code, 0) << text;
    EXPECT_THAT(text, HasSubstr("Found 0 errors"));
}

// An instrumented file does not load into a program that is not.
#ifndef ORVA_SANITIZED
TEST_F(Tools, BenchRunsThePlugIn) {
    const auto [text, code] = Told(std::string("lv2bench ") + pluginUri);
    EXPECT_EQ(code, 0) << text;
    EXPECT_THAT(text, testing::ContainsRegex("(^|\n)[0-9.]+ http"));  // seconds, and whose
}
#endif

TEST_F(Tools, TheFileExportsItsTwoEntryPointsAndNothingElse) {
    std::istringstream lines(Told("nm -D --defined-only " ORVA_BUNDLE "/orva_lv2.so").first);
    std::vector<std::string> names;
    for (std::string address, kind, name; lines >> address >> kind >> name;) names.push_back(name);
    EXPECT_THAT(names, testing::UnorderedElementsAre("lv2_descriptor", "lv2ui_descriptor"));
}

}  // namespace
