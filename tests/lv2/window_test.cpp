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

using Written = std::vector<std::pair<std::uint32_t, float>>;  // port, value

class Lv2Window : public testing::Test {
protected:
    ~Lv2Window() override { Close(); }

    // With an instance's handle; false when there is no window.
    bool Open(void* instance) {
        const LV2_Feature access{LV2_INSTANCE_ACCESS_URI, instance}, nameless{},
            place{LV2_UI__parent, desktop.Handle()};
        std::vector<const LV2_Feature*> features{&nameless, &place};
        if (instance != nullptr) features.push_back(&access);
        features.push_back(nullptr);
        LV2UI_Widget widget = nullptr;
        window = ui->instantiate(
            ui, pluginUri, ORVA_BUNDLE,
            [](LV2UI_Controller to, std::uint32_t port, std::uint32_t, std::uint32_t, const void* value) {
                static_cast<Lv2Window*>(to)->written.emplace_back(port, *static_cast<const float*>(value));
            },
            this, &widget, features.data());
        return window != nullptr;
    }
    bool Open() { return Open(host->handle); }
    void Close() {
        if (window != nullptr) ui->cleanup(window);
        window = nullptr;
    }
    int Idle() {
        return static_cast<const LV2UI_Idle_Interface*>(ui->extension_data(LV2_UI__idleInterface))
            ->idle(window);
    }
    // Gives idle time until the condition holds; false if it never does.
    bool Await(const std::function<bool()>& condition) {
        return AwaitThat([&] {
            EXPECT_EQ(Idle(), 0);
            return condition();
        });
    }
    // The first slider, as it is drawn.
    std::vector<std::uint8_t> Slider() const { return desktop.Pixels(22, 67, 22, 216); }
    // Until it looks the same for a while.
    std::vector<std::uint8_t> SettledSlider() {
        std::vector<std::uint8_t> last;
        int same = 0;
        Await([&] {
            auto now = Slider();
            same = now == last ? same + 1 : 0;
            last = std::move(now);
            return same > 15;
        });
        return last;
    }
    void PortEvent(std::int32_t parameter, float value) {
        ui->port_event(window, portFirstControl + static_cast<std::uint32_t>(parameter), sizeof value, 0,
                       &value);
    }
    // Moves the first slider by the mouse; the value that the host was sent.
    float MoveSlider(int y) {
        const std::size_t before = written.size();
        EXPECT_EQ(::Run({"xdotool", "mousemove", "33", std::to_string(y), "mousedown", "1"}), 0);
        EXPECT_TRUE(Await([&] { return written.size() > before; }));
        EXPECT_EQ(::Run({"xdotool", "mouseup", "1"}), 0);
        SettledSlider();
        return written.empty() ? -1 : written.back().second;
    }
    float Object(std::int32_t parameter) const {
        return Instance::Find(host->handle)->Object().Parameter(parameter);
    }
    // Runs of 441 frames each; in the tests' host, 10 ms.
    void RunFor(int hundredths) {
        for (int i = 0; i < hundredths; ++i) host->Run(Silence(441));
    }

    HostWindow desktop;
    std::optional<Lv2Host> host{std::in_place};
    const LV2UI_Descriptor* ui = WindowDescriptor();
    LV2UI_Handle window = nullptr;
    Written written;
};

TEST_F(Lv2Window, WhatIsMovedReachesTheHostWhoseOlderValueDoesNotCountUntilItsEcho) {
    ASSERT_TRUE(Open());
    SettledSlider();
    const float value = MoveSlider(200);
    EXPECT_EQ(written.back().first, std::uint32_t{portFirstControl});
    EXPECT_LT(value, 0.6F);  // the slider's range is 67 to 283, the top being 1
    EXPECT_EQ(Object(0), value);
    for (const float older :
         {ParameterInitialValue(0), 0.5F * value}) {  // on its way while the mouse moved on
        host->control[0] = older;
        RunFor(10);
        EXPECT_EQ(Object(0), value);
    }
    for (const float newer : {value, 0.125F}) {  // the echo, and the host's own from there on
        host->control[0] = newer;
        RunFor(1);
        EXPECT_EQ(Object(0), newer);
    }
    // A host that echoes nothing is right again after half a second, window or not: the change is noticed by
    // the first run, and 50 x 441 = 22050 frames are over after it.
    const float moved = MoveSlider(150);
    Close();
    RunFor(50);
    EXPECT_EQ(Object(0), moved);
    RunFor(1);
    EXPECT_EQ(Object(0), 0.125F);
}

TEST_F(Lv2Window, ShowsWhatTheHostSendsWhileNothingRuns) {
    ASSERT_TRUE(Open());
    const auto before = SettledSlider();
    PortEvent(0, 0.2F);
    EXPECT_TRUE(Await([&] { return Slider() != before; }));
    EXPECT_EQ(Object(0), ParameterInitialValue(0));  // only a run applies it
    PortEvent(0, ParameterInitialValue(0));
    EXPECT_TRUE(Await([&] { return Slider() == before; }));
    EXPECT_TRUE(written.empty());

    host->control[0] = 0.2F;  // and by a run
    RunFor(1);
    EXPECT_TRUE(Await([&] { return Slider() != before; }));
}

TEST_F(Lv2Window, OpensOnceForItsOwnInstanceAndMayOutliveWhatItStandsIn) {
    {
        Lv2Host loaded(FileDescriptor());  // the module as a host loads it
        ui = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(Lv2File(), "lv2ui_descriptor"))(0);
        ASSERT_TRUE(Open(loaded.handle));
        EXPECT_EQ(desktop.Children().size(), 1U);
        Close();
        EXPECT_TRUE(desktop.Children().empty());
        ui = WindowDescriptor();
    }
    EXPECT_FALSE(Open(nullptr));
    ASSERT_TRUE(Open());
    const LV2UI_Handle first = std::exchange(window, nullptr);
    EXPECT_FALSE(Open());
    window = first;
    SettledSlider();
    // The instance may go first,
    const LV2_Handle gone = host->handle;
    host.reset();
    EXPECT_EQ(Idle(), 1);
    EXPECT_TRUE(desktop.Children().empty());
    PortEvent(0, 0.5F);
    Close();
    EXPECT_FALSE(Open(gone));
    // and so may the host's window.
    host.emplace();
    ASSERT_TRUE(Open());
    SettledSlider();
    xcb_destroy_window(desktop.connection, desktop.parent);
    desktop.Sync();
    EXPECT_TRUE(AwaitThat([this] { return Idle() == 1; }));
}

}  // namespace
