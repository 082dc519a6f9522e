#include "editor/plug_window.h"

#include <algorithm>
#include <string>

#include "editor/about_frame.h"
#include "editor/equalizer_frame.h"
#include "editor/gui_editor.h"
#include "editor/hints.h"
#include "editor/look.h"
#include "editor/main_frame.h"
#include "editor/options_frame.h"
#include "editor/status_text.h"
#include "editor/typed_value.h"
#include "editor/value_field.h"
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
    : CViewContainer(size), backgroundBitmap(background), editor(itsEditor), hover(*this) {
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

// The scrolling picture covers its place.
void CPlugWindow::drawBackgroundRect(CDrawContext* context, const CRect& area) {
    CRect within = area;
    within.bound(formArea);
    if (within != area || !volumeForm->HasPicture()) CViewContainer::drawBackgroundRect(context, area);
}

void CPlugWindow::AddPageButtons() {
    for (std::int32_t i = 0; i < pageCount; ++i) {
        CBitmap* bitmap = editor->getBitmap(pageButtonPlaces[i].bitmap);
        pageButtons[i] =
            new COnOffButton(controls::HalfOf(bitmap, pageButtonPlaces[i].position), this, i, bitmap);
        addView(pageButtons[i], hover.LowestView());
    }
    CBitmap* help = editor->getBitmap(133);
    addView(new CKickButton(controls::HalfOf(help, {338, 15}), this, tagHelp, help), hover.LowestView());
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
    addView(formContainer, hover.LowestView());
    keyboard = new CKeyboard(keyboardArea);
    addView(keyboard, hover.LowestView());
}

void CPlugWindow::AddFooter() {
    statusLabel = new CLabel(statusArea, this, tagHearing);
    statusLabel->setFont(EditorFont(11));
    statusLabel->setHoriAlign(kRightText);
    statusLabel->setMouseEnabled(false);
    addView(statusLabel, hover.LowestView());
    meter = new CActivityMeter(meterArea);
    addView(meter, hover.LowestView());
}

void CPlugWindow::ShowHearing(const Hearing& hearing, bool raisesEarlyDates) {
    hearingText = HearingText(hearing);
    if (hearingText.empty() && raisesEarlyDates) hearingText = "Notes not before the block";
}

void CPlugWindow::ShowStatus(const std::string& text) {
    constexpr int steps = 40;  // 2 s
    touched = text;
    stepsOfTouched = steps;
    hover.Disturb();
}

void CPlugWindow::ShowTake(const std::string& text) {
    takeText = text;
}

void CPlugWindow::RefreshStatus(const std::vector<unsigned char>& levels) {
    std::string text;
    if (keyAtMouse >= 0) {
        text = KeyText(keyAtMouse);
    } else if (stepsOfTouched > 0) {
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

std::int32_t CPlugWindow::ParameterAt(CPoint where) const {
    const CORVAFrame& page = *pages[activePage];
    if (!page.getViewSize().pointInside(where)) return -1;
    where.offset(-page.getViewSize().left, -page.getViewSize().top);
    return page.ParameterAt(where);
}

// It ends within a call of the toolkit's that still uses it.
void CPlugWindow::OpenField(std::int32_t index, CPoint where) {
    constexpr CCoord width = 54, height = 18;
    CRect area(where, CPoint(width, height));
    area.offset(-width / 2, -height / 2);
    const auto control = shared(getViewAt(where, GetViewOptions().deep().mouseEnabled()));
    const auto ended = [this, index, control](const std::string& text) {
        getFrame()->doAfterEventProcessing([window = shared(this), field = shared(valueField), control] {
            window->removeView(field);
            CFrame* const frame = window->getFrame();  // arrows go on where the value was typed
            if (frame != nullptr && frame->getFocusView() == nullptr && control->isAttached())
                frame->setFocusView(control);
        });
        valueField = nullptr;
        if (!text.empty()) editor->SetTyped(index, text);
    };
    valueField = new CValueField(area, TypingText(index, editor->effect->getParameter(index)), ended);
    addView(valueField);
    ShowStatus(TypingRange(index));
    getFrame()->setFocusView(valueField);
}

std::string CPlugWindow::HintAt(const CPoint& where) const {
    if (const auto part = meter->PartAt(where); part != CActivityMeter::Part::none) return HintOf(part);
    const auto* const control =
        dynamic_cast<CControl*>(getViewAt(where, GetViewOptions().deep().mouseEnabled()));
    if (control == nullptr) return "";
    std::string hint =
        HintOf(control->getParentView() == this ? stripOfPages : activePage, control->getTag());
    const std::int32_t index = ParameterAt(where);
    if (hint.empty() || !TakesTyping(index)) return hint;
    hint += " " + RangeText(index) + ".";
    const std::string value = TouchedText(index, editor->effect->getParameter(index));
    return value.empty() ? hint : value + ". " + hint;
}

// A button that was clicked shows no ring: no arrow would move it.
void CPlugWindow::ShowFocus(bool show) {
    CFrame* const frame = getFrame();
    if (frame->focusDrawingEnabled() == show) return;
    frame->setFocusDrawingEnabled(show);
    frame->invalid();
}

void CPlugWindow::onMouseEvent(MouseEvent& event, CFrame* frame) {
    if (event.type == EventType::MouseDown && frame->getModalView() == nullptr)
        ShowFocus(ParameterAt(event.mousePosition) >= 0);
    if (event.type != EventType::MouseMove || frame->getModalView() != nullptr ||
        !event.buttonState.empty()) {
        hover.Disturb();
        return;
    }
    mouse = event.mousePosition;
    const bool besideKeys = mouse.x >= formArea.left && mouse.x <= keyboardArea.right;
    keyAtMouse = besideKeys ? keyboard->BandAt(mouse.y) : -1;
    const auto* const control =
        dynamic_cast<CControl*>(getViewAt(mouse, GetViewOptions().deep().mouseEnabled()));
    if (control == nullptr || control->getListener() == nullptr) return hover.PointAt(mouse, nullptr);
    if (dynamic_cast<const CEqualizer*>(control) != nullptr)  // its colours say something
        return hover.PointAt(mouse, nullptr);
    CRect area = control->getViewSize();
    if (control->getParentView() != this) area.offset(pages[activePage]->getViewSize().getTopLeft());
    hover.PointAt(mouse, &area);
}

void CPlugWindow::onMouseExited(CView* view, CFrame* /*frame*/) {
    if (view != this) return;
    keyAtMouse = -1;
    hover.Leave();
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
    const std::int32_t index = ParameterAt(event.mousePosition);
    if (TakesTyping(index))
        OpenField(index, event.mousePosition);
    else
        OpenMenu(event.mousePosition);
    event.consumed = true;
}

bool CPlugWindow::attached(CView* parent) {
    const bool result = CViewContainer::attached(parent);
    if (CFrame* const frame = getFrame()) {
        frame->registerKeyboardHook(this);
        frame->registerMouseObserver(this);
    }
    return result;
}

bool CPlugWindow::removed(CView* parent) {
    if (CFrame* const frame = getFrame()) {
        frame->unregisterKeyboardHook(this);
        frame->unregisterMouseObserver(this);
    }
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
    addView(pages[page], hover.LowestView());
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
    if (hover.Step() && getFrame()->getModalView() == nullptr) hover.Say(HintAt(mouse));
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

// Ahead of the views: of what they have not used, nobody would hear any more.
void CPlugWindow::onKeyboardEvent(KeyboardEvent& event, CFrame* frame) {
    if (event.type == EventType::KeyDown) {
        ShowFocus(true);
        hover.Disturb();
        if (event.virt == VirtualKey::F1) {
            editor->OpenHelp();
            event.consumed = true;
        }
    }
    const auto focus = shared(frame->getFocusView());
    const bool isTyping = dynamic_cast<CTextEdit*>(focus.get()) != nullptr;
    if (event.consumed || isTyping || event.virt == VirtualKey::Tab || frame->getModalView() != nullptr)
        return;
    for (CView* view = focus; view != nullptr && view != frame && !event.consumed;
         view = view->getParentView())
        view->dispatchEvent(event);
    if (!event.consumed) editor->LeaveToHost(event);
}
