#pragma once
#include <functional>
#include <string>

#include "vst2/records.h"
#include "vstgui/lib/controls/icontrollistener.h"
#include "vstgui/lib/cviewcontainer.h"

// A message box inside the window: a caption, a text, and a button to close it. It covers the whole frame and
// takes all input while it is up.
//
// Threads: [ui].
class CMessageView : public VSTGUI::CViewContainer, public VSTGUI::IControlListener {
public:
    // `dismissed` is called once, when the user closes it: by its button, Return, Escape or Space.
    CMessageView(const VSTGUI::CRect& size, const std::string& text, const std::string& caption,
                 std::function<void()> whenDismissed);

    void drawBackgroundRect(VSTGUI::CDrawContext* context, const VSTGUI::CRect& updateRect) override;
    void valueChanged(VSTGUI::CControl* control) override;
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event) override;

    CLASS_METHODS_NOCOPY(CMessageView, CViewContainer)

private:
    void Dismiss();

    VSTGUI::CRect panel;  // the box within the frame
    std::function<void()> dismissed;
};
