#pragma once
#include "editor/label.h"
#include "editor/orva_frame.h"
#include "vst2/records.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/controls/cslider.h"

// The options page: chords, the output to the host, the MIDI device with its channel and instrument.
//
// Threads: [ui].
class COptionsFrame : public CORVAFrame {
public:
    explicit COptionsFrame(guiEditor* itsEditor);

    void valueChanged(VSTGUI::CControl* control) override;
    void setParameter(std::int32_t index, float value) override;

    CLASS_METHODS_NOCOPY(COptionsFrame, CORVAFrame)

private:
    VSTGUI::COnOffButton* AddSwitch(std::int32_t tag, VSTGUI::CPoint position, std::int32_t id);
    VSTGUI::CHorizontalSlider* AddSlider(std::int32_t tag, VSTGUI::CPoint position, std::int32_t id);
    VSTGUI::COptionMenu* AddMenu(std::int32_t tag, const VSTGUI::CRect& area);
    void AddHostPicture();
    void FillDeviceMenu();
    void RefreshInstrumentLabel();

    VSTGUI::COnOffButton* chordsEnabled;
    VSTGUI::CHorizontalSlider* chordsDelay;
    VSTGUI::COnOffButton* outputToHost;
    VSTGUI::COnOffButton* deviceEnabled;
    VSTGUI::COptionMenu* deviceMenu;
    VSTGUI::COptionMenu* channelMenu;
    VSTGUI::COnOffButton* sendProgramChange;
    VSTGUI::CHorizontalSlider* instrument;
    CLabel* instrumentLabel;
};
