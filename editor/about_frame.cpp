#include "editor/about_frame.h"

#include <string>

#include "editor/gui_editor.h"
#include "editor/label.h"
#include "editor/look.h"
#include "plugin/mem_log.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/events.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t tagRegister = 0, tagName = 1, tagCode = 2, tagSaveLog = 5, tagAcceptName = 6,
                       tagAcceptCode = 7, tagVersion = 8;

const CRect webLink(73, 135, 202, 148), mailLink(63, 188, 216, 200);
constexpr const char* webAddress =
    "https://www.orva-labs.example/english/orva-audio-to-midi-vst.html?r=orvavst&ver=1.30&os=win";
constexpr const char* mailAddress = "support@orva-labs.example";

constexpr CCoord fieldLeft = 60, fieldRight = 230, fieldHeight = 17;

}  // namespace

CAboutFrame::CAboutFrame(guiEditor* itsEditor) : CORVAFrame(itsEditor, 135) {
    const auto add = [this](std::int32_t tag, CPoint position, std::int32_t id) {
        addView(new CKickButton(controls::HalfOf(getBitmap(id), position), this, tag, getBitmap(id)));
    };
    add(tagRegister, {22, 245}, 129);
    add(tagSaveLog, {180, 245}, 119);
    add(tagAcceptName, {235, 197}, 140);
    add(tagAcceptCode, {235, 220}, 140);
    nameField = AddField(tagName, 197);
    codeField = AddField(tagCode, 220);

    auto* version = new CLabel(CRect(40, 20, 227, 40), nullptr, tagVersion);
    version->setFont(EditorFont(13));
    std::string text = "VST version 1.30";
    if (editor->effect->registrationStatus()) text += ", registered";
    version->setText(text.c_str());
    addView(version);
}

CTextEdit* CAboutFrame::AddField(std::int32_t tag, CCoord top) {
    auto* field = new CTextEdit(CRect(fieldLeft, top, fieldRight, top + fieldHeight), this, tag, "");
    field->setFont(EditorFont(12));
    field->setFontColor(ColorOf(palette::text));
    field->setBackColor(ColorOf(palette::box));
    field->setFrameColor(ColorOf(palette::buttonFrame));
    field->setHoriAlign(kLeftText);
    field->setTextInset({4, 0});
    addView(field);
    return field;
}

void CAboutFrame::valueChanged(CControl* control) {
    if (control->getValue() != 0) return;  // the buttons act when they are released
    switch (control->getTag()) {
        case tagSaveLog: SaveLog(); break;
        case tagRegister:
        case tagAcceptName:
        case tagAcceptCode: Submit(); break;
        default: break;
    }
}

void CAboutFrame::SaveLog() {
    guiEditor* const saver = editor;
    saver->AskForFile({"Select file for log", "Text Files", "txt", ""}, [saver](const std::string& path) {
        if (!getMemLog().saveToFile(path)) saver->ShowMessage("Error saving log.", "Error");
    });
}

void CAboutFrame::Submit() {
    const bool stored =
        editor->effect->submitRegistration(nameField->getText().data(), codeField->getText().data());
    if (stored)
        editor->ShowMessage("Thank you. Name and code are stored and count from the next start.",
                            "Registration");
    else
        editor->ShowMessage("Please fill in both name and code. They could not be stored.", "Error");
}

// A click on a link; the pages' controls come first.
void CAboutFrame::onMouseDownEvent(MouseDownEvent& event) {
    CORVAFrame::onMouseDownEvent(event);
    if (event.consumed || !event.buttonState.isLeft()) return;
    CPoint where = event.mousePosition;
    where.offset(-getViewSize().left, -getViewSize().top);
    if (webLink.pointInside(where))
        editor->OpenWebPage(webAddress);
    else if (mailLink.pointInside(where))
        editor->OpenMail(mailAddress);
    else
        return;
    event.ignoreFollowUpMoveAndUpEvents(true);
    event.consumed = true;
}
