#pragma once
#include <cstdint>
#include <memory>
#include <utility>

#include "editor/frame_window.h"
#include "editor/toolkit.h"
#include "plugin/editor_interface.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

// An editor that lives in a frame of the toolkit: the frame's window within the host's, the event loop on the
// host's idle calls, keys, and the way back for the toolkit.
//
// Life: open and close any number of times, in any order; close, idle and keys without a window do nothing.
// Threads: [ui]; each entry holds the toolkit's lock. Nothing of a closed editor stays on the display.
class AEffGUIEditor : public IPluginEditor, public VSTGUI::VSTGUIEditorInterface {
public:
    AEffGUIEditor(std::int32_t width, std::int32_t height);
    ~AEffGUIEditor() override;

    bool getRect(ERect** editorRect) override;  // known before the first open
    bool open(void* parent) override;           // false without a display or a window `parent`
    void close() override;
    bool isOpen() const override { return frame != nullptr; }
    void idle() override;  // shows what has become dirty
    bool onKeyDown(const VstKeyCode& key) override;
    bool onKeyUp(const VstKeyCode& key) override;

protected:
    void PumpEvents();         // one round of the toolkit's event loop, and what it made dirty
    void FinishOpenedMenus();  // a menu that is down keeps its frame alive until it has gone
    std::uint32_t HostWindow() const { return place ? place->TopLevel() : 0; }  // 0 while closed
    bool OwnWindowsOf(std::uint32_t process) const { return place && place->Own(process); }

    // A key that no view uses: the host's, which sees it already where the key has come by the host's call.
    void LeaveToHost(VSTGUI::KeyboardEvent& event);

    // The window is `percent` of the layout's size from now on: the one that is open, or the next.
    void SetSize(std::int32_t percent);
    std::int32_t Size() const { return size; }
    VSTGUI::CRect Layout() const { return {0, 0, VSTGUI::CCoord(layoutWidth), VSTGUI::CCoord(layoutHeight)}; }
    // What the window takes at that size, in pixels.
    ERect RectAt(std::int32_t percent) const;

    ERect rect;

private:
    const std::int32_t layoutWidth, layoutHeight;  // the views', at any size
    std::int32_t size = 100;                       // percent

    bool keyIsFromHost = false;
    std::pair<VSTGUI::VirtualKey, char32_t> passedKey{};  // went down last, and has not come up
    bool dispatchKey(const VstKeyCode& key, bool down);

    std::unique_ptr<ToolkitSession> session;  // while open
    std::unique_ptr<FrameWindow> place;       // while open
};
