#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "base/relaxed.h"
#include "desktop/file_dialog.h"
#include "desktop/message_box.h"
#include "editor/aeff_gui_editor.h"
#include "editor/idle_clock.h"
#include "editor/mailbox.h"
#include "editor/take_drag.h"
#include "parameters/parameters.h"
#include "parameters/starting_points.h"
#include "plugin/gui_plugin.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"

class CPlugWindow;

// The plug-in's editor: one window of the size of its background picture, or a multiple that the user
// prefers. It lives as long as the plug-in object; its window, pages and controls exist only while the host
// keeps it open. The plug-in object keeps all values, and an open reads all of them again, so no control has
// a state of its own.
//
// The host's idle call is the only clock. Each one first hands the views what other threads have left in the
// mailbox, then runs the toolkit's events; the scrolling picture takes a column only for whole steps of 50
// ms.
//
// Threads: [ui], under the toolkit's lock, unless tagged otherwise. No view is touched from another thread.
class guiEditor : public AEffGUIEditor, public IMessageWindow {
public:
    explicit guiEditor(CORVAguivst* plugin);
    ~guiEditor() override;

    // The host's calls.
    bool getRect(ERect** editorRect) override;  // the size that the window has, or the next one will have
    bool open(void* parent) override;
    void close() override;
    bool isOpen() const override { return isEditorOpen; }
    void idle() override;
    bool onKeyDown(const VstKeyCode& key) override;

    // From the plug-in object. [any] A value arrives at the views with the next idle call.
    void parameterChanged(std::int32_t index, float value) override;
    bool setScale(double scale) override;
    bool setDark(bool dark) override;
    bool TakeMessage(const std::string& text, const std::string& caption) override;  // [any]

    // From the views.
    VSTGUI::CBitmap* getBitmap(std::int32_t id);  // made at the first request, kept until the editor goes
    void valueChanged(std::int32_t tag, float value);
    bool canSendToHost() const;
    bool hostAsked() const;
    std::string ParameterDisplay(std::int32_t index) const;
    std::string ParameterDisplay(std::int32_t index, float value) const;  // as it will be with this value
    std::vector<std::string> MidiDeviceNames() const;                     // one a device, by index

    // The hearing of this instance. It is chosen here where it is the user's preference; elsewhere the host
    // has controls for it.
    bool OffersHearing() const;
    Hearing CurrentHearing() const;
    void PreferHearing(const Hearing& wanted);  // by this instance at once, and by those to come

    // How notes are dated for the host: likewise a preference, where there is something to choose.
    bool OffersNoteDates() const;
    NoteDates CurrentNoteDates() const;
    void PreferNoteDates(NoteDates wanted);

    // Each setting is a change in the window like any other, so the host records it.
    void BeginWith(const Beginning& beginning);

    // One step can be undone: the last starting point, or whatever else kept the values that it replaces.
    void KeepForUndo(const std::string& what, const std::vector<ParameterSetting>& replacements);
    const std::string& UndoName() const { return undoName; }  // empty where nothing can be undone
    void Undo();

    void SetTyped(std::int32_t index, const std::string& text);  // where it is no value, the range is shown

    // The size of the window: a preference of the user's, which all windows of this process follow at once.
    std::int32_t WindowSize() const { return Size(); }
    void PreferSize(std::int32_t percent);
    void PreferDark(bool dark);  // likewise; light until chosen

    // What leaves the window happens at the next idle call: within a control's own call the mouse is still
    // held.
    void ShowStatus(const std::string& text);  // for a moment, in the window's lower edge
    void ShowMessage(const std::string& text, const std::string& caption);
    void AskForFile(const FileDialogRequest& request,
                    std::function<void(const std::string& path)> whenChosen);
    void DragTake(VSTGUI::CView& from);  // out of the window, by the button that is held
    void OpenWebPage(const std::string& address);
    void OpenMail(const std::string& address);
    using AEffGUIEditor::LeaveToHost;
    void OpenHelp();  // the help file beside the module, or where there is none, the manual

private:
    struct Message {
        std::string text;
        std::string caption;
    };

    bool MakeWindow(void* parent);
    void MakeViews();
    void CloseNow();
    void Change(const std::vector<ParameterSetting>& settings);
    void ChooseSize();
    void FollowPreferences();
    void RemakeViews();
    void ShowStored(bool stored);  // a message where a preference was not
    void Resize(std::int32_t percent);
    void ShowActivity();
    void RunTasks();
    void PollFileDialog();
    void OwnFileDialog();
    void ShowNextMessage();

    // The members of the window.
    std::map<std::int32_t, VSTGUI::SharedPointer<VSTGUI::CBitmap>> bitmaps;
    VSTGUI::CBitmap* background = nullptr;  // bitmap 103
    Relaxed<bool> isEditorOpen = false;     // read from any thread
    std::vector<unsigned char> levels;      // one display byte a band, reused at each tick

public:
    CORVAguivst* effect;  // not owned; outlives the editor

private:
    CPlugWindow* window = nullptr;   // the frame owns it; none while closed
    std::uint32_t lastIdleTick = 0;  // ms; start of the step in progress
    BlockWatch blockWatch;           // without blocks the picture is dark
    std::uint32_t messagesSeen = 0;  // of those that went out

    bool sizeIsChosen = false;      // the host has asked for it, and expects the next window to have it
    bool choseSize = false;         // it was in this window that the user did, so here a refusal is shown
    std::int32_t sizeFromHost = 0;  // percent, instead of the user's; 0 for none
    std::uint32_t sizeChoices = 0;  // those of the process that this window has followed
    std::uint32_t variantChanges = 0;

    std::vector<ParameterSetting> undoValues;  // from before what can be undone
    std::string undoName;

    Mailbox mailbox;
    std::vector<std::function<void()>> tasks;  // for the next idle call
    TakeDrag takeDrag;
    FileDialog fileDialog;
    int ownedDialog = -1;   // the last whose windows were put above the host's
    int attemptsToOwn = 0;  // for that one
    std::function<void(const std::string&)> fileChosen;
    Mutex messagesGuard;                                      // nothing else is done under it
    std::vector<Message> messages GUARDED_BY(messagesGuard);  // not yet shown, oldest first
    bool messageIsUp = false;
    VSTGUI::ModalViewSessionID messageSession{};  // of the message that is up
    int busy = 0;                                 // entries of ours that are on the stack
    bool closeLater = false;                      // a close came from within one of them
};
