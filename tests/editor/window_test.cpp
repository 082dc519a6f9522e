#include <algorithm>
#include <cmath>
#include <functional>
#include <thread>

#include "editor/level_column.h"
#include "tests/editor/editor_test.h"

namespace {

class Window : public EditorTest {
protected:
    bool IsDrawn() {
        return host->Await([&] { return host->Pixel(45, 27) != host->screen->white_pixel; });
    }
};

TEST_F(Window, OutlivesItsDisplayAndTheWhimsOfItsParent) {
    Open();
    const Picture page = Page();
    for (const std::uint32_t size : {1U, 32767U, 400U}) {
        const std::uint32_t values[] = {size, size};
        xcb_configure_window(host->connection, host->parent,
                             XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        xcb_unmap_window(host->connection, host->parent);
        xcb_map_window(host->connection, host->parent);
        host->Sync();
        for (int i = 0; i < 5; ++i) host->Idle();
    }
    EXPECT_TRUE(host->Await([&] { return Page() == page; }));
    xcb_disconnect(host->connection);
    server->End();
    for (int i = 0; i < 10; ++i) host->Idle();
    EXPECT_FALSE(host->Open());  // there is no display
    server->Start();
    host->Connect();
    ASSERT_TRUE(host->Open());
    EXPECT_TRUE(IsDrawn());
}

TEST_F(Window, ClosesInTheMiddleOfAnythingAndTheNextOneIsAsGoodAsNew) {
    const auto press = [this](int x, int y) { host->MoveTo(x, y), host->Press(); };
    const std::pair<float, std::function<void()>> states[] = {
        {4, [&] { host->Click(80, 242); }},  // a menu is open
        {2, [&] { host->plugin.messages.Show("text", "Error"); }},
        {2, [&] { press(33, 100); }},                           // the mouse holds a slider
        {3, [&] { press(60, 100), host->MoveTo(120, 150); }}};  // or strokes the bars
    for (const auto& [page, begin] : states) {
        Open(page);
        begin();
        host->Settle();
        host->Call(effEditClose);
        host->Release();
        ASSERT_TRUE(host->Open());
        host->Settle();
        EXPECT_FALSE(MessageIsUp()) << "on page " << page;
    }
}

TEST_F(Window, ShowsThePageThatUserOrHostChoseLastAndWhatOtherThreadsSet) {
    Open();
    const Picture mainPage = Page();
    host->MoveTo(mainButton.x, mainButton.y);
    host->Settle();
    const Picture before = Page();
    Click(mainButton);  // pressed while on, it stays on
    EXPECT_EQ(Page(), before);
    const auto after = [this](float value) {
        host->plugin.setParameter(92, value);
        host->Idle();
        host->Settle();
        return Page();
    };
    host->MoveTo(300, 310);
    const Picture about = after(5.0F);
    EXPECT_NE(about, mainPage);
    EXPECT_EQ(after(0.0F), about);   // minus 2 is no page
    EXPECT_EQ(after(6.0F), about);   // nor is 4
    EXPECT_EQ(after(1e30F), about);  // nor what no integer holds
    EXPECT_EQ(after(2.9F), mainPage);
    EXPECT_TRUE(host->automated.empty());

    const auto reopened = [this] {
        host->Call(effEditClose);
        EXPECT_TRUE(host->Open());
        host->Settle();
        return Page();
    };
    std::thread([&] { host->plugin.setParameter(0, 0.1F); }).join();
    host->Idle();
    host->Settle();
    const Picture changed = Page();
    EXPECT_NE(changed, mainPage);
    EXPECT_EQ(reopened(), changed);
    Click(optionsButton);
    EXPECT_EQ(host->ToldOf(92), std::vector<float>{4.0F});  // page 2 plus 2
    const Picture options = Page();
    EXPECT_EQ(reopened(), options);
}

TEST_F(Window, TheChordStandsOnAPlateWhileChordsAreShown) {
    constexpr Place plate = {280, 60};  // where no letter reaches
    Open();
    EXPECT_EQ(host->Pixel(plate.x, plate.y), 0x93BAD8U);  // the palette's first entry: 147, 186, 216
    host->plugin.setParameter(93, 1.0F);
    EXPECT_TRUE(host->Await([&] { return host->Pixel(plate.x, plate.y) != 0x93BAD8U; }));
    // White at 180 / 255 over it: 147 + 108 * 180 / 255 = 223, 186 + 49, 216 + 28; one more or less by
    // rounding.
    const std::uint32_t shown = host->Pixel(plate.x, plate.y);
    EXPECT_NEAR(shown >> 16, 223, 1);
    EXPECT_NEAR(shown >> 8 & 255, 235, 1);
    EXPECT_NEAR(shown & 255, 244, 1);
    host->plugin.setParameter(93, 0.5F);  // exactly a half is off
    EXPECT_TRUE(host->Await([&] { return host->Pixel(plate.x, plate.y) == 0x93BAD8U; }));
}

// Between two notes nothing is heard, so a column differs from the one before by the running average alone,
// which the plug-in shows: byte = (ln(level) - average) * 70 + 254, or 255 for a note, and its colour, 3
// pixels a band.
TEST_F(Window, ThePictureTakesTheLevelsAsAColumnAtItsLeftEdgeAndMovesOn) {
    ASSERT_TRUE(host->Open());
    host->plugin.resume();
    Play({69}, 0.5);
    const auto await = [&](const auto& condition) {  // while blocks go on that change nothing
        return host->Await([&] {
            host->plugin.totalSamples = host->plugin.totalSamples + 1;
            return condition();
        });
    };
    constexpr int left = 269, top = 48;  // of the picture
    // Note 69 is band 45: row 83 - 45 of the picture, 3 pixels each.
    constexpr int row = top + 3 * (83 - 45);
    EXPECT_TRUE(await([&] { return host->Pixel(left, row) == 0xFF9646U; }));      // the notes' orange
    EXPECT_TRUE(await([&] { return host->Pixel(left + 6, row) == 0xFF9646U; }));  // moved on
    EXPECT_EQ(host->Pixel(left + 1, row + 1), 0xFF9646U);
    EXPECT_EQ(host->Pixel(left + 1, row + 2), 0x4199DCU);  // entry 254: 65, 153, 220

    const auto expected = [&] {
        std::vector<unsigned char> levels;
        const TNoteRecorder& heard = host->plugin.noteRecorder;
        for (std::int32_t band = 0; band < 84; ++band) {
            const float height =
                (std::log(heard.GetBandLevel(band)) - host->plugin.levelAverage) * 70.0F + 254.0F;
            levels.push_back(static_cast<unsigned char>(
                heard.GetBandOn(band) ? 255.0F : std::clamp(height, 0.0F, 254.0F)));
        }
        std::vector<std::uint32_t> pixels;
        for (const int byte : ColumnOf(levels)) {
            const PaletteColor color = PaletteEntry(byte);
            pixels.push_back(std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue);
        }
        return pixels;
    };
    const auto column = [&](int age) {
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < columnHeight; ++y) pixels.push_back(host->Pixel(left + age, top + y));
        return pixels;
    };
    // What a call draws may reach the screen with the next, so each is awaited.
    for (int tick = 0; tick < 3; ++tick) {
        const float average = host->plugin.levelAverage;
        ASSERT_TRUE(await([&] { return host->plugin.levelAverage != average; }));
        std::vector<std::uint32_t> newest;
        ASSERT_TRUE(await([&] { return (newest = column(0)) == expected(); }));
        EXPECT_TRUE(await([&] { return column(1) == newest; }));
    }
    EXPECT_TRUE(host->Await([&] { return column(0)[row - top] == 0x93BAD8U; }));  // no blocks: dark
}

}  // namespace
