#pragma once
#include <algorithm>

#include "vst2/records.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/events.h"

// A slider of the toolkit's with this window's gestures: a double click takes it to its default value, and
// the wheel moves it by a hundredth a notch, with Shift by a thousandth, whichever way it lies.
//
// Threads: [ui].
template <typename Base>
class Slider : public Base {
public:
    using Base::Base;

    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override {
        if (!event.buttonState.isLeft() || event.clickCount != 2) return Base::onMouseDownEvent(event);
        MoveTo(this->getDefaultValue());
        event.ignoreFollowUpMoveAndUpEvents(true);
        event.consumed = true;
    }
    void onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) override {
        const double step = event.modifiers.has(VSTGUI::ModifierKey::Shift) ? 0.001 : 0.01;
        MoveTo(this->getValue() + static_cast<float>(step * (event.deltaX + event.deltaY)));
        event.consumed = true;
    }

private:
    void MoveTo(float wanted) {
        wanted = std::clamp(wanted, this->getMin(), this->getMax());
        if (wanted == this->getValue()) return;
        this->beginEdit();
        this->setValue(wanted);
        this->valueChanged();
        this->endEdit();
        this->setDirty();
    }
};
