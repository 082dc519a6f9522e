#include "editor/options_frame.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "editor/gui_editor.h"
#include "editor/look.h"
#include "editor/slider.h"
#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cdrawcontext.h"

using namespace VSTGUI;

namespace {

const CPoint menuInset(6, 0);  // of its text

// With the sign that it opens.
class PageMenu : public COptionMenu {
public:
    using COptionMenu::COptionMenu;

    void draw(CDrawContext* context) override {
        COptionMenu::draw(context);
        const CRect& area = getViewSize();
        const CPoint tip(area.right - 10, area.getCenter().y + 2);
        context->setDrawMode(kAntiAliasing);
        context->setFrameColor(ColorOf(palette::text));
        context->setLineWidth(1.5);
        context->drawLine(tip - CPoint(4, 4), tip);
        context->drawLine(tip, tip + CPoint(4, -4));
    }
};

}  // namespace

COptionsFrame::COptionsFrame(guiEditor* itsEditor) : CORVAFrame(itsEditor, 128) {
    const CCoord width = getWidth();
    const CCoord half = std::floor(width / 2);  // whole, or edges blur
    chordsEnabled = AddSwitch(paramChordsEnabled, {34, 16}, 122);
    chordsDelay = AddSlider(paramChordsDelay, {80, 40}, 110);
    outputToHost = AddSwitch(paramOutputToHost, {34, 77}, 121);
    AddHostPicture();
    deviceEnabled = AddSwitch(paramDeviceEnabled, {34, 136}, 123);
    deviceMenu = AddMenu(paramDevice, CRect(34, 158, width - 13, 175));
    FillDeviceMenu();
    channelMenu = AddMenu(paramChannel, CRect(34, 196, half, 213));
    for (std::int32_t channel = 1; channel <= channelCount; ++channel) {
        char entry[32];
        std::snprintf(entry, sizeof entry, "Channel: %2d", static_cast<int>(channel));
        channelMenu->addEntry(entry);
    }
    channelMenu->setValue(0);
    sendProgramChange = AddSwitch(paramSendProgramChange, {half + 10, 196}, 138);
    instrument = AddSlider(paramInstrument, {34, 221}, 111);
    instrumentLabel = new CLabel(CRect(34, 242, width - 13, 259));
    instrumentLabel->setFont(EditorFont(12));
    addView(instrumentLabel);
}

COnOffButton* COptionsFrame::AddSwitch(std::int32_t tag, CPoint position, std::int32_t id) {
    auto* button = new COnOffButton(controls::HalfOf(getBitmap(id), position), this, tag, getBitmap(id));
    addView(button);
    return button;
}

CHorizontalSlider* COptionsFrame::AddSlider(std::int32_t tag, CPoint position, std::int32_t id) {
    CBitmap* handle = getBitmap(112);
    const CRect area = controls::WholeOf(getBitmap(id), position);
    const auto left = static_cast<std::int32_t>(area.left);
    const auto right = static_cast<std::int32_t>(area.right - handle->getWidth());
    auto* slider = new Slider<CHorizontalSlider>(area, this, tag, left, right, handle, getBitmap(id), {0, 0},
                                                 CSlider::kLeft);
    slider->setOffsetHandle(
        {0, (area.getHeight() - handle->getHeight()) / 2});  // the handle is a little higher
    slider->setDefaultValue(ParameterInitialValue(tag));
    if (tag == paramInstrument) slider->wholeNumbers = programCount - 1;
    addView(slider);
    return slider;
}

COptionMenu* COptionsFrame::AddMenu(std::int32_t tag, const CRect& area) {
    constexpr std::int32_t style = int{CParamDisplay::k3DIn} | int{COptionMenu::kCheckStyle};
    auto* menu = new PageMenu(area, this, tag, nullptr, nullptr, style);
    menu->setFontColor(ColorOf(palette::text));
    menu->setBackColor(ColorOf(palette::menu));
    menu->setFrameColor(ColorOf(palette::menuFrame));
    menu->setFont(EditorFont(12));
    menu->setHoriAlign(kLeftText);
    menu->setTextInset(menuInset);
    addView(menu);
    return menu;
}

// Chosen once: what a host can do does not change while the page lives.
void COptionsFrame::AddHostPicture() {
    constexpr std::int32_t takesMidi = 124, takesNoMidi = 125, didNotAsk = 126;
    const std::int32_t id = !editor->canSendToHost() ? takesNoMidi
                            : editor->hostAsked()    ? takesMidi
                                                     : didNotAsk;
    auto* picture = new CView(controls::WholeOf(getBitmap(id), {34, 97}));
    picture->setBackground(getBitmap(id));
    picture->setTransparency(true);
    picture->setMouseEnabled(false);
    addView(picture);
}

void COptionsFrame::FillDeviceMenu() {
    const std::vector<std::string> names = editor->MidiDeviceNames();
    for (const std::string& name : names)
        deviceMenu->addEntry(
            new CMenuItem(name.c_str()));  // as an item: the name "-" would be a rule otherwise
    deviceMenu->setValue(0);
    if (!names.empty()) return;
    auto* none = new CLabel(deviceMenu->getViewSize());
    none->setFont(EditorFont(12));
    none->setHoriAlign(kLeftText);
    none->setTextInset(menuInset);
    none->setText("No MIDI device found");
    none->setMouseEnabled(false);
    addView(none);
}

// Of the slider's own value: the plug-in object's follows only after the label.
void COptionsFrame::RefreshInstrumentLabel() {
    instrumentLabel->setText(editor->ParameterDisplay(paramInstrument, instrument->getValue()).c_str());
}

void COptionsFrame::valueChanged(CControl* control) {
    const std::int32_t tag = control->getTag();
    const float value = control->getValue();
    switch (tag) {
        case paramInstrument:
            RefreshInstrumentLabel();
            editor->valueChanged(tag, value);
            break;
        case paramDevice:
            editor->valueChanged(tag, DeviceValue(value));
            deviceEnabled->setValue(1);  // choosing a device switches the output on
            deviceEnabled->setDirty();
            editor->valueChanged(paramDeviceEnabled, 1.0F);
            break;
        case paramDeviceEnabled:
        case paramOutputToHost:
        case paramChordsEnabled:
        case paramChordsDelay:
        case paramSendProgramChange: editor->valueChanged(tag, value); break;
        case paramChannel: editor->valueChanged(tag, ChannelValue(value)); break;
        default: break;
    }
    control->setDirty();
}

void COptionsFrame::setParameter(std::int32_t index, float value) {
    const auto set = [](CControl* control, float newValue) {
        control->setValue(newValue);
        control->setDirty();
    };
    // A host may set a switch to any value; the picture of one that is on belongs to 1 alone.
    const auto turn = [&set](CControl* control, float newValue) {
        set(control, IsOn(newValue) ? 1.0F : 0.0F);
    };
    switch (index) {
        case paramInstrument:
            set(instrument, value);
            RefreshInstrumentLabel();
            break;
        case paramDevice: set(deviceMenu, DevicePosition(value)); break;
        case paramDeviceEnabled: turn(deviceEnabled, value); break;
        case paramChannel: set(channelMenu, ChannelPosition(value)); break;
        case paramOutputToHost: turn(outputToHost, value); break;
        case paramChordsEnabled: turn(chordsEnabled, value); break;
        case paramChordsDelay: set(chordsDelay, value); break;
        case paramSendProgramChange: turn(sendProgramChange, value); break;
        default: break;
    }
}
