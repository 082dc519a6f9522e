#include "editor/equalizer_frame.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/truncate.h"
#include "editor/gui_editor.h"
#include "editor/look.h"
#include "editor/slider.h"
#include "editor/status_text.h"
#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/events.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t tagEqualizer = 11;
constexpr std::int32_t tagOff = 0, tagHalf = 5, tagFull = 10;  // tenths of a full bar

}  // namespace

CEqualizerFrame::CEqualizerFrame(guiEditor* itsEditor) : CORVAFrame(itsEditor, 118) {
    const CCoord height = getHeight();
    equalizer = new CEqualizer(CRect(7, 10, 260, height - 47), this, tagEqualizer);
    equalizer->gridColor = ColorOf(palette::grid);
    equalizer->barColor = ColorOf(palette::bar);
    addView(equalizer);

    const auto add = [this, height](std::int32_t tag, CCoord left, std::int32_t id) {
        addView(
            new CKickButton(controls::HalfOf(getBitmap(id), {left, height - 30}), this, tag, getBitmap(id)));
    };
    add(tagOff, 7, 130);
    add(tagHalf, 109, 131);
    add(tagFull, 210, 132);
}

void CEqualizerFrame::valueChanged(CControl* control) {
    const std::int32_t tag = control->getTag();
    if (tag == tagEqualizer) {
        const std::int32_t bar = TruncateToInt32(control->getValue());
        const auto height = static_cast<float>(equalizer->barHeights[static_cast<std::size_t>(bar)]);
        editor->valueChanged(paramFirstBar + bar, height / static_cast<float>(equalizer->HighestBar()));
    } else if (control->getValue() == 0) {  // released
        SetAllBars(static_cast<float>(tag * 0.1));
    }
}

std::int32_t CEqualizerFrame::ParameterAt(const CPoint& where) const {
    const std::int32_t bar = equalizer->BarAt(where);
    return bar >= 0 ? paramFirstBar + bar : -1;
}

void CEqualizerFrame::onMouseWheelEvent(MouseWheelEvent& event) {
    CPoint where = event.mousePosition;
    where.offset(-getViewSize().left, -getViewSize().top);
    const std::int32_t index = ParameterAt(where);
    if (index < 0) return CORVAFrame::onMouseWheelEvent(event);
    MoveBar(index, StepOf(event.modifiers) * (event.deltaX + event.deltaY));
    event.consumed = true;
}

// Left and right choose a bar, the other keys move it as they move a slider.
void CEqualizerFrame::onKeyboardEvent(KeyboardEvent& event) {
    if (event.type != EventType::KeyDown || getFrame()->getFocusView() != equalizer) return;
    const bool left = event.virt == VirtualKey::Left, right = event.virt == VirtualKey::Right;
    const std::int32_t bar = equalizer->ChosenBar();
    const std::int32_t index = paramFirstBar + bar;
    if (left || right)
        equalizer->ChooseBar(bar + (right ? 1 : -1));
    else if (const auto step = KeyStep(event))
        MoveBar(index, *step);
    else
        return;
    const std::int32_t shown = paramFirstBar + equalizer->ChosenBar();
    editor->ShowStatus(TouchedText(shown, editor->effect->getParameter(shown)));
    event.consumed = true;
}

// From the parameter's own value: a bar's height is a whole number of pixels.
void CEqualizerFrame::MoveBar(std::int32_t index, double by) {
    const float value = std::clamp(editor->effect->getParameter(index) + static_cast<float>(by), 0.0F, 1.0F);
    setParameter(index, value);
    editor->valueChanged(index, value);
}

void CEqualizerFrame::SetAllBars(float value) {
    const std::int32_t height = TruncateToInt32(value * static_cast<float>(equalizer->HighestBar()));
    std::vector<ParameterSetting> bars(bandCount, {paramFirstBar, value});
    for (std::int32_t bar = 0; bar < bandCount; ++bar)
        bars[static_cast<std::size_t>(bar)].index = paramFirstBar + bar;
    const std::string name = "all bars " + ParameterDisplay(paramFirstBar, value);
    editor->KeepForUndo(name, bars);
    for (std::int32_t bar = 0; bar < bandCount; ++bar) {
        equalizer->barHeights[static_cast<std::size_t>(bar)] = height;
        editor->valueChanged(paramFirstBar + bar, value);
    }
    editor->ShowStatus("A" + name.substr(1));
    equalizer->setDirty();
    invalid();
}

void CEqualizerFrame::setParameter(std::int32_t index, float value) {
    if (index < paramFirstBar || index > paramLastBar) return;
    const auto bar = static_cast<std::size_t>(index - paramFirstBar);
    equalizer->barHeights[bar] = TruncateToInt32(value * static_cast<float>(equalizer->HighestBar()));
    equalizer->setDirty();
}
