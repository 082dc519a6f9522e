#pragma once
#include <cstddef>
#include <cstdint>

#include "vst2/records.h"
#include "vstgui/lib/controls/cparamdisplay.h"

// A text label. It may stand on a picture that it lets shine through, and a label with a listener can be
// clicked.
//
// Threads: [ui].
class CLabel : public VSTGUI::CParamDisplay {
public:
    static constexpr std::size_t textSize = 256;  // bytes, the terminator included; what does not fit is cut

    explicit CLabel(const VSTGUI::CRect& size, VSTGUI::IControlListener* clickListener = nullptr,
                    std::int32_t controlTag = -1);

    void setText(const char* newText);  // null counts as empty
    const char* getText() const { return text; }

    void draw(VSTGUI::CDrawContext* context) override;
    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override;  // the listener hears of each click

    CLASS_METHODS_NOCOPY(CLabel, CParamDisplay)

private:
    char text[textSize] = {};

public:
    VSTGUI::CBitmap* backgroundBitmap = nullptr;  // not owned; may be none
    VSTGUI::CPoint backgroundOrigin;              // which of its pixels lies at the label's upper left corner
    std::uint8_t backgroundAlpha = 255;
    bool visible = true;
};
