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
    for (const std::string name : {"Roboto:regular", "Roboto:bold"}) {
        FcPattern* const wanted = FcNameParse(reinterpret_cast<const FcChar8*>(name.c_str()));
        FcResult result{};
        FcPattern* const found = FcFontMatch(config, wanted, &result);
        ASSERT_NE(found, nullptr);
        FcChar8* const seen =
            FcPatternFormat(found, reinterpret_cast<const FcChar8*>("%{family}:%{style|downcase}"));
        EXPECT_EQ(reinterpret_cast<const char*>(seen), name);
        FcStrFree(seen);
        FcPatternDestroy(found);
        FcPatternDestroy(wanted);
    }
    FcConfigDestroy(config);
}

}  // namespace
