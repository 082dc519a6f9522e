#pragma once
#include <cstdint>
#include <vector>

#include "editor/buffered_control.h"
#include "editor/equalizer_stroke.h"
#include "parameters/parameters.h"

// The 84 bars of the equalizer, drawn like a freehand curve with the left mouse button held.
//
// The control's value is the index of the bar that changed; the listener reads its height from barHeights.
// Threads: [ui].
class CEqualizer : public CBufferedControl {
public:
    CEqualizer(const VSTGUI::CRect& size, VSTGUI::IControlListener* controlListener, std::int32_t controlTag);

    // Stores the height, makes the bar the control's value, and notifies the listener.
    void setBarHeight(std::int32_t bar, std::int32_t pixels);

    // Pixels of a bar of value 1.
    std::int32_t HighestBar() const {
        return static_cast<std::int32_t>(getHeight()) - EqualizerStroke::frame;
    }

    // The bar at a place of the page; -1 for none.
    std::int32_t BarAt(const VSTGUI::CPoint& where) const;

    // The bar that keys move: drawn between two lines while the control has the keyboard. A stroke leaves it
    // where it ended.
    std::int32_t ChosenBar() const { return chosenBar; }
    void ChooseBar(std::int32_t bar);  // or the nearest one

    void draw(VSTGUI::CDrawContext* context) override;
    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override;
    void onMouseMoveEvent(VSTGUI::MouseMoveEvent& event) override;
    void onMouseUpEvent(VSTGUI::MouseUpEvent& event) override;
    void onMouseCancelEvent(VSTGUI::MouseCancelEvent& event) override;

    CLASS_METHODS_NOCOPY(CEqualizer, CBufferedControl)

    VSTGUI::CColor gridColor;
    VSTGUI::CColor barColor;
    std::vector<std::int32_t> barHeights;  // pixels, one a bar; who writes here marks the control dirty
    std::int32_t barWidth;                 // pixels; a gap of one pixel follows each bar

private:
    void Redraw();
    void Follow(const VSTGUI::MouseEvent& event);
    void FinishStroke();

    EqualizerStroke stroke;
    std::int32_t chosenBar = bandOf440;
};
