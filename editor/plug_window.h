#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "editor/activity_meter.h"
#include "editor/hover.h"
#include "editor/keyboard.h"
#include "editor/label.h"
#include "editor/orva_frame.h"
#include "editor/volume_form.h"
#include "plugin/hearing.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/ccontrol.h"
#include "vstgui/lib/controls/icontrollistener.h"

class CValueField;

// The top view of the editor: a strip of page buttons, one of four pages below it, and beside them the
// scrolling picture with the name of the chord. It fills the toolkit's frame.
//
// Threads: [ui].
class CPlugWindow : public VSTGUI::CViewContainer,
                    public VSTGUI::IControlListener,
                    public VSTGUI::IKeyboardHook,
                    public VSTGUI::IMouseObserver {
public:
    static constexpr std::int32_t pageCount = 4;  // main, equalizer, options, about; as a page it means none

    CPlugWindow(const VSTGUI::CRect& size, guiEditor* itsEditor, VSTGUI::CBitmap* background);

    // A parameter has a new value: one chooses a page, codeChordText is a new chord text, all others go to
    // the pages.
    void setParameter(std::int32_t index, float value);
    // A page changed something, after the plug-in object heard of it.
    void onValueChanged(std::int32_t tag, float value);
    void update(const std::vector<unsigned char>& levels);  // one column for the scrolling picture
    void ShowStatus(const std::string& text);               // for a moment
    void ShowTake(const std::string& text);                 // while one runs; else empty
    void ShowActivity(float peak, float floorDb, bool sent) { meter->Update(peak, floorDb, sent); }
    // In silence; nothing where both are what a plug-in begins with.
    void ShowHearing(const Hearing& hearing, bool raisesEarlyDates);

    void showPage(std::int32_t page);

    void valueChanged(VSTGUI::CControl* control) override;
    using CViewContainer::onKeyboardEvent;
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event, VSTGUI::CFrame* frame) override;  // F1 is help
    void onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) override;
    using CViewContainer::onMouseEntered;
    using CViewContainer::onMouseExited;
    void onMouseEntered(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseExited(VSTGUI::CView* view, VSTGUI::CFrame* frame) override;
    // A right click on a slider or a bar opens a field to type its value into, and elsewhere the menu, when
    // the button is released: what is held would choose from it.
    void onMouseDownEvent(VSTGUI::MouseDownEvent& event) override;
    void onMouseUpEvent(VSTGUI::MouseUpEvent& event) override;
    bool attached(VSTGUI::CView* parent) override;
    bool removed(VSTGUI::CView* parent) override;
    void drawBackgroundRect(VSTGUI::CDrawContext* context, const VSTGUI::CRect& area) override;

    CLASS_METHODS_NOCOPY(CPlugWindow, CViewContainer)

private:
    void AddPageButtons();
    void AddForm();
    void AddFooter();
    void RefreshStatus(const std::vector<unsigned char>& levels);
    void ShowChordLabel(bool show);
    void OpenMenu(VSTGUI::CPoint where);
    std::int32_t ParameterAt(VSTGUI::CPoint where) const;  // whose value is typed there; -1 for none
    void OpenField(std::int32_t index, VSTGUI::CPoint where);
    void ShowFocus(bool show);
    std::string HintAt(const VSTGUI::CPoint& where) const;

    VSTGUI::CBitmap* backgroundBitmap;         // not owned
    VSTGUI::CBitmap* overlayBitmap = nullptr;  // the registration role's; this one asks for none
    std::int32_t activePage = pageCount;
    VSTGUI::SharedPointer<CORVAFrame> pages[pageCount];  // kept also while they are not shown
    VSTGUI::CControl* pageButtons[pageCount] = {};
    VSTGUI::CViewContainer* formContainer = nullptr;
    CVolumeForm* volumeForm = nullptr;
    CKeyboard* keyboard = nullptr;
    CActivityMeter* meter = nullptr;
    guiEditor* editor;
    CLabel* chordLabel = nullptr;
    Hover hover;
    CValueField* valueField = nullptr;  // while a value is typed
    VSTGUI::CPoint mouse;               // while it is in the window
    std::int32_t keyAtMouse = -1;       // the band of it
    // One line below the pages: the key under the mouse, else what was touched a moment ago, else how a take
    // grows, else what sounds, else how the plug-in hears.
    CLabel* statusLabel = nullptr;
    std::string touched, takeText, hearingText;
    int stepsOfTouched = 0;                  // of idle time, for which it still stands
    bool menuIsDue = false;                  // the right button went down and has not come up
    std::int32_t registrationCountdown = 0;  // the registration role's; this one counts nothing down
};
