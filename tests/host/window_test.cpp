// The real program's window on a display of the tests' own.
#include <gtest/gtest.h>

#include "tests/support/await.h"
#include "tests/support/display_server.h"
#include "tests/support/parent_window.h"
#include "tests/support/temp_folder.h"

namespace {

// The window of `orva-host shot options`, while the program waits for the picture to become due.
class HostWindow : public testing::Test {
protected:
    HostWindow() {
        std::string picture = folder / "never.png";
        std::vector<char*> words;
        for (const char* word : {ORVA_HOST_PROGRAM, "shot", "options", picture.c_str(), "--at", "600"})
            words.push_back(const_cast<char*>(word));
        words.push_back(nullptr);
        posix_spawn(&program, words[0], nullptr, nullptr, words.data(), environ);
        display.connection = xcb_connect(nullptr, nullptr);
        display.screen = xcb_setup_roots_iterator(xcb_get_setup(display.connection)).data;
        AwaitThat([this] { return !display.Children(display.screen->root).empty(); });
        display.parent = display.Children(display.screen->root).at(0);
    }
    ~HostWindow() override {
        kill(program, SIGKILL);
        waitpid(program, nullptr, 0);
    }
    std::string Property(const std::string& name) const { return display.Property(display.parent, name); }

    DisplayServer server;
    TempFolder folder;
    pid_t program = 0;
    ParentWindow display;
};

}  // namespace

TEST_F(HostWindow, IsKnownToTheDesktopByClassProcessAndIcon) {
    ASSERT_TRUE(AwaitThat([this] { return !Property("_NET_WM_ICON").empty(); }));
    EXPECT_EQ(Property("WM_CLASS"), std::string("orva-host\0Orva-host\0", 20));
    EXPECT_EQ(Property("_NET_WM_PID"), std::string(reinterpret_cast<const char*>(&program), 4));
    const std::string icon =
        Property("_NET_WM_ICON");  // words: width, height, pixels, of which alpha is last
    ASSERT_EQ(icon.size(), 4U * (2 + 64 * 64));
    EXPECT_EQ(icon[4 * 2 + 3], '\0');                     // a corner, outside of the disc
    EXPECT_EQ(icon[4 * (2 + 32 * 64 + 61) + 3], '\xFF');  // within it
}

// The green mark of a host that takes MIDI, and not the orange one of a host that has not asked.
TEST_F(HostWindow, ShowsAHostThatTakesMidi) {
    EXPECT_TRUE(AwaitThat([this] {
        const std::vector<std::uint8_t> mark = display.Pixels(41, 142, 1, 1);
        return mark.size() >= 3 && mark[2] == 0x39 && mark[1] == 0xA9 && mark[0] == 0x6B;
    }));
}
