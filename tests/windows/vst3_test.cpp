// The VST 3 plug-in's file and its window, in the host that the tests on Linux use.
#include "tests/faces/vst3_host.h"
#include "tests/support/music.h"

#include <windows.h>

using namespace Steinberg;

TEST(Vst3, TheFileHearsANoteAndOpensItsWindow) {
    const HMODULE file = LoadLibraryA(ORVA_VST3);
    ASSERT_NE(file, nullptr);
    const auto factory = reinterpret_cast<void*>(GetProcAddress(file, "GetPluginFactory"));
    Vst::Vst3Host host(44100, *reinterpret_cast<IPluginFactory* (*)()>(factory)());
    ASSERT_TRUE(host.Init());
    host.SetActive(true);
    EXPECT_TRUE(host.Play(Tones({60}, 0.3), 512));
    EXPECT_EQ(host.events.size(), 2U);

    const HWND window = CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 320, nullptr, nullptr,
                                      nullptr, nullptr);
    const IPtr<IPlugView> view = owned(host.controller->createView(Vst::ViewType::kEditor));
    EXPECT_NE(view->attached(window, kPlatformTypeX11EmbedWindowID), kResultOk);
    EXPECT_EQ(view->attached(window, kPlatformTypeHWND), kResultOk);
    EXPECT_NE(GetWindow(window, GW_CHILD), nullptr);
    EXPECT_EQ(view->removed(), kResultOk);
    EXPECT_EQ(GetWindow(window, GW_CHILD), nullptr);
}
