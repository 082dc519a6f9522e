#pragma once
#include "editor/fonts.h"
#include "editor/palette.h"
#include "editor/window_look.h"
#include "vst2/records.h"
#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cfont.h"

// The window's colours and fonts, all in one place.

// As the windows look now, 0xRRGGBB. A view asks when it is made: a change of the variant makes all views
// anew.
inline std::uint32_t RgbOf(const Shade& shade) {
    return CurrentVariant() == Variant::dark ? shade.dark : shade.light;
}
inline VSTGUI::CColor ColorOf(const Shade& shade, std::uint8_t alpha = 255) {
    const std::uint32_t rgb = RgbOf(shade);
    return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8 & 0xFF),
            static_cast<std::uint8_t>(rgb & 0xFF), alpha};
}

// The captions' family, which the module carries (editor/fonts.h). Sizes are pixels.
inline VSTGUI::SharedPointer<VSTGUI::CFontDesc> EditorFont(double size, std::int32_t style = 0) {
    return VSTGUI::makeOwned<VSTGUI::CFontDesc>(OwnFontFamily(), size, style);
}
