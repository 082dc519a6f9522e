#include "editor/plug_window.h"

#include <algorithm>
#include <string>

#include "editor/about_frame.h"
#include "editor/equalizer_frame.h"
#include "editor/gui_editor.h"
#include "editor/look.h"
#include "editor/main_frame.h"
#include "editor/options_frame.h"
#include "editor/status_text.h"
#include "editor/window_menu.h"
#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/events.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t tagHelp = 4, tagHearing = 6;
constexpr std::int32_t hiddenGesture = 537;  // tags above it come from the hidden gesture alone
constexpr std::int32_t equalizerPage = 1, firstEqualizerBars = 4;

struct PageButton {
    CPoint position;
    std::int32_t bitmap;
};
const PageButton pageButtonPlaces[] = {{{20, 15}, 117}, {{92, 15}, 116}, {{164, 15}, 114}, {{236, 15}, 115}};

const CRect formArea(269, 48, 389, 300);
const CRect chordArea(7, 7, 112, 43);         // within the form
const CRect keyboardArea(391, 48, 398, 300);  // beside it, as drawn in the window's picture
const CRect statusArea(96, 300, 258, 313);    // below the pages
const CRect meterArea(100, 313, 258, 319);

}  // namespace

CPlugWindow::CPlugWindow(const CRect& size, guiEditor* itsEditor, CBitmap* background)
    : CViewContainer(size), backgroundBitmap(background), editor(itsEditor) {
    setBackground(background);
    AddPageButtons();
    AddForm();
    AddFooter();
    pages[0] = owned(static_cast<CORVAFrame*>(new CMainFrame(editor)));
    pages[1] = owned(static_cast<CORVAFrame*>(new CEqualizerFrame(editor)));
    pages[2] = owned(static_cast<CORVAFrame*>(new COptionsFrame(editor)));
    pages[3] = owned(static_cast<CORVAFrame*>(new CAboutFrame(editor)));
    showPage(0);
}

void CPlugWindow::AddPageButtons() {
    for (std::int32_t i = 0; i < pageCount; ++i) {
        CBitmap* bitmap = editor->getBitmap(pageButtonPlaces[i].bitmap);
        pageButtons[i] =
            new COnOffButton(controls::HalfOf(bitmap, pageButtonPlaces[i].position), this, i, bitmap);
        addView(pageButtons[i]);
    }
    CBitmap* help = editor->getBitmap(133);
    addView(new CKickButton(controls::HalfOf(help, {338, 15}), this, tagHelp, help));
}

void CPlugWindow::AddForm() {
    formContainer = new CViewContainer(formArea);
    formContainer->setTransparency(true);
    formContainer->setMouseEnabled(false);
    volumeForm = new CVolumeForm(CRect(0, 0, formArea.getWidth(), formArea.getHeight()));
    formContainer->addView(volumeForm);

    // The window's own picture has a light plate where the label stands; it shines over the notes that run
    // by.
    constexpr std::uint8_t plateAlpha = 180;
    chordLabel = new CLabel(chordArea);
    chordLabel->setFont(EditorFont(18, kBoldFace));
    chordLabel->backgroundBitmap = backgroundBitmap;
    chordLabel->backgroundOrigin = chordArea.getTopLeft() + formArea.getTopLeft();
    chordLabel->backgroundAlpha = plateAlpha;
    chordLabel->visible = false;
    formContainer->addView(chordLabel);
    addView(formContainer);
    keyboard = new CKeyboard(keyboardArea);
    addView(keyboard);
}

void CPlugWindow::AddFooter() {
    statusLabel = new CLabel(statusArea, this, tagHearing);
    statusLabel->setFont(EditorFont(11));
    statusLabel->setHoriAlign(kRightText);
    statusLabel->setMouseEnabled(false);
    addView(statusLabel);
    meter = new CActivityMeter(meterArea);
    addView(meter);
}

void CPlugWindow::ShowHearing(const Hearing& hearing, bool raisesEarlyDates) {
    hearingText = HearingText(hearing);
    if (hearingText.empty() && raisesEarlyDates) hearingText = "Notes not before the block";
}

void CPlugWindow::ShowStatus(const std::string& text) {
    constexpr int steps = 40;  // 2 s
    touched = text;
    stepsOfTouched = steps;
}

void CPlugWindow::ShowTake(const std::string& text) {
    takeText = text;
}

void CPlugWindow::RefreshStatus(const std::vector<unsigned char>& levels) {
    std::string text;
    if (stepsOfTouched > 0) {
        text = touched;
        --stepsOfTouched;
    } else if (!takeText.empty()) {
        text = takeText;
    } else {
        text = SoundingText(levels);
        if (!text.empty() && chordLabel->visible && chordLabel->getText()[0] != '\0')
            text += std::string(" ") + chordLabel->getText();  // which begins with a blank of its own
    }
    const bool isHearing = text.empty();
    if (isHearing) text = hearingText;
    statusLabel->setMouseEnabled(isHearing && !text.empty());  // a click opens the menu
    if (text != statusLabel->getText()) statusLabel->setText(text.c_str());
}

void CPlugWindow::OpenMenu(CPoint where) {
    constexpr CCoord menusWidth = 240;  // of a menu and one that it opens beside itself
    where.x = std::min(where.x, getWidth() - menusWidth);
    const auto menu = MakeWindowMenu(*editor);
    getFrame()->doAfterEventProcessing([window = shared(this), menu, where] {
        if (CFrame* const itsFrame = window->getFrame()) menu->popup(itsFrame, where);
    });
}

void CPlugWindow::onMouseDownEvent(MouseDownEvent& event) {
    CViewContainer::onMouseDownEvent(event);
    if (event.consumed || !event.buttonState.isRight()) return;
    menuIsDue = true;
    event.consumed = true;
}

void CPlugWindow::onMouseUpEvent(MouseUpEvent& event) {
    CViewContainer::onMouseUpEvent(event);
    if (!menuIsDue) return;
    menuIsDue = false;
    OpenMenu(event.mousePosition);
    event.consumed = true;
}

bool CPlugWindow::attached(CView* parent) {
    const bool result = CViewContainer::attached(parent);
    if (getFrame() != nullptr) getFrame()->registerKeyboardHook(this);
    return result;
}

bool CPlugWindow::removed(CView* parent) {
    if (getFrame() != nullptr) getFrame()->unregisterKeyboardHook(this);
    return CViewContainer::removed(parent);
}

void CPlugWindow::showPage(std::int32_t page) {
    if (page == activePage || page < 0 || page >= pageCount) return;
    const bool another = activePage < pageCount;
    if (another) {
        removeView(pages[activePage]);
        pageButtons[activePage]->setValue(0);
        pageButtons[activePage]->setDirty();
    }
    pages[page]->remember();  // the window's share, which it gives back when the page is removed
    addView(pages[page]);
    pageButtons[page]->setValue(1.0F);
    pageButtons[page]->setDirty();
    activePage = page;
    if (another) invalid();
}

void CPlugWindow::ShowChordLabel(bool show) {
    chordLabel->visible = show;
    chordLabel->setDirty();
}

void CPlugWindow::setParameter(std::int32_t index, float value) {
    if (index == paramActivePage) {
        const std::int32_t page = PageOf(value);
        if (page >= 0) showPage(page);
        return;
    }
    if (index == paramChordsEnabled) ShowChordLabel(IsOn(value));
    if (index == codeChordText) chordLabel->setText((" " + editor->effect->currentChordText()).c_str());
    for (const auto& page : pages) page->setParameter(index, value);
}

void CPlugWindow::onValueChanged(std::int32_t tag, float value) {
    if (const std::string text = TouchedText(tag, value); !text.empty()) ShowStatus(text);
    if (tag == paramChordsEnabled) ShowChordLabel(IsOn(value));
    if (tag > hiddenGesture) {
        pages[equalizerPage]->setBackground(editor->getBitmap(177));
        pages[equalizerPage]->invalid();
        pages[equalizerPage]->setParameter(firstEqualizerBars,
                                           editor->effect->getParameter(firstEqualizerBars));
    }
}

void CPlugWindow::update(const std::vector<unsigned char>& levels) {
    volumeForm->update(levels);
    keyboard->update(levels);
    RefreshStatus(levels);
}

void CPlugWindow::valueChanged(CControl* control) {
    const std::int32_t tag = control->getTag();
    if (tag == tagHelp) {
        if (control->getValue() == 0) editor->OpenHelp();  // released
        return;
    }
    if (tag == tagHearing) return OpenMenu(control->getViewSize().getTopLeft());
    if (IsOn(control->getValue())) {
        showPage(tag);
        editor->valueChanged(paramActivePage, PageValue(tag));
    } else {
        control->setValue(1.0F);  // the four act as one choice: the page that is shown stays chosen
        control->setDirty();
        control->invalid();
    }
}

void CPlugWindow::onKeyboardEvent(KeyboardEvent& event, CFrame* /*frame*/) {
    if (event.type != EventType::KeyDown || event.virt != VirtualKey::F1) return;
    editor->OpenHelp();
    event.consumed = true;
}
