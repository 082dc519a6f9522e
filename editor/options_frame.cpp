#include "editor/options_frame.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "editor/gui_editor.h"
#include "editor/look.h"
#include "plugin/parameter_table.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"

using namespace VSTGUI;

namespace {

// Tags are parameters.
constexpr std::int32_t tagInstrument = 87, tagDevice = 88, tagDeviceEnabled = 89, tagChannel = 90,
                       tagOutputToHost = 91, tagChordsEnabled = 93, tagChordsDelay = 94,
                       tagSendProgramChange = 95;

constexpr double deviceStep = 0.01;  // of parameter 88, one device
constexpr float lastDevice = 100, lastChannel = 15;
constexpr std::int32_t channels = 16;

}  // namespace

COptionsFrame::COptionsFrame(guiEditor* itsEditor) : CORVAFrame(itsEditor, 128) {
    const CCoord width = getWidth();
    const CCoord half = std::floor(width / 2);  // whole, or edges blur
    chordsEnabled = AddSwitch(tagChordsEnabled, {34, 16}, 122);
    chordsDelay = AddSlider(tagChordsDelay, {80, 40}, 110);
    outputToHost = AddSwitch(tagOutputToHost, {34, 77}, 121);
    AddHostPicture();
    deviceEnabled = AddSwitch(tagDeviceEnabled, {34, 136}, 123);
    deviceMenu = AddMenu(tagDevice, CRect(34, 158, width - 13, 175));
    FillDeviceMenu();
    channelMenu = AddMenu(tagChannel, CRect(34, 196, half, 213));
    for (std::int32_t channel = 1; channel <= channels; ++channel) {
        char entry[32];
        std::snprintf(entry, sizeof entry, "Channel: %2d", static_cast<int>(channel));
        channelMenu->addEntry(entry);
    }
    channelMenu->setValue(0);
    sendProgramChange = AddSwitch(tagSendProgramChange, {half + 10, 196}, 138);
    instrument = AddSlider(tagInstrument, {34, 221}, 111);
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
    auto* slider =
        new CHorizontalSlider(area, this, tag, left, right, handle, getBitmap(id), {0, 0}, CSlider::kLeft);
    slider->setOffsetHandle(
        {0, (area.getHeight() - handle->getHeight()) / 2});  // the handle is a little higher
    slider->setDefaultValue(0);
    addView(slider);
    return slider;
}

COptionMenu* COptionsFrame::AddMenu(std::int32_t tag, const CRect& area) {
    constexpr std::int32_t style = int{CParamDisplay::k3DIn} | int{COptionMenu::kCheckStyle};
    auto* menu = new COptionMenu(area, this, tag, nullptr, nullptr, style);
    menu->setFontColor(labelColor);
    menu->setBackColor(menuColor);
    menu->setFrameColor(menuFrameColor);
    menu->setFont(EditorFont(12));
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
    none->setText("No MIDI device found");
    none->setMouseEnabled(false);
    addView(none);
}

// Of the slider's own value: the plug-in object's follows only after the label.
void COptionsFrame::RefreshInstrumentLabel() {
    instrumentLabel->setText(editor->ParameterDisplay(tagInstrument, instrument->getValue()).c_str());
}

void COptionsFrame::valueChanged(CControl* control) {
    const std::int32_t tag = control->getTag();
    const float value = control->getValue();
    switch (tag) {
        case tagInstrument:
            RefreshInstrumentLabel();
            editor->valueChanged(tag, value);
            break;
        case tagDevice:
            editor->valueChanged(tag, static_cast<float>(value * deviceStep));
            deviceEnabled->setValue(1);  // choosing a device switches the output on
            deviceEnabled->setDirty();
            editor->valueChanged(tagDeviceEnabled, 1.0F);
            break;
        case tagDeviceEnabled:
        case tagOutputToHost:
        case tagChordsEnabled:
        case tagChordsDelay:
        case tagSendProgramChange: editor->valueChanged(tag, value); break;
        case tagChannel: editor->valueChanged(tag, value / lastChannel); break;
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
        case tagInstrument:
            set(instrument, value);
            RefreshInstrumentLabel();
            break;
        case tagDevice: set(deviceMenu, value * lastDevice); break;
        case tagDeviceEnabled: turn(deviceEnabled, value); break;
        case tagChannel: set(channelMenu, value * lastChannel); break;
        case tagOutputToHost: turn(outputToHost, value); break;
        case tagChordsEnabled: turn(chordsEnabled, value); break;
        case tagChordsDelay: set(chordsDelay, value); break;
        case tagSendProgramChange: turn(sendProgramChange, value); break;
        default: break;
    }
}
