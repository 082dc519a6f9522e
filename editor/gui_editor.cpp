#include "editor/gui_editor.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "base/file_path.h"
#include "base/scoped.h"
#include "desktop/module_folder.h"
#include "desktop/shell.h"
#include "devices/midi_device_list.h"
#include "editor/help_file.h"
#include "editor/look.h"
#include "editor/message_view.h"
#include "editor/pictures.h"
#include "editor/plug_window.h"
#include "editor/status_text.h"
#include "editor/typed_value.h"
#include "editor/window_size.h"
#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cresourcedescription.h"
#include "vstgui/lib/platform/common/genericoptionmenu.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/iplatformframe.h"
#include "vstgui/lib/platform/platformfactory.h"

namespace {

constexpr std::int32_t backgroundId = 103;

// Menus within the window, in its colours; the toolkit's own are dark.
VSTGUI::GenericOptionMenuTheme MenuTheme() {
    VSTGUI::GenericOptionMenuTheme theme;
    theme.font = EditorFont(11);                              // the sixteen channels fit the window
    theme.backgroundColor = ColorOf(palette::openMenu, 254);  // a wholly opaque one is not drawn
    theme.textColor = ColorOf(palette::text);
    theme.disabledTextColor = ColorOf(palette::faintText);
    theme.selectedBackgroundColor = ColorOf(palette::chosen);
    theme.selectedTextColor = ColorOf(palette::chosenText);
    theme.menuAnimationTime = 40;  // ms
    return theme;
}

// Milliseconds, wrapping.
std::uint32_t Ticks() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace

guiEditor::guiEditor(CORVAguivst* plugin)
    : AEffGUIEditor(SizeOfPicture(backgroundId).width, SizeOfPicture(backgroundId).height), effect(plugin) {}

guiEditor::~guiEditor() {
    const std::lock_guard locked(ToolkitLock());
    CloseNow();
}

bool guiEditor::getRect(ERect** editorRect) {
    const std::unique_lock locked(ToolkitLock(), std::try_to_lock);
    if (locked && !isEditorOpen && busy == 0) ChooseSize();
    return AEffGUIEditor::getRect(editorRect);
}

bool guiEditor::setScale(double scale) {
    const std::lock_guard locked(ToolkitLock());
    if (isEditorOpen || busy > 0) return false;
    sizeFromHost = WindowSizeFor(scale);
    ChooseSize();
    return true;
}

bool guiEditor::setDark(bool dark) {
    SetVariant(dark ? Variant::dark : Variant::light);
    return true;
}

// Of the next window.
void guiEditor::ChooseSize() {
    const std::int32_t chosen = sizeFromHost != 0 ? sizeFromHost : PreferredWindowSize();
    if (chosen != Size()) bitmaps.clear();
    SetSize(chosen);
    sizeIsChosen = true;
}

bool guiEditor::open(void* parent) {
    const std::lock_guard locked(ToolkitLock());
    if (busy > 0) return false;
    CloseNow();
    if (!sizeIsChosen) ChooseSize();  // else a host may have made its window by it
    {
        const ScopedCount now(busy);  // the pages ask the host what it can do, and it may call back
        if (!MakeWindow(parent)) return false;
    }
    if (closeLater) CloseNow();
    return isEditorOpen;
}

bool guiEditor::MakeWindow(void* parent) {
    if (!AEffGUIEditor::open(parent)) return false;
    ReadPreferredVariant();
    MakeViews();
    isEditorOpen = true;
    sizeChoices = LastWindowSizeChoice().count;
    lastIdleTick = Ticks();
    blockWatch.Restart(effect->totalSamples, lastIdleTick);
    messagesSeen = effect->noteRecorder.messagesSent;
    effect->inputMeter.Watch(true);
    effect->messages.SetWindow(this);
    return true;
}

void guiEditor::MakeViews() {
    if (variantChanges != VariantChanges()) bitmaps.clear();
    variantChanges = VariantChanges();
    frame->setFocusColor(ColorOf(palette::loud));
    frame->setFocusWidth(2);
    auto theme = MenuTheme();
    frame->getPlatformFrame()->setupGenericOptionMenu(true, &theme);
    background = getBitmap(backgroundId);
    window = new CPlugWindow(Layout(), this, background);
    frame->addView(window);

    mailbox.drain([](std::int32_t, float) {});  // older than what is read now
    for (std::int32_t i = 0; i < codeEnd; ++i) window->setParameter(i, effect->getParameter(i));
    window->ShowHearing(CurrentHearing(), effect->RaisesEarlyDates());
}

void guiEditor::Change(const std::vector<ParameterSetting>& settings) {
    for (const auto& [index, value] : settings) {
        if (value == effect->getParameter(index)) continue;
        if (window != nullptr) window->setParameter(index, value);
        valueChanged(index, value);
    }
}

void guiEditor::BeginWith(const Beginning& beginning) {
    tasks.emplace_back([this, beginning] {
        // Made for the classic ear.
        const std::vector<ParameterSetting> wanted =
            CurrentHearing().ear == Ear::classic ? beginning.settings : ReachOf(beginning.settings);
        KeepForUndo("begin with " + beginning.title, wanted);
        Change(wanted);
        ShowStatus("Begun with: " + beginning.title);
    });
}

void guiEditor::KeepForUndo(const std::string& what, const std::vector<ParameterSetting>& replacements) {
    undoName = what;
    undoValues.clear();
    for (const ParameterSetting& each : replacements)
        undoValues.push_back({each.index, effect->getParameter(each.index)});
}

void guiEditor::Undo() {
    tasks.emplace_back([this] {
        Change(std::exchange(undoValues, {}));
        undoName.clear();
        ShowStatus("As before");
    });
}

void guiEditor::SetTyped(std::int32_t index, const std::string& text) {
    if (!isEditorOpen) return;
    tasks.emplace_back([this, index, text] {
        float value = 0;
        if (ReadTyped(index, text, value))
            Change({{index, value}});
        else
            ShowStatus(TypingRange(index));
    });
}

void guiEditor::ShowStored(bool stored) {
    if (!stored)
        ShowMessage("This holds until the plug-in closes: it could not be stored with your settings.",
                    "Error");
}

void guiEditor::PreferSize(std::int32_t percent) {
    tasks.emplace_back([this, percent] {
        choseSize = true;
        ShowStored(PreferWindowSize(percent));
    });
}

void guiEditor::PreferDark(bool dark) {
    tasks.emplace_back([this, dark] { ShowStored(PreferVariant(dark ? Variant::dark : Variant::light)); });
}

// A message or a menu that is up stays; the window follows when it has gone.
void guiEditor::FollowPreferences() {
    if (frame->getModalView() != nullptr) return;
    const WindowSizeChoice last = LastWindowSizeChoice();
    if (last.count != sizeChoices) {
        sizeChoices = last.count;
        sizeFromHost = 0;
        if (last.percent != Size()) Resize(last.percent);
    }
    if (variantChanges != VariantChanges()) RemakeViews();
}

// The host's window first: nothing may be cut off, so in one that stays as it is, ours stays, too.
void guiEditor::Resize(std::int32_t percent) {
    const ERect before = rect;
    rect = RectAt(percent);  // some hosts ask for it before they answer
    const bool follows = effect->sizeWindow(rect.right, rect.bottom);
    rect = before;
    if (!follows) {
        if (std::exchange(choseSize, false))
            ShowMessage(
                "The host keeps this window's size. The new one counts when it opens the window again.",
                "Window size");
        return;
    }
    SetSize(percent);
    RemakeViews();
}

void guiEditor::RemakeViews() {
    frame->removeView(window);
    bitmaps.clear();
    MakeViews();
}

void guiEditor::close() {
    const std::lock_guard locked(ToolkitLock());
    if (busy > 0)
        closeLater = true;
    else
        CloseNow();
}

void guiEditor::CloseNow() {
    closeLater = false;
    isEditorOpen = false;
    if (effect != nullptr) {
        effect->messages.SetWindow(nullptr);
        effect->inputMeter.Watch(false);
    }
    fileDialog.End();
    takeDrag.End();
    fileChosen = nullptr;
    tasks.clear();
    std::vector<Message> unseen;
    {
        const Locked locked(messagesGuard);
        unseen.swap(messages);
    }
    if (!messageIsUp) FinishOpenedMenus();
    messageIsUp = false;
    window = nullptr;
    AEffGUIEditor::close();
    try {
        for (const Message& each : unseen) SystemMessageBox().Show(each.text, each.caption);
    } catch (
        ...) {  // no memory for a message to the user; the editor may be in the middle of its destruction
    }
}

void guiEditor::idle() {
    const std::unique_lock locked(ToolkitLock(), std::try_to_lock);
    if (!locked || busy > 0) return;
    {
        const ScopedCount now(busy);
        mailbox.drain([this](std::int32_t index, float value) {
            if (isEditorOpen) window->setParameter(index, value);
        });
        PumpEvents();
        RunTasks();
        takeDrag.Step();
        PollFileDialog();
        ShowNextMessage();

        const std::uint32_t ticks = Ticks();
        const std::uint32_t steps = WholeIdleSteps(ticks, lastIdleTick);
        if (steps > 0) {
            if (window != nullptr) {
                effect->buildLevels(levels);
                if (blockWatch.HasStopped(effect->totalSamples, ticks))
                    std::fill(levels.begin(), levels.end(), 0);
                ShowActivity();
                window->update(levels);
                window->ShowHearing(CurrentHearing(), effect->RaisesEarlyDates());
                FollowPreferences();
            }
            AEffGUIEditor::idle();
            lastIdleTick = AdvanceIdleTick(lastIdleTick, steps);
        }
    }
    if (closeLater || (isEditorOpen && ToolkitSession::ConnectionLost())) CloseNow();
}

void guiEditor::ShowActivity() {
    const std::uint32_t sent = effect->noteRecorder.messagesSent;
    window->ShowActivity(effect->inputMeter.TakePeak() * effect->inputGain,
                         DecibelsOf(effect->getParameter(paramSensitivity)), sent != messagesSeen);
    messagesSeen = sent;
    window->ShowTake(effect->recordingOn ? TakeText(effect->takeSeconds(), effect->takeNotes()) : "");
}

bool guiEditor::onKeyDown(const VstKeyCode& key) {
    const std::unique_lock locked(ToolkitLock(), std::try_to_lock);
    if (!locked || window == nullptr || busy > 0) return false;
    if (key.virt == VKEY_F1) {
        OpenHelp();
        return true;
    }
    bool used = false;
    {
        const ScopedCount now(busy);
        used = AEffGUIEditor::onKeyDown(key);
    }
    if (closeLater) CloseNow();
    return used;
}

void guiEditor::parameterChanged(std::int32_t index, float value) {
    mailbox.post(index, value);
}

VSTGUI::CBitmap* guiEditor::getBitmap(std::int32_t id) {
    auto& bitmap = bitmaps[id];
    if (!bitmap) {
        VSTGUI::PlatformBitmapPtr picture;
        const std::int32_t scale = PictureScale(Size() / 100.0);
        if (const Picture* bytes = FindPicture(id, scale, CurrentVariant()))
            picture = VSTGUI::getPlatformFactory().createBitmapFromMemory(
                bytes->begin, static_cast<std::uint32_t>(bytes->Size()));
        if (picture) picture->setScaleFactor(scale);
        bitmap = picture ? VSTGUI::makeOwned<VSTGUI::CBitmap>(picture)
                         : VSTGUI::makeOwned<VSTGUI::CBitmap>(VSTGUI::CResourceDescription(id));
    }
    return bitmap;
}

void guiEditor::valueChanged(std::int32_t tag, float value) {
    if (tag < codeEnd) effect->setParameterFromEditor(tag, value);
    if (window != nullptr) window->onValueChanged(tag, value);
}

bool guiEditor::canSendToHost() const {
    return effect->canHostDo("receiveVstMidiEvent") == 1;
}

bool guiEditor::hostAsked() const {
    return effect->hostAskedMidiOut;
}

std::string guiEditor::ParameterDisplay(std::int32_t index) const {
    char text[256] = {};
    effect->getParameterDisplay(index, text);
    return text;
}

std::string guiEditor::ParameterDisplay(std::int32_t index, float value) const {
    char text[256] = {};
    effect->getParameterValueDisplay(value, index, text);
    return text;
}

std::vector<std::string> guiEditor::MidiDeviceNames() const {
    ReadMidiOutDevices();
    std::vector<std::string> names;
    const std::uint32_t count = MidiOutDeviceCount();
    for (std::uint32_t i = 0; i < count; ++i) names.push_back(MidiOutDeviceName(i));
    return names;
}

void guiEditor::ShowStatus(const std::string& text) {
    if (window != nullptr) window->ShowStatus(text);
}

bool guiEditor::TakeMessage(const std::string& text, const std::string& caption) {
    if (!isEditorOpen) return false;
    const Locked locked(messagesGuard);
    messages.push_back({text, caption});
    return true;
}

void guiEditor::ShowMessage(const std::string& text, const std::string& caption) {
    effect->messages.Show(text, caption);
}

// One after another: the next one comes up when the user has closed the last.
void guiEditor::ShowNextMessage() {
    if (window == nullptr || messageIsUp || frame->getModalView() != nullptr) return;
    Message next;
    {
        const Locked locked(messagesGuard);
        if (messages.empty()) return;
        next = std::move(messages.front());
        messages.erase(messages.begin());
    }
    const auto dismissed = [this] {  // comes from the view itself, which must outlive the call
        tasks.emplace_back([this] {
            frame->endModalViewSession(messageSession);
            messageIsUp = false;
        });
    };
    auto* view = new CMessageView(Layout(), next.text, next.caption, dismissed);
    if (const auto shown = frame->beginModalViewSession(view)) {
        messageSession = *shown;
        messageIsUp = true;
    }
}

void guiEditor::AskForFile(const FileDialogRequest& request,
                           std::function<void(const std::string&)> whenChosen) {
    tasks.emplace_back([this, request, call = std::move(whenChosen)] {
        if (fileDialog.Poll() == FileDialog::State::running) return;  // the user still has one to answer
        FileDialogRequest above = request;
        above.owner = HostWindow();
        if (fileDialog.Start(above)) {
            fileChosen = call;
        } else {
            fileDialog.End();
            ShowMessage("No file dialog could be opened. Please install zenity or kdialog.", "Error");
        }
    });
}

void guiEditor::PollFileDialog() {
    const FileDialog::State state = fileDialog.Poll();
    if (state == FileDialog::State::running) OwnFileDialog();
    if (state == FileDialog::State::idle || state == FileDialog::State::running) return;
    const std::string path = fileDialog.Path();
    const auto call = std::exchange(fileChosen, nullptr);
    fileDialog.End();
    if (state == FileDialog::State::chosen) call(path);
    if (state == FileDialog::State::failed) ShowMessage("The file dialog could not be shown.", "Error");
}

// zenity's file dialog ignores the owner that it is given. Its window takes a while to come, if it is one of
// this display at all.
void guiEditor::OwnFileDialog() {
    constexpr int mostAttempts = 300;  // idle calls, some 10 s
    if (ownedDialog != fileDialog.Program()) attemptsToOwn = 0;
    ownedDialog = fileDialog.Program();
    if (attemptsToOwn >= mostAttempts) return;
    ++attemptsToOwn;
    if (OwnWindowsOf(static_cast<std::uint32_t>(ownedDialog))) attemptsToOwn = mostAttempts;
}

void guiEditor::DragTake(VSTGUI::CView& from) {
    tasks.emplace_back([this, view = VSTGUI::shared(&from)] {
        if (effect->nothingRecorded()) return ShowStatus("No take to drag");
        if (takeDrag.Begin(*view, [this](const std::string& path) { return effect->saveRecording(path); }))
            ShowStatus("Drop the take where you like");
        else
            ShowMessage("Error saving MIDI file", "Error");
    });
}

void guiEditor::OpenWebPage(const std::string& address) {
    tasks.emplace_back([this, address] {
        if (!ShowWebPage(address)) ShowMessage("The web page could not be opened:\n" + address, "Error");
    });
}

void guiEditor::OpenMail(const std::string& address) {
    tasks.emplace_back([this, address] {
        if (!ComposeMail(address))
            ShowMessage("No mail program could be opened. Please write to\n" + address, "Error");
    });
}

void guiEditor::OpenHelp() {
    tasks.emplace_back([this] {
        const std::filesystem::path file = ModuleFolder() / "orva_vst.chm";
        if (ShowHelpFile(Utf8(file))) return;
        const std::filesystem::path manual = ManualOf(ModuleFolder());
        if (!manual.empty() && ShowHelpFile(Utf8(manual))) return;
        ShowMessage("The help could not be opened:\n" + Utf8(manual.empty() ? file : manual), "Error");
    });
}

void guiEditor::RunTasks() {
    auto now = std::exchange(tasks, {});
    for (auto& task : now) task();
}
