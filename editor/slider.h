#pragma once
#include <algorithm>
#include <cmath>
#include <optional>

#include "vst2/records.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/events.h"

// What a notch of the wheel, or an arrow, moves: a hundredth, with Shift a thousandth.
inline double StepOf(const VSTGUI::Modifiers& modifiers) {
    return modifiers.has(VSTGUI::ModifierKey::Shift) ? 0.001 : 0.01;
}

// How far a key moves a value: arrows by a step, Page keys by ten, Home and End all the way. None for other
// keys, and for keys with Control or Alt, which are the host's.
inline std::optional<double> KeyStep(const VSTGUI::KeyboardEvent& event) {
    using VSTGUI::VirtualKey;
    if (event.modifiers.has(VSTGUI::ModifierKey::Control) || event.modifiers.has(VSTGUI::ModifierKey::Alt))
        return {};
    const double step = StepOf(event.modifiers);
    switch (event.virt) {
        case VirtualKey::Up:
        case VirtualKey::Right: return step;
        case VirtualKey::Down:
        case VirtualKey::Left: return -step;
        case VirtualKey::PageUp: return 10 * step;
        case VirtualKey::PageDown: return -10 * step;
        case VirtualKey::End: return 1;
        case VirtualKey::Home: return -1;
        default: return {};
    }
}

// A slider of the toolkit's with this window's gestures: a double click takes it to its default value, and
// the wheel and the keys above move it, whichever way it lies. One of whole numbers moves by at least one.
//
// Threads: [ui].
template <typename Base>
class Slider : public Base {
public:
    using Base::Base;

    float wholeNumbers = 0;  // the highest of them, at the slider's end; 0 for a value of any size

    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override {
        if (!event.buttonState.isLeft() || event.clickCount != 2) return Base::onMouseDownEvent(event);
        MoveTo(this->getDefaultValue());
        event.ignoreFollowUpMoveAndUpEvents(true);
        event.consumed = true;
    }
    void onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) override {
        MoveBy(StepOf(event.modifiers) * (event.deltaX + event.deltaY));
        event.consumed = true;
    }
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event) override {
        if (event.type != VSTGUI::EventType::KeyDown) return;
        const auto step = KeyStep(event);
        if (!step) return;
        MoveBy(*step);
        event.consumed = true;
    }

private:
    void MoveBy(double by) {
        if (by == 0) return;
        float wanted = this->getValue() + static_cast<float>(by);
        if (wholeNumbers > 0) {  // the middle of what is cut to the number
            const auto steps = static_cast<float>(by) * wholeNumbers;
            const float whole = std::floor(this->getValue() * wholeNumbers) +
                                std::copysign(std::max(1.0F, std::floor(std::abs(steps))), steps);
            wanted = (whole + 0.5F) / wholeNumbers;
        }
        MoveTo(wanted);
    }
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
