#pragma once
#include <array>
#include <cstdint>
#include <memory>

#include <lv2/ui/ui.h>

#include "hosting/echo_wait.h"
#include "lv2/instance.h"
#include "lv2/outer_window.h"

// The window of an instance, as an LV2 host holds it: inside a window of the host's, or shown and hidden on
// the desktop. It is the editor of the plug-in object, so it needs the instance itself, in one process with
// it, and an instance has one window.
//
// Whatever is changed in it has reached the object; the host is notified at the end of the idle call, the
// newest value of each parameter. What the host reports of a port is shown where the object has not heard it
// by a run. After the host has cleaned up the instance, the window closes at its next idle call.
//
// Threads: [ui].
class Ui {
public:
    // Null when the host lacks what is needed, or no window can be opened inside its own. `widget` becomes
    // the number of the window that is inside the host's.
    static Ui* Make(const char* plugin, LV2UI_Write_Function write, LV2UI_Controller controller,
                    LV2UI_Widget* widget, const LV2_Feature* const* features) noexcept;
    Ui(std::shared_ptr<Instance> itsInstance, LV2UI_Write_Function itsWrite, LV2UI_Controller itsController);
    ~Ui();
    Ui(const Ui&) = delete;
    Ui& operator=(const Ui&) = delete;

    bool Open(std::uint32_t parent);  // a window's number; 0 for the desktop
    void ResizeBy(const LV2UI_Resize* itsResize) { resize = itsResize; }  // the host's; may be none
    void Close();
    bool Idle();  // false once the window has closed
    void PortEvent(std::uint32_t port, float value);

    bool IsOpen() const { return window != nullptr; }
    std::uint32_t WindowId() const { return window != nullptr ? window->Id() : 0; }
    void AnnounceSize();
    ERect Size() { return instance->Object().EditorSize(); }

private:
    void NotifyHost();
    bool Resize(std::int32_t width, std::int32_t height);

    const std::shared_ptr<Instance> instance;
    const LV2UI_Write_Function write;
    LV2UI_Controller controller;
    std::unique_ptr<OuterWindow> window;  // while open
    const LV2UI_Resize* resize = nullptr;
    bool isInside = false;   // the window is in one of the host's
    bool hasClosed = false;  // by itself; the host may show it again
    std::array<EchoWait, parameterCount> echoes;
    std::array<bool, parameterCount> shownOver{};  // the host's value is shown, and no run has brought it
};
