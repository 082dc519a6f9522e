#pragma once
#include <string>

#include "editor/label.h"
#include "editor/orva_frame.h"
#include "vst2/records.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cslider.h"

// The main page: the three parameters that steer the recognition, and the recording.
//
// Threads: [ui].
class CMainFrame : public CORVAFrame {
public:
    explicit CMainFrame(guiEditor* itsEditor);

    void valueChanged(VSTGUI::CControl* control) override;
    void setParameter(std::int32_t index, float value) override;

    CLASS_METHODS_NOCOPY(CMainFrame, CORVAFrame)

private:
    static constexpr std::int32_t sliderCount = 3;

    void RefreshLabel(std::int32_t index);
    void RefreshRecordingButtons();
    void SaveRecording();
    void DragRecording(VSTGUI::CView& from);

    VSTGUI::CVerticalSlider* sliders[sliderCount];
    CLabel* sliderLabels[sliderCount];
    VSTGUI::COnOffButton* recordButton;
    VSTGUI::COnOffButton* stopButton;
    std::int32_t hiddenCounter = 0;  // clicks on the name label, for the hidden gesture
};
