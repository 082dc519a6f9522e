// The window as an LV2 host holds it, on a display of the tests' own.
#include <functional>
#include <optional>

#include <lv2/instance-access/instance-access.h>

#include "lv2/instance.h"
#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/await.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"

namespace {

class Lv2Window : public testing::Test {
protected:
    ~Lv2Window() override { Close(); }

    // False when there is no window.
    bool Open() {
        const LV2_Feature access{LV2_INSTANCE_ACCESS_URI, handle}, place{LV2_UI__parent, desktop.Handle()};
        const LV2_Feature* const features[] = {&access, &place, nullptr};
        const auto write = [](LV2UI_Controller to, std::uint32_t port, std::uint32_t, std::uint32_t,
                              const void* value) {
            EXPECT_EQ(port, std::uint32_t{portFirstControl});
            static_cast<Lv2Window*>(to)->written.push_back(*static_cast<const float*>(value));
        };
        LV2UI_Widget widget = nullptr;
        LV2UI_Handle made = ui->instantiate(ui, pluginUri, ORVA_BUNDLE, write, this, &widget, features);
        if (made != nullptr) window = made;
        return made != nullptr;
    }
    void Close() {
        if (window != nullptr) ui->cleanup(std::exchange(window, nullptr));
    }
    int Idle() {
        return static_cast<const LV2UI_Idle_Interface*>(ui->extension_data(LV2_UI__idleInterface))
            ->idle(window);
    }
    // Gives idle time until the condition holds; false if it never does.
    bool Await(const std::function<bool()>& condition) {
        return AwaitThat([&] { return Idle() == 0 && condition(); });
    }
    // The first slider, as it is drawn.
    std::vector<std::uint8_t> Slider() const { return desktop.Pixels(22, 67, 22, 216); }
    // Moves it by the mouse; the value that the host was sent.
    float MoveSlider(int y) {
        written.clear();
        EXPECT_EQ(::Run({"xdotool", "mousemove", "33", std::to_string(y), "click", "1"}), 0);
        EXPECT_TRUE(Await([&] { return !written.empty(); }));
        return written.empty() ? -1 : written.back();
    }
    float Object() const { return Instance::Find(handle)->Object().Parameter(0); }
    // In hundredths of a second; the host has a value for the first parameter. What the object has in the
    // end.
    float RunWith(float value, int hundredths) {
        host->control[0] = value;
        for (int i = 0; i < hundredths; ++i) host->Run(Silence(441));
        return Object();
    }

    HostWindow desktop;
    std::optional<Lv2Host> host{std::in_place};
    void* const handle = host->handle;
    const LV2UI_Descriptor* ui = WindowDescriptor();
    LV2UI_Handle window = nullptr;
    std::vector<float> written;
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
    Close();
    EXPECT_EQ(RunWith(0.125F, 50), moved);
    EXPECT_EQ(RunWith(0.125F, 1), 0.125F);
}

TEST_F(Lv2Window, ShowsWhatTheHostSendsWhileNothingRuns) {
    ASSERT_TRUE(Open());
    std::vector<std::uint8_t> before;
    int same = 0;  // times that it looked like that
    Await([&] {
        same = Slider() == before ? same + 1 : 0;
        before = Slider();
        return same > 15;
    });
    for (float sent : {0.2F, initial}) {
        ui->port_event(window, portFirstControl, sizeof sent, 0, &sent);
        EXPECT_TRUE(Await([&] { return (Slider() == before) == (sent == initial); }));
        EXPECT_EQ(Object(), initial);  // only a run applies it
    }
    EXPECT_TRUE(written.empty());
    RunWith(0.2F, 1);
    EXPECT_TRUE(Await([&] { return Slider() != before; }));
}

TEST_F(Lv2Window, OpensOnceAndMayOutliveWhatItStandsIn) {
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Open());
    Close();
    ASSERT_TRUE(Open());
    xcb_destroy_window(desktop.connection, desktop.parent);  // the host's window may go first,
    desktop.Sync();
    EXPECT_TRUE(AwaitThat([this] { return Idle() == 1; }));
    Close();
    desktop.MakeParent();
    ASSERT_TRUE(Open());
    host.reset();  // and so may the instance
    EXPECT_EQ(Idle(), 1);
    EXPECT_TRUE(desktop.Children().empty());
    Close();
    EXPECT_FALSE(Open());
}

}  // namespace
