// CLAP's own: the file, calls that the interface forbids, gestures and texts.
#include <dlfcn.h>

#include "parameters/parameters.h"
#include "tests/faces/clap_host.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"

namespace {

TEST(Clap, TheFileHasOnePlugIn) {
    void* const file = dlopen(ORVA_CLAP, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr) << dlerror();
    const auto* entry = static_cast<const clap_plugin_entry_t*>(dlsym(file, "clap_entry"));
    ASSERT_TRUE(entry->init(ORVA_CLAP));
    EXPECT_EQ(entry->get_factory("anything else"), nullptr);
    {
        ClapHost host(44100, entry->get_factory(CLAP_PLUGIN_FACTORY_ID));
        ASSERT_TRUE(host.Init());
        host.SetActive(true);
        EXPECT_TRUE(host.Play(Tones({60}, 0.3), 512));
        EXPECT_FALSE(host.events.empty());
    }
    entry->deinit();
}

TEST(Clap, RefusesCallsInAnOrderOrOnAThreadThatTheInterfaceForbids) {
    HostWindow desktop;
    ClapHost host(44100);
    const clap_plugin_t* const plugin = host.plugin;
    const clap_process_t block{};
    EXPECT_EQ(plugin->process(plugin, &block), CLAP_PROCESS_ERROR);  // before init
    EXPECT_FALSE(plugin->activate(plugin, 44100, 1, 64));
    EXPECT_FALSE(host.OpenWindow(desktop.parent));
    ASSERT_TRUE(host.Init());
    EXPECT_EQ(plugin->process(plugin, &block), CLAP_PROCESS_ERROR);  // before activate
    EXPECT_FALSE(plugin->start_processing(plugin));
    host.SetActive(true);
    EXPECT_FALSE(plugin->activate(plugin, 48000, 1, 64));  // twice
    host.Process(nullptr, nullptr, 64);
    plugin->reset(plugin);

    clap_window_t window{CLAP_WINDOW_API_X11, {}};
    window.x11 = desktop.parent;
    EXPECT_FALSE(host.Gui().show(plugin));  // before create
    EXPECT_FALSE(host.Gui().set_parent(plugin, &window));
    EXPECT_FALSE(host.Gui().create(plugin, CLAP_WINDOW_API_X11, true));  // floating
    host.isMainThread = false;
    EXPECT_FALSE(host.OpenWindow(desktop.parent));
    host.isMainThread = true;
    host.hasTimers = host.takesDescriptors = false;
    EXPECT_FALSE(host.OpenWindow(desktop.parent));  // it would stand still
    host.CloseWindow();
    host.takesDescriptors = true;  // one is polled in their place
    ASSERT_TRUE(host.OpenWindow(desktop.parent));
    EXPECT_FALSE(host.OpenWindow(desktop.parent));
    EXPECT_GE(host.descriptor, 0);
    EXPECT_TRUE(host.Gui().hide(plugin));
    EXPECT_TRUE(desktop.Children().empty());
    EXPECT_TRUE(host.Gui().show(plugin));
    EXPECT_EQ(desktop.Children().size(), 1U);  // and destroyed while active, with its window open
}

TEST(Clap, TheHostsScaleOutlivesAnotherRate) {
    ClapHost host(44100);
    ASSERT_TRUE(host.Init());
    ASSERT_TRUE(host.Gui().create(host.plugin, CLAP_WINDOW_API_X11, false));
    EXPECT_TRUE(host.Gui().set_scale(host.plugin, 2));
    host.SetRate(48000);
    host.SetActive(true);
    std::uint32_t width = 0, height = 0;
    EXPECT_TRUE(host.Gui().get_size(host.plugin, &width, &height));
    EXPECT_EQ(width, 800U);
}

TEST(Clap, WhatIsMovedInTheWindowIsAGestureThatAFullListDoesNotTear) {
    HostWindow desktop;
    ClapHost host(44100);
    ASSERT_TRUE(host.Init());
    host.SetActive(true);
    ASSERT_TRUE(host.OpenWindow(desktop.parent));
    EXPECT_EQ(::Run({"xdotool", "mousemove", "33", "200", "click", "1"}), 0);  // the first slider
    ASSERT_TRUE(AwaitThat([&] { return host.IdleWindow(), host.flushRequests > 0; }));
    for (const std::size_t space : {1U, 2U, 3U}) {  // it begins anew
        host.space = space;
        host.Process(nullptr, nullptr, 64);
    }
    ASSERT_EQ(host.changed.size(), 2U);
    EXPECT_EQ(host.changed.back().param_id, 0U);
    EXPECT_EQ(static_cast<float>(host.changed.back().value), host.Get(0));
    EXPECT_LT(host.Get(0), 0.8F);
}

TEST(Clap, EachParameterIsShownAndReadByItsText) {
    ClapHost host(44100);
    ASSERT_TRUE(host.Init());
    host.Set(paramChannel, 1);
    host.Flush();
    EXPECT_EQ(host.Get(paramChannel), 1.0F);
    clap_param_info_t info;
    for (std::uint32_t i = 0; i < 96; ++i) {
        ASSERT_TRUE(host.Params().get_info(host.plugin, i, &info));
        EXPECT_EQ(info.name, ParameterName(static_cast<std::int32_t>(i)));
        if (i == 0 || i == 88 || i == 92)
            continue;  // typed as a threshold; a device's name; pages share texts
        char text[64], again[64];
        double value = -1;
        ASSERT_TRUE(host.Params().value_to_text(host.plugin, i, info.max_value, text, sizeof text));
        ASSERT_TRUE(host.Params().text_to_value(host.plugin, i, text, &value)) << i << text;
        ASSERT_TRUE(host.Params().value_to_text(host.plugin, i, value, again, sizeof again));
        EXPECT_STREQ(again, text) << i;
    }
    EXPECT_FALSE(host.Params().get_info(host.plugin, 96, &info));
    for (const std::int32_t i : {paramInstrument, paramChannel})
        for (const auto& [at, label] : FindParameter(i)->points()) EXPECT_EQ(ParameterDisplay(i, at), label);
}

}  // namespace
