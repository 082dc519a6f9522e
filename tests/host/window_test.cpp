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
    std::string Property(const std::string& name) const {
        const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            display.connection,
            xcb_intern_atom(display.connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            display.connection,
            xcb_get_property(display.connection, 0, display.parent, atom->atom, XCB_ATOM_ANY, 0, 65536),
            nullptr));
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }
    std::vector<std::uint32_t> Words(const std::string& name) const {
        const std::string bytes = Property(name);
        std::vector<std::uint32_t> words(bytes.size() / 4);
        std::copy_n(bytes.data(), words.size() * 4, reinterpret_cast<char*>(words.data()));
        return words;
    }

    DisplayServer server;
    TempFolder folder;
    pid_t program = 0;
    ParentWindow display;
};

}  // namespace

TEST_F(HostWindow, IsKnownToTheDesktopByClassProcessAndIcon) {
    ASSERT_TRUE(AwaitThat([this] { return !Property("_NET_WM_ICON").empty(); }));
    EXPECT_EQ(Property("WM_CLASS"), std::string("orva-host\0Orva-host\0", 20));
    EXPECT_EQ(Words("_NET_WM_PID"), std::vector<std::uint32_t>{static_cast<std::uint32_t>(program)});
    const std::vector<std::uint32_t> icon = Words("_NET_WM_ICON");
    ASSERT_EQ(icon.size(), 2U + 64U * 64U);
    EXPECT_EQ(icon[2] >> 24, 0U);                   // a corner, outside of the disc
    EXPECT_EQ(icon[2 + 32 * 64 + 61] >> 24, 255U);  // within it
}

// The green mark of a host that takes MIDI, and not the orange one of a host that has not asked.
TEST_F(HostWindow, ShowsAHostThatTakesMidi) {
    EXPECT_TRUE(AwaitThat([this] {
        const std::vector<std::uint8_t> mark = display.Pixels(41, 142, 1, 1);
        return mark.size() >= 3 && mark[2] == 0x39 && mark[1] == 0xA9 && mark[0] == 0x6B;
    }));
}
