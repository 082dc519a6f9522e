// The window in the hands of users and hosts that know no rules, on displays that fail.
#include <xcb/xtest.h>

#include "editor/window_size.h"
#include "tests/editor/editor_host.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

// A host's audio thread for as long as this lives.
class AudioThread {
public:
    AudioThread(const Trial& trial, Host& host)
        : thread([this, &trial, &host] {
              for (std::size_t played = 0; !stop; played += 441, ++blocks)
                  trial.Require(host.Play(Chord({57, 61, 64}, 441, played)), "a block came out changed");
          }) {}
    ~AudioThread() {
        stop = true;
        thread.join();
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    // That it comes through its next blocks. Waits for as long as that takes.
    void AwaitBlocks() const {
        for (const long now = blocks; blocks < now + 3;) std::this_thread::yield();
    }

private:
    std::atomic<bool> stop{false};
    std::atomic<long> blocks{0};
    std::thread thread;
};

void Idle(EditorHost& host, std::uint64_t times = 1) {
    for (; times > 0; --times) host.Call(effEditIdle);
}

// Any button, any key, anywhere in the window or a little outside.
void SomeInput(Trial& trial, EditorHost& host) {
    const auto fake = [&](unsigned type, std::uint64_t detail, std::uint64_t x = 0, std::uint64_t y = 0) {
        xcb_test_fake_input(host.connection, static_cast<std::uint8_t>(type),
                            static_cast<std::uint8_t>(detail), 0, host.screen->root,
                            static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    };
    const std::uint64_t button = 1 + trial.Below(trial.OneIn(4) ? 9 : 1), key = 9 + trial.Below(112);
    switch (trial.Below(4)) {
        case 0: fake(XCB_MOTION_NOTIFY, 0, trial.Below(440), trial.Below(360)); break;
        case 1: fake(XCB_BUTTON_PRESS, button); break;
        case 2: fake(XCB_BUTTON_RELEASE, button); break;
        default: fake(XCB_KEY_PRESS, key), fake(XCB_KEY_RELEASE, key);
    }
    host.Sync();
}

TEST(Window, TakesAnyMouseAndKeyAndReportsOnlyWhatItKeeps) {
    RunTrials({6, 1}, [](Trial& trial) {
        const DisplayServer display;
        setenv("PATH", "/nowhere", 1);  // no file dialog, nor anything else outside the window
        EditorHost host;
        for (int event = 0; event < 300; ++event) {
            if (event % 60 == 0) {
                host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4)));
                host.Call(effEditClose);
                ASSERT_TRUE(host.Open());
                Idle(host, 10);
            }
            SomeInput(trial, host);
            Idle(host, trial.Below(2));
        }
        Idle(host);
        std::map<std::int32_t, float> last;
        for (const auto& [index, value] : host.automated) {
            ASSERT_TRUE(index >= 0 && index < 96 && value >= (index == 92 ? 2 : 0) &&
                        value <= (index == 92 ? 5 : 1))
                << index << " = " << value;
            last[index] = value;
        }
        for (const auto& [index, value] : last)  // below 88 nobody else sets any
            ASSERT_TRUE(index >= 88 || host.plugin.getParameter(index) == value) << index;
    });
}

// Two instances, each in one of two windows of the host's, a dead one, none, or one of another screen.
TEST(Window, CallsInAnyOrderKeepOneWindowAtMost) {
    RunTrials({6, 1}, [](Trial& trial) {
        const DisplayServer display;
        const TempFolder settings;
        setenv("XDG_CONFIG_HOME", settings.path.c_str(), 1);
        std::array<EditorHost, 2> hosts;
        const AudioThread audio(trial, hosts[0]);
        xcb_window_t windows[2][2], useless[] = {0, 0, 0}, shown[] = {0, 0};  // which holds the editor
        for (std::size_t i = 0; i < 4; ++i)
            hosts[i / 2].MakeParent(), windows[i / 2][i % 2] = hosts[i / 2].parent;
        hosts[0].MakeParent(), useless[1] = hosts[0].parent;
        xcb_destroy_window(hosts[0].connection, useless[1]);
        hosts[0].Sync();
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(hosts[0].connection));
        xcb_screen_next(&screens);
        useless[2] = screens.data->root;
        for (int call = 0; call < 80 && !testing::Test::HasFailure(); ++call) {
            const std::size_t i = trial.Below(2);
            EditorHost& host = hosts[i];
            switch (trial.Below(8)) {
                case 0:
                    host.parent = shown[i] = windows[i][trial.Below(2)];
                    EXPECT_TRUE(host.Open());
                    break;
                case 1:
                    host.parent = useless[trial.Below(3)], shown[i] = 0;
                    EXPECT_FALSE(host.Open());
                    break;
                case 2: shown[i] = 0, host.Call(effEditClose); break;
                case 3: host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4))); break;
                case 4: EXPECT_TRUE(PreferWindowSize(windowSizes[trial.Below(4)])); break;
                default: Idle(host);
            }
            // The plug-in's own connection may lag behind the host's.
            EXPECT_TRUE(AwaitThat([&] {
                return host.Children(windows[i][0]).size() == (shown[i] == windows[i][0] ? 1 : 0) &&
                       host.Children(windows[i][1]).size() == (shown[i] == windows[i][1] ? 1 : 0);
            }));
        }
        audio.AwaitBlocks();
    });
}

// What may happen to the host's window, and to the display. The host must not go with it.
enum Event { destroyed, moved, displayEnds, noDisplay, noFonts, full };

TEST(Window, AWindowOrDisplayThatFailsTakesNeitherHostNorAudioWithIt) {
    RunTrials({full + 1, 1, 60, true}, [](Trial& trial) {
        if (trial.number == noFonts) setenv("FONTCONFIG_FILE", "/dev/null", 1);
        DisplayServer display;
        EditorHost host;
        const AudioThread audio(trial, host);
        const std::string name = getenv("DISPLAY");
        const bool openBefore = trial.number <= displayEnds;
        ASSERT_EQ(openBefore && host.Open(), openBefore);
        Idle(host, trial.Below(40));
        const xcb_window_t parent = host.parent;
        std::vector<xcb_connection_t*> others;
        switch (trial.number) {
            case destroyed: xcb_destroy_window(host.connection, parent); break;
            case moved:
                host.MakeParent();
                xcb_reparent_window(host.connection, parent, host.parent, 10, 10);
                break;
            case displayEnds: display.End(); break;
            case noDisplay: unsetenv("DISPLAY"); break;
            case full:
                while (others.empty() || xcb_connection_has_error(others.back()) == 0)
                    others.push_back(xcb_connect(nullptr, nullptr));
                break;
            default: break;
        }
        host.Sync();
        Idle(host, trial.Below(40));
        audio.AwaitBlocks();
        if (!openBefore || trial.number == displayEnds) {
            EXPECT_EQ(host.Open(), trial.number == noFonts);
            Idle(host, 10);
            audio.AwaitBlocks();
        }
        for (xcb_connection_t* const other : others) xcb_disconnect(other);
        if (trial.number == displayEnds) return;
        setenv("DISPLAY", name.c_str(), 1);
        if (trial.OneIn(2)) host.Call(effEditClose);  // or the next open closes it
        host.MakeParent();
        EXPECT_TRUE(host.Await([&] { return host.Open(); })) << "in a good window afterwards";
    });
}

}  // namespace
