#include <atomic>

#include "tests/editor/editor_test.h"

namespace {

// What a host does to a window in use.
class WindowLife : public EditorTest {
protected:
    // Closes the window with something going on in it, and opens another that must be as good as new.
    void CloseInTheMiddle() {
        host->Call(effEditClose);
        host->Release();
        ASSERT_TRUE(host->Open());
        host->Settle();
        EXPECT_EQ(host->Pixel(6, 318), fresh);
    }
    void Open() {
        ASSERT_TRUE(host->Open());
        host->Settle();
        fresh = host->Pixel(6, 318);
    }

    std::uint32_t fresh = 0;  // a pixel of the bare window
};

}  // namespace

TEST_F(WindowLife, ClosesWithAMenuDown) {
    host->plugin.setParameter(92, 4.0F);
    Open();
    host->Click(80, 242);
    host->Settle();
    CloseInTheMiddle();
}

TEST_F(WindowLife, ClosesWithAMessageUp) {
    Open();
    host->plugin.messages.Show("text", "Error");
    EXPECT_TRUE(host->Await([&] { return host->Pixel(6, 318) != fresh; }));
    CloseInTheMiddle();
}

TEST_F(WindowLife, ClosesWithTheMouseHeldOnASlider) {
    Open();
    host->MoveTo(33, 100);
    host->Press();
    host->Settle();
    CloseInTheMiddle();
}

TEST_F(WindowLife, ClosesInTheMiddleOfAStroke) {
    host->plugin.setParameter(92, 3.0F);
    Open();
    host->MoveTo(60, 100);
    host->Press();
    host->MoveTo(120, 150);
    host->Settle();
    CloseInTheMiddle();
}

TEST_F(WindowLife, TakesOddSizesOfItsParent) {
    Open();
    for (const std::uint32_t size : {1U, 32767U, 400U}) {
        const std::uint32_t values[] = {size, size};
        xcb_configure_window(host->connection, host->parent,
                             XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        xcb_unmap_window(host->connection, host->parent);
        xcb_map_window(host->connection, host->parent);
        host->Sync();
        for (int i = 0; i < 5; ++i) host->Idle();
    }
    EXPECT_TRUE(host->Await([&] { return host->Pixel(6, 318) == fresh; }));
}

// Three threads as a host has them: audio with chords on show, automation, and the window opened, idle and
// closed. At the end the window shows what was set last.
TEST_F(WindowLife, AudioAutomationAndWindowRunTogether) {
    ASSERT_TRUE(host->Open());
    host->plugin.resume();
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        while (!stop) Play({220.0, 277.2, 329.6}, 0.05);
    });
    std::thread automation([&] {
        for (int i = 0; i < 3000; ++i) {
            host->plugin.setParameter(i % 88, static_cast<float>(i % 11) / 10);
            host->plugin.setParameter(93, static_cast<float>(i % 2));
        }
        stop = true;
    });
    for (int round = 0; !stop || round < 30; ++round) {
        host->Idle();
        if (round % 10 == 9) {
            host->Call(effEditClose);
            ASSERT_TRUE(host->Open());
        }
    }
    automation.join();
    audio.join();
    for (int i = 0; i < 87; ++i) host->plugin.setParameter(i, 0.5F);
    host->Idle();
    host->Settle();
    const auto shown = host->Pixels(0, 0, 267, 320);
    host->Call(effEditClose);
    ASSERT_TRUE(host->Open());
    host->Settle();
    EXPECT_EQ(host->Pixels(0, 0, 267, 320), shown);
}
