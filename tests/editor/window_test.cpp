#include <dirent.h>

#include <algorithm>
#include <cmath>

#include "editor/level_column.h"
#include "tests/editor/editor_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int Entries(const char* folder) {
    int count = 0;
    DIR* open = opendir(folder);
    while (readdir(open) != nullptr) ++count;
    closedir(open);
    return count;
}

class Window : public EditorTest {
protected:
    int Children() {
        std::unique_ptr<xcb_query_tree_reply_t, void (*)(void*)> tree(
            xcb_query_tree_reply(host->connection, xcb_query_tree(host->connection, host->parent), nullptr),
            &free);
        return tree ? xcb_query_tree_children_length(tree.get()) : -1;
    }
    ERect Rect() {
        ERect* rect = nullptr;
        host->Call(effEditGetRect, 0, 0, &rect);
        return rect != nullptr ? *rect : ERect{};
    }
    void Click(Place place) { host->Click(place.x, place.y); }
    std::vector<std::uint8_t> Page() { return host->Pixels(0, 0, 267, 320); }
};

}  // namespace

TEST_F(Window, ItsSizeIsThatOfItsPictureBeforeDuringAndAfterAnOpen) {
    const auto expectSize = [this] {
        EXPECT_EQ(Rect().left, 0);
        EXPECT_EQ(Rect().top, 0);
        EXPECT_EQ(Rect().right, 400);
        EXPECT_EQ(Rect().bottom, 320);
    };
    expectSize();
    ASSERT_TRUE(host->Open());
    expectSize();
    host->Call(effEditClose);
    expectSize();
}

TEST_F(Window, OpensOnlyInAWindow) {
    EXPECT_FALSE(host->Open(0));
    EXPECT_FALSE(host->Open(0x7FFFFFFF));
    const xcb_window_t gone = host->parent;
    xcb_destroy_window(host->connection, gone);
    host->Sync();
    EXPECT_FALSE(host->Open(gone));
    host->MakeParent();
    EXPECT_TRUE(host->Open());
}

TEST_F(Window, ASecondOpenClosesTheFirst) {
    const xcb_window_t first = host->parent;
    ASSERT_TRUE(host->Open());
    host->MakeParent();
    ASSERT_TRUE(host->Open());
    EXPECT_EQ(Children(), 1);
    host->parent = first;
    EXPECT_EQ(Children(), 0);
}

TEST_F(Window, WithoutAWindowEveryCallDoesNothing) {
    host->Idle();
    host->Call(effEditClose);
    EXPECT_EQ(host->Call(effEditKeyDown, 0, VKEY_F1), 0);
    ASSERT_TRUE(host->Open());
    host->Call(effEditClose);
    host->Call(effEditClose);
    host->Idle();
    EXPECT_EQ(host->Call(effEditKeyDown, 'a', 0), 0);
    EXPECT_THAT(host->automated, IsEmpty());
}

// Nothing of a closed editor stays: no window in the host's, no open file, no thread.
TEST_F(Window, CyclesOfOpenAndCloseLeaveNothing) {
    int files = 0, threads = 0;
    for (int cycle = 0; cycle < 200; ++cycle) {
        ASSERT_TRUE(host->Open());
        EXPECT_EQ(Children(), 1);
        for (int i = 0; i < 4; ++i) host->Idle();
        host->Call(effEditClose);
        host->Sync();
        ASSERT_EQ(Children(), 0) << "after cycle " << cycle;
        if (cycle == 1) {  // the first ones read fonts and devices
            files = Entries("/proc/self/fd");
            threads = Entries("/proc/self/task");
        }
    }
    EXPECT_EQ(Entries("/proc/self/fd"), files);
    EXPECT_EQ(Entries("/proc/self/task"), threads);
}

TEST_F(Window, OutlivesItsParent) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    xcb_destroy_window(host->connection, host->parent);
    host->Sync();
    for (int i = 0; i < 30; ++i) host->Idle();
    host->Call(effEditClose);
    host->MakeParent();
    ASSERT_TRUE(host->Open());
    host->Settle();
    EXPECT_NE(host->Pixel(200, 160), host->screen->white_pixel);
}

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

TEST_F(Window, WithoutADisplayTheAnswerIsNo) {
    const std::string display = getenv("DISPLAY");
    for (const char* other : {"", ":4711", "nowhere.example:0"}) {
        setenv("DISPLAY", other, 1);
        EXPECT_FALSE(host->Open(1)) << other;
        host->Idle();
    }
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_TRUE(host->Open());
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

TEST_F(Window, ShowsWhatOtherThreadsSet) {
    ASSERT_TRUE(host->Open());
    host->Settle();
    std::thread([&] {
        host->plugin.setParameter(0, 0.1F);
        host->plugin.setParameter(93, 1.0F);
    }).join();
    host->Idle();
    host->Settle();
    const auto shown = Page();
    const std::uint32_t plate = host->Pixel(chordPlate.x, chordPlate.y);
    host->Call(effEditClose);
    ASSERT_TRUE(host->Open());  // reads everything anew
    host->Settle();
    EXPECT_EQ(Page(), shown);
    EXPECT_EQ(host->Pixel(chordPlate.x, chordPlate.y), plate);
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

TEST_F(Window, NotesRunByFromLeftToRight) {
    ASSERT_TRUE(host->Open());
    host->plugin.resume();
    Play({440.0}, 0.5);
    // A 440 is band 45: row 83 - 45 of the picture, 3 pixels each, in a form whose corner is 269, 48.
    constexpr int row = 48 + 3 * (83 - 45);
    EXPECT_TRUE(host->Await([&] { return host->Pixel(269, row) == 0xFF9646U; }));  // the notes' orange
    EXPECT_TRUE(host->Await([&] { return host->Pixel(275, row) == 0xFF9646U; }));  // moved on
    EXPECT_EQ(host->Pixel(270, row + 1), 0xFF9646U);
    EXPECT_EQ(host->Pixel(270, row + 2), 0x4199DCU);  // entry 254: 65, 153, 220
}

// Between two notes nothing is heard, so a column differs from the one before by the running average alone,
// which the plug-in shows: byte = (ln(level) - average) * 70 + 254, or 255 for a note, and its colour, 3
// pixels a band.
TEST_F(Window, EachColumnOfThePictureShowsTheLevelsPixelByPixel) {
    ASSERT_TRUE(host->Open());
    host->plugin.resume();
    Play({220.0, 277.2, 329.6}, 0.5);
    const auto expected = [&] {
        std::vector<unsigned char> levels(84);
        const TNoteRecorder& heard = host->plugin.noteRecorder;
        for (std::int32_t band = 0; band < 84; ++band) {
            const float level = heard.GetBandLevel(band);
            const float height =
                level > 0 ? (std::log(level) - host->plugin.levelAverage) * 70.0F + 254.0F : 0.0F;
            levels[static_cast<std::size_t>(band)] =
                static_cast<unsigned char>(heard.GetBandOn(band) ? 255.0F : std::clamp(height, 0.0F, 254.0F));
        }
        std::vector<std::uint32_t> pixels;
        for (const int byte : ColumnOf(levels)) {
            const PaletteColor color = PaletteEntry(byte);
            pixels.push_back(std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue);
        }
        return pixels;
    };
    const auto column = [&](int age) {  // the picture's upper left corner is at 269, 48
        std::vector<std::uint32_t> pixels;
        for (const auto bytes = host->Pixels(269 + age, 48, 1, 252); pixels.size() < bytes.size() / 4;) {
            const std::uint8_t* p = &bytes[4 * pixels.size()];
            pixels.push_back(std::uint32_t{p[2]} << 16 | std::uint32_t{p[1]} << 8 | p[0]);
        }
        return pixels;
    };
    // What a call draws may reach the screen with the next, so each is awaited.
    for (int tick = 0; tick < 3; ++tick) {
        const float average = host->plugin.levelAverage;
        ASSERT_TRUE(host->Await([&] { return host->plugin.levelAverage != average; }));
        std::vector<std::uint32_t> newest;
        ASSERT_TRUE(host->Await([&] { return (newest = column(0)) == expected(); }));
        EXPECT_THAT(newest, testing::Contains(0xFF9646U));  // a note sounds
        EXPECT_TRUE(host->Await([&] { return column(1) == newest; }));
    }
}

TEST_F(Window, TwoInstancesShowTheirOwnValues) {
    ASSERT_TRUE(host->Open());
    const auto other = std::make_unique<EditorHost>();
    other->plugin.setParameter(0, 0.0F);
    ASSERT_TRUE(other->Open());  // in a window of its own, above the first
    other->Settle();
    const auto low = other->Pixels(0, 0, 267, 320);
    other->Call(effEditClose);
    xcb_unmap_window(other->connection, other->parent);
    other->Sync();
    host->Settle();
    EXPECT_NE(Page(), low);
    host->plugin.setParameter(0, 0.0F);
    host->Idle();
    host->Settle();
    EXPECT_EQ(Page(), low);
}
