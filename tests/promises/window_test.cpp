// The window in the hands of users and hosts that know no rules, on displays that fail.
#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <array>
#include <cstdlib>

#include "desktop/shell.h"
#include "tests/editor/editor_host.h"
#include "tests/promises/process_state.h"
#include "tests/support/music.h"
#include "tests/support/trial.h"

namespace {

// Nothing is opened outside the window.
class NoShell : public IShell {
public:
    NoShell() {
        SubstituteSystemShell(this);
        setenv("PATH", "/usr/bin:/bin", 1);
    }
    ~NoShell() override { SubstituteSystemShell(nullptr); }
    bool OpenWebPage(const std::string&) override { return true; }
    bool OpenMail(const std::string&) override { return true; }
    bool OpenHelpFile(const std::string&) override { return false; }
};

// A host's audio thread for as long as this lives.
class AudioThread {
public:
    explicit AudioThread(CORVAguivstEx& played) : plugin(played), thread([this] { Run(); }) {}
    ~AudioThread() {
        stop = true;
        thread.join();
        EXPECT_TRUE(whole) << "a block came out changed";
    }
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    // That it comes through its next blocks. Waits for as long as that takes.
    void AwaitBlocks() const {
        for (const long now = blocks; blocks < now + 3;) std::this_thread::yield();
    }

private:
    void Run() {
        constexpr std::int32_t size = 441;
        Audio out(size);
        for (std::size_t played = 0; !stop; played += size, ++blocks) {
            const Audio before = Chord({57, 61, 64}, size, played);
            Audio in = before;
            float* from = in.data();
            float* to = out.data();
            plugin.processReplacing(&from, &to, size);
            whole = whole && out == before;
        }
    }
    CORVAguivstEx& plugin;
    std::atomic<bool> stop{false}, whole{true};
    std::atomic<long> blocks{0};
    std::thread thread;
};

// What a window that has just been opened looks like, all but the picture that never rests.
std::vector<std::uint8_t> Fresh(EditorHost& host) {
    host.Settle();
    return host.Pixels(0, 0, 267, 320);
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
        const NoShell shell;
        const DisplayServer display;
        setenv("PATH", "/nowhere", 1);  // and no file dialog
        EditorHost host;
        for (int event = 0; event < 300; ++event) {
            if (event % 60 == 0) {
                host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4)));
                host.Call(effEditClose);
                ASSERT_TRUE(host.Open());
                for (int i = 0; i < 10; ++i) host.Idle();
            }
            SomeInput(trial, host);
            if (trial.OneIn(2)) host.Idle();
        }
        host.Idle();
        for (const auto& [index, value] : host.automated)
            ASSERT_TRUE(index >= 0 && index < 96 && value >= (index == 92 ? 2 : 0) &&
                        value <= (index == 92 ? 5 : 1))
                << index << " = " << value;
        for (std::int32_t index = 0; index < 88; ++index) {  // those which nobody else sets
            const std::vector<float> reported = host.ToldOf(index);
            ASSERT_TRUE(reported.empty() || host.plugin.getParameter(index) == reported.back()) << index;
        }
    });
}

TEST(Window, OpensAndClosesWithoutEndAndLeavesNothing) {
    InChild(
        [](Trial&) {
            const DisplayServer display;
            EditorHost host;
            const auto cycle = [&] {
                EXPECT_TRUE(host.Open());
                for (int i = 0; i < 3; ++i) host.Idle();
                host.Call(effEditClose);
            };
            for (int i = 0; i < 3; ++i) cycle();
            const ProcessState before = ProcessState::AtRest();
            for (std::uint64_t left = Scaled(50); left > 0; --left) cycle();
            EXPECT_TRUE(before.Returns());
            EXPECT_TRUE(host.Children().empty());
        },
        600);
}

// In one of two windows of the host's, a dead one, none, or one of another screen.
TEST(Window, CallsInAnyOrderKeepOneWindowAtMostOfOneSize) {
    RunTrials({6, 1}, [](Trial& trial) {
        const DisplayServer display;
        EditorHost host;
        const AudioThread audio(host.plugin);
        const xcb_window_t first = host.parent;
        host.MakeParent();
        const xcb_window_t second = host.parent;
        host.MakeParent();
        xcb_destroy_window(host.connection, host.parent);
        host.Sync();
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(host.connection));
        xcb_screen_next(&screens);
        const std::array<xcb_window_t, 3> useless = {0, host.parent, screens.data->root};
        xcb_window_t shown = 0;  // the window that holds the editor
        for (int call = 0; call < 60 && !testing::Test::HasFailure(); ++call) {
            const auto key = static_cast<std::intptr_t>(trial.Below(60));
            const auto character = static_cast<std::int32_t>(trial.Below(128));
            switch (trial.Below(6)) {
                case 0:
                    shown = trial.OneIn(2) ? first : second;
                    EXPECT_TRUE(host.Open(shown));
                    break;
                case 1:
                    shown = 0;
                    EXPECT_FALSE(host.Open(useless[trial.Below(3)]));
                    break;
                case 2: shown = 0, host.Call(effEditClose); break;
                case 3: host.Idle(); break;
                case 4:
                    EXPECT_TRUE(host.Call(trial.OneIn(2) ? effEditKeyDown : effEditKeyUp, character, key) ==
                                    0 ||
                                shown != 0);
                    break;
                default: {
                    ERect* rect = nullptr;
                    EXPECT_NE(host.Call(effEditGetRect, 0, 0, &rect), 0);
                    EXPECT_TRUE(rect->left == 0 && rect->top == 0 && rect->right == 400 &&
                                rect->bottom == 320);
                }
            }
            // The plug-in's own connection may lag behind the host's.
            EXPECT_TRUE(AwaitThat([&] {
                return host.Children(first).size() == (shown == first ? 1 : 0) &&
                       host.Children(second).size() == (shown == second ? 1 : 0);
            }));
        }
        audio.AwaitBlocks();
    });
}

TEST(Window, TheHostsWindowMayGoMoveOrChangeUnderTheEditor) {
    RunTrials({5, 1, 60, true}, [](Trial& trial) {
        const DisplayServer display;
        EditorHost host;
        const AudioThread audio(host.plugin);
        ASSERT_TRUE(host.Open());
        const std::vector<std::uint8_t> fresh = Fresh(host);
        const xcb_window_t parent = host.parent;
        const std::uint32_t size = trial.number == 3 ? 1 : 32767;
        const std::uint32_t sizes[] = {size, size};
        switch (trial.number) {
            case 0: xcb_destroy_window(host.connection, parent); break;
            case 1:
                host.MakeParent();
                xcb_reparent_window(host.connection, parent, host.parent, 10, 10);
                break;
            case 2: xcb_unmap_window(host.connection, parent); break;
            default:
                xcb_configure_window(host.connection, parent,
                                     XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, sizes);
        }
        host.Sync();
        for (std::uint64_t i = trial.Below(40); i > 0; --i) host.Idle();
        audio.AwaitBlocks();
        if (trial.OneIn(2)) host.Call(effEditClose);  // or the next open closes it
        host.MakeParent();
        ASSERT_TRUE(host.Open());
        EXPECT_TRUE(Fresh(host) == fresh) << "the next window does not look as the first did";
    });
}

// The display goes, is none, no such one, without fonts, or full. The host must not go with it.
TEST(Window, ADisplayThatFailsTakesNeitherHostNorAudioWithIt) {
    RunTrials({5, 1, 60, true}, [](Trial& trial) {
        if (trial.number == 3) setenv("FONTCONFIG_FILE", "/dev/null", 1);
        DisplayServer display;
        EditorHost host;
        const AudioThread audio(host.plugin);
        const std::string name = getenv("DISPLAY");
        std::vector<xcb_connection_t*> others;
        if (trial.number == 0) {
            ASSERT_TRUE(host.Open());
            for (std::uint64_t i = trial.Below(20); i > 0; --i) host.Idle();
            display.End();
        }
        if (trial.number == 1) unsetenv("DISPLAY");
        if (trial.number == 2)
            setenv("DISPLAY", std::array{"", ":4711", "nowhere.example:0", ":0.77", "x"}[trial.Below(5)], 1);
        while (trial.number == 4 && (others.empty() || xcb_connection_has_error(others.back()) == 0))
            others.push_back(xcb_connect(nullptr, nullptr));
        for (int i = 0; i < 10; ++i) host.Idle();
        EXPECT_EQ(host.Open(), trial.number == 3);
        for (int i = 0; i < 10; ++i) host.Idle();
        audio.AwaitBlocks();
        for (xcb_connection_t* const other : others) xcb_disconnect(other);
        if (trial.number == 0) return;
        setenv("DISPLAY", name.c_str(), 1);
        EXPECT_TRUE(host.Await([&] { return host.Open(); })) << "on a good display afterwards";
    });
}

TEST(Window, SeveralWindowsShowEachItsOwnInstance) {
    RunTrials({2, 1, 120}, [](Trial& trial) {
        const DisplayServer display;
        std::array<std::unique_ptr<EditorHost>, 4> hosts;
        for (auto& host : hosts) host = std::make_unique<EditorHost>();
        EditorHost other;  // answers for all, as the last one made
        for (int operation = 0; operation < 200; ++operation) {
            EditorHost& host = *hosts[trial.Below(hosts.size())];
            switch (trial.Below(5)) {
                case 0: EXPECT_TRUE(host.Open()); break;
                case 1: host.Call(effEditClose); break;
                case 2: host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4))); break;
                case 3:
                    host.plugin.setParameter(static_cast<std::int32_t>(trial.Below(88)),
                                             static_cast<float>(trial.Within(0, 1)));
                    break;
                default: host.Idle();
            }
        }
        for (const auto& host : hosts) {
            host->MakeParent(), host->Open();  // on top of all
            const std::vector<std::uint8_t> shown = Fresh(*host);
            for (std::int32_t i = 0; i < 96; ++i)
                if (i != 88 && i != 89) other.plugin.setParameter(i, host->plugin.getParameter(i));
            other.MakeParent(), other.Open();
            EXPECT_TRUE(shown == Fresh(other)) << "not its own instance's values";
            other.Call(effEditClose);
        }
    });
}

}  // namespace
