// The window as an LV2 host holds it, on a display of the tests' own.
#include <chrono>
#include <functional>
#include <optional>
#include <thread>

#include <lv2/instance-access/instance-access.h>

#include "lv2/instance.h"
#include "lv2/uris.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/await.h"
#include "tests/support/devices.h"
#include "tests/support/host_window.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"

namespace {

const LV2UI_Descriptor* FileWindow() {
    const auto entry = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(Lv2File(), "lv2ui_descriptor"));
    return entry != nullptr ? entry(0) : nullptr;
}

class Desktop : public HostWindow {
public:
    std::pair<int, int> Size(xcb_window_t of) const {
        const XcbReply<xcb_get_geometry_reply_t> reply(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, of), nullptr));
        return reply ? std::pair<int, int>(reply->width, reply->height) : std::pair<int, int>(0, 0);
    }
    // The first slider, as it is drawn.
    std::vector<std::uint8_t> SliderPixels() const { return Pixels(22, 67, 22, 216); }
    void CloseByManager(xcb_window_t window) const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = Atom("WM_PROTOCOLS");
        message.data.data32[0] = Atom("WM_DELETE_WINDOW");
        xcb_send_event(connection, 0, window, 0, reinterpret_cast<const char*>(&message));
        xcb_flush(connection);
    }
};

struct Written {
    std::uint32_t port;
    float value;
    bool operator==(const Written&) const = default;
};

class Lv2Window : public testing::Test {
protected:
    ~Lv2Window() override { Close(); }

    enum Where { inParent, onDesktop };
    // With the instance's handle, or another; false when there is no window.
    bool Open(Where where, void* instance) {
        resize = {this, [](LV2UI_Feature_Handle handle, int width, int height) {
                      static_cast<Lv2Window*>(handle)->resized = {width, height};
                      return 0;
                  }};
        const LV2_Feature access{LV2_INSTANCE_ACCESS_URI, instance}, sizes{LV2_UI__resize, &resize},
            place{LV2_UI__parent, desktop.Handle()}, nameless{};
        std::vector<const LV2_Feature*> features{&nameless, &sizes};
        if (instance != nullptr) features.push_back(&access);
        if (where == inParent) features.push_back(&place);
        features.push_back(nullptr);
        const LV2UI_Handle opened = ui->instantiate(
            ui, pluginUri, ORVA_BUNDLE,
            [](LV2UI_Controller to, std::uint32_t port, std::uint32_t size, std::uint32_t format,
               const void* value) {
                auto& self = *static_cast<Lv2Window*>(to);
                EXPECT_EQ(size, sizeof(float));
                EXPECT_EQ(format, 0U);
                EXPECT_TRUE(std::this_thread::get_id() == self.uiThread);
                self.written.push_back({port, *static_cast<const float*>(value)});
            },
            this, &widget, features.data());
        if (opened == nullptr) return false;
        window = opened;
        return true;
    }
    bool Open(Where where = inParent) { return Open(where, host->handle); }
    void Close() {
        if (window != nullptr) ui->cleanup(window);
        window = nullptr;
    }
    int Idle() {
        return static_cast<const LV2UI_Idle_Interface*>(ui->extension_data(LV2_UI__idleInterface))
            ->idle(window);
    }
    const LV2UI_Show_Interface& Shower() {
        return *static_cast<const LV2UI_Show_Interface*>(ui->extension_data(LV2_UI__showInterface));
    }
    // Gives idle time until the condition holds; false if it never does.
    bool Await(const std::function<bool()>& condition) {
        return AwaitThat([&] {
            EXPECT_EQ(Idle(), 0);
            return condition();
        });
    }
    // Until the slider looks the same for a while.
    std::vector<std::uint8_t> SettledSlider() {
        std::vector<std::uint8_t> last;
        int same = 0;
        Await([&] {
            auto now = desktop.SliderPixels();
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
        return written.empty() ? -1 : written.back().value;
    }
    float Object(std::int32_t parameter) const {
        return Instance::Find(host->handle)->Object().Parameter(parameter);
    }
    // Runs of 441 frames each; in the tests' host, 10 ms.
    void RunFor(int hundredths) {
        for (int i = 0; i < hundredths; ++i) host->Run(Silence(441));
    }

    Desktop desktop;
    std::optional<Lv2Host> host{std::in_place};
    const LV2UI_Descriptor* ui = WindowDescriptor();
    LV2UI_Handle window = nullptr;
    LV2UI_Widget widget = nullptr;
    LV2UI_Resize resize{};
    std::pair<int, int> resized;
    std::vector<Written> written;
    const std::thread::id uiThread = std::this_thread::get_id();
};

TEST_F(Lv2Window, WhatIsMovedReachesTheHostWhoseOlderValueDoesNotCountUntilItsEcho) {
    ASSERT_TRUE(Open());
    SettledSlider();
    const float value = MoveSlider(200);
    EXPECT_EQ(written.back(), (Written{portFirstControl + 0, value}));
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
    EXPECT_TRUE(Await([&] { return desktop.SliderPixels() != before; }));
    EXPECT_EQ(Object(0), ParameterInitialValue(0));  // only a run applies it
    PortEvent(0, ParameterInitialValue(0));
    EXPECT_TRUE(Await([&] { return desktop.SliderPixels() == before; }));
    EXPECT_TRUE(written.empty());

    host->control[0] = 0.2F;  // and by a run
    RunFor(1);
    EXPECT_TRUE(Await([&] { return desktop.SliderPixels() != before; }));
    ui->port_event(window, portFirstControl, 8, 0, "whatever");  // no control value
    ui->port_event(window, portCount, 4, 0, "????");             // no port
}

TEST_F(Lv2Window, OpensOnceForItsOwnInstanceWhereThereIsADisplay) {
    {
        Lv2Host loaded(FileDescriptor());  // the module as a host loads it
        ui = FileWindow();
        ASSERT_TRUE(Open(inParent, loaded.handle));
        const auto inside = static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(widget));
        EXPECT_EQ(desktop.Children(), std::vector<xcb_window_t>{inside});
        EXPECT_EQ(desktop.Size(inside), std::pair(400, 320));
        EXPECT_EQ(resized, std::pair(400, 320));
        Close();
        EXPECT_TRUE(desktop.Children().empty());
        ui = WindowDescriptor();
    }
    int somebodyElses = 0;
    for (void* const none : {static_cast<void*>(nullptr), static_cast<void*>(&somebodyElses)})
        EXPECT_FALSE(Open(inParent, none));
    EXPECT_EQ(ui->instantiate(ui, "http://host.example/other", "", nullptr, nullptr, nullptr, nullptr),
              nullptr);
    const xcb_window_t parent = std::exchange(desktop.parent, 0x7FFFFFF);  // a window that is none
    EXPECT_FALSE(Open());
    desktop.parent = parent;
    const std::string display = getenv("DISPLAY");
    setenv("DISPLAY", ":9999", 1);
    EXPECT_FALSE(Open());
    setenv("DISPLAY", display.c_str(), 1);
    ASSERT_TRUE(Open());
    const LV2UI_Handle first = std::exchange(window, nullptr);
    EXPECT_FALSE(Open());
    window = first;
    SettledSlider();
    // The instance may go first,
    const LV2_Handle gone = host->handle;
    host.reset();
    for (int twice = 0; twice < 2; ++twice) EXPECT_EQ(Idle(), 1);
    EXPECT_TRUE(desktop.Children().empty());
    PortEvent(0, 0.5F);
    EXPECT_NE(Shower().show(window), 0);
    Close();
    EXPECT_FALSE(Open(inParent, gone));
    // and so may the host's window.
    host.emplace();
    ASSERT_TRUE(Open());
    SettledSlider();
    xcb_destroy_window(desktop.connection, desktop.parent);
    desktop.Sync();
    EXPECT_TRUE(AwaitThat([this] { return Idle() == 1; }));
}

TEST_F(Lv2Window, StandsOnTheDesktopForHostsWithoutAWindow) {
    const std::size_t others = desktop.Children(desktop.screen->root).size();
    ASSERT_TRUE(Open(onDesktop));
    EXPECT_EQ(Idle(), 0);
    for (int life = 0; life < 2; ++life) {
        ASSERT_EQ(Shower().show(window), 0);
        const auto all = desktop.Children(desktop.screen->root);
        ASSERT_EQ(all.size(), others + 1);
        EXPECT_EQ(desktop.Size(all.back()), std::pair(400, 320));
        EXPECT_EQ(Idle(), 0);
        if (life == 0) {
            EXPECT_EQ(Shower().hide(window), 0);
        } else {
            desktop.CloseByManager(all.back());
            EXPECT_TRUE(AwaitThat([this] { return Idle() == 1; }));
        }
        EXPECT_EQ(desktop.Children(desktop.screen->root).size(), others);
    }
}

// The port follows what is really open, and the host's echo requests nothing.
TEST_F(Lv2Window, ADeviceThatIsNotAvailableSwitchesItsPortOff) {
    FakeDevices layer;
    Messages messages;
    SubstituteMidiOut(&layer);
    layer.refusedOpens[0] = MMSYSERR_ALLOCATED;
    ASSERT_TRUE(Open());
    for (const float echo : {1.0F, 0.0F}) {
        host->control[paramDeviceEnabled] = echo;
        RunFor(100);
        host->Work();
        EXPECT_TRUE(Await([&] { return !written.empty(); }));
    }
    EXPECT_EQ(written, (std::vector<Written>{{std::uint32_t{portFirstControl} + 89, 0.0F}}));
    const FakeDevices::Calls calls = layer.Taken();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "open 0"), 1);
    Close();
    host.reset();
    SubstituteMidiOut(nullptr);
}

}  // namespace
