// The bundle as a host finds it: its description as LV2's own library reads it, and its file.
#include <dlfcn.h>
#include <lilv/lilv.h>
#include <lv2/ui/ui.h>

#include <sstream>

#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"

namespace {

// Golden file: each port's symbol, name, initial value and range. Projects keep values by symbol, so these
// stay whatever else changes.
TEST(Bundle, ItsDescriptionIsTheOneThatWasReviewed) {
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

    const TempFolder folder;
    const std::string found = folder / "found";
    std::system(
        ("lv2_validate " ORVA_BUNDLE "/manifest.ttl " ORVA_BUNDLE "/orva.ttl > " + found + " 2>&1").c_str());
    EXPECT_NE(ReadAll(found).find("Found 0 errors"), std::string::npos) << ReadAll(found);
}

TEST(Bundle, ItsFileHasOnePlugInAndItsWindow) {
    void* const file = dlopen(ORVA_BUNDLE "/orva_lv2.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr) << dlerror();
    const auto plugin = reinterpret_cast<LV2_Descriptor_Function>(dlsym(file, "lv2_descriptor"));
    Lv2Host host(plugin(0));
    host.Activate();
    EXPECT_EQ(host.Run(Tones({69}, 0.5)).size(), 2U);  // the program and the note
    EXPECT_EQ(plugin(1), nullptr);
    const auto window = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(file, "lv2ui_descriptor"));
    EXPECT_STREQ(window(0)->URI, windowUri);
}

}  // namespace
