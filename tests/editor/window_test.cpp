#include "editor/idle_clock.h"
#include "editor/level_column.h"
#include "editor/palette.h"
#include "editor/status_text.h"
#include "editor/typed_value.h"
#include "editor/window_look.h"
#include "editor/window_size.h"
#include "parameters/starting_points.h"
#include "plugin/hearing.h"
#include "tests/editor/editor_test.h"
#include "tests/support/temp_folder.h"

namespace {

using Window = EditorTest;

// A menu is open, a message, the mouse holds a slider, a value is typed.
TEST_F(Window, ClosesInTheMiddleOfAnythingAndTheNextOneIsAsGoodAsNew) {
    for (const int state : {0, 1, 2, 3}) {
        Open(state == 0 ? 4 : 2);
        if (state == 0) host->Click(80, 242);
        if (state == 1) host->plugin.messages.Show("text", "Error");
        if (state == 2) host->MoveTo(33, 100), host->Press();
        if (state == 3) host->RightClick(33, 100), host->Settle(), host->Type("0.5");
        host->Settle();
        host->Call(effEditClose);
        host->Release();
        ASSERT_TRUE(host->Open());
        host->Settle();
        EXPECT_FALSE(MessageIsUp()) << state;
    }
}

TEST_F(Window, ShowsThePageThatUserOrHostChoseLastAndWhatOtherThreadsSet) {
    Open();
    const Picture mainPage = Page();
    const auto after = [this](float value) {
        host->plugin.setParameter(92, value);
        host->Settle();
        return Page();
    };
    const Picture about = after(5.0F);
    EXPECT_NE(about, mainPage);
    EXPECT_EQ(after(6.0F), about);
    EXPECT_EQ(after(2.9F), mainPage);
    EXPECT_TRUE(host->automated.empty());

    std::thread([&] { host->plugin.setParameter(0, 0.1F); }).join();
    host->Settle();
    const Picture changed = Page();
    EXPECT_NE(changed, mainPage);
    Click(optionsButton);
    EXPECT_EQ(host->automated.back().value, 4.0F);  // page 2 plus 2
    host->MoveTo(50, 310);                          // where nothing is
    host->Settle();
    const Picture options = Page();
    host->Call(effEditClose);
    EXPECT_TRUE(host->Open());
    host->Settle();
    EXPECT_EQ(Page(), options);
    EXPECT_NE(options, changed);
}

TEST_F(Window, OfEachInstanceShowsItsOwn) {
    Open();
    const Picture before = Page();
    EditorHost other;
    const std::uint32_t beside[] = {500};
    xcb_configure_window(other.connection, other.parent, XCB_CONFIG_WINDOW_X, beside);
    other.plugin.setParameter(92, 2);
    ASSERT_TRUE(other.Open());
    const auto itsPage = [&other] { return other.Settle(), other.Pixels(0, 0, 267, 320); };
    EXPECT_EQ(itsPage(), before);
    other.plugin.setParameter(0, 0.1F);
    EXPECT_NE(itsPage(), before);
    host->Settle();
    EXPECT_EQ(Page(), before);
    host->Call(effEditClose);
    other.plugin.setParameter(0, 0.87F);
    EXPECT_EQ(itsPage(), before);
}

TEST(BlockWatch, ReportsAHostThatHasGivenNoBlockForHalfASecond) {
    BlockWatch watch;
    constexpr std::uint32_t begin = 0xFFFFFF00;  // ms, which wrap
    watch.Restart(0, begin);
    EXPECT_FALSE(watch.HasStopped(441, begin + 400) || watch.HasStopped(441, begin + 899));
    EXPECT_TRUE(watch.HasStopped(441, begin + 900));
    EXPECT_FALSE(watch.HasStopped(882, begin + 901));
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
    constexpr int left = 269, top = 48;                                           // of the picture
    constexpr int row = top + 3 * (83 - 69 + 24);                                 // of note 69
    EXPECT_TRUE(await([&] { return host->Pixel(left + 6, row) == 0xFF9646U; }));  // orange, and moved on
    EXPECT_EQ(host->Pixel(left + 1, row + 2), 0x4199DCU);                         // entry 254: 65, 153, 220
    const auto expected = [&](std::int32_t band) {
        const TNoteRecorder& heard = host->plugin.noteRecorder;
        const float height =
            (std::log(heard.GetBandLevel(band)) - host->plugin.levelAverage) * 70.0F + 254.0F;
        const PaletteColor color =
            PaletteEntry(heard.GetBandOn(band) ? 255 : static_cast<int>(std::clamp(height, 0.0F, 254.0F)));
        return std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue;
    };
    EXPECT_TRUE(await([&] {  // what a call draws may reach the screen with the next
        std::int32_t band = 0;
        while (band < 84 && host->Pixel(left, top + 3 * (83 - band)) == expected(band)) ++band;
        return band == 84;
    }));
    EXPECT_TRUE(host->Await([&] { return host->Pixel(left, row) == 0x93BAD8U; }));  // no blocks: dark
}

TEST_F(Window, LightsTheKeysThatSoundALampForMidiAndOneForSamplesThatWrap) {
    Open();
    const auto awaitPixel = [this](int x, int y, std::uint32_t color) {
        EXPECT_TRUE(host->Await([&] { return host->Pixel(x, y) == color; })) << x << ", " << y;
    };
    constexpr Place midiLamp = {253, 316}, clipLamp = {241, 316}, keyOfA440 = {394, 48 + 3 * (83 - 45) + 1};
    host->plugin.resume();
    host->plugin.startRecording();
    Play({69}, 0.5);
    awaitPixel(midiLamp.x, midiLamp.y, palette::note.light);
    awaitPixel(180, midiLamp.y, palette::grooveHigh.light);             // -24 dB; the tone has -14
    EXPECT_EQ(host->Pixel(210, midiLamp.y), palette::grooveLow.light);  // -10 dB
    EXPECT_EQ(host->Pixel(clipLamp.x, clipLamp.y), palette::grooveLow.light);
    awaitPixel(keyOfA440.x, keyOfA440.y, palette::note.light);
    EXPECT_EQ(TakeText(host->plugin.takeSeconds() + 83, host->plugin.takeNotes()), "1:23  1 note");
    float tooLoud = -1.1F, out = 0;
    float *from = &tooLoud, *to = &out;
    host->plugin.processReplacing(&from, &to, 1);
    awaitPixel(clipLamp.x, clipLamp.y, palette::recordOff.light);
}

// Polyphony is 0.87 at first; a hand's wheel is button 4 upward and 5 downward.
TEST_F(Window, AWheelMovesASliderByAHundredthAndADoubleClickTakesItBack) {
    Open();
    host->plugin.setParameter(0, 0.5F);
    host->Settle();
    host->MoveTo(33, 200);
    const auto expect = [this](float value) {
        EXPECT_TRUE(host->Await([&] {
            return !host->automated.empty() && std::abs(host->automated.back().value - value) < 1e-5F;
        })) << value;
    };
    host->Roll("4");
    expect(0.51F);
    host->Roll("5");
    expect(0.5F);
    for (int i = 0; i < 2; ++i) host->Press(), host->Release();
    expect(0.87F);
}

// The initial values are 0.87 and 0.875; a bar of 0.5 stands below the pointer, at 7 + 3 * 40.
TEST_F(Window, TakesTypedValuesAndKeysWhereTheFocusIsAndLeavesOthersToTheHost) {
    Open();
    const auto expect = [this](std::int32_t index, float value) {
        EXPECT_TRUE(host->Await([&] { return std::abs(host->plugin.getParameter(index) - value) < 1e-5F; }))
            << index << ": " << host->plugin.getParameter(index) << " instead of " << value;
    };
    const auto type = [this](Place place, const char* text, const char* end) {
        host->RightClick(place.x, place.y);
        host->Settle();
        host->Type(text);
        host->Key(end);
        host->Settle();
    };
    constexpr Place sensitivity = {80, 200}, bar40 = {129, 200};
    type(sensitivity, "20 dB", "Return");
    expect(paramSensitivity, 0.5F);
    host->Key("Up");  // where the value was typed
    expect(paramSensitivity, 0.51F);
    type(sensitivity, "30", "Escape");
    expect(paramSensitivity, 0.51F);
    Click({33, 200});
    const float clicked = host->plugin.getParameter(paramPolyphony);
    for (const char* key : {"Up", "Page_Down"}) host->Key(key);
    expect(paramPolyphony, clicked - 0.09F);
    constexpr int virtualSpace = 7;
    EXPECT_EQ(host->Call(effEditKeyDown, ' ', virtualSpace), 0);
    host->PressedKey();                                                  // listens from now on
    host->Key("space");                                                  // while the editor has the keyboard
    EXPECT_TRUE(host->Await([&] { return host->PressedKey() == 65; }));  // the display's code of it

    Click(equalizerButton);
    type(bar40, "0,25", "Return");
    expect(paramFirstBar + 40, 0.25F);
    Click(bar40);
    for (const char* key : {"Right", "Down"}) host->Key(key);  // the next bar, which was whole
    expect(paramFirstBar + 41, 0.99F);
}

TEST_F(Window, SaysWhatTheControlUnderAMouseAtRestDoes) {
    Open();
    host->MoveTo(50, 310);
    host->Settle();
    const auto text = [this] { return host->Pixels(80, 225, 150, 40); };  // beside the pointer
    const Picture bare = text();
    host->MoveTo(80, 200);
    EXPECT_TRUE(host->Await([&] { return text() != bare; }));
    host->MoveTo(50, 310);
    EXPECT_TRUE(host->Await([&] { return text() == bare; }));
    EXPECT_EQ(TypingRange(paramSensitivity), "Sensitivity: 0 to -40 dB");
    EXPECT_EQ(TypingRange(paramPolyphony), "Polyphony: 0 to 1");
    EXPECT_EQ(TypingRange(paramChordsDelay), "Delay: 0 to 2 s");
}

// The menu lies at the pointer, with rows of 19 pixels; what a row opens lies to its right.
class WindowMenu : public EditorTest {
protected:
    void SetUp() override {
        setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
        Open();
    }
    void TearDown() override { unsetenv("XDG_CONFIG_HOME"); }
    void OpenMenu() {  // and what its first row opens
        host->RightClick(150, 40);
        host->Settle();
        Click({170, 50});  // as habit has it, though the pointer alone opens it
        host->MoveTo(285, 50);
        host->Settle();
    }

    TempFolder folder;
};

TEST_F(WindowMenu, ChoosesTheEarOfThisInstanceAndOfThoseToComeWhereNoHostDoes) {
    const Picture bare = Page();
    host->plugin.usePreferredHearing();
    EXPECT_EQ(host->plugin.hearing(), Hearing());
    OpenMenu();
    Click({290, 69});
    const Hearing refined{Ear::refinedLive, 0, 0};
    EXPECT_TRUE(host->Await([&] { return host->plugin.hearing() == refined; }));
    EXPECT_TRUE(host->Await([&] { return Page() != bare; }));  // it is shown
    EXPECT_EQ(ReadPreferredHearing(), refined);
    EXPECT_FALSE(MessageIsUp());  // which would say that it could not be kept
    OpenMenu();
    host->Call(effEditClose);  // with a menu beside a menu
    ASSERT_TRUE(host->Open());
}

// Whose host has controls for the ear, whose menu begins with the size: 100, 150, 200, 300 %.
TEST_F(WindowMenu, MakesTheWindowOfAnySizeIfItsHostFollows) {
    const auto choose = [this](int row) {
        OpenMenu();
        Click({290, 50 + 19 * row});
    };
    const auto width = [this] {
        ERect* rect = nullptr;
        host->Call(effEditGetRect, 0, 0, &rect);
        return rect->right;
    };
    host->resizes = false;
    choose(2);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EndMessage();
    EXPECT_EQ(width(), 400);  // nothing is cut
    host->Call(effEditClose);
    EXPECT_EQ(width(), 800);  // but the user's from now on
    EXPECT_TRUE(PreferWindowSize(100));
    EXPECT_EQ(width(), 400);
    Open();
    host->resizes = true;
    choose(2);
    EXPECT_TRUE(host->Await([&] { return width() == 800; }));
    EXPECT_TRUE(host->Await([&] { return host->Pixel(560, 500) == 0x93BAD8U; }));  // the picture
    Click({2 * equalizerButton.x, 2 * equalizerButton.y});
    EXPECT_EQ(host->automated.back().value, 3.0F);
    EXPECT_TRUE(host->Await([&] { return host->Pixel(17, 110) == 0xFFFF00U; }));  // the first bar
    EXPECT_EQ(host->Call(effVendorSpecific, vendorCall, vendorWindowScale, nullptr, 3.0F), 0);  // it is open
    host->Call(effEditClose);
    EXPECT_EQ(host->Call(effVendorSpecific, vendorCall, vendorWindowScale, nullptr, 1.9F), 1);
    EXPECT_EQ(width(), 600);
}

TEST_F(WindowMenu, DarkensThisWindowAndThoseToCome) {
    const auto showsAs = [this](std::uint32_t color) {  // where the picture is quiet
        return host->Await([&] { return host->Pixel(300, 250) == color; });
    };
    host->RightClick(150, 40);
    host->Settle();
    Click({170, 107});  // its fourth row
    EXPECT_TRUE(showsAs(0x1B2D3DU));
    host->Call(effEditClose);
    Open();
    EXPECT_TRUE(showsAs(0x1B2D3DU));
    EXPECT_TRUE(PreferVariant(Variant::light));
    EXPECT_TRUE(showsAs(0x93BAD8U));
}

TEST_F(WindowMenu, BeginsWithAnInstrumentsSettingsThatTheHostRecordsAndTakesThemBack) {
    const auto choose = [this](int row) {
        host->RightClick(150, 40);
        host->Settle();
        for (const int x : {170, 285}) host->MoveTo(x, 69), host->Settle();
        Click({290, 69 + 19 * row});
    };
    choose(2);  // after Initial and Piano
    const auto guitar = SettingsFor("guitar");
    const auto all = [&](auto has) { return std::all_of(guitar.begin(), guitar.end(), has); };
    EXPECT_TRUE(host->Await([&] {
        return all([&](const auto& each) { return host->plugin.getParameter(each.index) == each.value; });
    }));
    EXPECT_GT(host->automated.size(), 30U);  // E2 to E6 stay open: 84 - 49 bars are shut
    const auto undo = [this] {
        host->RightClick(150, 40);
        host->Settle();
        Click({170, 88});
    };
    undo();
    const auto isInitial = [&] {
        return all([&](const auto& each) {
            return host->plugin.getParameter(each.index) == ParameterInitialValue(each.index);
        });
    };
    EXPECT_TRUE(host->Await(isInitial));
    Click(equalizerButton);
    Click({30, 279});  // all bars off
    EXPECT_EQ(host->plugin.getParameter(paramFirstBar), 0.0F);
    undo();
    EXPECT_TRUE(host->Await(isInitial));
}

}  // namespace
