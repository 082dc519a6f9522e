#include "editor/fonts.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

namespace VSTGUI::Cairo {
extern void (*addFonts)(FcConfig*);
}

namespace {

// A machine may have no Roboto, or no font at all: the two styles that the window asks for come with the
// module.
TEST(Fonts, ThoseOfTheWindowComeWithTheModule) {
    UseOwnFonts();
    FcConfig* const config = FcConfigCreate();
    VSTGUI::Cairo::addFonts(config);
    for (const int weight : {FC_WEIGHT_REGULAR, FC_WEIGHT_BOLD}) {
        FcPattern* const wanted = FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, "Roboto", FC_WEIGHT,
                                                 FcTypeInteger, weight, static_cast<char*>(nullptr));
        FcResult result{};
        FcPattern* const found = FcFontMatch(config, wanted, &result);
        ASSERT_NE(found, nullptr);
        FcChar8* family = nullptr;
        int foundWeight = 0;
        EXPECT_EQ(FcPatternGetString(found, FC_FAMILY, 0, &family), FcResultMatch);
        EXPECT_STREQ(reinterpret_cast<const char*>(family), "Roboto");
        EXPECT_EQ(FcPatternGetInteger(found, FC_WEIGHT, 0, &foundWeight), FcResultMatch);
        EXPECT_EQ(foundWeight, weight);
        FcPatternDestroy(found);
        FcPatternDestroy(wanted);
    }
    FcConfigDestroy(config);
}

}  // namespace
