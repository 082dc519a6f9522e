// The description as LV2's own library reads it, and what LV2's tools say of the bundle.
#include <lilv/lilv.h>

#include <array>
#include <cstdio>
#include <regex>
#include <set>
#include <sstream>

#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/temp_folder.h"

namespace {

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
        for (const char* subject : {pluginUri, windowUri})
            lilv_world_load_resource(world, Uri(subject).get());
    }
    ~Description() override { lilv_world_free(world); }

    Node Uri(const std::string& uri) const { return Node(lilv_new_uri(world, uri.c_str())); }
    // What is said of a port or plug-in, sorted, by the last words of the addresses.
    std::string Values(const LilvNode* subject, const std::string& predicate) const {
        std::set<std::string> values;
        LilvNodes* const nodes = lilv_world_find_nodes(world, subject, Uri(predicate).get(), nullptr);
        LILV_FOREACH(nodes, i, nodes) {
            const std::string text = lilv_node_as_string(lilv_nodes_get(nodes, i));
            values.insert(text.substr(text.find_last_of("/#") + 1));
        }
        lilv_nodes_free(nodes);
        std::string line;
        for (const std::string& value : values) line += " " + value;
        return line;
    }
    std::string Row(const LilvPort* port) const {
        const LilvNode* const node = lilv_port_get_node(plugin, port);
        const Node name(lilv_port_get_name(plugin, port));
        LilvNode* range[3] = {};
        lilv_port_get_range(plugin, port, &range[0], &range[1], &range[2]);
        std::ostringstream row;
        row << lilv_node_as_string(lilv_port_get_symbol(plugin, port)) << " \""
            << lilv_node_as_string(name.get()) << '"';
        for (LilvNode* const each : range)
            if (const Node end(each); end) row << ' ' << lilv_node_as_float(each);
        row << Values(node, "http://www.w3.org/1999/02/22-rdf-syntax-ns#type")
            << Values(node, LV2_CORE__portProperty) << Values(node, LV2_ATOM__supports)
            << Values(node, "http://lv2plug.in/ns/ext/resize-port#minimumSize");
        if (LilvScalePoints* const points = lilv_port_get_scale_points(plugin, port)) {
            row << ", " << lilv_scale_points_size(points) << " points";
            lilv_scale_points_free(points);
        }
        return row.str() + "\n";
    }

    LilvWorld* const world;
    const LilvPlugin* plugin = nullptr;
};

// Golden file: what plug-in and window need and offer, and each port's symbol, name, initial value and range,
// types and properties. Projects keep values by symbol, so these stay whatever else changes.
TEST_F(Description, IsTheOneThatWasReviewed) {
    ASSERT_NE(plugin, nullptr);
    std::string rows;
    for (const char* const subject : {pluginUri, windowUri}) {
        const Node self = Uri(subject);
        rows += "needs" + Values(self.get(), LV2_CORE__requiredFeature) + ", takes" +
                Values(self.get(), LV2_CORE__optionalFeature) + ", has" +
                Values(self.get(), LV2_CORE__extensionData) + "\n";
    }
    for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports(plugin); ++i)
        rows += Row(lilv_plugin_get_port_by_index(plugin, i));
    EXPECT_EQ(rows, ReadAll(ORVA_GOLDEN "/description.txt"));
}

// In a folder of bundles with ours alone.
TEST(Lv2Tools, FindNoErrorAndRunThePlugIn) {
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
    unsetenv("LV2_PATH");
}

}  // namespace
