#include "editor/palette.h"
#include "tests/editor/editor_test.h"
#include "tests/support/picture_file.h"

namespace {

using Pictures = EditorTest;

TEST_F(Pictures, OfTheDocumentsShowTheWindowAtRest) {
    devices.names.clear();
    char capability[] = "sendVstMidiEvent";
    host->Call(effCanDo, 0, 0, capability);
    float page = 2;
    for (const std::string name : {"main", "equalizer", "options", "about"}) {
        Open(page++);
        EXPECT_LT(PixelsOff(host->Pixels(0, 0, 400, 320), PixelsOf(ORVA_PICTURES + name + "_at_rest.png")), 4)
            << name << ": docs/make-pictures makes them anew";
        host->Call(effEditClose);
    }
}

TEST_F(Pictures, AMessageKeepsItsMarginsFreeAndEndsAtItsButton) {
    Open();
    host->plugin.messages.Show(
        "The file cannot be written, since nobody can write to a full-to-the-brim disk.", "Error");
    ASSERT_TRUE(host->Await([&] { return MessageIsUp(); }));
    host->Settle();
    for (const int x : {43, 54, 346, 357})  // of a panel from 40 to 360, with margins of 16
        for (int y = 110; y < 210; ++y)
            ASSERT_EQ(host->Pixel(x, y), palette::openMenu.light) << x << ", " << y;
    host->Click(330, 200);
    EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); }));
}

}  // namespace
