#include <cairo.h>

#include "editor/palette.h"
#include "tests/editor/editor_test.h"

namespace {

using Pictures = EditorTest;

// Files are reduced to 256 colours, which is 12 off at most; a line of text one pixel off is 100 pixels.
TEST_F(Pictures, OfTheDocumentsShowTheWindowAtRest) {
    devices.names.clear();
    char capability[] = "sendVstMidiEvent";
    host->Call(effCanDo, 0, 0, capability);
    float page = 2;
    for (const std::string name : {"main", "equalizer", "options", "about"}) {
        const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> file(
            cairo_image_surface_create_from_png((ORVA_PICTURES + name + "_at_rest.png").c_str()),
            cairo_surface_destroy);
        Open(page++);
        const Picture shown = host->Pixels(0, 0, 400, 320);
        ASSERT_EQ(cairo_image_surface_get_stride(file.get()), 4 * 400) << name;
        ASSERT_EQ(shown.size(), 4U * 400 * 320);
        const unsigned char* const drawn = cairo_image_surface_get_data(file.get());
        const auto isOff = [&](std::size_t at) { return std::abs(shown[at] - drawn[at]) > 40; };
        int off = 0;
        for (std::size_t at = 0; at < shown.size(); at += 4)
            off += isOff(at) || isOff(at + 1) || isOff(at + 2);
        EXPECT_LT(off, 4) << name << ": docs/make-pictures makes them anew";
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
