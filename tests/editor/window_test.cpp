#include <algorithm>
#include <cmath>

#include "editor/level_column.h"
#include "tests/editor/editor_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Window : public EditorTest {
protected:
    void Click(Place place) { host->Click(place.x, place.y); }
    void PressAt(Place place) {
        host->MoveTo(place.x, place.y);
        host->Press();
    }
    std::vector<std::uint8_t> Page() { return host->Pixels(0, 0, 267, 320); }
};

}  // namespace

TEST_F(Window, OutlivesItsDisplay) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    xcb_disconnect(host->connection);
    server->End();
    for (int i = 0; i < 10; ++i) host->Idle();
    EXPECT_FALSE(host->Open());  // there is none
    server->Start();
    host->Connect();
    ASSERT_TRUE(host->Open());
    EXPECT_TRUE(host->Await([&] { return host->Pixel(45, 27) != host->screen->white_pixel; }));
}

TEST_F(Window, IsDrawnAgainWhenItsParentWasHiddenAndOfAnotherSize) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    const auto page = Page();
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
}

TEST_F(Window, ClosesInTheMiddleOfAnythingAndTheNextOneIsAsGoodAsNew) {
    const auto menuIsDown = [this] { Click({80, 242}); };
    const auto messageIsUp = [this] { host->plugin.messages.Show("text", "Error"); };
    const auto mouseHoldsSlider = [this] { PressAt({33, 100}); };
    const auto mouseStrokesBars = [this] {
        PressAt({60, 100});
        host->MoveTo(120, 150);
    };
    const std::pair<float, std::function<void()>> states[] = {
        {4, menuIsDown}, {2, messageIsUp}, {2, mouseHoldsSlider}, {3, mouseStrokesBars}};  // by page
    for (const auto& [page, begin] : states) {
        host->plugin.setParameter(92, page);
        ASSERT_TRUE(host->Open());
        host->Settle();
        const std::uint32_t bare = host->Pixel(6, 318);
        begin();
        host->Settle();
        host->Call(effEditClose);
        host->Release();
        ASSERT_TRUE(host->Open());
        host->Settle();
        EXPECT_EQ(host->Pixel(6, 318), bare) << "on page " << page;
    }
}

TEST_F(Window, ShowsThePageThatWasChosenLast) {
    ASSERT_TRUE(host->Open());
    Click(optionsButton);
    EXPECT_TRUE(host->Await([&] { return !host->automated.empty(); }));
    host->Settle();
    const auto options = Page();
    EXPECT_THAT(host->ToldOf(92), ElementsAre(4.0F));  // page 2 plus 2
    host->Call(effEditClose);
    ASSERT_TRUE(host->Open());
    host->Settle();
    EXPECT_EQ(Page(), options);
}

TEST_F(Window, ParametersChooseAPageByTwoMore) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    const auto mainPage = Page();
    const auto after = [this](float value) {
        host->plugin.setParameter(92, value);
        host->Idle();
        host->Settle();
        return Page();
    };
    const auto about = after(5.0F);
    EXPECT_NE(about, mainPage);
    EXPECT_EQ(after(0.0F), about);   // minus 2 is no page
    EXPECT_EQ(after(6.0F), about);   // nor is 4
    EXPECT_EQ(after(1e30F), about);  // nor what no integer holds
    EXPECT_EQ(after(2.9F), mainPage);
    EXPECT_THAT(host->automated, IsEmpty());
}

TEST_F(Window, APageButtonPressedWhileOnStaysOn) {
    ASSERT_TRUE(host->Open());
    host->MoveTo(mainButton.x, mainButton.y);
    host->Settle();
    const auto before = Page();
    host->Press();
    host->Release();
    host->Settle();
    EXPECT_EQ(Page(), before);
    EXPECT_THAT(host->automated, IsEmpty());
}

TEST_F(Window, ShowsWhatOtherThreadsSetAndReadsItAnewWhenOpened) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    std::thread([&] { host->plugin.setParameter(0, 0.1F); }).join();
    host->Idle();
    host->Settle();
    const auto shown = Page();
    host->Call(effEditClose);
    ASSERT_TRUE(host->Open());
    host->Settle();
    EXPECT_EQ(Page(), shown);
}

TEST_F(Window, TheChordStandsOnAPlateWhileChordsAreShown) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    const std::uint32_t ground = host->Pixel(chordPlate.x, chordPlate.y);
    EXPECT_EQ(ground, 0x93BAD8U);  // the palette's first entry: 147, 186, 216
    host->plugin.setParameter(93, 1.0F);
    // White at 180 / 255 over it: 147 + 108 * 180 / 255 = 223, 186 + 49, 216 + 28; one more or less by
    // rounding.
    EXPECT_TRUE(host->Await([&] { return host->Pixel(chordPlate.x, chordPlate.y) != ground; }));
    const std::uint32_t plate = host->Pixel(chordPlate.x, chordPlate.y);
    EXPECT_NEAR(plate >> 16, 223, 1);
    EXPECT_NEAR(plate >> 8 & 255, 235, 1);
    EXPECT_NEAR(plate & 255, 244, 1);
    host->plugin.setParameter(93, 0.5F);  // exactly a half is off
    EXPECT_TRUE(host->Await([&] { return host->Pixel(chordPlate.x, chordPlate.y) == ground; }));
}

// Between two notes nothing is heard, so a column differs from the one before by the running average alone,
// which the plug-in shows: byte = (ln(level) - average) * 70 + 254, or 255 for a note, and its colour, 3
// pixels a band.
TEST_F(Window, ThePictureTakesTheLevelsAsAColumnAtItsLeftEdgeAndMovesOn) {
    ASSERT_TRUE(host->Open());
    host->plugin.resume();
    Play({69}, 0.5);
    constexpr int left = 269, top = 48;  // of the picture
    // Note 69 is band 45: row 83 - 45 of the picture, 3 pixels each.
    constexpr int row = top + 3 * (83 - 45);
    EXPECT_TRUE(host->Await([&] { return host->Pixel(left, row) == 0xFF9646U; }));      // the notes' orange
    EXPECT_TRUE(host->Await([&] { return host->Pixel(left + 6, row) == 0xFF9646U; }));  // moved on
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
        ASSERT_TRUE(host->Await([&] { return host->plugin.levelAverage != average; }));
        std::vector<std::uint32_t> newest;
        ASSERT_TRUE(host->Await([&] { return (newest = column(0)) == expected(); }));
        EXPECT_TRUE(host->Await([&] { return column(1) == newest; }));
    }
}
