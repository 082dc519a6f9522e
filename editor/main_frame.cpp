#include "editor/main_frame.h"

#include <functional>
#include <utility>

#include "base/file_path.h"
#include "editor/gui_editor.h"
#include "editor/look.h"
#include "editor/slider.h"
#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t tagRecord = codeRecording, tagStop = 98, tagSave = 776, tagName = 777,
                       tagVersion = 778;
constexpr std::int32_t gestureClicks = 3;  // the hidden gesture wants a multiple of them
constexpr float pressed = 0.5F;            // a button's value, at least

const CPoint sliderPlaces[] = {{22, 29}, {69, 29}, {116, 29}};

// Saves at a click; once the button is held and the mouse leaves it, the take is dragged instead.
class TakeButton : public CKickButton {
public:
    TakeButton(const CRect& size, IControlListener* page, std::int32_t itsTag, CBitmap* picture,
               std::function<void(CView&)> newDrag)
        : CKickButton(size, page, itsTag, picture), drag(std::move(newDrag)) {}

    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override {
        if (!isEditing() || getViewSize().pointInside(where))
            return CKickButton::onMouseMoved(where, buttons);
        onMouseCancel();
        drag(*this);
        return kMouseEventHandled;
    }

private:
    const std::function<void(CView&)> drag;
};

}  // namespace

CMainFrame::CMainFrame(guiEditor* itsEditor) : CORVAFrame(itsEditor, 113) {
    CBitmap* ground = getBitmap(104);
    CBitmap* handle = getBitmap(105);
    for (std::int32_t i = 0; i < sliderCount; ++i) {
        const CRect area = controls::WholeOf(ground, sliderPlaces[i]);
        const auto top = static_cast<std::int32_t>(area.top);
        const auto bottom = static_cast<std::int32_t>(area.bottom - handle->getHeight());
        sliders[i] = new Slider<CVerticalSlider>(area, this, i, top, bottom, handle, ground);
        sliders[i]->setDefaultValue(ParameterInitialValue(i));
        addView(sliders[i]);

        CRect below(area.left - 13, area.bottom + 1, 0, 0);
        below.setSize({area.getWidth() + 26, 17});
        sliderLabels[i] = new CLabel(below);
        sliderLabels[i]->setFont(EditorFont(12));
        addView(sliderLabels[i]);
    }

    recordButton =
        new COnOffButton(controls::HalfOf(getBitmap(141), {167, 238}), this, tagRecord, getBitmap(141));
    stopButton =
        new COnOffButton(controls::HalfOf(getBitmap(142), {196, 238}), this, tagStop, getBitmap(142));
    addView(recordButton);
    addView(stopButton);
    addView(new TakeButton(controls::HalfOf(getBitmap(139), {225, 238}), this, tagSave, getBitmap(139),
                           [this](CView& from) { DragRecording(from); }));

    auto* name = new CLabel(CRect(138, 23, getWidth(), 43), this, tagName);
    name->setFont(EditorFont(13, kBoldFace));
    name->setText("Audio To MIDI");
    addView(name);
    auto* version = new CLabel(CRect(138, 43, getWidth(), 63), this, tagVersion);
    version->setFont(EditorFont(12));
    version->setText("VST 1.30");
    addView(version);
    RefreshRecordingButtons();
}

void CMainFrame::RefreshLabel(std::int32_t index) {
    sliderLabels[index]->setText(editor->ParameterDisplay(index).c_str());
}

void CMainFrame::RefreshRecordingButtons() {
    const bool recording = editor->effect->recordingOn;
    recordButton->setValue(recording ? 1.0F : 0.0F);
    stopButton->setValue(recording ? 0.0F : 1.0F);
    recordButton->setDirty();
    stopButton->setDirty();
}

void CMainFrame::valueChanged(CControl* control) {
    const std::int32_t tag = control->getTag();
    const float value = control->getValue();
    switch (tag) {
        case 0:
        case 1:
        case 2:
            editor->valueChanged(tag, value);
            RefreshLabel(tag);
            break;
        case tagRecord:
            if (value >= pressed) editor->effect->startRecording();
            RefreshRecordingButtons();  // a button that went off lights up again while it records
            break;
        case tagStop:
            if (value >= pressed) editor->effect->stopRecording();
            RefreshRecordingButtons();
            break;
        case tagSave:
            if (value >= pressed) SaveRecording();
            break;
        case tagName: ++hiddenCounter; break;
        case tagVersion:
            if (hiddenCounter % gestureClicks == 0)
                editor->valueChanged(tagVersion, 0);
            else
                hiddenCounter = 0;
            break;
        default: break;
    }
}

void CMainFrame::setParameter(std::int32_t index, float value) {
    if (index >= 0 && index < sliderCount) {
        sliders[index]->setValue(value);
        sliders[index]->setDirty();
        RefreshLabel(index);
    } else if (index == tagRecord) {
        RefreshRecordingButtons();
    }
}

void CMainFrame::DragRecording(CView& from) {
    if (editor->effect->recordingOn) {
        editor->effect->stopRecording();
        RefreshRecordingButtons();
    }
    editor->DragTake(from);
}

// The take is written when the user has answered, with what it holds then.
void CMainFrame::SaveRecording() {
    if (editor->effect->recordingOn) {
        editor->effect->stopRecording();
        RefreshRecordingButtons();
    }
    if (editor->effect->nothingRecorded()) {
        editor->ShowMessage("Nothing to save.", "Error");
        return;
    }
    guiEditor* const saver = editor;
    saver->AskForFile({"Select MIDI file", "MIDI Files (*.mid)", "mid", "midi_output.mid"},
                      [saver](const std::string& path) {
                          if (saver->effect->saveRecording(path))
                              saver->ShowStatus("Saved as " + Utf8(FilePath(path).filename()));
                          else
                              saver->ShowMessage("Error saving MIDI file", "Error");
                      });
}
