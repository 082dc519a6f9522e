#pragma once
#include "vst2/records.h"
#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/cfont.h"

// The window's colours and fonts, all in one place. The pictures use the same blues.

constexpr VSTGUI::CColor labelColor(44, 102, 141);  // texts of labels and menus, the equalizer's grid
constexpr VSTGUI::CColor menuColor(145, 214, 238);
constexpr VSTGUI::CColor menuFrameColor(255, 255, 255);
constexpr VSTGUI::CColor barColorOfEqualizer(255, 255, 0);

// The captions' family, which the module carries (editor/fonts.h). Sizes are pixels.
inline VSTGUI::SharedPointer<VSTGUI::CFontDesc> EditorFont(double size, std::int32_t style = 0) {
    return VSTGUI::makeOwned<VSTGUI::CFontDesc>("Roboto", size, style);
}
