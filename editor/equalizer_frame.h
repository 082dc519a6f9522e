#pragma once
#include "editor/equalizer.h"
#include "editor/orva_frame.h"

// The equalizer page: 84 bars to be drawn with the mouse, parameters 3 to 86.
//
// Threads: [ui].
class CEqualizerFrame : public CORVAFrame {
public:
    explicit CEqualizerFrame(guiEditor* itsEditor);

    void valueChanged(VSTGUI::CControl* control) override;
    void setParameter(std::int32_t index, float value) override;
    std::int32_t ParameterAt(const VSTGUI::CPoint& where) const override;
    // The wheel moves the bar under it by a hundredth a notch, with Shift by a thousandth.
    void onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) override;
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event) override;

    CLASS_METHODS_NOCOPY(CEqualizerFrame, CORVAFrame)

private:
    void MoveBar(std::int32_t index, double by);
    void SetAllBars(float value);

    CEqualizer* equalizer;
};
