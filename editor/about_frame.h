#pragma once
#include "editor/orva_frame.h"
#include "vst2/records.h"
#include "vstgui/lib/controls/ctextedit.h"

// The about page: version, links to the product's page and to support, registration, and the log.
//
// Threads: [ui].
class CAboutFrame : public CORVAFrame {
public:
    explicit CAboutFrame(guiEditor* itsEditor);

    void valueChanged(VSTGUI::CControl* control) override;
    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override;

    CLASS_METHODS_NOCOPY(CAboutFrame, CORVAFrame)

private:
    VSTGUI::CTextEdit* AddField(std::int32_t tag, VSTGUI::CCoord top);
    void SaveLog();
    void Submit();

    VSTGUI::CTextEdit* nameField;
    VSTGUI::CTextEdit* codeField;
};
