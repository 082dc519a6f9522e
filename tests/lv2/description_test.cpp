// The description as LV2's own library reads it, and what LV2's tools say of the bundle.
#include <lilv/lilv.h>

#include <array>
#include <cstdio>
#include <regex>
#include <sstream>

#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/temp_folder.h"

namespace {

// Golden file: each port's symbol, name, initial value and range. Projects keep values by symbol, so these
// stay whatever else changes.
TEST(Description, IsTheOneThatWasReviewed) {
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
